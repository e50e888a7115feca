// The benchmarks' program with a terminal on the screen: bench_terminal plain|mix BYTES.
//
// It is linked with the object's code and not with the module, since it looks on at the painting: the linker
// leads the calls into the painter through the functions below.
#include "core/live.h"
#include "measure.h"
#include "TarnComm.h"
#include "terminal/paint.h"
#include "terminal/picture.h"
#include "terminalstream.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

constexpr int scrollRows = 1000;
constexpr double pictureLimit = 2; // seconds
constexpr int windowWidth = 760;
constexpr int windowHeight = 520; // the comm object sizes itself to its terminal

struct Painting {
    long long frames = 0;
    double seconds = 0;
    int depth = 0; // a painting can bring on another
    bool drawn = false;
};
Painting painting;

// Takes the time of a call into the painter. The outermost one is a frame, if anything was drawn in it.
class Call {
  public:
    Call() : start_(Now()) { ++painting.depth; }
    ~Call() {
        if (--painting.depth)
            return;
        painting.seconds += Now() - start_;
        painting.frames += painting.drawn;
        painting.drawn = false;
    }
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

  private:
    double start_;
};

bool Waits(const COMCTL& record) {
    return record.nPictureScroll || record.nDirtyFirst != record.nDirtyLast;
}

// A request may find that all has been painted, or be put off.
template <class Request>
void Watch(COMCTL& record, Request request) {
    const Call call;
    const bool waited = Waits(record);
    request(record);
    painting.drawn |= waited && !Waits(record);
}

} // namespace

// The names are the linker's: what was called, behind a mark for the stand-in and one for the real function.
extern "C" {
void __real__Z12ServeRepaintR6COMCTL(COMCTL& record);
void __real__Z10FlushFrameR6COMCTL(COMCTL& record);
void __real__Z10RepaintAllR6COMCTL5Erase(COMCTL& record, Erase erase);
void __real__Z7OnPaintR6COMCTLP5HDC__(COMCTL& record, HDC dc);

void __wrap__Z12ServeRepaintR6COMCTL(COMCTL& record) {
    Watch(record, __real__Z12ServeRepaintR6COMCTL);
}

void __wrap__Z10FlushFrameR6COMCTL(COMCTL& record) {
    Watch(record, __real__Z10FlushFrameR6COMCTL);
}

void __wrap__Z10RepaintAllR6COMCTL5Erase(COMCTL& record, Erase erase) {
    const Call call;
    __real__Z10RepaintAllR6COMCTL5Erase(record, erase);
}

void __wrap__Z7OnPaintR6COMCTLP5HDC__(COMCTL& record, HDC dc) {
    const Call call;
    __real__Z7OnPaintR6COMCTLP5HDC__(record, dc);
    painting.drawn = true;
}
}

namespace {

void Require(bool holds, const char* what) {
    if (!holds)
        throw std::runtime_error(what);
}

class Window {
  public:
    Window() {
        host_ = CreateWindowA("STATIC", "bench", WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_VISIBLE, 0, 0,
                              windowWidth, windowHeight, nullptr, nullptr, nullptr, nullptr);
        Require(host_, "no window");
        object_ = CreateCommObject(host_);
        Require(object_, "no comm object");
        SetScrollRows(object_, scrollRows);
        SetEmulation(object_, TARN_EMULATION_VT100);
        SetAutoSize(object_, TARN_AUTO_SIZE_TERMINAL, nullptr);
        ShowWindow(object_, SW_SHOW);
        SetFocus(object_);
    }
    ~Window() { DestroyWindow(host_); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    operator HWND() const { return object_; }

  private:
    HWND host_;
    HWND object_;
};

void ServeMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&message);
}

// All that came is to be seen, also where a painting was put off.
void AwaitPicture(HWND window) {
    const double start = Now();
    while (Waits(*RecordOf(window))) {
        Require(Now() - start < pictureLimit, "the picture stays behind");
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 1, QS_ALLINPUT);
        ServeMessages();
    }
    GdiFlush();
}

// What is shown is the text: a window that nothing was painted on has one colour.
bool ShowsText(HWND window) {
    RECT area;
    GetClientRect(window, &area);
    const HDC dc = GetDC(window);
    const COLORREF corner = GetPixel(dc, 0, 0);
    bool differs = false;
    for (int y = 0; y < area.bottom && !differs; ++y)
        for (int x = 0; x < area.right && !differs; ++x)
            differs = GetPixel(dc, x, y) != corner;
    ReleaseDC(window, dc);
    return differs;
}

void Run(const std::string& stream) {
    const Window window;
    ServeMessages();
    Require(GetRows(window) == streamRows && GetColumns(window) == streamColumns,
            "another screen than 80 by 25");
    painting = {};
    const double start = Now();
    FeedPieces(stream, [&](const char* bytes, int count) {
        TerminalPrintString(window, std::string(bytes, static_cast<size_t>(count)).c_str());
        ServeMessages();
    });
    AwaitPicture(window);
    const double seconds = Now() - start;
    Require(IsWindowVisible(window) && ShowsText(window), "nothing to be seen");
    std::printf("MBps %.3f frames %lld paint_share %.3f\n",
                static_cast<double>(stream.size()) / 1e6 / seconds, painting.frames,
                painting.seconds / seconds);
}

} // namespace

int main(int argc, char** argv) {
    const bool plain = argc == 3 && !std::strcmp(argv[1], "plain");
    const bool mix = argc == 3 && !std::strcmp(argv[1], "mix");
    if (!plain && !mix) {
        std::fprintf(stderr, "bench_terminal plain|mix BYTES\n");
        return 2;
    }
    try {
        Require(InitTarnCommObjects(), "no window class");
        const auto size = static_cast<size_t>(std::atoll(argv[2]));
        Run(plain ? PlainLines(size) : ScreenWork(size));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
