#include "exchange.h"

#include <algorithm>
#include <limits>

struct PhoneCall {
    Line* caller = nullptr; // null: somebody outside
    Line* callee = nullptr; // null: an outside subscriber, who has manners
    Manner manner = Manner::kNoAnswer;
    Cadence cadence;
    unsigned ringsLeft = std::numeric_limits<unsigned>::max();
    bool ringing = false; // in the on part
    bool answered = false;
    bool carrier = false;
    Nanoseconds next = kNever; // end of the cadence's part

    bool Rings() const {
        return !answered && (callee || manner == Manner::kNoAnswer || manner == Manner::kVoice);
    }
    Line* Other(const Line& line) const { return &line == caller ? callee : caller; }
};

namespace {

// Enough for a busy line between two rounds of the program, little beside a file.
constexpr std::size_t kQueueLimit = 64 * 1024;

// Dialled first for a line to the world outside; gives a dial tone again.
constexpr char kOutsideDigit = '9';

Heard HeardByCaller(const PhoneCall& call) {
    if (call.answered)
        return Heard::kAnswer;
    if (call.Rings())
        return Heard::kRingback;
    return call.manner == Manner::kBusy ? Heard::kBusy : Heard::kSilence;
}

// When both ends have sent their tones for long enough; kNever if one of them sends none.
Nanoseconds CarrierTime(const PhoneCall& call) {
    if (!call.answered || !call.caller || !call.callee || !call.caller->listeningSince ||
        !call.callee->listeningSince)
        return kNever;
    return std::max(*call.caller->listeningSince, *call.callee->listeningSince) +
           std::max(call.caller->settings.setup, call.callee->settings.setup);
}

} // namespace

Outside DefaultOutside() {
    return {{"5550100", Manner::kBusy},
            {"5550101", Manner::kNoAnswer},
            {"5550102", Manner::kVoice},
            {"5550103", Manner::kDead}};
}

Line& Exchange::AddLine(const std::string& number) {
    lines_.push_back(std::make_unique<Line>());
    lines_.back()->number = number;
    return *lines_.back();
}

void Exchange::OffHook(Line& line) {
    if (line.offHook)
        return;
    line.offHook = true;
    if (line.call) {
        line.call->answered = true;
        line.call->ringing = false;
    }
    changes_++;
}

void Exchange::OnHook(Line& line) {
    if (const std::shared_ptr<PhoneCall> call = line.call; call && line.offHook)
        End(call);
    line.offHook = false;
    line.released = false;
    line.digits.clear();
    line.listeningSince.reset();
    line.arrived.Clear();
    changes_++;
}

void Exchange::Digit(Line& line, char digit) {
    if (Hears(line) == Heard::kDialTone || (!line.digits.empty() && !line.call))
        line.digits += digit;
    changes_++;
}

void Exchange::Connect(Line& line, Nanoseconds now, bool maybeMore) {
    if (line.call || line.released || line.digits.empty())
        return;
    Place(line, now, maybeMore);
    changes_++;
}

Line* Exchange::FindFree(const std::string& number, bool& known) const {
    for (const auto& line : lines_) {
        if (line->number != number)
            continue;
        known = true;
        if (!line->offHook && !line->call)
            return line.get();
    }
    return nullptr;
}

void Exchange::Place(Line& line, Nanoseconds now, bool maybeMore) {
    auto call = std::make_shared<PhoneCall>();
    call->caller = &line;
    const Outside& outside = line.settings.outside;
    bool known = false;
    for (std::string number = line.digits;; number.erase(0, 1)) {
        call->callee = FindFree(number, known);
        const auto found = outside.find(number);
        if (!known && found != outside.end()) {
            known = true;
            call->manner = found->second;
        } else if (known && !call->callee) {
            call->manner = Manner::kBusy;
        }
        if (known || number.empty() || number[0] != kOutsideDigit)
            break;
    }
    if (!known && maybeMore)
        return;
    line.call = call;
    if (call->callee)
        call->callee->call = call;
    if (!call->Rings())
        return;
    call->cadence = call->callee ? call->callee->settings.cadence : line.settings.cadence;
    call->ringing = true;
    call->next = now + call->cadence.on;
}

