#include "loggedcontrol.h"

#include "diagnostics/windowhook.h"
#include "support/memorylimit.h"

#include <olectl.h>

using namespace controltest;
using namespace std::string_literals;

namespace {

std::string ScreenOf(const std::string& firstRows, int rows) {
    std::string text = firstRows;
    for (int i = 0; i < rows; ++i)
        text += "\r\n";
    return text;
}

SIZE ClientOf(HWND window) {
    RECT client = {};
    GetClientRect(window, &client);
    return {client.right, client.bottom};
}

SIZE OuterOf(HWND window) {
    RECT outer = {};
    GetWindowRect(window, &outer);
    return {outer.right - outer.left, outer.bottom - outer.top};
}

ComPtr<IFontDisp> FontOfSize(int points) {
    FONTDESC description = {};
    wchar_t face[] = L"Courier New";
    description.cbSizeofstruct = sizeof description;
    description.lpstrName = face;
    description.cySize.int64 = points * 10000LL;
    description.sWeight = FW_NORMAL;
    ComPtr<IFontDisp> font;
    OleCreateFontIndirect(&description, IID_IFontDisp, reinterpret_cast<void**>(font.GetAddressOf()));
    return font;
}

long long SizeOf(IFontDisp* font) {
    ComPtr<IFont> face;
    CY size = {};
    if (font && SUCCEEDED(font->QueryInterface(IID_PPV_ARGS(face.GetAddressOf()))))
        face->get_Size(&size);
    return (size.int64 + 5000) / 10000; // a font tells the size of its pixels
}

} // namespace

using TerminalRows = LoggedControl;
using TerminalColors = LoggedControl;
using TerminalText = LoggedControl;
using TerminalScroll = LoggedControl;
using TerminalFont = LoggedControl;
using TerminalSize = LoggedControl;

TEST_F(TerminalRows, PlainRows) {
    const Row rows[] = {
        TARN_ROW(Rows, 30, GetRows),
        TARN_ROW(Columns, 90, GetColumns),
        TARN_ROW(ScrollRows, 100, GetScrollRows),
        TARN_ROW(ColorFilter, ColorFilter_BW, GetColorFilter),
        TARN_ROW(BackSpace, BackSpace_NonDestructive, GetBackspace),
        TARN_ROW(EndOfLineMode, EndOfLineMode_WrapScreen, GetEndOfLineMode),
        TARN_ROW(CaptureMode, Capture_Visible, GetCaptureMode),
        TARN_ROW(AutoScroll, 3, GetAutoScroll),
        TARN_ROW(CursorColumn, 7, GetCursorColumn),
        TARN_ROW(CursorRow, 5, GetCursorRow),
        TARN_ROW(SelStart, 80, GetSelectionStart),
        TARN_ROW(SelLength, 4, GetSelectionLength),
        TARN_ROW(Emulation, Emulation_Ansi, GetEmulation),
        TARN_ROW(BackColor, Red, [](HWND object) { return GetColor(object) >> 4; }),
        TARN_ROW(ForeColor, Yellow, [](HWND object) { return GetColor(object) & 15; }),
        TARN_ROW_AS(AutoScrollRow, 0, GetAutoScroll, TARN_AUTO_SCROLL_KEYBOARD),
        TARN_ROW_AS(AutoScrollColumn, -1, GetAutoScroll, TARN_AUTO_SCROLL_COLUMN),
        TARN_ROW_AS(AutoScrollKeyboard, 0, GetAutoScroll, TARN_AUTO_SCROLL_COLUMN),
        TARN_ROW_AS(Enabled, 0, IsWindowEnabled, 0),
        TARN_ROW_ALONE(AutoSize, AutoSize_Terminal),
        TARN_ROW_ALONE(BorderStyle, CommBorderStyle_None),
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CheckRow(control, row);
    }
    EXPECT_EQ(control->Properties().m_nRows, 30);
    EXPECT_EQ(control->Properties().m_nColumns, 90);
    EXPECT_EQ(control->Properties().m_nScrollRows, 100);
    EXPECT_EQ(control->Properties().m_nBackSpace, 1);
    EXPECT_EQ(control->Properties().m_nEndOfLineMode, 3);
    EXPECT_EQ(control->Properties().m_nCaptureMode, 2);
    EXPECT_EQ(control->Properties().m_nColorFilter, 2);
}

