// Keys on the virtual line, and what they do to the view.
#include "support/line.h"
#include "terminalobject.h"

namespace {

// Holds a key of the thread's keyboard down.
class HeldKey {
  public:
    explicit HeldKey(int key) : key_(key) { Set(0x80); }
    ~HeldKey() { Set(0); }
    HeldKey(const HeldKey&) = delete;
    HeldKey& operator=(const HeldKey&) = delete;

  private:
    void Set(BYTE state) const {
        BYTE keys[256] = {};
        GetKeyboardState(keys);
        keys[key_] = state;
        SetKeyboardState(keys);
    }
    int key_;
};

class Keyboard : public host::LineTest {
  protected:
    void SetUp() override {
        host::LineTest::SetUp();
        ASSERT_EQ(object.Open(host::nearPort), "");
        ASSERT_TRUE(peer.IsOpen());
        Record().nAutoProcess = 2;
    }
    COMCTL& Record() { return object.Record(); }
    void Key(WPARAM key) { SendMessageA(object, WM_KEYDOWN, key, 0); }
    void Char(int character) {
        SendMessageA(object, WM_CHAR, static_cast<WPARAM>(static_cast<BYTE>(character)), 0);
    }

    // What has gone out so far. A line that was silent once is not waited for again: there are many keys.
    std::string Sent() {
        Output(object, "\xFF", 1);
        std::string bytes;
        while (bytes.empty() || bytes.back() != '\xFF') {
            const std::string more = lineIsDead ? "" : peer.Read(1);
            lineIsDead = more.empty();
            if (lineIsDead)
                return bytes + " and no end";
            bytes += more;
        }
        bytes.pop_back();
        return bytes;
    }
    std::string SentByKey(WPARAM key) {
        Key(key);
        return Sent();
    }
    std::string SentByChar(int character) {
        Char(character);
        return Sent();
    }

