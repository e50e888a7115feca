#include "propertylog.h"

#include "TarnComm.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr size_t lineSize = 256; // with the NUL; a longer line is cut
constexpr int propertyLevel = 1;
constexpr int eventLevel = 4;

struct Line {
    char text[lineSize];
};

TARN_PRINTF(1, 2) Line MakeLine(const char* format, ...) {
    Line line;
    va_list values;
    va_start(values, format);
    std::vsnprintf(line.text, sizeof line.text, format, values);
    va_end(values);
    return line;
}

const char* WordOf(bool value) {
    return value ? "True" : "False";
}

// Property lines, without data or with bytes or with a string behind the text.
void Put(const PropertyLog::State& state, const Line& line, const void* bytes = nullptr, size_t count = 0) {
    if (state.properties)
        WireTapMsg(state.object, propertyLevel, line.text, bytes, static_cast<DWORD>(count));
}

void PutText(const PropertyLog::State& state, const Line& line, const wchar_t* text) {
    if (state.properties)
        WireTapMsgW(state.object, propertyLevel, line.text, text ? text : L"");
}

Line Left(const PropertyLog::State& state, const char* property, const char* join) {
    return MakeLine("%s.%s%s", state.name.c_str(), property, join);
}

} // namespace

void PropertyLog::Returns(const char* property, LONG value) const {
    Put(state_, MakeLine("%s.%s returns %ld", state_.name.c_str(), property, value));
}

void PropertyLog::ReturnsUnsigned(const char* property, ULONG value) const {
    Put(state_, MakeLine("%s.%s returns %lu", state_.name.c_str(), property, value));
}

void PropertyLog::ReturnsBool(const char* property, bool value) const {
    ReturnsWord(property, WordOf(value));
}

void PropertyLog::ReturnsWord(const char* property, const char* word) const {
    Put(state_, MakeLine("%s.%s returns %s", state_.name.c_str(), property, word));
}

void PropertyLog::ReturnsText(const char* property, const wchar_t* text) const {
    PutText(state_, Left(state_, property, " returns "), text);
}

void PropertyLog::ReturnsBytes(const char* property, const void* bytes, size_t count) const {
    Put(state_, Left(state_, property, " returns "), bytes, count);
}

void PropertyLog::Assigned(const char* property, LONG value) const {
    Put(state_, MakeLine("%s.%s = %ld", state_.name.c_str(), property, value));
}

void PropertyLog::AssignedUnsigned(const char* property, ULONG value) const {
    Put(state_, MakeLine("%s.%s = %lu", state_.name.c_str(), property, value));
}

void PropertyLog::AssignedBool(const char* property, bool value) const {
    Put(state_, MakeLine("%s.%s = %s", state_.name.c_str(), property, WordOf(value)));
}

void PropertyLog::AssignedText(const char* property, const wchar_t* text) const {
    PutText(state_, Left(state_, property, " = "), text);
}

void PropertyLog::AssignedBytes(const char* property, const void* bytes, size_t count) const {
    Put(state_, Left(state_, property, " = "), bytes, count);
}

// A member of an array of controls has its index in its name, "Comm(2)", which becomes the event's first
// argument.
void PropertyLog::Event(const char* event, const char* arguments) const {
    if (!state_.events)
        return;
    const size_t bracket = state_.name.find('(');
    const char* given = arguments ? arguments : "";
    if (bracket == std::string::npos) {
        const Line line = MakeLine("%s_%s(%s) Event", state_.name.c_str(), event, given);
        WireTapMsg(state_.object, eventLevel, line.text, nullptr, 0);
        return;
    }
    const std::string szControlNameWithoutIndex = state_.name.substr(0, bracket);
    const int index = std::atoi(state_.name.c_str() + bracket + 1);
    const char* comma = arguments ? ", " : "";
    const Line line =
        MakeLine("%s_%s(%d%s%s) Event", szControlNameWithoutIndex.c_str(), event, index, comma, given);
    WireTapMsg(state_.object, eventLevel, line.text, nullptr, 0);
}