TEST_F(TerminalRows, SomeTellTheirChange) {
    EXPECT_EQ(control.ChangesOf([&] { control->put_Columns(70); }), std::vector<DISPID>{21});
    EXPECT_EQ(control.ChangesOf([&] { control->put_Emulation(Emulation_TTY); }), std::vector<DISPID>{50});
    EXPECT_EQ(control.ChangesOf([&] { control->put_Rows(20); }), std::vector<DISPID>{});
    EXPECT_EQ(control.ChangesOf([&] { control->put_Enabled(VARIANT_FALSE); }), std::vector<DISPID>{});
}

TEST_F(TerminalRows, NoEmulationIsTheSimplestOne) {
    control->put_Emulation(Emulation_None);
    EXPECT_EQ(GetEmulation(control.Object()), TARN_EMULATION_TTY);
    Emulation value = Emulation_VT100;
    control->get_Emulation(&value);
    EXPECT_EQ(value, Emulation_None);
}

TEST_F(TerminalRows, BarsAreKeptAndNotLogged) {
    VARIANT_BOOL toolbar = VARIANT_TRUE;
    VARIANT_BOOL statusbar = VARIANT_TRUE;
    EXPECT_EQ(LogOf([&] {
                  control->put_ToolbarVisible(VARIANT_FALSE);
                  control->put_StatusbarVisible(VARIANT_FALSE);
                  control->get_ToolbarVisible(&toolbar);
                  control->get_StatusbarVisible(&statusbar);
              }),
              "");
    EXPECT_EQ(toolbar, VARIANT_FALSE);
    EXPECT_EQ(statusbar, VARIANT_FALSE);
    control->put_ToolbarVisible(VARIANT_TRUE);
    control->get_ToolbarVisible(&toolbar);
    EXPECT_EQ(toolbar, VARIANT_TRUE);
}

TEST_F(TerminalRows, NullPointersAreRefused) {
    EXPECT_EQ(control->get_Rows(nullptr), E_POINTER);
    EXPECT_EQ(control->get_Contents(nullptr), E_POINTER);
    EXPECT_EQ(control->get_ScrollContents(nullptr), E_POINTER);
    EXPECT_EQ(control->get_SelText(nullptr), E_POINTER);
    EXPECT_EQ(control->get_CaptureFilename(nullptr), E_POINTER);
    EXPECT_EQ(control->get_ToolbarVisible(nullptr), E_POINTER);
    EXPECT_EQ(control->get_Font(nullptr), E_POINTER);
    EXPECT_EQ(control->get_Enabled(nullptr), E_POINTER);
}

TEST_F(TerminalColors, ForegroundKeepsTheBackground) {
    control->put_ForeColor(LightRed); // on the blue of the start
    EXPECT_EQ(GetColor(control.Object()), 28);
    EXPECT_EQ(control->Properties().m_nColor, 28);
}

TEST_F(TerminalColors, BackgroundKeepsTheForeground) {
    control->put_BackColor(Green);
    EXPECT_EQ(GetColor(control.Object()), 0x2F);
    control->put_ForeColor(Outside<TerminalColor>(0x13));
    EXPECT_EQ(GetColor(control.Object()), 0x23);
}

TEST_F(TerminalColors, NothingIsClearedAtRunTime) {
    control.Put(&ITarnComm::put_Display, L"text");
    control->put_BackColor(Green);
    EXPECT_EQ(control.Text(&ITarnComm::get_Contents).substr(0, 6), "text\r\n");
}