void Exchange::Listen(Line& line, Nanoseconds now) {
    line.listeningSince = now;
    changes_++;
}

bool Exchange::CallFromOutside(Line& line, unsigned rings, Nanoseconds now) {
    if (line.offHook || line.call)
        return false;
    auto call = std::make_shared<PhoneCall>();
    call->callee = &line;
    call->cadence = line.settings.cadence;
    call->ringsLeft = rings;
    call->ringing = true;
    call->next = now + call->cadence.on;
    line.call = call;
    changes_++;
    return true;
}

bool Exchange::Drop(Line& line) {
    const std::shared_ptr<PhoneCall> call = line.call;
    if (!call)
        return false;
    End(call);
    return true;
}

void Exchange::End(const std::shared_ptr<PhoneCall>& call) {
    for (Line* line : {call->caller, call->callee}) {
        if (!line || line->call != call)
            continue;
        line->call.reset();
        line->released = line->offHook;
    }
    changes_++;
}

Heard Exchange::Hears(const Line& line) const {
    if (!line.offHook || line.released)
        return Heard::kSilence;
    if (line.call)
        return line.call->caller == &line ? HeardByCaller(*line.call) : Heard::kAnswer;
    const bool ready = line.digits.empty() || line.digits == std::string(1, kOutsideDigit);
    return line.settings.dialTone && ready ? Heard::kDialTone : Heard::kSilence;
}

bool Exchange::IsRung(const Line& line) const {
    return line.call && line.call->callee == &line && !line.call->answered;
}

bool Exchange::RingsNow(const Line& line) const {
    return IsRung(line) && line.call->ringing;
}

bool Exchange::HasCarrier(const Line& line) const {
    return line.call && line.call->carrier;
}

std::size_t Exchange::Room(const Line& line) const {
    const Line* other = HasCarrier(line) ? line.call->Other(line) : nullptr;
    if (!other)
        return kQueueLimit;
    return kQueueLimit - std::min(kQueueLimit, other->arrived.Size());
}

void Exchange::Send(Line& line, Bytes bytes) {
    Line* other = HasCarrier(line) ? line.call->Other(line) : nullptr;
    if (!other)
        return;
    other->arrived.Push(bytes);
    changes_++;
}

Nanoseconds Exchange::Advance(Nanoseconds now) {
    Nanoseconds next = kNever;
    for (const auto& line : lines_)
        if (const std::shared_ptr<PhoneCall> call = line->call)
            next = std::min(next, AdvanceCall(call, now));
    return next;
}

Nanoseconds Exchange::AdvanceCall(const std::shared_ptr<PhoneCall>& call, Nanoseconds now) {
    if (call->Rings())
        return AdvanceRinging(call, now);
    const Nanoseconds carrier = CarrierTime(*call);
    if (call->carrier || now < carrier)
        return call->carrier ? kNever : carrier;
    call->carrier = true;
    changes_++;
    return kNever;
}

// From now on rather than from when it was due: a program that was not scheduled skips no ring.
Nanoseconds Exchange::AdvanceRinging(const std::shared_ptr<PhoneCall>& call, Nanoseconds now) {
    if (now < call->next)
        return call->next;
    changes_++;
    if (call->ringing && !call->callee && call->manner == Manner::kVoice) {
        call->answered = true;
        return kNever;
    }
    if (!call->ringing && call->ringsLeft <= 1) {
        End(call);
        return kNever;
    }
    if (!call->ringing)
        call->ringsLeft--;
    call->ringing = !call->ringing;
    call->next = now + (call->ringing ? call->cadence.on : call->cadence.off);
    return call->next;
}
