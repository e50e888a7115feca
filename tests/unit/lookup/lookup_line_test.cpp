// Both look-ups on the virtual line: the flat functions, the tick and the platform's own comparison.
#include "support/line.h"

#include "core/comctl.h"
#include "core/live.h"
#include "core/rooms.h"
#include "core/Tc-lkup.h"

namespace {

using namespace std::string_literals;

constexpr int serialInput = 1; // of SetAutoProcess

class LookUpLine : public host::LineTest {
  protected:
    void SetUp() override {
        host::LineTest::SetUp();
        ASSERT_EQ(object.Open(host::nearPort), "");
        ASSERT_TRUE(peer.IsOpen());
    }

    void Arrive(const std::string& bytes) {
        ASSERT_TRUE(peer.Send(bytes));
        const int wanted = static_cast<int>(bytes.size());
        ASSERT_TRUE(host::PumpUntil([&] { return GetInBufferCount(object) >= wanted; }));
    }

    host::FarEnd peer;
    host::CommObject object;
};

class LookUpBlocking : public LookUpLine {
  protected:
    // What a blocking look-up for the strings (each closed by a NUL) leaves in the output.
    int LookUp(const std::string& list) {
        output.assign(100, '#');
        const int index =
            InputUntilLookUp(object, list.c_str(), output.data(), static_cast<int>(output.size()));
        output.resize(std::min(output.size(), output.find('\0')));
        return index;
    }

    std::string Rest() {
        char bytes[100] = {};
        const int count = GetInput(object, bytes, sizeof bytes);
        return std::string(bytes, static_cast<size_t>(count));
    }

    std::string output;
};

TEST_F(LookUpBlocking, FindsAStringAndLeavesTheRestToTheNextReader) {
    Arrive("AT\r\nok\r\nmore");
    EXPECT_EQ(LookUp("ERROR\0OK\0"s), 1);
    EXPECT_EQ(output, "AT\r\nok");
    EXPECT_EQ(Rest(), "\r\nmore");
}

host::FarEnd* answering; // until it has answered
HWND ending;

void CALLBACK AnswerOnce() {
    if (answering)
        answering->Send("OK");
    answering = nullptr;
}

void CALLBACK ShutTheObjectDown() {
    SetShutDown(ending, 1);
}

TEST_F(LookUpBlocking, WaitsForBytesThatComeLater) {
    answering = &peer;
    SetIdleLoop(object, AnswerOnce);
    EXPECT_EQ(LookUp("OK\0"s), 0);
    EXPECT_EQ(output, "OK");
    EXPECT_FALSE(answering);
}

TEST_F(LookUpBlocking, GivesUpAtItsTimeOut) {
    SetLookUpTimeOut(object, 200);
    Arrive("no answer");
    const DWORD start = GetTickCount();
    EXPECT_EQ(LookUp("OK\0"s), -1);
    EXPECT_GE(GetTickCount() - start, 200u);
    EXPECT_EQ(output, "no answer");
}

TEST_F(LookUpBlocking, EmptyListReturnsAtOnceAndReadsNothing) {
    Arrive("OK");
    EXPECT_EQ(LookUp("\0"s), -1);
    EXPECT_EQ(Rest(), "OK");
}

TEST_F(LookUpBlocking, InAnEventOfAnotherWaitItRefuses) {
    int inside = 7;
    object.OnEventDo([&](int) { inside = DiscardUntilLookUp(object, "OK\0"); });
    SetRThreshold(object, 1);
    peer.Send("OK");
    ComPause(object, 300);
    EXPECT_EQ(inside, -1);
    object.OnEventDo(nullptr);
    EXPECT_EQ(Rest(), "OK") << "nothing was read";
}

TEST_F(LookUpBlocking, ShutDownEndsIt) {
    ending = object;
    SetIdleLoop(object, ShutTheObjectDown);
    SetLookUpTimeOut(object, 20000);
    const DWORD start = GetTickCount();
    EXPECT_EQ(LookUp("OK\0"s), -1);
    EXPECT_LT(GetTickCount() - start, 15000u);
}

// The platform's comparison: what it calls equal is equal.
struct CompareCase {
    const char* name;
    std::string list;
    std::string line;
    int index;
};

class LookUpCompare : public LookUpBlocking, public testing::WithParamInterface<CompareCase> {};

TEST_P(LookUpCompare, FollowsTheTable) {
    SetLookUpTimeOut(object, 300);
    Arrive(GetParam().line);
    EXPECT_EQ(LookUp(GetParam().list), GetParam().index);
}

const CompareCase compareCases[] = {
    {"LowerAndUpper", "connect\0"s, "CONNECT", 0},
    {"DigitsAndSigns", "+++ 12.5\0"s, "+++ 12.5", 0},
    {"ControlCharacters", "\r\nOK\r\n\0"s, "\r\nOK\r\n", 0},
    {"OtherLetter", "OK\0"s, "OX", -1},
    {"OneMissing", "OK\0"s, "O", -1},
    {"ShortStringBehindALongOne", "A LONG STRING\0>\0"s, "ab>", 1},
    {"LongerThanWhatCame", "\x01OK\0"s, "OK", -1},
};

INSTANTIATE_TEST_SUITE_P(Rows, LookUpCompare, testing::ValuesIn(compareCases),
                         [](const auto& row) { return std::string(row.param.name); });

class LookUpAutomatic : public LookUpLine {
  protected:
    void SetUp() override {
        LookUpLine::SetUp();
        SetAutoProcess(object, serialInput);
        object.OnEventDo([&](int code) {
            if (code == TARN_EVENT_LOOKUP)
                matches.push_back(GetLookUpMatch(*RecordOf(object)));
        });
    }