TEST(TerminalColorsOfADesign, ShowAtOnce) {
    Control control(false);
    control.Put(&ITarnComm::put_Display, L"text");
    control->put_ForeColor(Yellow);
    EXPECT_EQ(control.Text(&ITarnComm::get_Contents).substr(0, 6), "text\r\n");
    control->put_BackColor(Green);
    EXPECT_EQ(control.Text(&ITarnComm::get_Contents), ScreenOf("", 25));
}

TEST_F(TerminalText, BlankScreenIsItsLineEnds) {
    const std::string log =
        LogOf([&] { EXPECT_EQ(control.Text(&ITarnComm::get_Contents), ScreenOf("", 25)); });
    EXPECT_NE(log.find("Comm.Contents returns "), std::string::npos);
    EXPECT_EQ(control.Text(&ITarnComm::get_ScrollContents), "");
}

TEST_F(TerminalText, WithoutMemoryIsEmpty) {
    struct Getter {
        const char* name;
        HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(BSTR*);
    };
    const Getter getters[] = {{"Contents", &ITarnComm::get_Contents},
                              {"ScrollContents", &ITarnComm::get_ScrollContents},
                              {"SelText", &ITarnComm::get_SelText}};
    control->put_ScrollRows(100);
    for (int row = 0; row < 60; ++row)
        control.Put(&ITarnComm::put_Display, L"a line\r\n");
    SetSelectionStart(control.Object(), 0);
    SetSelectionLength(control.Object(), 400);
    for (const Getter& getter : getters) {
        EXPECT_NE(control.Text(getter.get), "") << getter.name;
        BSTR text = nullptr;
        {
            const host::MemoryLimit limit(200);
            EXPECT_EQ(((*control.operator->()).*getter.get)(&text), S_OK) << getter.name;
            EXPECT_EQ(limit.Refusals(), 1) << getter.name;
        }
        EXPECT_EQ(SysStringLen(text), 0u) << getter.name;
        SysFreeString(text);
        EXPECT_NE(control.Text(getter.get), "") << getter.name << ": once there is memory";
    }
}

TEST_F(TerminalText, ContentsReplaceTheScreen) {
    control.Put(&ITarnComm::put_Display, L"before");
    EXPECT_EQ(LogOf([&] { control.Put(&ITarnComm::put_Contents, L"one\r\ntwo"); }),
              Line("Comm.Contents = \"one\" + Chr(13) + Chr(10) + \"two\""));
    EXPECT_EQ(control.Text(&ITarnComm::get_Contents), ScreenOf("one\r\ntwo", 24));
}

TEST_F(TerminalText, ContentsMayHoldNuls) {
    const BSTR text = SysAllocStringLen(L"a\0b", 3);
    control->put_Contents(text);
    SysFreeString(text);
    EXPECT_NE(control.Text(&ITarnComm::get_Contents).find('b'), std::string::npos);
}

TEST_F(TerminalText, TextThatScrolledAwayIsInTheScrollback) {
    control->put_ScrollRows(10);
    control->put_Rows(2);
    control.Put(&ITarnComm::put_Display, L"one\r\ntwo\r\nthree");
    EXPECT_EQ(control.Text(&ITarnComm::get_ScrollContents), "one\r\n");
    EXPECT_EQ(control.Text(&ITarnComm::get_Contents), "two\r\nthree\r\n");
}

TEST_F(TerminalText, NarrowScreenOfManyRowsIsCut) {
    control->put_Columns(1);
    control.Put(&ITarnComm::put_Contents, L"a\r\nb");
    EXPECT_EQ(control.Text(&ITarnComm::get_Contents), "a\r\nb\r\n" + ScreenOf("", 10)); // of 28 bytes
}

TEST_F(TerminalText, DisplayLineEndsTheLineAndLogsUnderTheOtherName) {
    EXPECT_EQ(LogOf([&] { control.Put(&ITarnComm::put_Display, L"a"); }), Line("Comm.Display = \"a\""));
    EXPECT_EQ(LogOf([&] { control.Put(&ITarnComm::put_DisplayLine, L"b"); }), Line("Comm.Display = \"b\""));
    control.Put(&ITarnComm::put_Display, L"c");
    EXPECT_EQ(control.Text(&ITarnComm::get_Contents), ScreenOf("ab\r\nc", 24));
}

