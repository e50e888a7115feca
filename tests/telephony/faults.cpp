// Faults that a test plants in functions of the service, and structures that are never big enough at first.
#include "faults.h"

#include "exchange.h"
#include "service.h"

#include <atomic>
#include <map>
#include <optional>

namespace {

struct Fault {
    LONG result = 0;
    DWORD times = 0;
    bool crashes = false;
};

struct Delay {
    DWORD milliseconds = 0;
    bool serves = false;
};

struct Faults {
    std::mutex lock;
    std::map<std::string, Fault> faults;
    std::map<std::string, Delay> delays;
};

// Lives on while the process ends: other threads may still call.
Faults& TheFaults() {
    static auto* faults = new Faults;
    return *faults;
}

std::atomic<DWORD> moreDemanded{0};

Delay DelayOf(const std::string& name) {
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    const auto found = all.delays.find(name);
    return found == all.delays.end() ? Delay() : found->second;
}

// Posted messages stay where they are.
void ServeSentMessages(DWORD milliseconds) {
    const DWORD start = GetTickCount();
    for (DWORD gone = 0; gone < milliseconds; gone = GetTickCount() - start) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds - gone, QS_SENDMESSAGE);
        MSG message;
        PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
}

void WaitFor(const Delay& delay) {
    if (delay.serves)
        ServeSentMessages(delay.milliseconds);
    else if (delay.milliseconds)
        Sleep(delay.milliseconds);
}

// Nothing if none is due.
std::optional<Fault> TakeFault(const std::string& name) {
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    const auto found = all.faults.find(name);
    if (found == all.faults.end() || !found->second.times)
        return std::nullopt;
    const Fault fault = found->second;
    if (fault.times != INFINITE)
        --found->second.times;
    return fault;
}

void Plant(const char* szFunction, const Fault& fault) {
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    all.faults[PlainName(szFunction)] = fault;
}

void Plant(const char* szFunction, const Delay& delay) {
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    all.delays[PlainName(szFunction)] = delay;
}

void Crash() {
    *static_cast<volatile int*>(nullptr) = 0;
}

} // namespace

std::mutex& ExchangeLock() {
    static auto* lock = new std::mutex;
    return *lock;
}

DWORD MoreDemanded() {
    return moreDemanded;
}

void ClearFaults() {
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    all.faults.clear();
    all.delays.clear();
    moreDemanded = 0;
}

bool MeetFault(const std::string& function, LONG& result) {
    const std::string name = PlainName(function);
    WaitFor(DelayOf(name));
    const std::optional<Fault> fault = TakeFault(name);
    if (!fault)
        return false;
    if (fault->crashes)
        Crash();
    result = fault->result;
    return true;
}

void WINAPI ExchangeFail(const char* szFunction, LONG result, DWORD times) {
    Plant(szFunction, Fault{result, times});
}

void WINAPI ExchangeCrash(const char* szFunction, DWORD times) {
    Plant(szFunction, Fault{0, times, true});
}

void WINAPI ExchangeDelay(const char* szFunction, DWORD milliseconds) {
    Plant(szFunction, Delay{milliseconds});
}

void WINAPI ExchangeServe(const char* szFunction, DWORD milliseconds) {
    Plant(szFunction, Delay{milliseconds, true});
}

void WINAPI ExchangeDemandMore(DWORD bytes) {
    moreDemanded = bytes;
}
