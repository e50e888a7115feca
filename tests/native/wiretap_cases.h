// What the log's rendering makes of bytes. One table for the native build and for Windows.
#pragma once

#include "diagnostics/wiretaptext.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace wiretap_cases {

using namespace std::string_view_literals;

struct RenderCase {
    const char* name;
    std::string_view bytes;
    int width;
    std::string_view text;
    size_t taken;
};

inline std::ostream& operator<<(std::ostream& out, const RenderCase& testCase) {
    return out << testCase.name;
}

inline const std::string& Printable40() {
    static const std::string bytes(40, 'x');
    return bytes;
}

inline const std::string& Quoted32() {
    static const std::string text = '"' + std::string(32, 'x') + '"';
    return text;
}

inline std::vector<RenderCase> RenderCases() {
    return {
        {"NothingIsNothing", "", 80, "", 0},
        {"PrintableFirst", "A", 80, R"("A")", 1},
        {"PrintableInQuotes", "AT", 80, R"("AT")", 2},
        {"PrintableAfterChr", "\rA", 80, R"(Chr(13) + "A")", 2},
        {"ControlFirst", "\r", 80, "Chr(13)", 1},
        {"ControlInQuotes", "AT\r", 80, R"("AT" + Chr(13))", 3},
        {"ControlAfterChr", "\r\n", 80, "Chr(13) + Chr(10)", 2},
        {"QuotesOpenAgain", "A\rB\nC", 80, R"("A" + Chr(13) + "B" + Chr(10) + "C")", 5},
        {"NulIsControl", "\0"sv, 80, "Chr(0)", 1},
        {"LastControl", "\x1F", 80, "Chr(31)", 1},
        {"BlankIsPrintable", " ", 80, R"(" ")", 1},
        {"DeleteIsPrintable", "\x7F", 80, "\"\x7F\"", 1},
        {"HighBytesArePrintable", "\x80\xFF", 80, "\"\x80\xFF\"", 2},
        {"QuoteIsNotDoubled", "\"", 80, R"(""")", 1},
        {"ThirtyTwoBytesAtMost", Printable40(), 80, Quoted32(), 32},
        {"FirstPrintableWithSpareOfTwo", "A", 4, R"("A")", 1},
        {"FirstPrintableWithSpareOfOne", "A", 3, "", 0},
        {"NextPrintableWithSpareOfTwo", "AB", 5, R"("AB")", 2},
        {"NextPrintableWithSpareOfOne", "AB", 4, R"("A")", 1},
        {"FirstControlWithSpareOfOne", "\r", 8, "Chr(13)", 1},
        {"FirstControlWithoutSpare", "\r", 7, "", 0},
        {"ControlInQuotesFits", "A\r", 14, R"("A" + Chr(13))", 2},
        {"ControlInQuotesDoesNotFit", "A\r", 13, R"("A")", 1},
        {"ControlAfterChrFits", "\r\r", 18, "Chr(13) + Chr(13)", 2},
        {"ControlAfterChrDoesNotFit", "\r\r", 17, "Chr(13)", 1},
        {"PrintableAfterChrFits", "\rA", 14, R"(Chr(13) + "A")", 2},
        {"PrintableAfterChrDoesNotFit", "\rA", 13, "Chr(13)", 1},
        {"StopsAtTheFirstThatDoesNotFit", "A\rB", 6, R"("A")", 1},
        {"NoWidth", "A", 0, "", 0},
        {"NegativeWidth", "\r", -20, "", 0},
    };
}

inline void CheckRender(const RenderCase& testCase) {
    const RenderedLine line = RenderBytes(testCase.bytes, testCase.width);
    EXPECT_EQ(line.text, testCase.text);
    EXPECT_EQ(line.taken, testCase.taken);
}

struct DataCase {
    const char* name;
    size_t cchText;
    std::string bytes;
    std::string lines;
};

inline std::ostream& operator<<(std::ostream& out, const DataCase& testCase) {
    return out << testCase.name;
}

inline std::string Quoted(size_t count) {
    return '"' + std::string(count, 'x') + '"';
}

inline std::vector<DataCase> DataCases() {
    const std::string more = " + _\r\n          ";
    const std::string sixChr = "Chr(13) + Chr(13) + Chr(13) + Chr(13) + Chr(13) + Chr(13)";
    const std::string sevenChr = sixChr + " + Chr(13)";
    return {
        {"NoData", 0, "", ""},
        {"OneLine", 20, "AT\r", "\"AT\" + Chr(13)\r\n"},
        {"ExactlyOneFullLine", 0, std::string(32, 'x'), Quoted(32) + "\r\n"},
        {"OneByteMore", 0, std::string(33, 'x'), Quoted(32) + more + Quoted(1) + "\r\n"},
        {"HundredBytesTakeFourLines", 0, std::string(100, 'x'),
         Quoted(32) + more + Quoted(32) + more + Quoted(32) + more + Quoted(4) + "\r\n"},
        {"TextNarrowsTheFirstLineOnly", 70, std::string(20, 'x'), Quoted(7) + more + Quoted(13) + "\r\n"},
        {"LaterLinesAreTenNarrower", 0, std::string(15, '\r'),
         sevenChr + " + Chr(13)" + more + sevenChr + "\r\n"},
        {"SecondLineOfSeventy", 0, std::string(16, '\r'),
         sevenChr + " + Chr(13)" + more + sevenChr + more + "Chr(13)\r\n"},
        {"LastTextWithRoomForAByte", 76, "xyz", "\"x\"" + more + "\"yz\"\r\n"},
        {"TextWithoutRoomTakesOneByte", 77, "xyz", "\"x\"" + more + "\"yz\"\r\n"},
        {"TextPastTheLineTakesOneByte", 500, "\rxy", "Chr(13)" + more + "\"xy\"\r\n"},
        {"TextPastTheLineWithOneByte", 500, "x", "\"x\"\r\n"},
    };
}

inline void CheckDataLines(const DataCase& testCase) {
    EXPECT_EQ(DataLines(testCase.cchText, testCase.bytes), testCase.lines);
}

// Reads an expression back as the script host would: the only quotes in it are those of the rendering.
inline std::string Evaluate(std::string_view expression) {
    std::string bytes;
    while (!expression.empty()) {
        if (expression.starts_with('"')) {
            const size_t end = expression.find('"', 1);
            bytes += expression.substr(1, end - 1);
            expression.remove_prefix(end + 1);
        } else if (expression.starts_with("Chr(")) {
            const size_t end = expression.find(')');
            bytes += static_cast<char>(std::stoi(std::string(expression.substr(4, end - 4))));
            expression.remove_prefix(end + 1);
        } else {
            expression.remove_prefix(1); // " + ", "_", line ends
        }
    }
    return bytes;
}

// Every byte but the quote, at every width of the first line, survives the way through the log.
inline void CheckNothingIsLost() {
    std::string bytes;
    for (int value = 0; value < 256; ++value) {
        if (value == '"')
            continue;
        bytes += static_cast<char>(value);
        bytes += static_cast<char>(255 - value == '"' ? 0 : 255 - value);
    }
    for (size_t cchText = 0; cchText < 100; ++cchText)
        ASSERT_EQ(Evaluate(DataLines(cchText, bytes)), bytes) << "text of " << cchText << " characters";
}

template <class Case>
std::string NameOf(const testing::TestParamInfo<Case>& info) {
    return info.param.name;
}

} // namespace wiretap_cases
