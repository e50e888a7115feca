// The passive look-up.
#include "caseprint.h"
#include "core/rooms.h"
#include "core/Tc-lkup.h"
#include "lookupmodel.h"
#include "platform.h"
#include "scriptedobject.h"
#include "TarnComm.h"

#include <map>
#include <random>

namespace {

constexpr DWORD startTick = 50000;

using Events = std::vector<model::Found>;

class LookUp : public testing::Test {
  protected:
    void SetUp() override { platform::SetTick(startTick); }

    void Strings(const std::string& text, char separator = '|') {
        SetLookUpText(object.Handle(), text.c_str(), separator);
    }

    void Feed(const std::string& bytes) {
        for (const char byte : bytes)
            LookUpChar(object.Pointer(), byte);
    }
    void Turn() { LookUpChar(object.Pointer(), '\0'); }

    // Without a control the event goes through Notify.
    std::vector<std::string> Events() const { return object.journal; }

    COMCTL& Record() { return object.Record(); }

    ScriptedObject object;
};

// With a control: what it was given.
class LookUpControl : public LookUp {
  protected:
    void SetUp() override {
        LookUp::SetUp();
        present = this;
        Record().lpControl = reinterpret_cast<CTarnCommCtl*>(&someControl);
        upperRooms.fireLookUp = [](COMCTL& record, const char* lpText, int cbText) {
            EXPECT_EQ(lpText[cbText], '\0') << "the text is closed";
            present->given.push_back(
                {GetLookUpMatch(record), std::string(lpText, static_cast<size_t>(cbText))});
            if (present->onEvent)
                present->onEvent();
        };
    }
    void TearDown() override { upperRooms.fireLookUp = nullptr; }