    host::FarEnd peer;
    host::TerminalObject object;
    bool lineIsDead = false;
};

struct KeyRow {
    WPARAM key;
    const char* bytes;
};

const KeyRow keys[] = {
    {VK_BACK, "\x08"}, {VK_LEFT, "\x1B[D"}, {VK_UP, "\x1B[A"}, {VK_RIGHT, "\x1B[C"}, {VK_DOWN, "\x1B[B"},
    {VK_F1, "\x1BOP"}, {VK_F2, "\x1BOQ"},   {VK_F3, "\x1BOR"}, {VK_F4, "\x1BOS"},    {VK_F5, ""},
    {VK_HOME, ""},     {VK_END, ""},        {VK_DELETE, ""},   {VK_INSERT, ""},      {'A', ""},
    {VK_RETURN, ""},   {VK_TAB, ""},
};

const KeyRow keypad[] = {
    {VK_NUMPAD0, "\x1B?p"}, {VK_NUMPAD1, "\x1B?q"}, {VK_NUMPAD2, "\x1B?r"}, {VK_NUMPAD3, "\x1B?s"},
    {VK_NUMPAD4, "\x1B?t"}, {VK_NUMPAD5, "\x1B?u"}, {VK_NUMPAD6, "\x1B?v"}, {VK_NUMPAD7, "\x1B?w"},
    {VK_NUMPAD8, "\x1B?x"}, {VK_NUMPAD9, "\x1B?y"},
};

const int sendingEmulations[] = {Emulation_None, Emulation_Ansi, Emulation_VT52, Emulation_VT100};

TEST_F(Keyboard, KeysHaveTheirBytes) {
    for (const int emulation : sendingEmulations) {
        SetEmulation(object, emulation);
        for (const int process : {2, 3}) {
            Record().nAutoProcess = process;
            for (const KeyRow& row : keys)
                EXPECT_EQ(SentByKey(row.key), row.bytes)
                    << "key " << row.key << ", emulation " << emulation << ", process " << process;
        }
    }
}

TEST_F(Keyboard, KeypadSendsCodesWhileItIsNotNumeric) {
    for (const int emulation : sendingEmulations) {
        SetEmulation(object, emulation);
        for (const KeyRow& row : keypad) {
            Record().bKeypadNumeric = 1;
            EXPECT_EQ(SentByKey(row.key), "") << "key " << row.key;
            Record().bKeypadNumeric = 0;
            EXPECT_EQ(SentByKey(row.key), row.bytes) << "key " << row.key;
        }
    }
}

TEST_F(Keyboard, HostSwitchesTheKeypad) {
    SetEmulation(object, Emulation_VT100);
    EXPECT_EQ(SentByKey(VK_NUMPAD5), "");
    TerminalPrintString(object, "\x1B>");
    EXPECT_EQ(SentByKey(VK_NUMPAD5), "\x1B?u");
}

TEST_F(Keyboard, SilentWithoutKeyboardProcessingAndUnderTty) {
    const struct {
        int process;
        int emulation;
    } rows[] = {{0, Emulation_Ansi}, {1, Emulation_Ansi}, {1, Emulation_VT100},
                {2, Emulation_TTY},  {3, Emulation_TTY},  {4, Emulation_Ansi}};
    Record().bKeypadNumeric = 0;
    for (const auto& row : rows) {
        SetEmulation(object, row.emulation);
        Record().nAutoProcess = row.process;
        for (const KeyRow& key : keys)
            Key(key.key);
        for (const KeyRow& key : keypad)
            Key(key.key);
        EXPECT_EQ(Sent(), "") << row.process << ", " << row.emulation;
    }
}

TEST_F(Keyboard, CtrlHomeClearsTheScreenButNotUnderVt52) {
    const HeldKey control(VK_CONTROL);
    for (const int emulation : sendingEmulations) {
        SetEmulation(object, emulation);
        EXPECT_EQ(SentByKey(VK_HOME), emulation == Emulation_VT52 ? "" : "\x1B[2J") << emulation;
    }
}

TEST_F(Keyboard, CharactersGoOutAsTheyAre) {
    for (const int emulation : {0, 1, 2, 3, 4}) {
        SetEmulation(object, emulation);
        for (const int character : {0x61, 0x0D, 0x09, 0x01, 0x1B, 0x7F, 0xE4, 0x80, 0})
            EXPECT_EQ(SentByChar(character), std::string(1, static_cast<char>(character)));
        EXPECT_EQ(SentByChar('\b'), "") << "it went out as a key";
    }
    for (const int process : {0, 1, 4}) {
        Record().nAutoProcess = process;
        EXPECT_EQ(SentByChar('a'), "") << process;
    }
}

TEST_F(Keyboard, EscWhileScrolledBackOnlyShowsTheScreen) {
    object.ShowCells(80, 10);
    SetScrollRows(object, 20);
    SendMessageA(object, WM_VSCROLL, SB_PAGEUP, 0);
    ASSERT_EQ(Record().nTopRow, -10);
    EXPECT_EQ(SentByChar(0x1B), "");
    EXPECT_EQ(Record().nTopRow, 0);
    EXPECT_EQ(SentByChar(0x1B), "\x1B");
}

TEST_F(Keyboard, EscAsItIsPressedLeavesTheViewToItsCharacter) {
    object.ShowCells(80, 10);
    SetScrollRows(object, 20);
    SendMessageA(object, WM_VSCROLL, SB_PAGEUP, 0);
    ASSERT_EQ(Record().nTopRow, -10);
    Key(VK_ESCAPE);
    EXPECT_EQ(SentByChar(0x1B), "");
    EXPECT_EQ(Record().nTopRow, 0);
    Key(VK_ESCAPE);
    EXPECT_EQ(SentByChar(0x1B), "\x1B");
}

TEST_F(Keyboard, OtherCharactersGoOutWhileScrolledBack) {
    SetScrollRows(object, 20);
    Record().nTopRow = -3;
    EXPECT_EQ(SentByChar('x'), "x");
}

TEST_F(Keyboard, EscWithoutKeyboardProcessingDoesNotMoveTheView) {
    object.ShowCells(80, 10);
    SetScrollRows(object, 20);
    SetAutoProcess(object, 1);
    Record().nTopRow = -3;
    Char(0x1B);
    EXPECT_EQ(Record().nTopRow, -3);
}

TEST_F(Keyboard, PageKeysScroll) {
    object.ShowCells(80, 10);
    SetScrollRows(object, 20);
    for (const int process : {0, 1}) {
        Record().nAutoProcess = process;
        Key(VK_PRIOR);
        EXPECT_EQ(Record().nTopRow, 0) << process;
    }
    Record().nAutoProcess = 2;
    SetEmulation(object, Emulation_TTY);
    Key(VK_PRIOR);
    EXPECT_EQ(Record().nTopRow, 0) << "TTY";
    SetEmulation(object, Emulation_Ansi);
    Key(VK_PRIOR);
    EXPECT_EQ(Record().nTopRow, -10);
    Key(VK_NEXT);
    EXPECT_EQ(Record().nTopRow, 0);
    EXPECT_EQ(Sent(), "");
}

TEST_F(Keyboard, PageKeyEndsThere) {
    object.ShowCells(80, 10);
    SetScrollRows(object, 20);
    SetCursorRow(object, 5);
    Key(VK_PRIOR);
    EXPECT_EQ(Record().nTopRow, -10) << "the view doesn't follow the cursor after it";
}

TEST_F(Keyboard, KeysBringTheCursorIntoView) {
    object.ShowCells(30, 10);
    for (const int process : {0, 2}) {
        Record().nAutoProcess = process;
        for (const UINT message : {WM_KEYDOWN, WM_CHAR}) {
            Record().nCursorRow = 20;
            Record().nCursorColumn = 50;
            Record().nTopRow = 0;
            Record().nLeftColumn = 0;
            SendMessageA(object, message, 'A', 0);
            EXPECT_EQ(Record().nTopRow, 11);
            EXPECT_EQ(Record().nLeftColumn, 20) << "key input moves the columns, too";
        }
    }
}

TEST_F(Keyboard, EchoShowsWhatGoesOut) {
    Char('x');
    EXPECT_EQ(*GetTextAt(object, 0, 0), ' ');
    SetEcho(object, 1);
    Char('y');
    EXPECT_EQ(*GetTextAt(object, 0, 0), 'y');
    Key(VK_DOWN);
    EXPECT_EQ(GetCursorRow(object), 1) << "sequences act";
    RecordOf(object)->bEcho = 0;
    EXPECT_EQ(Sent(), "xy\x1B[B");
}

TEST_F(Keyboard, EchoShowsAlsoWhileThePortIsClosed) {
    object.Close();
    SetEcho(object, 1);
    Char('z');
    EXPECT_EQ(*GetTextAt(object, 0, 0), 'z');
}

TEST_F(Keyboard, DialogLeavesAllKeys) {
    EXPECT_EQ(SendMessageA(object, WM_GETDLGCODE, 0, 0), 7);
}

} // namespace
