#include "settings.h"

#include <climits>
#include <span>
#include <string_view>

namespace {

constexpr size_t longestText = 19; // characters that are looked at

struct SettingRow {
    std::string_view text;
    int value;
};

constexpr SettingRow parityRows[] = {{"n", 0}, {"o", 1}, {"e", 2}, {"m", 3}, {"s", 4}};
constexpr SettingRow dataBitsRows[] = {{"8", 8}, {"7", 7}, {"6", 6}, {"5", 5}, {"4", 4}};
// "1" is the head of "1.5", so it comes after.
constexpr SettingRow stopBitsRows[] = {{"1.5", 1}, {"1", 0}, {"2", 2}};

using SettingTable = std::span<const SettingRow>;

char FoldCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

class SettingsReader {
  public:
    explicit SettingsReader(std::string_view text) : rest_(text) {}

    int ReadSpeed() {
        SkipBlanks();
        int speed = 0;
        for (; !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9'; rest_.remove_prefix(1)) {
            const int digit = rest_.front() - '0';
            speed = speed > (INT_MAX - digit) / 10 ? INT_MAX : speed * 10 + digit;
        }
        return speed;
    }

    int ReadField(SettingTable table) {
        SkipBlanks();
        if (rest_.starts_with(','))
            rest_.remove_prefix(1);
        SkipBlanks();
        for (const SettingRow& row : table) {
            if (!rest_.starts_with(row.text))
                continue;
            rest_.remove_prefix(row.text.size());
            return row.value;
        }
        return AbsentSetting;
    }

    bool AtEnd() {
        SkipBlanks();
        return rest_.empty();
    }

  private:
    void SkipBlanks() {
        while (rest_.starts_with(' ') || rest_.starts_with('\t'))
            rest_.remove_prefix(1);
    }

    std::string_view rest_;
};

std::string TextOf(SettingTable table, int value) {
    for (const SettingRow& row : table)
        if (row.value == value)
            return std::string(row.text);
    return "";
}

} // namespace

bool ParseSettings(const char* text, LineSettings& settings) {
    std::string folded = std::string(std::string_view(text).substr(0, longestText));
    for (char& c : folded)
        c = FoldCase(c);
    SettingsReader reader(folded);
    LineSettings read;
    read.speed = reader.ReadSpeed();
    read.parity = reader.ReadField(parityRows);
    read.dataBits = reader.ReadField(dataBitsRows);
    read.stopBits = reader.ReadField(stopBitsRows);
    if (!reader.AtEnd())
        return false;
    settings = read;
    return true;
}

std::string FormatSettings(const LineSettings& settings) {
    const std::string speed = settings.speed ? std::to_string(settings.speed) : "";
    return speed + "," + TextOf(parityRows, settings.parity) + "," + TextOf(dataBitsRows, settings.dataBits) +
           "," + TextOf(stopBitsRows, settings.stopBits);
}
