#include "outcomes.h"

#include "calls.h"
#include "exchange.h"
#include "lines.h"
#include "messages.h"
#include "plant.h"
#include "worker.h"

#include <algorithm>
#include <span>

namespace {

struct Step {
    DWORD state;
    DWORD_PTR mode;
};

constexpr DWORD_PTR ofRule = static_cast<DWORD_PTR>(-1); // the mode is the rule's argument

constexpr Step connects[] = {
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_NORMAL},
    {LINECALLSTATE_DIALING, 0},
    {LINECALLSTATE_PROCEEDING, 0},
    {LINECALLSTATE_RINGBACK, 0},
    {LINECALLSTATE_CONNECTED, 0},
};
constexpr Step busy[] = {
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_NORMAL},
    {LINECALLSTATE_DIALING, 0},
    {LINECALLSTATE_PROCEEDING, 0},
    {LINECALLSTATE_BUSY, LINEBUSYMODE_STATION},
    {LINECALLSTATE_DISCONNECTED, LINEDISCONNECTMODE_BUSY},
};
constexpr Step noAnswer[] = {
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_NORMAL},
    {LINECALLSTATE_DIALING, 0},
    {LINECALLSTATE_PROCEEDING, 0},
    {LINECALLSTATE_RINGBACK, 0},
    {LINECALLSTATE_DISCONNECTED, LINEDISCONNECTMODE_NOANSWER},
};
constexpr Step disconnects[] = {
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_NORMAL},
    {LINECALLSTATE_DIALING, 0},
    {LINECALLSTATE_DISCONNECTED, ofRule},
};
constexpr Step badAddress[] = {
    {LINECALLSTATE_DIALTONE, LINEDIALTONEMODE_NORMAL},
    {LINECALLSTATE_DIALING, 0},
    {LINECALLSTATE_DISCONNECTED, LINEDISCONNECTMODE_BADADDRESS},
};
constexpr Step idle[] = {{LINECALLSTATE_IDLE, 0}};

constexpr std::span<const Step> dialled = std::span(connects).first(3);

void FailAllMessages(HCALL, DWORD) {
    FailMessages();
}

void CallDevice(HCALL call, DWORD device);

struct Script {
    int outcome;
    std::span<const Step> steps;
    void (*then)(HCALL call, DWORD argument); // after the last of them; null: nothing
};

constexpr Script scripts[] = {
    {ExchangeConnects, connects, nullptr},
    {ExchangeBusy, busy, nullptr},
    {ExchangeBusyStateOnly, std::span(busy).first(4), nullptr},
    {ExchangeNoAnswer, noAnswer, nullptr},
    {ExchangeDisconnects, disconnects, nullptr},
    {ExchangeIdle, idle, nullptr},
    {ExchangeRings, std::span(connects).first(4), nullptr},
    {ExchangeMessagesFail, {}, FailAllMessages},
};

constexpr Script toLine = {-1, dialled, CallDevice};
constexpr Script toNobody = {-1, badAddress, nullptr};
constexpr Script toBusyLine = {-1, std::span(busy).last(2), nullptr};
constexpr Script toSilentLine = {-1, std::span(noAnswer).last(2), nullptr};

void Play(HCALL handle, const Script& script, DWORD argument, std::size_t step) {
    Call* call = Calls().Find(handle);
    if (!call || !call->isPlayed)
        return;
    if (step == script.steps.size()) {
        if (script.then)
            script.then(handle, argument);
        return;
    }
    const Step& now = script.steps[step];
    ChangeState(handle, now.state, now.mode == ofRule ? argument : now.mode);
    After(ThePlant().pace, [=, &script] { Play(handle, script, argument, step + 1); });
}

// The call has been dialled, and the number is that of a line.
void CallDevice(HCALL handle, DWORD device) {
    if (IsEngaged(device))
        return Play(handle, toBusyLine, 0, 0);
    const DWORD conversation = Calls().Find(handle)->conversation;
    ChangeState(handle, LINECALLSTATE_RINGBACK);
    if (!RingDevice(device, conversation))
        return After(ThePlant().pace, [=] { Play(handle, toSilentLine, 0, 1); });
}

const Rule* FindRule(const std::string& number) {
    const auto& rules = ThePlant().rules;
    const auto found = std::find_if(rules.rbegin(), rules.rend(),
                                    [&](const Rule& rule) { return SameNumber(rule.number, number); });
    return found == rules.rend() ? nullptr : &*found;
}

} // namespace

Acceptance AcceptanceOf(const std::string& number) {
    const Rule* rule = FindRule(number);
    const int outcome = rule ? rule->outcome : ExchangeConnects;
    const auto error = rule ? static_cast<LONG>(rule->argument) : 0;
    return {outcome == ExchangeRequestFails ? error : 0, outcome == ExchangeReplyFails ? error : 0,
            outcome == ExchangeNeverReplies};
}

void PlayCall(HCALL call, const std::string& number) {
    Calls().Find(call)->isPlayed = true;
    const auto begin = [call](const Script& script, DWORD argument) {
        After(ThePlant().pace, [=, &script] { Play(call, script, argument, 0); });
    };
    if (const Rule* rule = FindRule(number)) {
        for (const Script& script : scripts)
            if (script.outcome == rule->outcome)
                begin(script, rule->argument);
        return;
    }
    const auto& lines = ThePlant().lines;
    const auto called = std::find_if(lines.begin(), lines.end(),
                                     [&](const PlantLine& line) { return SameNumber(line.number, number); });
    if (called == lines.end())
        return begin(toNobody, 0);
    begin(toLine, static_cast<DWORD>(called - lines.begin()));
}
