#include "result_codes.h"

namespace {

struct ResultRow {
    Result result;
    int number;
    const char* words;
};
constexpr ResultRow kResults[] = {
    {Result::kOk, 0, "OK"},       {Result::kConnect, 1, "CONNECT"},
    {Result::kRing, 2, "RING"},   {Result::kNoCarrier, 3, "NO CARRIER"},
    {Result::kError, 4, "ERROR"}, {Result::kNoDialTone, 6, "NO DIALTONE"},
    {Result::kBusy, 7, "BUSY"},   {Result::kNoAnswer, 8, "NO ANSWER"},
};

struct RateRow {
    const char* rate;
    int number;
};
constexpr RateRow kRates[] = {
    {"300", 1},    {"1200", 5},   {"2400", 10},  {"4800", 11},  {"7200", 24},  {"9600", 12},   {"12000", 25},
    {"14400", 13}, {"16800", 86}, {"19200", 14}, {"21600", 55}, {"24000", 56}, {"26400", 57},  {"28800", 58},
    {"31200", 59}, {"33600", 60}, {"38400", 28}, {"57600", 18}, {"56000", 61}, {"115200", 87},
};
constexpr int kOtherRate = 99;

const ResultRow& RowOf(Result result) {
    for (const ResultRow& row : kResults)
        if (row.result == result)
            return row;
    return kResults[0];
}

// What stands behind the digits ("14400/ARQ") does not change the number.
int RateNumber(const std::string& rate) {
    const std::string digits = rate.substr(0, rate.find_first_not_of("0123456789"));
    for (const RateRow& row : kRates)
        if (digits == row.rate)
            return row.number;
    return kOtherRate;
}

std::string LineEnd(const Profile& profile) {
    return {profile.Character(sregister::kLineEnd), profile.Character(sregister::kLineFeed)};
}

} // namespace

std::string ResultText(Result result, const std::string& rate, const Profile& profile) {
    if (profile.quiet)
        return "";
    const bool showsRate = result == Result::kConnect && profile.extended > 0 && !rate.empty();
    const ResultRow& row = RowOf(result);
    if (!profile.words)
        return std::to_string(showsRate ? RateNumber(rate) : row.number) +
               profile.Character(sregister::kLineEnd);
    const std::string words = showsRate ? std::string(row.words) + " " + rate : row.words;
    return LineEnd(profile) + words + LineEnd(profile);
}

std::string InformationText(const std::string& text, const Profile& profile) {
    return (profile.words ? LineEnd(profile) : "") + text + LineEnd(profile);
}