TEST_F(TerminalText, SelectionIsText) {
    control.Put(&ITarnComm::put_Contents, L"The quick brown fox");
    control->put_SelStart(4);
    control->put_SelLength(5);
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(control.Text(&ITarnComm::get_SelText), "quick"); }),
              Line("Comm.SelText returns \"quick\""));
    control->put_SelLength(0);
    EXPECT_EQ(control.Text(&ITarnComm::get_SelText), "");
}

TEST_F(TerminalText, NullStringsAreEmpty) {
    EXPECT_EQ(control->put_Display(nullptr), S_OK);
    EXPECT_EQ(control->put_DisplayLine(nullptr), S_OK);
    EXPECT_EQ(control->put_Contents(nullptr), S_OK);
    EXPECT_EQ(control->put_CaptureFilename(nullptr), S_OK);
    EXPECT_EQ(control.Text(&ITarnComm::get_CaptureFilename), "");
}

TEST_F(TerminalText, CaptureGoesToItsFile) {
    const std::string path = logfiles::WindowsFolderFile("capture.txt");
    DeleteFileA(path.c_str());
    const std::wstring name = WideOf(path);
    EXPECT_EQ(control.Put(&ITarnComm::put_CaptureFilename, name.c_str()), S_OK);
    EXPECT_EQ(control.Text(&ITarnComm::get_CaptureFilename), path);
    control.Put(&ITarnComm::put_DisplayLine, L"caught");
    control.Put(&ITarnComm::put_CaptureFilename, L"");
    EXPECT_EQ(logfiles::ReadWholeFile(path), "caught\r\n");
    DeleteFileA(path.c_str());
}

TEST_F(TerminalScroll, FlagsMakeOneMode) {
    struct Case {
        bool row, column, keyboard;
        int mode;
    };
    const Case cases[] = {{false, false, false, 0}, {true, false, false, 1}, {false, true, false, 2},
                          {true, true, false, 3},   {false, false, true, 4}, {true, false, true, 4},
                          {false, true, true, 2},   {true, true, true, 3}};
    control->put_AutoScroll(9);
    for (const Case& flags : cases) {
        control->put_AutoScrollRow(flags.row ? VARIANT_TRUE : VARIANT_FALSE);
        control->put_AutoScrollColumn(flags.column ? VARIANT_TRUE : VARIANT_FALSE);
        control->put_AutoScrollKeyboard(flags.keyboard ? VARIANT_TRUE : VARIANT_FALSE);
        EXPECT_EQ(GetAutoScroll(control.Object()), flags.mode)
            << flags.row << " " << flags.column << " " << flags.keyboard;
    }
    EXPECT_EQ(control->Properties().m_nAutoScroll, 9); // the flags leave it
}

TEST_F(TerminalScroll, DefaultFlagsAreNotTheDefaultMode) {
    VARIANT_BOOL row = 1, column = 1, keyboard = 1;
    LONG mode = 0;
    control->get_AutoScrollRow(&row);
    control->get_AutoScrollColumn(&column);
    control->get_AutoScrollKeyboard(&keyboard);
    control->get_AutoScroll(&mode);
    EXPECT_EQ(row, VARIANT_TRUE);
    EXPECT_EQ(column, VARIANT_FALSE);
    EXPECT_EQ(keyboard, VARIANT_TRUE);
    EXPECT_EQ(mode, 2);
}

TEST_F(TerminalFont, DefaultIsTenPoints) {
    ComPtr<IFontDisp> font;
    ASSERT_EQ(control->get_Font(font.GetAddressOf()), S_OK);
    EXPECT_EQ(SizeOf(font.Get()), 10);
}

