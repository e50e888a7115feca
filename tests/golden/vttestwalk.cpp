// Walks through vttest, which runs at the far end of COM5, and stores its screens: vttestwalk FOLDER
//
// Paints into memory and needs no display. Every answer waits for its prompt, which the look-up finds in the
// stream.
#include "bitmap.h"
#include "lettering.h"
#include "vtteststeps.h"

#include "support/host.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

namespace {

constexpr int rows = 24;
constexpr DWORD promptLimit = 10000; // ms
constexpr char starter[] = "\n";     // the far end waits for it
constexpr char ignoredFinal[] = "@";

HWND MakeParent() {
    return CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 100, 100, nullptr, nullptr, nullptr, nullptr);
}

class Walker {
  public:
    explicit Walker(std::string folder)
        : folder_(std::move(folder)), object_(MakeParent()), font_(MakeFixedFont()) {
        SendMessageA(object_, WM_SETFONT, reinterpret_cast<WPARAM>(font_.get()), FALSE);
        cell_ = MeasureCell(object_, font_.get());
        SetRows(object_, rows);
        SetColor(object_, TARN_COLOR_LIGHT_GRAY);
        SetEmulation(object_, TARN_EMULATION_VT100);
        SetAutoProcess(object_, TARN_PROCESS_SERIAL);
        SetInputEcho(object_, 1);
        FitWindow();
        object_.OnEventDo([this](int code) { found_ |= code == TARN_EVENT_LOOKUP; });
    }

    bool Open() {
        const std::string problem = object_.Open("COM5");
        if (!problem.empty())
            std::printf("COM5: %s\n", problem.c_str());
        return problem.empty();
    }

    bool Walk(std::span<const VttestStep> steps) {
        const char* answer = starter;
        for (const VttestStep& step : steps) {
            if (!Answer(answer, step.prompt))
                return Fail(step);
            if (step.picture && !Store(step.picture))
                return Fail(step);
            if (step.leaves == Leaves::OpenSequence)
                TerminalPrintString(object_, ignoredFinal);
            answer = step.answer;
        }
        return true;
    }

  private:
    // Sends it and waits for the next prompt.
    bool Answer(const char* answer, const char* prompt) {
        found_ = false;
        SetLookUpText(object_, prompt, '|');
        Output(object_, answer, static_cast<int>(std::strlen(answer)));
        return host::PumpUntil([this] { return found_; }, promptLimit);
    }

    // Scroll bars that are shown leave too little room, and so stay, unless there is more than enough for
    // once.
    SIZE FitWindow() {
        const SIZE size = {GetColumns(object_) * cell_.cx, GetRows(object_) * cell_.cy};
        MoveWindow(object_, 0, 0, 2 * size.cx, 2 * size.cy, FALSE);
        MoveWindow(object_, 0, 0, size.cx, size.cy, FALSE);
        return size;
    }

    bool Store(const char* name) {
        char number[8];
        std::snprintf(number, sizeof number, "%02d-", ++stored_);
        Bitmap picture(FitWindow());
        PaintCommWindow(object_, picture.Context(), 0, 0, GetColumns(object_), GetRows(object_));
        return picture.Save(folder_ + "\\" + number + name + ".bmp");
    }

    bool Fail(const VttestStep& step) {
        std::string screen(static_cast<size_t>(GetContentsLength(object_)) + 1, '\0');
        GetContents(object_, screen.data(), static_cast<int>(screen.size()));
        std::printf("no \"%s\" (picture %s), but:\n%s", step.prompt, step.picture ? step.picture : "none",
                    screen.c_str());
        return false;
    }

    std::string folder_;
    host::CommObject object_;
    Font font_;
    SIZE cell_ = {};
    bool found_ = false;
    int stored_ = 0;
};

} // namespace

int main(int count, char** words) {
    if (count != 2)
        return 2;
    if (!NeedFixedFont()) {
        std::puts("there is no DejaVu Sans Mono to draw the font from");
        return 3;
    }
    Walker walker(words[1]);
    return walker.Open() && walker.Walk(VttestSteps()) ? 0 : 1;
}
