#include "exceptiontext.h"

#include <algorithm>
#include <iterator>

namespace {

struct ExceptionRow {
    unsigned code;
    const char* text;
};

constexpr ExceptionRow rows[] = {
    {0x80000001, "A Guard Page Violation"},
    {0x80000002, "A Datatype Misaligned Exception"},
    {0x80000003, "A Breakpoint was encountered"},
    {0x80000004, "A Single-Step encountered"},
    {0xC0000005, "An Access Violation"},
    {0xC0000006, "An In-Page Error"},
    {0xC0000008, "An Invalid Handle"},
    {0xC000001D, "An Illegal Instruction"},
    {0xC0000025, "A Non-Continuable Exception"},
    {0xC0000026, "An Invalid Disposition"},
    {0xC000008C, "An Array Bounds Exceeded"},
    {0xC000008D, "A Floating-Point Denormal"},
    {0xC000008E, "A Floating-Point Divide by Zero"},
    {0xC000008F, "A Floating-Point Inexact Result"},
    {0xC0000090, "A Floating-Point Invalid Operation"},
    {0xC0000091, "A Floating-Point Overflow"},
    {0xC0000092, "A Floating-Point Stack Under/Overflow"},
    {0xC0000093, "A Floating-Point Underflow"},
    {0xC0000094, "An Integer Divide by Zero"},
    {0xC0000095, "An Integer Overflow"},
    {0xC0000096, "A Privileged Instruction Violation"},
    {0xC00000FD, "A Stack Overflow"},
    {0xC000013A, "A Control-C Exit"},
};

constexpr char otherText[] = "An Unkown Error"; // so spelled: readers of reports search for it

} // namespace

const char* ExceptionText(unsigned nCode) {
    const auto row = std::ranges::find(rows, nCode, &ExceptionRow::code);
    return row == std::end(rows) ? otherText : row->text;
}
