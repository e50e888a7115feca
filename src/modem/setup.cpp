// What one command and its answer are made of, and the modem's set-up.
#include "core/live.h"
#include "core/output.h"
#include "lookuplimit.h"
#include "modem.h"
#include "modemcommand.h"
#include "modemoptions.h"

namespace {

constexpr LONG restBeforeCommand = 200; // ms
constexpr LONG commandPause = 1000;     // ms
constexpr LONG answerLimit = 8000;      // ms

constexpr char answers[] = "OK\0ERROR\0";
constexpr int indexOfOk = 0;

} // namespace

bool SendCommand(COMCTL& record, const std::string& command) {
    const ObjectWatch watch(record);
    const HWND hWnd = record.hWnd;
    ComPause(hWnd, restBeforeCommand);
    bool sent = true;
    const char* rest = command.c_str();
    for (auto step = NextStep(rest); step; step = NextStep(rest)) {
        if (watch.Gone())
            return false;
        if (step->kind == ModemStep::Kind::Pause)
            ComPause(hWnd, commandPause); // also after a failure
        else
            sent = sent && SendBytes(record, &step->byte, 1);
    }
    return sent && watch.Alive();
}

bool AwaitOk(COMCTL& record) {
    const ObjectWatch watch(record);
    const LookUpLimit limit(record, answerLimit);
    return DiscardUntilLookUp(record.hWnd, answers) == indexOfOk && watch.Alive();
}

bool Ask(COMCTL& record, const std::string& command) {
    const ObjectWatch watch(record);
    SendCommand(record, command);
    return watch.Alive() && AwaitOk(record);
}

bool SetUpModem(COMCTL& record) {
    const ObjectWatch watch(record);
    HangUpLine(record);
    return watch.Alive() && Ask(record, ModemOption(record, ModemField::Init));
}
