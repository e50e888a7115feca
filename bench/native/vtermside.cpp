#include "terminalside.h"

#include "../terminalstream.h"

#include <vterm.h>

#include <array>
#include <stdexcept>

namespace {

class Vterm : public TerminalSide {
  public:
    Vterm() : terminal_(vterm_new(streamRows, streamColumns)) {
        if (!terminal_)
            throw std::runtime_error("libvterm: no terminal");
        screen_ = vterm_obtain_screen(terminal_);
        vterm_screen_reset(screen_, 1);
    }
    ~Vterm() override { vterm_free(terminal_); }
    Vterm(const Vterm&) = delete;
    Vterm& operator=(const Vterm&) = delete;

    void Write(const char* bytes, int count) override {
        vterm_input_write(terminal_, bytes, static_cast<size_t>(count));
    }

    std::vector<std::string> Rows() const override {
        std::vector<std::string> rows;
        for (int row = 0; row < streamRows; ++row) {
            std::array<char, 4 * streamColumns> text;
            const VTermRect place{row, row + 1, 0, streamColumns};
            const size_t length = vterm_screen_get_text(screen_, text.data(), text.size(), place);
            rows.push_back(WithoutTrailingSpaces({text.data(), length}));
        }
        return rows;
    }

  private:
    VTerm* terminal_;
    VTermScreen* screen_;
};

} // namespace

std::unique_ptr<TerminalSide> VtermSide(int) {
    return std::make_unique<Vterm>();
}