TEST_F(TerminalFont, ByReferenceIsTheSameObject) {
    const ComPtr<IFontDisp> given = FontOfSize(20);
    ASSERT_TRUE(given);
    EXPECT_EQ(control.ChangesOf([&] { EXPECT_EQ(control->putref_Font(given.Get()), S_OK); }),
              std::vector<DISPID>{DISPID_FONT});
    ComPtr<IFontDisp> font;
    control->get_Font(font.GetAddressOf());
    EXPECT_EQ(font.Get(), given.Get());
    EXPECT_TRUE(control->OleControl::IsDirty());
}

TEST_F(TerminalFont, ByValueIsACopy) {
    const ComPtr<IFontDisp> given = FontOfSize(20);
    EXPECT_EQ(control->put_Font(given.Get()), S_OK);
    ComPtr<IFontDisp> font;
    control->get_Font(font.GetAddressOf());
    ASSERT_TRUE(font);
    EXPECT_NE(font.Get(), given.Get());
    EXPECT_EQ(SizeOf(font.Get()), 20);
}

TEST_F(TerminalFont, ReachesTheTerminal) {
    const ComPtr<IFontDisp> given = FontOfSize(20);
    control->putref_Font(given.Get());
    ComPtr<IFont> face;
    HFONT handle = nullptr;
    given.As(&face);
    face->get_hFont(&handle);
    EXPECT_EQ(reinterpret_cast<HFONT>(SendMessageA(control.Object(), WM_GETFONT, 0, 0)), handle);
}

TEST_F(TerminalFont, StaysUsableForTheTerminalWhenItIsTakenAway) {
    ComPtr<IFontDisp> given = FontOfSize(20);
    control->putref_Font(given.Get());
    given.Reset();
    control->putref_Font(nullptr);
    const auto shown = reinterpret_cast<HFONT>(SendMessageA(control.Object(), WM_GETFONT, 0, 0));
    EXPECT_EQ(GetObjectType(shown), static_cast<DWORD>(OBJ_FONT));
}

TEST_F(TerminalFont, OneThatChangesInItselfLeavesTheTerminalItsOwn) {
    const ComPtr<IFontDisp> given = FontOfSize(20);
    control->putref_Font(given.Get());
    ComPtr<IFont> face;
    HFONT handle = nullptr;
    given.As(&face);
    CY size = {};
    size.int64 = 300000;
    face->put_Size(size);
    face->get_hFont(&handle);
    const auto shown = reinterpret_cast<HFONT>(SendMessageA(control.Object(), WM_GETFONT, 0, 0));
    EXPECT_NE(shown, handle);
    EXPECT_EQ(GetObjectType(shown), static_cast<DWORD>(OBJ_FONT));
}

TEST_F(TerminalFont, MayBeNone) {
    EXPECT_EQ(control->put_Font(nullptr), S_OK);
    ComPtr<IFontDisp> font;
    EXPECT_EQ(control->get_Font(font.GetAddressOf()), S_OK);
    EXPECT_FALSE(font);
}

TEST_F(TerminalSize, OtherModesChangeNothing) {
    control->put_AutoSize(AutoSize_Parent);
    EXPECT_EQ(LogOf([&] {
                  EXPECT_EQ(control->put_AutoSize(Outside<AutoSize>(3)), S_OK);
                  EXPECT_EQ(control->put_AutoSize(Outside<AutoSize>(-1)), S_OK);
              }),
              "");
    EXPECT_EQ(control->Properties().m_nAutoSize, AutoSize_Parent);
}

TEST_F(TerminalSize, WithoutAWindowItIsKeptOnly) {
    control->put_AutoSize(AutoSize_Terminal);
    EXPECT_EQ(control->Properties().m_nAutoSize, AutoSize_Terminal);
    EXPECT_EQ(GetAutoSize(control.Object()), TARN_AUTO_SIZE_NONE);
}

