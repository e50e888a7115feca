// The start sequence of a ZModem transfer in the input.
#include "caseprint.h"
#include "core/rooms.h"
#include "core/zmodemstart.h"
#include "scriptedobject.h"

namespace {

int downloads;
std::string downloadName;
ScriptedObject* downloadObject;
bool downloadDestroys;

void StartDownload(HWND hWnd, const char* szName) {
    ++downloads;
    downloadName = hWnd == downloadObject->Handle() ? szName : "for another object";
    if (downloadDestroys)
        downloadObject->Destroy();
}

class ZModemStart : public testing::Test {
  protected:
    void SetUp() override {
        downloads = 0;
        downloadName = "none";
        downloadObject = &object;
        downloadDestroys = false;
        upperRooms.startDownload = StartDownload;
    }
    void TearDown() override { upperRooms.startDownload = nullptr; }

    bool Offer(const std::string& bytes) {
        for (const char byte : bytes)
            if (!CheckAutoZModem(object.Record(), byte))
                return false;
        return true;
    }

    ScriptedObject object;
};

struct SequenceCase {
    const char* name;
    std::string bytes;
    int downloads;
    int matchAfter;
};

class ZModemSequence : public ZModemStart, public testing::WithParamInterface<SequenceCase> {};

TEST_P(ZModemSequence, FollowsTheTable) {
    EXPECT_TRUE(Offer(GetParam().bytes));
    EXPECT_EQ(downloads, GetParam().downloads);
    EXPECT_EQ(object.Record().nAutoZModemMatch, GetParam().matchAfter);
}

const std::string start = "**\x18"
                          "B00";
const std::string nul(1, '\0');

const SequenceCase sequenceCases[] = {
    {"Whole", start, 1, 6},
    {"FiveBytes",
     "**\x18"
     "B0",
     0, 5},
    {"AnotherLastByte",
     "**\x18"
     "B01",
     0, 0},
    {"AnotherFirstByte", "x", 0, 0},
    {"BreakBeginsNoNewMatch",
     "***\x18"
     "B00",
     0, 0},
    {"LowerCaseB",
     "**\x18"
     "b00",
     0, 0},
    {"TextBefore", "rz\r" + start, 1, 6},
    {"BrokenThenWhole", "**x" + start, 1, 6},
    {"NextByteAfterASuccess", start + "x", 1, 0},
    {"FirstByteOfTheNextIsTheOneAfter", start + start, 1, 0},
    {"AgainBehindOneByte", start + "x" + start, 2, 6},
    {"NulAfterASuccess", start + nul, 1, 7},
    {"ByteAfterThatNul", start + nul + "*", 1, 0},
    {"NulAfterThatNul", start + nul + nul, 1, 0},
    {"AgainBehindANulAndAByte", start + nul + "x" + start, 2, 6},
    {"NulsAlone", nul + nul + nul, 0, 0},
    {"HeaderGoesOnInZeros", start + "000000\r", 1, 0},
};

RUN_TABLE(ZModemSequence, sequenceCases);

TEST_F(ZModemStart, ReceivesIntoTheFolderOfTheObject) {
    Offer(start);
    EXPECT_EQ(downloadName, "");
}

TEST_F(ZModemStart, SwitchedOffItSeesNothing) {
    object.Record().bAutoZModem = 0;
    EXPECT_TRUE(Offer(start));
    EXPECT_EQ(downloads, 0);
    EXPECT_EQ(object.Record().nAutoZModemMatch, 0);
}

TEST_F(ZModemStart, SwitchedOffInTheMiddleItKeepsItsPlace) {
    Offer("**\x18"
          "B");
    object.Record().bAutoZModem = 0;
    Offer("xyz");
    object.Record().bAutoZModem = 1;
    Offer("00");
    EXPECT_EQ(downloads, 1);
}

TEST_F(ZModemStart, WithoutATransferRoomNothingHappens) {
    upperRooms.startDownload = nullptr;
    EXPECT_TRUE(Offer(start));
    EXPECT_EQ(object.Record().nAutoZModemMatch, 6);
}

TEST_F(ZModemStart, TellsThatTheObjectIsGone) {
    downloadDestroys = true;
    EXPECT_FALSE(Offer(start));
    EXPECT_EQ(downloads, 1);
}

} // namespace
