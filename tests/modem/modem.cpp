#include "modem.h"

#include "escaped_text.h"

#include <algorithm>

namespace {

constexpr Nanoseconds kLossUnit = kSecond / 10;
constexpr Nanoseconds kDtrUnit = kSecond / 100;
constexpr std::uint8_t kNeverHangUp = 255;

// What waits for a computer that does not read; then the line is held back.
constexpr std::size_t kQueueLimit = 64 * 1024;

// Which tones an X setting listens for.
struct ExtendedRow {
    bool dialTone;
    bool busy;
};
constexpr ExtendedRow kExtended[] = {
    {false, false}, {false, false}, {true, false}, {false, true}, {true, true}};

// What the loss of DTR does, by &D.
enum class DtrAction { kNone, kEscape, kHangUp, kReset };
constexpr DtrAction kDtrActions[] = {DtrAction::kNone, DtrAction::kEscape, DtrAction::kHangUp,
                                     DtrAction::kReset};

} // namespace

std::size_t Modem::Room() const {
    return mode_ == Mode::kOnline && !silent_ ? exchange_.Room(line_) : kQueueLimit;
}

void Modem::Receive(Bytes bytes, Nanoseconds now) {
    if (silent_)
        return;
    Advance(now); // a silence that ended just now counts
    while (!bytes.empty() && mode_ != Mode::kOnline) {
        TakeCommandByte(static_cast<char>(bytes[0]));
        bytes = bytes.subspan(1);
    }
    if (bytes.empty())
        return;
    escape_.Feed(bytes, profile_, now);
    exchange_.Send(line_, bytes);
}

void Modem::SetDtr(bool on, Nanoseconds now) {
    if (on == dtr_)
        return;
    dtr_ = on;
    dtrLost_ = on ? kNever : now;
}

void Modem::TakeCommandByte(char byte) {
    if (mode_ == Mode::kDialing || mode_ == Mode::kCalling || mode_ == Mode::kAnswering)
        return EndCall(Result::kNoCarrier);
    std::string echo;
    const std::optional<CommandReader::Line> line = reader_.Take(byte, profile_, echo);
    if (profile_.echo) {
        Put((echoing_ ? "" : garbage_) + echo);
        echoing_ = byte != profile_.Character(sregister::kLineEnd);
    }
    if (line)
        Execute(*line);
}

void Modem::Execute(const CommandReader::Line& line) {
    echoing_ = false;
    switch (line.tooLong ? Outcome::kError : ExecuteLine(*this, line.text)) {
    case Outcome::kOk:
        return Say(Result::kOk);
    case Outcome::kError:
        return Say(Result::kError);
    case Outcome::kNoCarrier:
        return Say(Result::kNoCarrier);
    case Outcome::kOwnResult:
        return;
    }
}