    static LookUpControl* present;
    static int someControl;
    std::vector<model::Found> given;
    std::function<void()> onEvent;
};

LookUpControl* LookUpControl::present;
int LookUpControl::someControl;

struct MatchCase {
    const char* name;
    std::string strings;
    std::string input;
    std::vector<int> matches; // one for each event
};

class LookUpMatching : public LookUp, public testing::WithParamInterface<MatchCase> {};

TEST_P(LookUpMatching, FollowsTheTable) {
    Strings(GetParam().strings);
    Feed(GetParam().input);
    std::vector<std::string> expected;
    for (const int match : GetParam().matches)
        expected.push_back("event 8 match " + std::to_string(match));
    EXPECT_EQ(Events(), expected);
}

const std::string nul(1, '\0');

const MatchCase matchCases[] = {
    {"Whole", "OK", "OK", {0}},
    {"LowerInputMatchesUpperString", "OK", "ok", {0}},
    {"UpperInputMatchesLowerString", "ok", "OK", {0}},
    {"InText", "OK", "AT\r\nOK\r\n", {0}},
    {"Twice", "OK", "OK OK", {0, 0}},
    {"SecondString", "OK|ERROR", "ERROR", {1}},
    {"ShorterComesInFirst", "CONNECT|CONNECT 9600", "CONNECT 9600", {0, 1}},
    {"LongerFirst", "CONNECT 9600|CONNECT", "CONNECT 9600", {1, 0}},
    {"SameEndFirstWins", "BUSY|USY", "BUSY", {0}},
    {"SameEndShorterFirst", "USY|BUSY", "BUSY", {0}},
    {"AcrossItself", "AA", "AAA", {0, 0}},
    {"OneCharacter", ">", "a>b>", {0, 0}},
    {"HeadAlone", "CONNECT", "CONNEC", {}},
    {"TailAlone", "CONNECT", "ONNECT", {}},
    {"Interrupted", "OK", "O-K", {}},
    {"RestartInsideAMatch", "ABAC", "ABABAC", {0}},
    {"OnlyLettersFold", "@[", "`{", {}},
    {"HighBytesDoNotFold", "\xC4", "\xE4", {}},
    {"HighBytesMatch", "\xC4\xFF", "\xC4\xFF", {0}},
    {"NulsBetweenDoNotEnter", "OK", "O" + nul + nul + "K", {0}},
    {"ATurnMatchesTheTailAgain", "OK", "OK" + nul, {0, 0}},
    {"ATurnAfterAnotherByteDoesNot", "OK", "OK\r" + nul, {0}},
    {"TurnsBeforeAnyByte", "OK", nul + nul, {}},
    {"ShortStringInALongWindow", "A|LONGEST STRING", "A", {0}},
    {"NoStrings", "", "anything" + nul, {}},
    {"EmptyPieceNeverMatches", "|OK|", "x OK", {1}},
    {"OnlyEmptyPieces", "|||", "|||", {}},
    {"BlankIsAString", " |OK", "a b", {0}},
};

RUN_TABLE(LookUpMatching, matchCases);

struct SplitCase {
    const char* name;
    const char* text;
    char separator;
    size_t items;
    int window;
};

class LookUpSplit : public LookUp, public testing::WithParamInterface<SplitCase> {};

TEST_P(LookUpSplit, FollowsTheTable) {
    Strings(GetParam().text, GetParam().separator);
    EXPECT_EQ(Record().LookUpStrings.size(), GetParam().items);
    EXPECT_EQ(Record().cbLookUpWindow, GetParam().window);
    EXPECT_EQ(Record().lpLookUpWindow != nullptr, GetParam().window != 0);
}

const SplitCase splitCases[] = {
    {"One", "OK", '|', 1, 2},
    {"Two", "OK|ERROR", '|', 2, 5},
    {"LongestFirst", "ERROR|OK", '|', 2, 5},
    {"Empty", "", '|', 1, 0},
    {"EmptyPieces", "||", '|', 3, 0},
    {"SeparatorAtTheEnd", "OK|", '|', 2, 2},
    {"SeparatorAtTheStart", "|OK", '|', 2, 2},
    {"AnotherSeparator", "OK|ERROR", ',', 1, 8},
    {"NulAsSeparator", "OK|ERROR", '\0', 1, 8},
    {"HighSeparator",
     "OK\xFF"
     "ERROR",
     '\xFF', 2, 5},
};

RUN_TABLE(LookUpSplit, splitCases);

struct AddCase {
    const char* name;
    const char* text;
    char separator;
    int length;
};

class LookUpAdd : public LookUp, public testing::WithParamInterface<AddCase> {};

TEST_P(LookUpAdd, TakesTheTextUpToTheSeparator) {
    EXPECT_EQ(AddLookUpString(object.Pointer(), GetParam().text, GetParam().separator), 1);
    ASSERT_EQ(Record().LookUpStrings.size(), 1u);
    EXPECT_EQ(Record().LookUpStrings[0]->Length(), GetParam().length);
}

const AddCase addCases[] = {
    {"Whole", "OK", '|', 2}, {"UpToTheSeparator", "OK|ERROR", '|', 2}, {"SeparatorFirst", "|OK", '|', 0},
    {"Empty", "", '|', 0},   {"NulAsSeparator", "OK|E", '\0', 4},
};

RUN_TABLE(LookUpAdd, addCases);

struct EndCase {
    const char* name;
    const char* strings;
    const char* text;
    int available;
    int match;
};

class LookUpEnd : public LookUp, public testing::WithParamInterface<EndCase> {};

TEST_P(LookUpEnd, MatchesTheTextBeforeIt) {
    Strings(GetParam().strings);
    const std::string text = GetParam().text;
    EXPECT_EQ(MatchLookUpString(object.Pointer(), text.data() + text.size(), GetParam().available),
              GetParam().match);
}

const EndCase endCases[] = {
    {"All", "OK", "OK", 2, 0},
    {"Tail", "OK", "xOK", 3, 0},
    {"NotAtTheEnd", "OK", "OKx", 3, -1},
    {"TooLittleIsThere", "OK", "OK", 1, -1},
    {"NothingIsThere", "OK", "", 0, -1},
    {"NegativeCount", "OK", "OK", -1, -1},
    {"ShorterFits", "XOK|OK", "OK", 2, 1},
    {"CaseAside", "oK", "Ok", 2, 0},
    {"EmptyString", "", "OK", 2, -1},
};

RUN_TABLE(LookUpEnd, endCases);

TEST_F(LookUp, ANulInTheTextStopsNoMatchThatIsNone) {
    Strings("AOK");
    const char text[] = {'\0', 'O', 'K'};
    EXPECT_EQ(MatchLookUpString(object.Pointer(), text + 3, 3), -1);
}

TEST_F(LookUp, MatchIsThereInTheEventAndGoneAfterIt) {
    Strings("A|B");
    object.onEvent = [&] { EXPECT_EQ(GetLookUpMatch(Record()), 1); };
    Feed("B");
    EXPECT_EQ(Events().size(), 1u);
    EXPECT_EQ(GetLookUpMatch(Record()), -1);
}

TEST_F(LookUp, AddedStringNeedsAResetToWidenTheWindow) {
    AddLookUpString(object.Pointer(), "OK", '|');
    Feed("OK");
    EXPECT_TRUE(Events().empty()) << "no window yet";
    SetLookUpInputLen(object.Handle(), 0);
    Feed("OK");
    EXPECT_EQ(Events().size(), 1u);
    AddLookUpString(object.Pointer(), "LONGER", '|');
    Feed("LONGER");
    EXPECT_EQ(Events().size(), 1u) << "longer than the window";
    AddLookUpString(object.Pointer(), "R", '|');
    Feed("R");
    EXPECT_EQ(Events().back(), "event 8 match 2") << "fits at once";
}

TEST_F(LookUp, ClearedTableFindsNothing) {
    Strings("OK");
    EXPECT_EQ(ClearLookUpStrings(object.Pointer()), 1);
    EXPECT_TRUE(Record().LookUpStrings.empty());
    Feed("OK");
    EXPECT_TRUE(Events().empty());
}

TEST_F(LookUp, ClearedTableStillTimesOut) {
    Strings("OK");
    ClearLookUpStrings(object.Pointer());
    platform::AdvanceTick(DefaultLookUpTimeOut + 1);
    Turn();
    EXPECT_EQ(Events().size(), 1u) << "the window stays until a reset";
}

TEST_F(LookUp, NewTextForgetsWhatHasComeIn) {
    Strings("OK");
    Feed("O");
    Strings("OK");
    Feed("K");
    EXPECT_TRUE(Events().empty());
}

// The window moves along a block that is longer than it is, and back at its end.
TEST_F(LookUp, FindsAStringAtEveryPlaceOfALongStream) {
    Strings("needle|x");
    for (size_t before = 0; before < 3000; ++before) {
        object.journal.clear();
        SetLookUpInputLen(object.Handle(), 0);
        Feed(std::string(before, '.') + "NEEDLE");
        ASSERT_EQ(Events(), std::vector<std::string>{"event 8 match 0"}) << before;
    }
}

struct TimeCase {
    const char* name;
    LONG timeOut;
    DWORD start;
    DWORD elapsed;
    bool due;
    bool event;
};

class LookUpTime : public LookUp, public testing::WithParamInterface<TimeCase> {};

TEST_P(LookUpTime, FollowsTheTable) {
    platform::SetTick(GetParam().start);
    Strings("OK");
    SetLookUpTimeOut(object.Handle(), GetParam().timeOut);
    platform::AdvanceTick(GetParam().elapsed);
    EXPECT_EQ(LookUpTurnIsDue(Record()), GetParam().due);
    Turn();
    const std::vector<std::string> expected(GetParam().event ? 1 : 0, "event 8 match -1");
    EXPECT_EQ(Events(), expected);
}

const TimeCase timeCases[] = {
    {"Before", 1000, 50000, 999, false, false},
    {"AtTheLimitATurnIsDueAndEndsNothing", 1000, 50000, 1000, true, false},
    {"Past", 1000, 50000, 1001, true, true},
    {"NoLimit", 0, 50000, 0x7FFFFFFF, false, false},
    {"AcrossTheWrapBefore", 1000, 0xFFFFFFFF - 100, 999, false, false},
    {"AcrossTheWrapPast", 1000, 0xFFFFFFFF - 100, 1001, true, true},
    {"StartAtTheWrap", 1000, 0xFFFFFFFF, 1, false, false},
    {"Largest", 0x7FFFFFFF, 50000, 0x7FFFFFFE, false, false},
    {"PastTheLargest", 0x7FFFFFFF, 50000, 0x80000000, true, true},
};

RUN_TABLE(LookUpTime, timeCases);

TEST_F(LookUp, TimeStartsAnewAfterAnEvent) {
    Strings("OK");
    platform::AdvanceTick(9000);
    Feed("OK");
    platform::AdvanceTick(9000);
    Feed("x");
    EXPECT_EQ(Events().size(), 1u);
    platform::AdvanceTick(1001);
    Feed("x");
    EXPECT_EQ(Events(), (std::vector<std::string>{"event 8 match 0", "event 8 match -1"}));
}

TEST_F(LookUp, MatchGoesBeforeTheTimeOut) {
    Strings("OK");
    Feed("O");
    platform::AdvanceTick(20000);
    object.journal.clear();
    Feed("K");
    EXPECT_EQ(Events(), std::vector<std::string>{"event 8 match 0"});
}

TEST_F(LookUp, SetterOfTheTimeOutStartsAnew) {
    Strings("OK");
    Feed("O");
    SetLookUpTimeOut(object.Handle(), 500);
    EXPECT_EQ(GetLookUpTimeOut(object.Handle()), 500);
    Feed("K");
    EXPECT_TRUE(Events().empty());
}

struct CollectCase {
    const char* name;
    const char* strings;
    int limit;
    std::string input;
    Events events;
};

class LookUpCollect : public LookUpControl, public testing::WithParamInterface<CollectCase> {};

TEST_P(LookUpCollect, FollowsTheTable) {
    Strings(GetParam().strings);
    SetLookUpInputLen(object.Handle(), GetParam().limit);
    Feed(GetParam().input);
    EXPECT_EQ(given, GetParam().events);
}

const CollectCase collectCases[] = {
    {"None", "OK", 0, "abcOK", {{0, ""}}},
    {"WithoutTheString", "OK", 20, "abcOK", {{0, "abc"}}},
    {"StringAlone", "OK", 20, "OK", {{0, ""}}},
    {"TenthByteEnds", "OK", 10, "0123456789", {{-1, "0123456789"}}},
    {"EleventhBeginsTheNext", "OK", 10, "0123456789aOK", {{-1, "0123456789"}, {0, "a"}}},
    {"MatchWithTheLastByte", "OK", 5, "abcOK", {{0, "abc"}}},
    {"MatchAcrossTheLimit", "OK", 4, "abcOK", {{-1, "abcO"}, {0, ""}}},
    {"LimitOfOne", "OK", 1, "ab", {{-1, "a"}, {-1, "b"}}},
    {"NulsDoNotEnter", "OK", 3, "a" + nul + "b" + nul, {}},
    {"TailAgainAtATurn", "OK", 20, "abOK" + nul, {{0, "ab"}, {0, ""}}},
    {"NextCollectionIsFresh", "OK", 20, "abOKcdOK", {{0, "ab"}, {0, "cd"}}},
    {"HighBytes", "OK", 20, "\xE4\xFFOK", {{0, "\xE4\xFF"}}},
    {"NegativeIsNone", "OK", -5, "abOK", {{0, ""}}},
};

RUN_TABLE(LookUpCollect, collectCases);

TEST_F(LookUpControl, TimeOutGivesWhatHasComeIn) {
    Strings("OK");
    SetLookUpInputLen(object.Handle(), 10);
    Feed("abc");
    platform::AdvanceTick(DefaultLookUpTimeOut + 1);
    Turn();
    EXPECT_EQ(given, (std::vector<model::Found>{{-1, "abc"}}));
    EXPECT_EQ(Record().cbLookUpInput, 0);
}

TEST_F(LookUpControl, WithoutItsRoomTheEventGoesToTheHost) {
    upperRooms.fireLookUp = nullptr;
    Strings("OK");
    Feed("OK");
    EXPECT_EQ(Events(), std::vector<std::string>{"event 8 match 0"});
}

TEST_F(LookUpControl, TheControlTakesTheEventFromTheHost) {
    Strings("OK");
    Feed("OK");
    EXPECT_TRUE(Events().empty());
    EXPECT_EQ(given.size(), 1u);
}

// What a handler may do to the engine that called it.
struct HandlerCase {
    const char* name;
    void (*act)(ScriptedObject& object);
    const char* inputAfter;
    std::vector<std::string> eventsAfter;
};

class LookUpHandler : public LookUp, public testing::WithParamInterface<HandlerCase> {};

TEST_P(LookUpHandler, FollowsTheTable) {
    Strings("ABC|OK");
    SetLookUpInputLen(object.Handle(), 8);
    object.onEvent = [&] {
        object.onEvent = nullptr;
        GetParam().act(object);
    };
    Feed("xOK");
    ASSERT_EQ(Events().size(), 1u);
    EXPECT_EQ(GetLookUpMatch(Record()), -1);
    object.journal.clear();
    Feed(GetParam().inputAfter);
    EXPECT_EQ(Events(), GetParam().eventsAfter);
}

const HandlerCase handlerCases[] = {
    {"Nothing", [](ScriptedObject&) {}, "OK", {"event 8 match 1"}},
    {"OtherStrings",
     [](ScriptedObject& object) { SetLookUpText(object.Handle(), "NO CARRIER", '|'); },
     "OK no carrier",
     {"event 8 match -1", "event 8 match 0"}},
    {"NoStrings", [](ScriptedObject& object) { SetLookUpText(object.Handle(), "", '|'); }, "OK", {}},
    {"ClearTheTable", [](ScriptedObject& object) { ClearLookUpStrings(object.Pointer()); }, "OK", {}},
    {"NoCollection",
     [](ScriptedObject& object) { SetLookUpInputLen(object.Handle(), 0); },
     "12345678OK",
     {"event 8 match 1"}},
    {"LongerCollection",
     [](ScriptedObject& object) { SetLookUpInputLen(object.Handle(), 100); },
     "12345678OK",
     {"event 8 match 1"}},
    {"ShorterCollection",
     [](ScriptedObject& object) { SetLookUpInputLen(object.Handle(), 2); },
     "123",
     {"event 8 match -1"}},
    {"FeedMore",
     [](ScriptedObject& object) { LookUpChar(object.Pointer(), 'A'); },
     "BC",
     {"event 8 match 0"}},
    {"AnEventInTheEvent",
     [](ScriptedObject& object) {
         for (const char c : {'A', 'B', 'C'})
             LookUpChar(object.Pointer(), c);
         object.journal.pop_back();
     },
     "OK",
     {"event 8 match 1"}},
};

RUN_TABLE(LookUpHandler, handlerCases);

TEST_F(LookUp, HandlerMayDestroyTheObject) {
    Strings("OK");
    SetLookUpInputLen(object.Handle(), 8);
    object.onEvent = [&] { object.Destroy(); };
    COMCTL* record = object.Pointer();
    EXPECT_TRUE(FeedLookUp(*record, 'O'));
    EXPECT_FALSE(FeedLookUp(*record, 'K'));
    EXPECT_EQ(Events().size(), 1u);
    EXPECT_EQ(LookUpChar(record, 'x'), 0) << "a dead record is silent";
}

TEST_F(LookUpControl, HandlerOfTheControlMayDestroyTheObject) {
    Strings("OK");
    SetLookUpInputLen(object.Handle(), 8);
    onEvent = [&] { object.Destroy(); };
    COMCTL* record = object.Pointer();
    FeedLookUp(*record, 'O');
    EXPECT_FALSE(FeedLookUp(*record, 'K'));
    EXPECT_EQ(given.size(), 1u);
}

TEST_F(LookUp, WithoutMemoryForTheWindowItStaysSilent) {
    {
        const platform::MemoryLimit none(0);
        Strings("OK");
    }
    EXPECT_EQ(Record().cbLookUpWindow, 0);
    Feed("OK");
    platform::AdvanceTick(20000);
    Turn();
    EXPECT_TRUE(Events().empty());
    SetLookUpTimeOut(object.Handle(), 0);
    Feed("OK");
    EXPECT_EQ(Events().size(), 1u) << "the strings are there for the next start";
}

TEST_F(LookUpControl, WithoutMemoryForTheCollectionItGoesOnWithout) {
    Strings("OK");
    {
        const platform::MemoryLimit window(4096);
        SetLookUpInputLen(object.Handle(), 0x7FFFFFFF);
    }
    EXPECT_EQ(Record().cbLookUpInputLen, 0);
    Feed("abcOK");
    EXPECT_EQ(given, (std::vector<model::Found>{{0, ""}}));
}

TEST_F(LookUp, SeparatorIsKept) {
    EXPECT_EQ(GetLookUpSeparator(object.Handle()), '\0');
    SetLookUpSeparator(object.Handle(), ';');
    EXPECT_EQ(GetLookUpSeparator(object.Handle()), ';');
}

TEST_F(LookUp, DefaultTimeOutIsTenSeconds) {
    EXPECT_EQ(GetLookUpTimeOut(object.Handle()), 10000);
}

TEST_F(LookUp, NullTextChangesNothing) {
    Strings("OK");
    SetLookUpText(object.Handle(), nullptr, '|');
    EXPECT_EQ(AddLookUpString(object.Pointer(), nullptr, '|'), 0);
    EXPECT_EQ(MatchLookUpString(object.Pointer(), nullptr, 2), -1);
    EXPECT_EQ(Record().LookUpStrings.size(), 1u);
}

struct SilentCase {
    const char* name;
    void (*call)(HWND hWnd, COMCTL* record);
};

class LookUpSilence : public LookUp, public testing::WithParamInterface<SilentCase> {};

TEST_P(LookUpSilence, NullAndDeadObjects) {
    COMCTL* record = object.Pointer();
    object.Destroy();
    GetParam().call(object.Handle(), record);
    GetParam().call(nullptr, nullptr);
    EXPECT_TRUE(object.journal.empty());
}

const SilentCase silentCases[] = {
    {"AddLookUpString", [](HWND, COMCTL* record) { EXPECT_EQ(AddLookUpString(record, "OK", '|'), 0); }},
    {"ClearLookUpStrings", [](HWND, COMCTL* record) { EXPECT_EQ(ClearLookUpStrings(record), 0); }},
    {"LookUpChar", [](HWND, COMCTL* record) { EXPECT_EQ(LookUpChar(record, 'x'), 0); }},
    {"MatchLookUpString", [](HWND, COMCTL* record) { EXPECT_EQ(MatchLookUpString(record, "OK", 0), -1); }},
    {"SetLookUpText", [](HWND hWnd, COMCTL*) { SetLookUpText(hWnd, "OK", '|'); }},
    {"SetLookUpSeparator", [](HWND hWnd, COMCTL*) { SetLookUpSeparator(hWnd, '|'); }},
    {"GetLookUpSeparator", [](HWND hWnd, COMCTL*) { EXPECT_EQ(GetLookUpSeparator(hWnd), '\0'); }},
    {"SetLookUpTimeOut", [](HWND hWnd, COMCTL*) { SetLookUpTimeOut(hWnd, 1); }},
    {"GetLookUpTimeOut", [](HWND hWnd, COMCTL*) { EXPECT_EQ(GetLookUpTimeOut(hWnd), 0); }},
    {"SetLookUpInputLen", [](HWND hWnd, COMCTL*) { SetLookUpInputLen(hWnd, 1); }},
};

RUN_TABLE(LookUpSilence, silentCases);

// Random strings over a small alphabet, fed with turns and pauses: the engine does what its plainest form
// does.
TEST_F(LookUpControl, RandomStreamsFollowTheModel) {
    std::mt19937 random(3);
    const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
    const auto letter = [&] { return "aAbB@`\xE4"[below(7)]; };
    for (int round = 0; round < 300; ++round) {
        std::string text;
        for (int i = below(40); i > 0; --i)
            text += below(4) ? letter() : '|';
        const int limit = below(3) ? 0 : below(30);
        const DWORD timeOut = below(2) ? 0 : 40;
        Strings(text);
        SetLookUpTimeOut(object.Handle(), static_cast<LONG>(timeOut));
        SetLookUpInputLen(object.Handle(), limit);
        model::PassiveLookUp plain(model::Split(text, '|'), static_cast<size_t>(limit), timeOut,
                                   GetTickCount());
        std::vector<model::Found> expected;
        given.clear();
        for (int i = 0; i < 2500; ++i) {
            platform::AdvanceTick(static_cast<DWORD>(below(3)));
            const char byte = below(8) ? letter() : '\0';
            if (const auto found = plain.Feed(byte, GetTickCount()))
                expected.push_back(*found);
            LookUpChar(object.Pointer(), byte);
        }
        ASSERT_EQ(given, expected) << text << " collects " << limit;
    }
}

} // namespace
