#include "terminalside.h"

#include "../terminalstream.h"
#include "terminal/picture.h"
#include "terminal/screen.h"
#include "terminal/terminal.h"

#include <numeric>
#include <stdexcept>

namespace {

class Ours : public TerminalSide {
  public:
    Ours(int emulation, int scrollRows) : record_(std::make_unique<COMCTL>()) {
        std::iota(std::begin(record_->abCharMap), std::end(record_->abCharMap), BYTE{0});
        SwitchEmulation(*record_, emulation);
        if (ResizeTerminal(*record_, streamColumns, streamRows) != ResizeResult::Done ||
            RebuildScrollback(*record_, scrollRows) != 0)
            throw std::runtime_error("no memory for a screen");
    }

    void Write(const char* bytes, int count) override {
        WriteTerminal(*record_, bytes, count);
        if (record_->bRepaintPosted)
            ServeRepaint(*record_);
    }

    std::vector<std::string> Rows() const override {
        std::vector<std::string> rows;
        for (int row = 0; row < record_->nRows; ++row)
            rows.emplace_back(TextRow(*record_, row), static_cast<size_t>(RowLength(*record_, row)));
        return rows;
    }

  private:
    std::unique_ptr<COMCTL> record_;
};

} // namespace

std::unique_ptr<TerminalSide> OurSide(OurEmulation emulation, int scrollRows) {
    return std::make_unique<Ours>(emulation == OurEmulation::Ansi ? Emulation_Ansi : Emulation_VT100,
                                  scrollRows);
}
