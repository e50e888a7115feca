// Makes command lines of the bytes that come in command state: attention, backspace, A/.
#pragma once

#include "profile.h"

#include <optional>
#include <string>

class CommandReader {
  public:
    static constexpr std::size_t kLineLimit = 255; // characters behind AT

    struct Line {
        std::string text; // behind AT
        bool tooLong = false;
    };

    // The line that the byte completes. `echo` is what the computer sees of the byte when echo is on.
    std::optional<Line> Take(char byte, const Profile& profile, std::string& echo);

    // The last line as it was typed, AT included.
    const std::string& Last() const { return last_; }
    void Reset() { *this = {}; }

  private:
    enum class State { kIdle, kAttention, kLine };

    std::optional<Line> TakeAttention(char byte);
    std::optional<Line> TakeInLine(char byte, const Profile& profile, std::string& echo);

    State state_ = State::kIdle;
    char first_ = 0; // A or a
    std::string attention_;
    std::string typed_;
    Line repeated_;
    std::string last_;
};