TEST_F(TerminalSize, ControlTakesTheSizeOfTheTerminal) {
    control.Show();
    ASSERT_TRUE(control->Window());
    control->put_AutoSize(AutoSize_Terminal);
    EXPECT_EQ(GetAutoSize(control.Object()), TARN_AUTO_SIZE_TERMINAL);
    const SIZE terminal = OuterOf(control.Object());
    const SIZE client = ClientOf(control->Window());
    EXPECT_EQ(client.cx, terminal.cx);
    EXPECT_EQ(client.cy, terminal.cy);
    EXPECT_GT(client.cx, 200); // 80 columns are wider than the place in the container
    RECT at = {};
    GetWindowRect(control->Window(), &at);
    MapWindowPoints(nullptr, GetParent(control->Window()), reinterpret_cast<POINT*>(&at), 1);
    EXPECT_EQ(at.left, 0);
    EXPECT_EQ(at.top, 0);
}

TEST_F(TerminalSize, ControlTakesTheSizeOfItsParent) {
    control.Show();
    control->put_AutoSize(AutoSize_Parent);
    EXPECT_EQ(GetAutoSize(control.Object()), TARN_AUTO_SIZE_PARENT);
    const SIZE parent = OuterOf(GetParent(control->Window()));
    const SIZE client = ClientOf(control->Window());
    EXPECT_EQ(client.cx, parent.cx);
    EXPECT_EQ(client.cy, parent.cy);
}

TEST_F(TerminalSize, BorderIsSingleOrNone) {
    control.Show();
    const HWND object = control.Object();
    EXPECT_TRUE(GetWindowLongA(object, GWL_STYLE) & WS_BORDER);
    control->put_BorderStyle(CommBorderStyle_None);
    EXPECT_FALSE(GetWindowLongA(object, GWL_STYLE) & WS_BORDER);
    control->put_BorderStyle(CommBorderStyle_Single);
    EXPECT_TRUE(GetWindowLongA(object, GWL_STYLE) & WS_BORDER);
    EXPECT_TRUE(GetWindowLongA(object, GWL_EXSTYLE) & WS_EX_CLIENTEDGE);
    control->put_BorderStyle(Outside<CommBorderStyle>(2));
    EXPECT_FALSE(GetWindowLongA(object, GWL_STYLE) & WS_BORDER);
    CommBorderStyle value = CommBorderStyle_Single;
    control->get_BorderStyle(&value);
    EXPECT_EQ(value, CommBorderStyle_None);
}

// Keeps what a window is to have as its extended style, before the system looks at it.
class AskedStyle {
  public:
    explicit AskedStyle(HWND window) {
        hook_.Set(window, [this](UINT message, WPARAM wParam, LPARAM lParam) -> std::optional<LRESULT> {
            if (message == WM_STYLECHANGING && static_cast<LONG>(wParam) == GWL_EXSTYLE)
                asked.push_back(reinterpret_cast<const STYLESTRUCT*>(lParam)->styleNew);
            return {};
        });
    }

    std::vector<DWORD> asked;

  private:
    WindowHook hook_;
};

// The extended style is made of the plain one; hosts have seen it so from the start.
TEST_F(TerminalSize, BorderMixesTheStyles) {
    control.Show();
    const HWND object = control.Object();
    const AskedStyle extended(object);
    for (const auto style : {CommBorderStyle_None, CommBorderStyle_Single, CommBorderStyle_None}) {
        const auto before = static_cast<DWORD>(GetWindowLongA(object, GWL_STYLE));
        EXPECT_TRUE(before & (WS_CHILD | WS_VISIBLE));
        control->put_BorderStyle(style);
        constexpr DWORD edge = WS_EX_CLIENTEDGE;
        ASSERT_FALSE(extended.asked.empty());
        EXPECT_EQ(extended.asked.back(), style == CommBorderStyle_Single ? before | edge : before & ~edge);
    }
    EXPECT_EQ(extended.asked.size(), 3u);
}

TEST_F(TerminalSize, EnabledReachesTheWindow) {
    control.Show();
    EXPECT_TRUE(IsWindowEnabled(control.Object()));
    control->put_Enabled(VARIANT_FALSE);
    EXPECT_FALSE(IsWindowEnabled(control.Object()));
}
