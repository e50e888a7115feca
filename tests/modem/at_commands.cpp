#include "at_commands.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iterator>
#include <optional>

namespace {

// The line, and how far it has been read.
class Cursor {
  public:
    explicit Cursor(const std::string& text) : text_(text) {}

    bool AtEnd() const { return at_ >= text_.size(); }
    bool Skip(const std::string& word) {
        const bool there = text_.compare(at_, word.size(), word) == 0;
        at_ += there ? word.size() : 0;
        return there;
    }
    // Nothing when there is no figure; more than any command takes when there are too many.
    std::optional<unsigned> Number() {
        if (AtEnd() || !IsFigure())
            return std::nullopt;
        unsigned number = 0;
        for (; !AtEnd() && IsFigure(); at_++)
            number = std::min(number * 10 + static_cast<unsigned>(text_[at_] - '0'), kTooMuch);
        return number;
    }
    std::string Rest() {
        const std::string rest = text_.substr(at_);
        at_ = text_.size();
        return rest;
    }

  private:
    static constexpr unsigned kTooMuch = 100'000;

    bool IsFigure() const { return text_[at_] >= '0' && text_[at_] <= '9'; }

    const std::string& text_;
    std::size_t at_ = 0;
};

struct Call {
    CommandTarget& target;
    unsigned number; // 0 when none was there
    Cursor& cursor;  // behind the number
};

Outcome Accept(Call&) {
    return Outcome::kOk;
}

template <auto Field>
Outcome Store(Call& call) {
    call.target.Settings().*Field = call.number;
    return Outcome::kOk;
}

template <bool IsPulse>
Outcome DialBy(Call& call) {
    call.target.Settings().pulse = IsPulse;
    return Outcome::kOk;
}

Outcome Dial(Call& call) {
    return call.target.Dial(call.cursor.Rest());
}

Outcome Answer(Call& call) {
    return call.target.Answer();
}

Outcome ReturnOnline(Call& call) {
    return call.target.ReturnOnline();
}

Outcome Hook(Call& call) {
    call.target.Hook(call.number == 1);
    return Outcome::kOk;
}

Outcome Factory(Call& call) {
    call.target.Settings() = Profile();
    return Outcome::kOk;
}

// The rest of the line goes with the call.
Outcome StartAnew(Call& call) {
    call.target.Hook(false);
    call.target.Settings() = Profile();
    call.cursor.Rest();
    return Outcome::kOk;
}

Outcome Identify(Call& call) {
    constexpr const char* kTexts[] = {"144", "255", "OK", "Tarn Lab Modem",
                                      "Simulated line, V.32bis manners"};
    static_assert(std::size(kTexts) == 5, "I0 to I4");
    call.target.Inform(kTexts[call.number]);
    return Outcome::kOk;
}

Outcome Register(Call& call) {
    std::uint8_t& value = call.target.Settings().s[call.number];
    if (call.cursor.Skip("?")) {
        char text[8];
        std::snprintf(text, sizeof text, "%03u", static_cast<unsigned>(value));
        call.target.Inform(text);
    } else if (call.cursor.Skip("=")) {
        const unsigned fresh = call.cursor.Number().value_or(0);
        if (fresh > 255)
            return Outcome::kError;
        value = static_cast<std::uint8_t>(fresh);
    }
    return Outcome::kOk;
}

struct CommandRow {
    const char* name;
    unsigned most; // the largest number behind it
    Outcome (*execute)(Call&);
    const char* meaning;
};

constexpr CommandRow kCommands[] = {
    {"D", 0, Dial, "dial"},
    {"A", 0, Answer, "answer"},
    {"H", 1, Hook, "hang up, go off hook"},
    {"O", 1, ReturnOnline, "back online"},
    {"E", 1, Store<&Profile::echo>, "echo"},
    {"V", 1, Store<&Profile::words>, "results as words"},
    {"Q", 1, Store<&Profile::quiet>, "no results"},
    {"X", 4, Store<&Profile::extended>, "which results, which tones are heard"},
    {"S", 255, Register, "register"},
    {"I", 4, Identify, "information"},
    {"Z", 1, StartAnew, "as after power-on"},
    {"T", 0, DialBy<false>, "dial by tones"},
    {"P", 0, DialBy<true>, "dial by pulses"},
    {"&F", 1, Factory, "factory's settings"},
    {"&C", 1, Store<&Profile::carrierMode>, "carrier signal"},
    {"&D", 3, Store<&Profile::dtrMode>, "what the loss of DTR does"},
    {"B", 99, Accept, "modulation"},
    {"C", 1, Accept, "transmitter"},
    {"F", 10, Accept, "modulation"},
    {"L", 3, Accept, "loudness"},
    {"M", 3, Accept, "loudspeaker"},
    {"N", 10, Accept, "negotiation of the rate"},
    {"W", 2, Accept, "progress of the negotiation"},
    {"Y", 1, Accept, "long space"},
    {"&A", 3, Accept, "answers about the protocol"},
    {"&B", 2, Accept, "rate of the port"},
    {"&G", 2, Accept, "guard tone"},
    {"&H", 3, Accept, "flow control"},
    {"&I", 5, Accept, "flow control"},
    {"&J", 1, Accept, "auxiliary relay"},
    {"&K", 6, Accept, "flow control"},
    {"&L", 1, Accept, "leased line"},
    {"&M", 5, Accept, "error control"},
    {"&N", 99, Accept, "rate of the line"},
    {"&P", 3, Accept, "pulse ratio"},
    {"&Q", 9, Accept, "error control"},
    {"&R", 2, Accept, "CTS"},
    {"&S", 2, Accept, "DSR"},
    {"&T", 9, Accept, "self test"},
    {"&U", 1, Accept, "trellis coding"},
    {"&W", 1, Accept, "store the settings"},
    {"&X", 2, Accept, "clock"},
    {"&Y", 1, Accept, "settings at power-on"},
    {"\\A", 3, Accept, "block size"},
    {"\\B", 9, Accept, "break"},
    {"\\C", 2, Accept, "buffering"},
    {"\\G", 1, Accept, "flow control between modems"},
    {"\\J", 1, Accept, "rate of the port"},
    {"\\K", 5, Accept, "break"},
    {"\\N", 7, Accept, "error control"},
    {"\\Q", 7, Accept, "flow control"},
    {"\\T", 90, Accept, "inactivity"},
    {"\\V", 2, Accept, "result of the protocol"},
    {"\\X", 1, Accept, "XON and XOFF pass"},
    {"%B", 99'999, Accept, "rate of the line"},
    {"%C", 3, Accept, "compression"},
    {"%E", 3, Accept, "retraining"},
};

Outcome ExecuteNext(CommandTarget& target, Cursor& cursor) {
    for (const CommandRow& row : kCommands) {
        if (!cursor.Skip(row.name))
            continue;
        const bool takesNumber = row.most > 0;
        const unsigned number = takesNumber ? cursor.Number().value_or(0) : 0;
        if (number > row.most)
            return Outcome::kError;
        Call call{target, number, cursor};
        return row.execute(call);
    }
    return Outcome::kError;
}

// Blanks between commands mean nothing.
std::string Normal(const std::string& text) {
    std::string normal;
    for (const char character : text)
        if (character != ' ')
            normal += static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    return normal;
}

} // namespace

Outcome ExecuteLine(CommandTarget& target, const std::string& text) {
    const std::string normal = Normal(text);
    Cursor cursor(normal);
    Outcome outcome = Outcome::kOk;
    while (outcome == Outcome::kOk && !cursor.AtEnd())
        outcome = ExecuteNext(target, cursor);
    return outcome;
}
