// Texts for a debugger, as a program that collects them sees them.
#include "diagnostics/debugtext.h"

#include "core/handle.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace {

// What the system hands over: the sender's process and the text.
struct DebugBuffer {
    DWORD process;
    char text[4096 - sizeof(DWORD)];
};

// Collects texts as a debug viewer does.
class Collector {
  public:
    Collector()
        : mapping_(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(DebugBuffer),
                                      "DBWIN_BUFFER")),
          buffer_(static_cast<DebugBuffer*>(MapViewOfFile(mapping_.get(), FILE_MAP_READ, 0, 0, 0))),
          ready_(CreateEventA(nullptr, FALSE, TRUE, "DBWIN_BUFFER_READY")),
          data_(CreateEventA(nullptr, FALSE, FALSE, "DBWIN_DATA_READY")) {}
    ~Collector() { UnmapViewOfFile(buffer_); }
    Collector(const Collector&) = delete;
    Collector& operator=(const Collector&) = delete;

    // The text that was handed over, or "" for none.
    std::string Take() {
        if (WaitForSingleObject(data_.get(), 0) != WAIT_OBJECT_0)
            return "";
        const std::string text = buffer_->text;
        SetEvent(ready_.get());
        return text;
    }

  private:
    FileMappingHandle mapping_;
    DebugBuffer* buffer_;
    EventHandle ready_;
    EventHandle data_;
};

} // namespace

TEST(DebugText, ReachesACollectorThatComesLater) {
    DebugText("nobody hears this");
    Collector collector;
    std::string heard;
    const DWORD start = GetTickCount();
    while (heard.empty() && GetTickCount() - start < 10000) {
        DebugText("100 % of %s");
        heard = collector.Take();
    }
    EXPECT_EQ(heard, "100 % of %s");
}
