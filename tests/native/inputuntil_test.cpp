// The blocking look-up.
#include "caseprint.h"
#include "lookupmodel.h"
#include "platform.h"
#include "scriptedobject.h"
#include "TarnComm.h"

#include <algorithm>
#include <random>

namespace {

constexpr int outputSize = 64;
constexpr char fill = '#'; // what the output holds where nobody wrote

// A list as the caller gives it: each string with its NUL, and an empty one.
std::string List(const std::vector<std::string>& strings) {
    std::string list;
    for (const std::string& text : strings)
        list += text + '\0';
    return list + '\0';
}

class InputUntil : public testing::Test {
  protected:
    void SetUp() override { platform::SetTick(0xFFFFFF00); } // every wait crosses the wrap

    int LookUp(const std::vector<std::string>& strings, int size = outputSize) {
        output.assign(outputSize, fill);
        return InputUntilLookUp(object.Handle(), List(strings).c_str(), output.data(), size);
    }

    std::string Text() const { return output.c_str(); }

    int Count(const std::string& entry) const {
        return static_cast<int>(std::ranges::count(object.journal, entry));
    }

    ScriptedObject object;
    std::string output;
};

struct FoundCase {
    const char* name;
    std::vector<std::string> strings;
    std::string line;
    int index;
    std::string text;
    size_t unread;
};

class InputUntilFound : public InputUntil, public testing::WithParamInterface<FoundCase> {};

TEST_P(InputUntilFound, FollowsTheTable) {
    object.Send(GetParam().line);
    EXPECT_EQ(LookUp(GetParam().strings), GetParam().index);
    EXPECT_EQ(Text(), GetParam().text);
    EXPECT_EQ(object.Unread(), GetParam().unread);
}

std::vector<std::string> Numbered(int count) {
    std::vector<std::string> strings;
    for (int i = 0; i < count; ++i)
        strings.push_back("<" + std::to_string(i) + ">");
    return strings;
}

const FoundCase foundCases[] = {
    {"Whole", {"OK"}, "OK", 0, "OK", 0},
    {"CaseAside", {"OK"}, "ok", 0, "ok", 0},
    {"OutputHoldsWhatCameBefore", {"OK"}, "AT\rOK", 0, "AT\rOK", 0},
    {"WhatFollowsStaysForTheNextReader", {"OK"}, "OK\r\nmore", 0, "OK", 6},
    {"SecondString", {"OK", "ERROR"}, "ERROR", 1, "ERROR", 0},
    {"FirstStringWins", {"CONNECT", "CONNECT 9600"}, "CONNECT 9600", 0, "CONNECT", 5},
    {"SameEndFirstWins", {"USY", "BUSY"}, "BUSY", 0, "BUSY", 0},
    {"ShortStringBeforeTheWindowIsFull", {"A LONG STRING", "B"}, "B", 1, "B", 0},
    {"RestartInsideAMatch", {"ABAC"}, "ABABAC", 0, "ABABAC", 0},
    {"OneCharacter", {">"}, "ab>c", 0, "ab>", 1},
    {"FortyNinthString", Numbered(50), "<48>", 48, "<48>", 0},
    {"FiftiethIsIgnored", Numbered(50), "<49>", -1, "<49>", 0},
    {"HighBytes", {"\xE4\xFF"}, "a\xE4\xFF", 0, "a\xE4\xFF", 0},
    {"NotThere", {"OK"}, "NO", -1, "NO", 0},
    {"EmptyList", {}, "OK", -1, "", 2},
    {"FirstStringEmpty", {"", "OK"}, "OK", -1, "", 2},
    {"NulFromTheLineIsNoEndOfTheWindow", {"A", "BCD"}, std::string("B\0C\0A", 5), 0, "B", 0},
};

// An empty list leaves the output alone.
TEST_F(InputUntil, RefusalsDoNotTouchTheOutput) {
    object.Send("OK");
    EXPECT_EQ(LookUp({}), -1);
    EXPECT_EQ(output, std::string(outputSize, fill));
    EXPECT_TRUE(object.journal.empty());
}

INSTANTIATE_TEST_SUITE_P(Rows, InputUntilFound, testing::ValuesIn([] {
                             std::vector<FoundCase> cases(std::begin(foundCases), std::end(foundCases));
                             // Their output is not written; see RefusalsDoNotTouchTheOutput.
                             for (FoundCase& row : cases)
                                 if (row.strings.empty() || row.strings[0].empty())
                                     row.text = std::string(outputSize, fill);
                             return cases;
                         }()),
                         CaseName<FoundCase>);

struct OutputCase {
    const char* name;
    int size;
    const char* line;
    int index;
    const char* text;
    size_t unread;
};

class InputUntilOutput : public InputUntil, public testing::WithParamInterface<OutputCase> {};

// A buffer of so many bytes ends the look-up after so many bytes; its last place is the closing NUL's.
TEST_P(InputUntilOutput, NeverPassesItsEnd) {
    object.Send(GetParam().line);
    EXPECT_EQ(LookUp({"OK"}, GetParam().size), GetParam().index);
    EXPECT_EQ(Text(), GetParam().text);
    const auto size = static_cast<size_t>(std::max(GetParam().size, 1));
    EXPECT_EQ(output.substr(size), std::string(outputSize - size, fill));
    EXPECT_EQ(object.Unread(), GetParam().unread);
}

const OutputCase outputCases[] = {
    {"RoomToSpare", 10, "abOK", 0, "abOK", 0},
    {"RoomForTextAndNul", 5, "abOKcd", 0, "abOK", 2},
    {"NoRoomForTheLastByte", 4, "abOKcd", 0, "abO", 2},
    {"FullBeforeTheString", 3, "abOKcd", -1, "ab", 3},
    {"FullWithoutAString", 5, "abcdefgh", -1, "abcd", 3},
    {"One", 1, "abOK", -1, "", 3},
    {"ZeroCountsAsOne", 0, "abOK", -1, "", 3},
    {"NegativeCountsAsOne", -9, "abOK", -1, "", 3},
};

RUN_TABLE(InputUntilOutput, outputCases);

TEST_F(InputUntil, WithoutAnOutputTheSizePlaysNoPart) {
    object.Send(std::string(500, '.') + "OK");
    EXPECT_EQ(InputUntilLookUp(object.Handle(), List({"OK"}).c_str(), nullptr, 3), 0);
}

TEST_F(InputUntil, DiscardReadsUntilTheString) {
    object.Send(std::string(500, '.') + "OKmore");
    EXPECT_EQ(DiscardUntilLookUp(object.Handle(), List({"ERROR", "OK"}).c_str()), 1);
    EXPECT_EQ(object.Unread(), 4u);
}

TEST_F(InputUntil, EachByteIsEchoed) {
    object.Send("abOK");
    LookUp({"OK"});
    EXPECT_EQ(object.journal, (std::vector<std::string>{"echo a", "echo b", "echo O", "echo K"}));
}

TEST_F(InputUntil, PausesRunTheIdleLoop) {
    object.Send("O");
    object.Pause();
    object.Pause();
    object.Send("K");
    EXPECT_EQ(LookUp({"OK"}), 0);
    EXPECT_EQ(object.journal, (std::vector<std::string>{"echo O", "idle 50", "idle 50", "echo K"}));
}

TEST_F(InputUntil, TimeOutEndsItAndIsLogged) {
    object.Record().lLookUpTimeOut = 120;
    object.Send("ab");
    EXPECT_EQ(LookUp({"OK"}), -1);
    EXPECT_EQ(Text(), "ab");
    EXPECT_EQ(object.journal, (std::vector<std::string>{"echo a", "echo b", "idle 50", "idle 50", "idle 20",
                                                        "log LookUpTimerExpired"}));
}

TEST_F(InputUntil, ArrivingBytesDoNotMoveTheDeadline) {
    object.Record().lLookUpTimeOut = 100;
    object.onRead = [&] {
        platform::AdvanceTick(10);
        object.Send("x");
    };
    object.Send("x");
    EXPECT_EQ(LookUp({"OK"}), -1);
    EXPECT_EQ(Text(), std::string(10, 'x'));
    EXPECT_EQ(object.journal.back(), "log LookUpTimerExpired");
}

TEST_F(InputUntil, TheLastByteInTimeStillMatches) {
    object.Record().lLookUpTimeOut = 100;
    object.onRead = [] { platform::AdvanceTick(50); };
    object.Send("OKxx");
    EXPECT_EQ(LookUp({"OK"}), 0);
    EXPECT_EQ(Count("log LookUpTimerExpired"), 0);
}

TEST_F(InputUntil, TimeOutOfZeroGivesOneAttempt) {
    object.Record().lLookUpTimeOut = 0;
    object.Send("OK");
    EXPECT_EQ(LookUp({"OK"}), -1);
    EXPECT_EQ(object.Unread(), 1u);
    EXPECT_EQ(LookUp({"K"}), 0) << "which may be enough";
    EXPECT_EQ(LookUp({"K"}), -1);
    EXPECT_EQ(Count("idle 0"), 1) << "a pause without waiting";
}

TEST_F(InputUntil, InsideAWaitItRefuses) {
    object.Record().nBusy = 1;
    object.Send("OK");
    EXPECT_EQ(LookUp({"OK"}), -1);
    EXPECT_EQ(DiscardUntilLookUp(object.Handle(), List({"OK"}).c_str()), -1);
    EXPECT_EQ(object.Unread(), 2u) << "nothing was read";
    EXPECT_TRUE(object.journal.empty());
}

struct FlagCase {
    const char* name;
    int COMCTL::*flag;
};

class InputUntilFlag : public InputUntil, public testing::WithParamInterface<FlagCase> {};

TEST_P(InputUntilFlag, EndsAWait) {
    object.Send("ab");
    object.onIdle = [&] { object.Record().*GetParam().flag = 1; };
    EXPECT_EQ(LookUp({"OK"}), -1);
    EXPECT_EQ(Text(), "ab");
    EXPECT_EQ(object.journal, (std::vector<std::string>{"echo a", "echo b", "idle 50"}));
}

TEST_P(InputUntilFlag, LetsNoneBegin) {
    object.Send("OK");
    object.Record().*GetParam().flag = 1;
    EXPECT_EQ(LookUp({"OK"}), -1);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(object.Unread(), 2u);
}

const FlagCase flagCases[] = {{"ShutDown", &COMCTL::bShutDown}, {"DialCancel", &COMCTL::bDialCancel}};

RUN_TABLE(InputUntilFlag, flagCases);

// The host destroys the object at each of the places where its code can run.
struct GoneCase {
    const char* name;
    std::function<void()> ScriptedObject::*where;
    const char* line;
    int index;
    const char* text;
};

class InputUntilGone : public InputUntil, public testing::WithParamInterface<GoneCase> {};

TEST_P(InputUntilGone, EndsQuietly) {
    object.Record().lLookUpTimeOut = 40;
    object.Send(GetParam().line);
    object.*GetParam().where = [&] {
        platform::AdvanceTick(1000);
        if (object.Unread() == 0)
            object.Destroy();
    };
    if (GetParam().where != &ScriptedObject::onIdle)
        object.Record().lLookUpTimeOut = 100000;
    EXPECT_EQ(LookUp({"OK"}), GetParam().index);
    EXPECT_EQ(Text(), GetParam().text);
    EXPECT_EQ(Count("log of a dead object LookUpTimerExpired"), 0);
}

const GoneCase goneCases[] = {
    {"InTheReadOfAByte", &ScriptedObject::onRead, "ab", -1, "ab"},
    {"InTheReadOfTheLastByte", &ScriptedObject::onRead, "OK", 0, "OK"},
    {"InAReadOfNothing", &ScriptedObject::onRead, "", -1, ""},
    {"InTheEchoOfAByte", &ScriptedObject::onEcho, "ab", -1, "ab"},
    {"InTheEchoOfTheLastByte", &ScriptedObject::onEcho, "OK", 0, "OK"},
    {"InTheIdleLoop", &ScriptedObject::onIdle, "ab", -1, "ab"},
};

RUN_TABLE(InputUntilGone, goneCases);

// The log falls silent for good when it is handed a dead object.
TEST_F(InputUntil, NoTimeOutIsLoggedForAnObjectThatIsGone) {
    object.Record().lLookUpTimeOut = 40;
    object.Send("a");
    object.onEcho = [&] {
        platform::AdvanceTick(1000);
        object.Destroy();
    };
    EXPECT_EQ(LookUp({"OK"}), -1);
    EXPECT_EQ(object.journal, std::vector<std::string>{"echo a"});
}

TEST_F(InputUntil, NullAndDeadObjectsGiveZero) {
    EXPECT_EQ(InputUntilLookUp(nullptr, List({"OK"}).c_str(), nullptr, 0), 0);
    EXPECT_EQ(DiscardUntilLookUp(nullptr, List({"OK"}).c_str()), 0);
    object.Destroy();
    EXPECT_EQ(LookUp({"OK"}), 0);
    EXPECT_EQ(output, std::string(outputSize, fill));
}

TEST_F(InputUntil, NullListIsAnEmptyOne) {
    EXPECT_EQ(InputUntilLookUp(object.Handle(), nullptr, nullptr, 0), -1);
}

TEST_F(InputUntil, WithoutMemoryItGivesUp) {
    object.Send("OK");
    const platform::MemoryLimit none(0);
    EXPECT_EQ(LookUp({"OK"}), -1);
    EXPECT_EQ(Text(), "");
    EXPECT_EQ(object.Unread(), 2u);
}

TEST_F(InputUntil, RandomLinesFollowTheModel) {
    std::mt19937 random(5);
    const auto below = [&](unsigned limit) { return static_cast<size_t>(random() % limit); };
    const auto text = [&](size_t length) {
        std::string made;
        while (made.size() < length)
            made += "aAb"[below(3)];
        return made;
    };
    for (int round = 0; round < 3000; ++round) {
        std::vector<std::string> strings(1 + below(5));
        for (std::string& string : strings)
            string = text(1 + below(6));
        const std::string line = text(below(50));
        const size_t size = below(outputSize);
        ScriptedObject fresh;
        fresh.Send(line);
        output.assign(outputSize, fill);
        const int index = InputUntilLookUp(fresh.Handle(), List(strings).c_str(),
                                           size ? output.data() : nullptr, static_cast<int>(size));
        const model::Until expected = model::LookUpUntil(strings, line, size);
        ASSERT_EQ(index, expected.index);
        ASSERT_EQ(line.size() - fresh.Unread(), expected.read);
        if (size) {
            ASSERT_EQ(Text(), expected.output);
        }
    }
}

} // namespace
