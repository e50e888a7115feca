// Both look-ups on strings and streams of the fuzzer's making, held against their plainest form.
#include "core/rooms.h"
#include "core/Tc-lkup.h"
#include "lookupmodel.h"
#include "platform.h"
#include "scriptedobject.h"
#include "TarnComm.h"

#include <cstdint>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

int someControl;
std::vector<model::Found> given;

void Require(bool condition) {
    if (!condition)
        std::abort();
}

void TakeEvent(COMCTL& record, const char* lpText, int cbText) {
    given.push_back({GetLookUpMatch(record), std::string(lpText, static_cast<size_t>(cbText))});
}

// A byte of the stream that stands for time: the clock moves on by the byte behind it.
constexpr char clockByte = '\x01';

void FuzzPassive(FuzzedDataProvider& data) {
    ScriptedObject object;
    object.Record().lpControl = reinterpret_cast<CTarnCommCtl*>(&someControl);
    upperRooms.fireLookUp = TakeEvent;
    given.clear();
    platform::SetTick(data.ConsumeIntegral<uint32_t>());
    const auto timeOut = data.ConsumeIntegralInRange<LONG>(0, 300);
    const auto limit = data.ConsumeIntegralInRange<int>(0, 100);
    const char separator = data.ConsumeIntegral<char>();
    std::string strings = data.ConsumeRandomLengthString();
    strings.resize(std::min(strings.find('\0'), strings.size()));
    SetLookUpTimeOut(object.Handle(), timeOut);
    SetLookUpInputLen(object.Handle(), limit);
    SetLookUpText(object.Handle(), strings.c_str(), separator);
    model::PassiveLookUp plain(model::Split(strings, separator), static_cast<size_t>(limit),
                               static_cast<DWORD>(timeOut), GetTickCount());
    std::vector<model::Found> expected;
    const std::string stream = data.ConsumeRemainingBytesAsString();
    for (size_t i = 0; i < stream.size(); ++i) {
        if (stream[i] == clockByte && i + 1 < stream.size())
            platform::AdvanceTick(static_cast<unsigned char>(stream[++i]));
        if (const auto found = plain.Feed(stream[i], GetTickCount()))
            expected.push_back(*found);
        LookUpChar(object.Pointer(), stream[i]);
        Require(given == expected);
    }
}

void FuzzBlocking(FuzzedDataProvider& data) {
    ScriptedObject object;
    const auto size = data.ConsumeIntegralInRange<size_t>(0, 64);
    std::string list = data.ConsumeRandomLengthString() + '\0' + '\0';
    const std::string line = data.ConsumeRemainingBytesAsString();
    object.Send(line);
    std::vector<std::string> strings;
    for (const char* text = list.c_str(); *text; text += strings.back().size() + 1)
        strings.emplace_back(text);
    std::string output(size, '#'); // on the heap, so that a byte too many is seen
    const int index = InputUntilLookUp(object.Handle(), list.c_str(), size ? output.data() : nullptr,
                                       static_cast<int>(size));
    if (strings.empty()) {
        Require(index == -1 && object.Unread() == line.size());
        return;
    }
    const model::Until expected = model::LookUpUntil(strings, line, size);
    Require(index == expected.index);
    Require(line.size() - object.Unread() == expected.read);
    Require(output.substr(0, expected.output.size()) == expected.output);
    Require(!size || output[expected.output.size()] == '\0');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzedDataProvider data(bytes, size);
    if (data.ConsumeBool())
        FuzzPassive(data);
    else
        FuzzBlocking(data);
    return 0;
}
