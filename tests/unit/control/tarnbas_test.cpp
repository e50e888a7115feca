// The functions for BASIC interpreters.
#include "../modem/modemobject.h"

#include <cstring>

namespace {

class Basic : public host::ModemTest {};

TEST_F(Basic, PrintShowsText) {
    SetEmulation(object, TARN_EMULATION_TTY);
    tarnbasPrint(object, "hello\r\nworld");
    EXPECT_EQ(std::string(GetTextAt(object, 0, 0), 5), "hello");
    EXPECT_EQ(std::string(GetTextAt(object, 0, 1), 5), "world");
    tarnbasPrint(object, nullptr);
    EXPECT_EQ(GetCursorColumn(object), 5);
}

TEST_F(Basic, ClearScreenIsAFormFeed) {
    SetEmulation(object, TARN_EMULATION_TTY);
    tarnbasPrint(object, "hello");
    tarnbasClearScreen(object);
    EXPECT_EQ(std::string(GetTextAt(object, 0, 0), 5), "     ");
    EXPECT_EQ(GetCursorColumn(object), 0);
    EXPECT_EQ(GetCursorRow(object), 0);
}

struct ColorCase {
    int foreground, background, color;
};

TEST_F(Basic, ColorTakesFourBitsOfEach) {
    const ColorCase cases[] = {{7, 1, 0x17},   {15, 15, 0xFF}, {0, 0, 0},
                               {16, 17, 0x10}, {-1, 0, 0x0F},  {0, -2, 0xE0}};
    for (const ColorCase& row : cases) {
        tarnbasColor(object, row.foreground, row.background);
        EXPECT_EQ(GetColor(object), row.color) << row.foreground << ' ' << row.background;
    }
}

struct DialCase {
    const char* word;
    const char* text;
};

TEST_F(Basic, DialGivesWords) {
    OpenWithoutCarrier();
    const DialCase cases[] = {{"CONNECT", ""},
                              {"NO DIALTONE", "No Dial Tone"},
                              {"BUSY", "Busy"},
                              {"NO CARRIER", "No Carrier"},
                              {"", "Time Out"}};
    for (const DialCase& row : cases) {
        Forget();
        SetDialTimeOut(object, *row.word ? 10000 : 300);
        const auto answer = Answer("12\r", row.word);
        char text[14];
        std::memset(text, '#', sizeof text);
        tarnbasDial(object, "12", text);
        EXPECT_STREQ(text, row.text);
        EXPECT_EQ(text[13], '#');
    }
}

TEST_F(Basic, CancelledDialIsNoCarrier) {
    OpenWithoutCarrier();
    const auto cancel = host::After(400, [&] { tarnbasHangUp(object); });
    char text[13] = "";
    tarnbasDial(object, "12", text);
    EXPECT_STREQ(text, "No Carrier");
}

TEST_F(Basic, HangUpHangsUp) {
    Open();
    const host::Every drop(5, [&] {
        if (!cable.Signal("a.dtr"))
            cable.Carrier('a', "off");
    });
    tarnbasHangUp(object);
    EXPECT_FALSE(GetCarrier(object));
}

TEST_F(Basic, InputEndsWithANul) {
    Open();
    modem.Send("abcdef");
    ASSERT_TRUE(host::PumpUntil([&] { return GetInBufferCount(object) == 6; }));
    char buffer[6];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(tarnbasInput(object, buffer, 5), 4);
    EXPECT_STREQ(buffer, "abcd");
    EXPECT_EQ(buffer[5], '#');
    EXPECT_EQ(tarnbasInput(object, buffer, 5), 2);
    EXPECT_STREQ(buffer, "ef");
    EXPECT_EQ(tarnbasInput(object, buffer, 5), 0);
    EXPECT_STREQ(buffer, "");
    buffer[0] = '#';
    EXPECT_EQ(tarnbasInput(object, buffer, 1), 0);
    EXPECT_STREQ(buffer, "");
}

// Four characters at a time is what the function has always given.
TEST_F(Basic, LineInputGivesFourCharactersAtATime) {
    Open();
    SetInputTimeOut(object, 1000);
    modem.Send("abcdefg\r\nxyz\r");
    char buffer[6];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(tarnbasLineInput(object, buffer), 4);
    EXPECT_STREQ(buffer, "abcd");
    EXPECT_EQ(buffer[5], '#');
    EXPECT_EQ(tarnbasLineInput(object, buffer), 3);
    EXPECT_STREQ(buffer, "efg");
    EXPECT_EQ(tarnbasLineInput(object, buffer), 3);
    EXPECT_STREQ(buffer, "xyz");
    SetInputTimeOut(object, 0);
    EXPECT_EQ(tarnbasLineInput(object, buffer), 0);
    EXPECT_STREQ(buffer, "");
}

TEST_F(Basic, SendExpandsMarks) {
    Open();
    tarnbasSend(object, "hi^M");
    ExpectHeard("hi\r");
}

struct WaitCase {
    const char* said;
    const char* list;
    const char* separator;
    int found;
};

TEST_F(Basic, WaitForFindsTheStringThatCame) {
    Open();
    const WaitCase cases[] = {
        {"...login: ", "password:|login:", "|", 1},
        {"password:", "password:|login:", "|or", 0},
        {"a|b", "a|b", "", 0},
        {"a|b", "a|b", nullptr, 0},
        {"nothing", "one,two", ",", -1},
        {"anything", "", "|", -1},
        {"two", "|two", "|", -1}, // an empty string ends the list
    };
    for (const WaitCase& row : cases) {
        modem.Send(row.said);
        EXPECT_EQ(tarnbasWaitFor(object, row.list, row.separator, row.found < 0 ? 300 : 5000), row.found)
            << row.list;
        ClearInputBuffer(object);
    }
    EXPECT_EQ(GetLookUpTimeOut(object), 300) << "it stays";
}

TEST_F(Basic, WaitForTakesAListOf1024Bytes) {
    Open();
    const std::string longest = std::string(1022, 'x') + "|y";
    modem.Send("y");
    EXPECT_EQ(tarnbasWaitFor(object, longest.c_str(), "|", 1000), 1);
    modem.Send("y");
    ASSERT_TRUE(host::PumpUntil([&] { return GetInBufferCount(object) == 1; }));
    SetLookUpTimeOut(object, 55);
    EXPECT_EQ(tarnbasWaitFor(object, ("x" + longest).c_str(), "|", 1000), -1);
    EXPECT_EQ(GetLookUpTimeOut(object), 55) << "refused before";
    EXPECT_EQ(GetInBufferCount(object), 1) << "nothing read";
}

TEST_F(Basic, NothingAndNobody) {
    char buffer[16] = "#";
    tarnbasPrint(nullptr, "x");
    tarnbasClearScreen(nullptr);
    tarnbasColor(nullptr, 1, 2);
    tarnbasDial(nullptr, "12", buffer);
    tarnbasHangUp(nullptr);
    tarnbasSend(nullptr, "x");
    EXPECT_EQ(tarnbasInput(nullptr, buffer, sizeof buffer), -1);
    EXPECT_EQ(tarnbasLineInput(nullptr, buffer), -1);
    EXPECT_EQ(tarnbasWaitFor(nullptr, "x", "|", 10), -1);
    EXPECT_EQ(buffer[0], '#');
    EXPECT_EQ(tarnbasInput(object, nullptr, 5), -1);
    EXPECT_EQ(tarnbasInput(object, buffer, 0), -1);
    EXPECT_EQ(tarnbasLineInput(object, nullptr), -1);
    EXPECT_EQ(tarnbasWaitFor(object, nullptr, "|", 10), -1);
    tarnbasSend(object, nullptr);
    SetDialTimeOut(object, 10);
    tarnbasDial(object, "12", nullptr);
}

} // namespace