    bool Await(size_t count) {
        return host::PumpUntil([&] { return matches.size() >= count; });
    }

    std::vector<int> matches;
};

TEST_F(LookUpAutomatic, FiresTheEventWithItsMatch) {
    SetLookUpText(object, "ERROR|OK", '|');
    peer.Send("AT\r\nok\r\n");
    ASSERT_TRUE(Await(1));
    EXPECT_EQ(matches, std::vector<int>{1});
    EXPECT_EQ(GetLookUpMatch(*RecordOf(object)), -1);
}

TEST_F(LookUpAutomatic, FindsStringsAcrossChunks) {
    SetLookUpText(object, "needle", '|');
    std::string bytes;
    for (int i = 0; i < 40; ++i)
        bytes += std::string(997, '.') + "NEEDLE";
    ASSERT_TRUE(peer.Send(bytes));
    EXPECT_TRUE(Await(40));
    host::Pump(100);
    EXPECT_EQ(matches, std::vector<int>(40, 0));
}

TEST_F(LookUpAutomatic, TimesOutInATickThatFindsNothing) {
    object.Close();
    SetInterval(object, 20); // ticks without bytes
    ASSERT_EQ(object.Open(host::nearPort), "");
    SetLookUpText(object, "OK", '|');
    SetLookUpTimeOut(object, 100);
    ASSERT_TRUE(Await(2)) << "and starts anew";
    EXPECT_EQ(matches[0], -1);
    EXPECT_EQ(matches[1], -1);
}

TEST_F(LookUpAutomatic, LimitOfTheCollectionEndsIt) {
    SetLookUpText(object, "OK", '|');
    SetLookUpInputLen(object, 10);
    peer.Send("0123456789");
    ASSERT_TRUE(Await(1));
    EXPECT_EQ(matches, std::vector<int>{-1});
}

TEST_F(LookUpAutomatic, HandlerMayReplaceTheTable) {
    SetLookUpText(object, "login:", '|');
    object.OnEventDo([&](int code) {
        if (code != TARN_EVENT_LOOKUP)
            return;
        matches.push_back(GetLookUpMatch(*RecordOf(object)));
        SetLookUpText(object, "none|password:", '|');
    });
    peer.Send("login: password:");
    ASSERT_TRUE(Await(2));
    EXPECT_EQ(matches, (std::vector<int>{0, 1}));
}

int eventsOfTheMortal;

void CALLBACK DestroyAtTheMatch(HWND hWnd, int, int code) {
    eventsOfTheMortal += code == TARN_EVENT_LOOKUP;
    DestroyCommObject(hWnd);
}

TEST_F(LookUpAutomatic, HandlerMayDestroyTheObject) {
    object.Close();
    eventsOfTheMortal = 0;
    const HWND mortal = CreateCommObject(nullptr);
    SetEventHandler(mortal, DestroyAtTheMatch);
    SetCommPort(mortal, host::nearPort);
    SetSettings(mortal, "115200,n,8,1");
    SetAutoProcess(mortal, serialInput);
    SetLookUpText(mortal, "OK", '|');
    ASSERT_TRUE(SetPortOpen(mortal, 1, nullptr));
    peer.Send("OK and more that nobody reads OK");
    EXPECT_TRUE(host::PumpUntil([&] { return !IsWindow(mortal); }));
    EXPECT_EQ(eventsOfTheMortal, 1);
}

} // namespace
