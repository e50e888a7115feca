#include "command_reader.h"

std::optional<CommandReader::Line> CommandReader::Take(char byte, const Profile& profile, std::string& echo) {
    echo.assign(1, byte);
    if (state_ == State::kLine)
        return TakeInLine(byte, profile, echo);
    if (state_ == State::kAttention)
        if (const std::optional<Line> repeated = TakeAttention(byte))
            return repeated;
    if (state_ != State::kLine) {
        state_ = byte == 'A' || byte == 'a' ? State::kAttention : State::kIdle;
        first_ = byte;
    }
    return std::nullopt;
}

// Both letters are of one case; A/ needs no end of line.
std::optional<CommandReader::Line> CommandReader::TakeAttention(char byte) {
    if (byte == '/') {
        state_ = State::kIdle;
        return repeated_;
    }
    if (byte == (first_ == 'A' ? 'T' : 't')) {
        state_ = State::kLine;
        attention_ = {first_, byte};
        typed_.clear();
    }
    return std::nullopt;
}

std::optional<CommandReader::Line> CommandReader::TakeInLine(char byte, const Profile& profile,
                                                             std::string& echo) {
    if (byte == profile.Character(sregister::kLineEnd)) {
        state_ = State::kIdle;
        repeated_ = {typed_, typed_.size() > kLineLimit};
        last_ = attention_ + typed_;
        return repeated_;
    }
    if (byte == profile.Character(sregister::kBackspace)) {
        echo = typed_.empty() ? "" : std::string{byte, ' ', byte};
        if (!typed_.empty())
            typed_.pop_back();
        return std::nullopt;
    }
    const bool isControl = static_cast<unsigned char>(byte) < ' ';
    if (!isControl && typed_.size() <= kLineLimit) // one more than the limit tells that it was too long
        typed_ += byte;
    return std::nullopt;
}
