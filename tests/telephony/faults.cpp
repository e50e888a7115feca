// Faults that a test plants in functions of the service, and structures that are never big enough at first.
#include "faults.h"

#include "exchange.h"
#include "service.h"

#include <atomic>
#include <map>

namespace {

struct Fault {
    LONG result = 0;
    DWORD times = 0;
};

struct Faults {
    std::mutex lock;
    std::map<std::string, Fault> faults;
    std::map<std::string, DWORD> delays;
};

// Lives on while the process ends: other threads may still call.
Faults& TheFaults() {
    static auto* faults = new Faults;
    return *faults;
}

std::atomic<DWORD> moreDemanded{0};

DWORD DelayOf(const std::string& name) {
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    const auto found = all.delays.find(name);
    return found == all.delays.end() ? 0 : found->second;
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
    if (const DWORD delay = DelayOf(name))
        Sleep(delay);
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    const auto found = all.faults.find(name);
    if (found == all.faults.end() || !found->second.times)
        return false;
    result = found->second.result;
    if (found->second.times != INFINITE)
        --found->second.times;
    return true;
}

void WINAPI ExchangeFail(const char* szFunction, LONG result, DWORD times) {
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    all.faults[PlainName(szFunction)] = {result, times};
}

void WINAPI ExchangeDelay(const char* szFunction, DWORD milliseconds) {
    Faults& all = TheFaults();
    const std::lock_guard guard(all.lock);
    all.delays[PlainName(szFunction)] = milliseconds;
}

void WINAPI ExchangeDemandMore(DWORD bytes) {
    moreDemanded = bytes;
}
