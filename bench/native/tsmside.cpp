#include "terminalside.h"

#include "../terminalstream.h"

#include <libtsm.h>

#include <stdexcept>

namespace {

void DropReply(tsm_vte*, const char*, size_t, void*) {}

int TakeCell(tsm_screen*, uint64_t, const uint32_t* character, size_t length, unsigned, unsigned column,
             unsigned row, const tsm_screen_attr*, tsm_age_t, void* rows) {
    auto& text = (*static_cast<std::vector<std::string>*>(rows))[row];
    text[column] = length ? static_cast<char>(*character) : ' ';
    return 0;
}

class Tsm : public TerminalSide {
  public:
    explicit Tsm(int scrollRows) {
        if (tsm_screen_new(&screen_, nullptr, nullptr) ||
            tsm_screen_resize(screen_, streamColumns, streamRows) ||
            tsm_vte_new(&terminal_, screen_, DropReply, nullptr, nullptr, nullptr))
            throw std::runtime_error("libtsm: no terminal");
        tsm_screen_set_max_sb(screen_, static_cast<unsigned>(scrollRows));
    }
    ~Tsm() override {
        tsm_vte_unref(terminal_);
        tsm_screen_unref(screen_);
    }
    Tsm(const Tsm&) = delete;
    Tsm& operator=(const Tsm&) = delete;

    void Write(const char* bytes, int count) override {
        tsm_vte_input(terminal_, bytes, static_cast<size_t>(count));
    }

    std::vector<std::string> Rows() const override {
        std::vector<std::string> rows(streamRows, std::string(streamColumns, ' '));
        tsm_screen_draw(screen_, TakeCell, &rows);
        for (std::string& row : rows)
            row = WithoutTrailingSpaces(std::move(row));
        return rows;
    }

  private:
    tsm_screen* screen_ = nullptr;
    tsm_vte* terminal_ = nullptr;
};

} // namespace

std::unique_ptr<TerminalSide> TsmSide(int scrollRows) {
    return std::make_unique<Tsm>(scrollRows);
}