void Modem::Put(const std::string& text) {
    if (!silent_)
        forComputer_.Push({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void Modem::Say(Result result) {
    const std::string text = ResultText(result, rate_, profile_);
    if (!text.empty())
        Put(garbage_ + text);
}

void Modem::Inform(const std::string& text) {
    Put(InformationText(text, profile_));
}

Outcome Modem::Dial(const std::string& text) {
    std::optional<DialString> dial = ParseDialString(text, profile_);
    if (!dial || InCall())
        return Outcome::kError;
    if (!line_.offHook) {
        const bool hearsTone = kExtended[profile_.extended].dialTone;
        const Nanoseconds wait = profile_.Time(sregister::kDialToneWait, kSecond);
        const DialStep first{hearsTone ? DialStep::Kind::kToneWait : DialStep::Kind::kPause, wait, 0};
        dial->steps.insert(dial->steps.begin(), first);
        exchange_.OffHook(line_);
    }
    dialer_ = Dialer(std::move(*dial), kExtended[profile_.extended].busy, now_);
    mode_ = Mode::kDialing;
    return Outcome::kOwnResult;
}

Outcome Modem::Answer() {
    if (InCall())
        return Outcome::kError;
    exchange_.OffHook(line_);
    AwaitCall(Mode::kAnswering);
    return Outcome::kOwnResult;
}

Outcome Modem::ReturnOnline() {
    if (mode_ != Mode::kEscaped)
        return Outcome::kNoCarrier;
    mode_ = Mode::kOnline;
    escape_.Start(now_);
    Say(Result::kConnect);
    return Outcome::kOwnResult;
}

void Modem::Hook(bool off) {
    if (off)
        return exchange_.OffHook(line_);
    exchange_.OnHook(line_);
    mode_ = Mode::kCommand;
}

void Modem::AwaitCall(Mode mode) {
    exchange_.Listen(line_, now_);
    mode_ = mode;
    limit_ = now_ + profile_.Time(sregister::kCarrierWait, kSecond);
}

void Modem::EndCall(Result result) {
    Hook(false);
    Say(result);
}

Nanoseconds Modem::Advance(Nanoseconds now) {
    now_ = now;
    Mode before = mode_;
    do {
        before = mode_;
        next_ = kNever;
        Step();
    } while (mode_ != before);
    return next_;
}

void Modem::Step() {
    FollowDtr();
    FollowRings();
    switch (mode_) {
    case Mode::kCommand:
        return;
    case Mode::kDialing:
        return RunDialer();
    case Mode::kCalling:
    case Mode::kAnswering:
        return AwaitCarrier();
    case Mode::kOnline:
        return Converse();
    case Mode::kEscaped:
        return WatchCarrier();
    }
}

void Modem::Wait(Nanoseconds until) {
    next_ = std::min(next_, until);
}

void Modem::FollowDtr() {
    if (dtrLost_ == kNever)
        return;
    const Nanoseconds due = dtrLost_ + profile_.Time(sregister::kDtrLoss, kDtrUnit);
    if (now_ < due)
        return Wait(due);
    dtrLost_ = kNever;
    const bool wasOffHook = line_.offHook;
    switch (kDtrActions[profile_.dtrMode]) {
    case DtrAction::kNone:
        return;
    case DtrAction::kEscape:
        return mode_ == Mode::kOnline ? Escape() : void();
    case DtrAction::kReset:
        profile_ = {};
        [[fallthrough]];
    case DtrAction::kHangUp:
        return wasOffHook ? EndCall(Result::kNoCarrier) : void();
    }
}

void Modem::FollowRings() {
    const bool rings = exchange_.RingsNow(line_) && !silent_;
    std::uint8_t& count = profile_.s[sregister::kRings];
    if (rings && !ringing_) {
        count = static_cast<std::uint8_t>(std::min(count + 1, 255));
        Say(Result::kRing);
    }
    const bool ended = ringing_ && !rings;
    ringing_ = rings;
    if (!IsRung()) {
        count = 0;
        return;
    }
    const std::uint8_t answerAfter = profile_.s[sregister::kAnswerAfter];
    const bool allowed = dtr_ || kDtrActions[profile_.dtrMode] != DtrAction::kHangUp;
    if (ended && allowed && answerAfter > 0 && count >= answerAfter)
        Answer();
}

void Modem::RunDialer() {
    Nanoseconds next = kNever;
    const Dialer::Outcome outcome = dialer_.Advance(exchange_, line_, now_, next);
    switch (outcome) {
    case Dialer::Outcome::kRunning:
        return Wait(next);
    case Dialer::Outcome::kNoDialTone:
        return EndCall(Result::kNoDialTone);
    case Dialer::Outcome::kBusy:
        return EndCall(Result::kBusy);
    case Dialer::Outcome::kNoAnswer:
        return EndCall(Result::kNoAnswer);
    case Dialer::Outcome::kDone:
        break;
    }
    if (!dialer_.StaysInCommandState())
        return AwaitCall(Mode::kCalling);
    mode_ = Mode::kCommand;
    Say(Result::kOk);
}

void Modem::AwaitCarrier() {
    if (exchange_.HasCarrier(line_)) {
        mode_ = Mode::kOnline;
        carrierLost_ = kNever;
        escape_.Start(now_);
        return Say(Result::kConnect);
    }
    if (mode_ == Mode::kCalling && kExtended[profile_.extended].busy &&
        exchange_.Hears(line_) == Heard::kBusy)
        return EndCall(Result::kBusy);
    if (now_ >= limit_)
        return EndCall(Result::kNoCarrier);
    Wait(limit_);
}

void Modem::Converse() {
    Deliver(false);
    const Nanoseconds escape = escape_.Due(profile_);
    if (now_ >= escape)
        return Escape();
    Wait(escape);
    WatchCarrier();
}

void Modem::WatchCarrier() {
    if (exchange_.HasCarrier(line_))
        return;
    carrierLost_ = std::min(carrierLost_, now_);
    const std::uint8_t delay = profile_.s[sregister::kCarrierLoss];
    if (delay == kNeverHangUp)
        return;
    const Nanoseconds due = carrierLost_ + delay * kLossUnit;
    if (now_ < due)
        return Wait(due);
    if (mode_ == Mode::kOnline)
        Deliver(true);
    EndCall(Result::kNoCarrier);
}

// All: what the other side sent before it hung up gets through to a slow computer, too.
void Modem::Deliver(bool all) {
    const std::size_t waiting = forComputer_.Size();
    const std::size_t room = all ? line_.arrived.Size() : kQueueLimit - std::min(kQueueLimit, waiting);
    const std::size_t count = std::min(room, line_.arrived.Size());
    if (count == 0)
        return;
    if (!silent_)
        forComputer_.Push(line_.arrived.Front(count));
    line_.arrived.Pop(count);
}

void Modem::Escape() {
    mode_ = Mode::kEscaped;
    escape_.Start(now_);
    Say(Result::kOk);
}

void Modem::PowerOn() {
    exchange_.Drop(line_);
    exchange_.OnHook(line_);
    line_.settings = {};
    profile_ = {};
    reader_.Reset();
    forComputer_.Clear();
    mode_ = Mode::kCommand;
    dtrLost_ = kNever;
    ringing_ = echoing_ = silent_ = false;
    garbage_.clear();
    rate_ = "14400";
}

const char* Modem::ModeName() const {
    switch (mode_) {
    case Mode::kCommand:
        return IsRung() ? "ringing" : "command";
    case Mode::kDialing:
    case Mode::kCalling:
        return "dialing";
    case Mode::kAnswering:
        return "ringing";
    case Mode::kOnline:
        return "online";
    case Mode::kEscaped:
        return "escaped";
    }
    return "";
}

std::string Modem::State() const {
    const struct {
        const char* name;
        unsigned value;
    } rows[] = {{"carrier", CarrierSignal()}, {"ring", ringing_},       {"dtr", dtr_},
                {"hook", line_.offHook},      {"e", profile_.echo},     {"v", profile_.words},
                {"q", profile_.quiet},        {"x", profile_.extended}, {"c", profile_.carrierMode},
                {"d", profile_.dtrMode}};
    std::string text = std::string("mode=") + ModeName();
    for (const auto& row : rows)
        text += std::string(" ") + row.name + "=" + std::to_string(row.value);
    for (const sregister::Row& row : sregister::kRows)
        text += " s" + std::to_string(row.number) + "=" + std::to_string(profile_.s[row.number]);
    return text + " last=" + EscapedText(reader_.Last());
}
