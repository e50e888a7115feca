// Writes docs/terminal.md from the rows that the terminal's parsers run, or holds that file against them:
// terminal_codes [FILE].
#include "terminal/codes.h"
#include "terminal/printrows.h"
#include "terminal/rendition.h"
#include "terminal/sequence.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

namespace {

constexpr char head[] =
    R"(<!-- Made by tests/native/terminal_codes.cpp from the tables in src/terminal: change those, then
     write it anew by build/native/tests/native/terminal_codes >docs/terminal.md -->
# Terminal codes

What each emulation makes of the bytes that it is shown (`SetEmulation`). The codes are those of ECMA-48 and
of DEC's VT52 and VT100; where an effect differs from theirs, it is the one told here that programs can rely
on. A code may arrive in pieces of any size. Rows and columns that a code names count from 1, and the
screen's colours are those of the PC: `SetColor` takes blue for 1 where `ESC [ 31 m` is red.

| Emulation | Knows |
|---|---|
| TTY | text and control characters |
| ANSI | control sequences too |
| VT52 | codes of three bytes |
| VT100 | control sequences, codes of one byte, line drawing |

)";

constexpr char controlsText[] = R"(## Text and control characters, in all emulations

Any other byte but NUL, which is dropped, is text and shows as the font has it, other control characters
included. What text does behind the last column is told by `SetEndOfLineMode`.

)";

constexpr char lineDrawText[] = R"(## Line drawing

While it is on, these letters are other characters of code page 437.

)";

constexpr char sequencesText[] = R"(## Control sequences, under ANSI and VT100

Under VT100, `ESC [` or the byte 9B, then numbers with `;` between them, then the final. Under ANSI, an ESC
alone begins a sequence, and what stands in place of the `[` is passed over unless it is a final by itself.
A number that is absent stands for what the table gives. The byte behind 9B is never the final. SM and RM
know one mode at a time. A sequence of 20 bytes or more is dropped, and a control character ends one ahead
of time.

)";

constexpr char renditionText[] = R"(### SGR

Each number of the list in turn, 100 at the most; others do nothing. An empty list is a 0.

)";

constexpr char vt100Text[] = R"(## VT100

Besides control sequences, ESC and one byte:

)";

constexpr char vt100Sets[] = R"(
`ESC ( 0` switches line drawing on, and `ESC (` with any other byte off. `ESC )` and `ESC #` take a byte
with them and do nothing. All other bytes behind an ESC are dropped with it.

)";

constexpr char vt52Text[] = R"(## VT52

A code is three bytes long: ESC, any byte, and the letter. So `ESC [ A` moves up, and the two bytes `ESC A`
wait for a third one, which is the letter then. Other letters do nothing.

)";

void StartTable(std::ostream& out, std::string_view columns) {
    out << columns << '\n';
    for (auto bars = std::ranges::count(columns, '|'); bars > 1; --bars)
        out << "|---";
    out << "|\n";
}

void DescribeText(std::ostream& out) {
    char code[3];
    out << controlsText;
    StartTable(out, "| Byte | Name | Effect |");
    for (const ControlRow& row : PrintControls()) {
        std::snprintf(code, sizeof code, "%02X", row.code);
        out << "| " << code << " | " << row.name << " | " << row.meaning << " |\n";
    }
    out << '\n' << lineDrawText;
    StartTable(out, "| Letter | Character | Shape |");
    for (const LineDrawRow& row : LineDrawGlyphs())
        out << "| `" << row.code << "` | " << int{row.glyph} << " | " << row.meaning << " |\n";
    out << '\n';
}

bool IsFinal(char c) {
    return ScanForFinal(&c, 1) == 1;
}

bool HasRow(char final) {
    return std::ranges::any_of(SequenceFinals(), [final](const FinalRow& row) { return row.final == final; });
}

void NameOtherFinals(std::ostream& out) {
    out << "\nThese end a sequence too, do nothing and are reported in the log:";
    for (char c = ' '; c < '\x7F'; ++c)
        if (IsFinal(c) && !HasRow(c))
            out << " `" << c << '`';
    out << ".\n\n";
}

void DescribeSequences(std::ostream& out) {
    out << sequencesText;
    StartTable(out, "| Final | Name | Numbers | Effect |");
    for (const FinalRow& row : SequenceFinals())
        out << "| `" << row.final << "` | " << row.mnemonic << " | " << row.parameters << " | " << row.meaning
            << " |\n";
    NameOtherFinals(out);
    out << renditionText;
    StartTable(out, "| Number | Effect |");
    for (const RenditionRow& row : RenditionRows())
        out << "| " << row.parameter << " | " << row.meaning << " |\n";
    out << '\n';
}

void DescribeCodes(std::ostream& out, std::span<const CodeRow> rows) {
    StartTable(out, "| Byte | Name | Effect |");
    for (const CodeRow& row : rows)
        out << "| `" << row.code << "` | " << row.name << " | " << row.meaning << " |\n";
}

std::string Page() {
    std::ostringstream out;
    out << head;
    DescribeText(out);
    DescribeSequences(out);
    out << vt100Text;
    DescribeCodes(out, Vt100Codes());
    out << vt100Sets << vt52Text;
    DescribeCodes(out, Vt52Codes());
    return out.str();
}

int Compare(const char* path, const std::string& page) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream there;
    there << file.rdbuf();
    if (file && there.str() == page)
        return 0;
    std::fprintf(stderr,
                 "%s is not what the terminal's tables say. Write it anew:\n"
                 "    build/native/tests/native/terminal_codes >docs/terminal.md\n",
                 path);
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    const std::string page = Page();
    if (argc > 1)
        return Compare(argv[1], page);
    std::fputs(page.c_str(), stdout);
    return 0;
}
