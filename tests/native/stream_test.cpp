// Streams whole, byte by byte and in pieces: the same screen, the same answers, the same captured text.
#include "caseprint.h"
#include "streams.h"
#include "terminal/capture.h"
#include "terminalscreen.h"

#include <random>

namespace {

constexpr int randomWays = 40;
constexpr char captureName[] = "all.txt";

struct Outcome {
    std::vector<std::string> portrait;
    std::string captured;
    bool pictureIsRight;
    bool operator==(const Outcome&) const = default;
};

class StreamPieces : public testing::TestWithParam<Stream> {
  protected:
    template <class Cut>
    static Outcome Run(int captureMode, int endOfLineMode, Cut cut) {
        TerminalScreen screen({GetParam().emulation, 20, 5, 7});
        screen.Record().nCaptureMode = captureMode;
        screen.Record().nEndOfLineMode = endOfLineMode;
        screen.world.frameIsDue = captureMode == Capture_Standard;
        SetCaptureFilename(screen.Handle(), captureName);
        std::string_view rest = GetParam().bytes;
        while (!rest.empty()) {
            const size_t size = std::min(cut(), rest.size());
            screen.Feed(rest.substr(0, size));
            rest.remove_prefix(size);
        }
        SetCaptureFilename(screen.Handle(), nullptr);
        return {screen.Portrait(), screen.world.disk.files[captureName],
                screen.PictureIsRight() || GetParam().bytes.find("\033M") != std::string::npos};
    }
};

TEST_P(StreamPieces, DoNotChangeTheOutcome) {
    std::mt19937 random(11);
    for (int captureMode = 0; captureMode < 3; ++captureMode)
        for (int endOfLineMode = 0; endOfLineMode < 5; ++endOfLineMode) {
            const Outcome whole = Run(captureMode, endOfLineMode, [] { return GetParam().bytes.size(); });
            EXPECT_TRUE(whole.pictureIsRight);
            EXPECT_EQ(Run(captureMode, endOfLineMode, [] { return size_t{1}; }), whole);
            for (int way = 0; way < randomWays; ++way)
                ASSERT_EQ(Run(captureMode, endOfLineMode, [&] { return random() % 9 + 1; }), whole) << way;
        }
}

TEST_P(StreamPieces, LeaveNoSequenceOpen) {
    TerminalScreen screen({GetParam().emulation, 20, 5, 7});
    screen.Feed(GetParam().bytes);
    EXPECT_EQ(screen.Record().nEscape, 0);
}

RUN_TABLE(StreamPieces, streams);

} // namespace
