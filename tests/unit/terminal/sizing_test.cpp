// The window's size, its font and its caret.
#include "terminalobject.h"

#include "terminal/caret.h"
#include "terminal/sizing.h"

#include <gtest/gtest.h>

namespace {

class Sizing : public testing::Test {
  protected:
    COMCTL& Record() { return object.Record(); }

    using Size = std::pair<int, int>;
    static Size SizeOf(HWND hWnd) {
        RECT outer = {};
        GetWindowRect(hWnd, &outer);
        return {outer.right - outer.left, outer.bottom - outer.top};
    }
    static void Resize(HWND hWnd, int width, int height) {
        SetWindowPos(hWnd, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    Size Terminal() { return {80 * Record().cxChar, 25 * Record().cyChar}; }
    static Size Icon() { return {GetSystemMetrics(SM_CXICON), GetSystemMetrics(SM_CYICON)}; }

    host::TerminalObject object;
};

TEST_F(Sizing, WithoutAnEmulationEachSizeIsRefused) {
    SetEmulation(object, Emulation_None);
    EXPECT_EQ(SizeOf(object), Icon());
    Resize(object, 300, 200);
    EXPECT_EQ(SizeOf(object), Icon());
}

TEST_F(Sizing, SizeComesBackWithTheEmulation) {
    Resize(object, 300, 200);
    EXPECT_EQ(Size(Record().cxWindow, Record().cyWindow), Size(300, 200));
    SetEmulation(object, Emulation_None);
    EXPECT_EQ(Size(Record().cxWindow, Record().cyWindow), Size(300, 200)) << "kept meanwhile";
    SetEmulation(object, Emulation_VT100);
    EXPECT_EQ(SizeOf(object), Size(300, 200));
}

TEST_F(Sizing, NoAutoSizeLeavesTheSizeAlone) {
    Resize(object, 300, 200);
    SetAutoSize(object, AutoSize_None, nullptr);
    EXPECT_EQ(SizeOf(object), Size(300, 200));
    SetAutoSize(object, 7, nullptr);
    EXPECT_EQ(SizeOf(object), Size(300, 200)) << "an unknown one, too";
}

TEST_F(Sizing, SizeOfTheTerminal) {
    Resize(object, 300, 200);
    SetAutoSize(object, AutoSize_Terminal, nullptr);
    EXPECT_EQ(SizeOf(object), Terminal());
    Resize(object, 300, 200);
    EXPECT_EQ(SizeOf(object), Terminal()) << "kept against whoever sizes the window";
    EXPECT_EQ(Size(Record().cxWindow, Record().cyWindow), Terminal());
}

TEST_F(Sizing, ScrollbackAddsTheWidthOfABar) {
    SetScrollRows(object, 10);
    SetAutoSize(object, AutoSize_Terminal, nullptr);
    EXPECT_EQ(SizeOf(object), Size(Terminal().first + GetSystemMetrics(SM_CXVSCROLL), Terminal().second));
}

TEST_F(Sizing, SizeOfTheTerminalWaitsForAnEmulation) {
    SetEmulation(object, Emulation_None);
    SetAutoSize(object, AutoSize_Terminal, nullptr);
    EXPECT_EQ(SizeOf(object), Icon());
    SetEmulation(object, Emulation_TTY);
    Resize(object, 123, 45);
    EXPECT_EQ(SizeOf(object), Terminal());
}

TEST_F(Sizing, OtherWindowStandsInForTheMeasure) {
    const HWND other = CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, Terminal().first, Terminal().second,
                                       nullptr, nullptr, nullptr, nullptr);
    Resize(object, 300, 200);
    SetAutoSize(object, AutoSize_Terminal, other);
    EXPECT_EQ(SizeOf(object), Size(300, 200)) << "the other has the size already";
    Resize(other, 10, 10);
    SetAutoSize(object, AutoSize_Terminal, other);
    EXPECT_EQ(SizeOf(object), Terminal());
    EXPECT_EQ(SizeOf(other), Size(10, 10)) << "it is never sized";
    DestroyWindow(other);
}

TEST_F(Sizing, SizeOfTheParent) {
    const HWND parent =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 320, 210, nullptr, nullptr, nullptr, nullptr);
    const HWND child = CreateCommObject(parent);
    SetEmulation(child, Emulation_Ansi);
    SetAutoSize(child, AutoSize_Parent, nullptr);
    EXPECT_EQ(SizeOf(child), Size(320, 210));
    Resize(child, 10, 10);
    EXPECT_EQ(SizeOf(child), Size(320, 210));
    DestroyWindow(parent);
}

TEST_F(Sizing, WithoutAParentThereIsNothingToFill) {
    Resize(object, 300, 200);
    SetAutoSize(object, AutoSize_Parent, nullptr);
    EXPECT_EQ(SizeOf(object), Size(300, 200));
}

SIZE TextSize(HGDIOBJ font) {
    const HDC dc = GetDC(nullptr);
    const HGDIOBJ before = SelectObject(dc, font);
    SIZE size = {};
    GetTextExtentPoint32A(dc, "x", 1, &size);
    SelectObject(dc, before);
    ReleaseDC(nullptr, dc);
    return size;
}

TEST_F(Sizing, FontIsMeasuredByALetter) {
    const host::CommObject fresh;
    const SIZE standard = TextSize(GetStockObject(SYSTEM_FONT));
    EXPECT_EQ(RecordOf(fresh)->cxChar, standard.cx);
    EXPECT_EQ(RecordOf(fresh)->cyChar, standard.cy);
    EXPECT_EQ(SendMessageA(fresh, WM_GETFONT, 0, 0), reinterpret_cast<LRESULT>(GetStockObject(SYSTEM_FONT)));
}

TEST_F(Sizing, NewFontSizesTheWindow) {
    SetAutoSize(object, AutoSize_Terminal, nullptr);
    const HFONT font = CreateFontA(40, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, FIXED_PITCH, "Courier New");
    const Size before = SizeOf(object);
    SendMessageA(object, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    EXPECT_EQ(SendMessageA(object, WM_GETFONT, 0, 0), reinterpret_cast<LRESULT>(font));
    const SIZE size = TextSize(font);
    EXPECT_EQ(Record().cxChar, size.cx);
    EXPECT_EQ(Record().cyChar, size.cy);
    EXPECT_EQ(SizeOf(object), Terminal());
    EXPECT_NE(SizeOf(object), before);
    SendMessageA(object, WM_SETFONT, 0, 0);
    DeleteObject(font);
}

class CaretPlace : public Sizing {
  protected:
    CaretPlace() {
        object.ShowScreen();
        ShowWindow(object, SW_SHOW);
        SetFocus(object);
    }
    static Size Place() {
        POINT point = {};
        GetCaretPos(&point);
        return {point.x, point.y};
    }
};

TEST_F(CaretPlace, FocusMakesAndEndsIt) {
    ASSERT_EQ(GetFocus(), static_cast<HWND>(object));
    EXPECT_EQ(Record().bCaret, 1);
    SetFocus(nullptr);
    EXPECT_EQ(Record().bCaret, 0);
}

TEST_F(CaretPlace, IsTwoPixelsWideAndALineHigh) {
    GUITHREADINFO info = {};
    info.cbSize = sizeof info;
    ASSERT_TRUE(GetGUIThreadInfo(GetCurrentThreadId(), &info));
    EXPECT_EQ(info.hwndCaret, static_cast<HWND>(object));
    EXPECT_EQ(info.rcCaret.right - info.rcCaret.left, 2);
    EXPECT_EQ(info.rcCaret.bottom - info.rcCaret.top, Record().cyChar);
}

TEST_F(CaretPlace, StandsAtTheCursor) {
    SetCursorRow(object, 3);
    SetCursorColumn(object, 5);
    EXPECT_EQ(Place(), Size(5 * Record().cxChar, 3 * Record().cyChar));
    Record().nTopRow = 1;
    Record().nLeftColumn = 2;
    PositionCaret(Record());
    EXPECT_EQ(Place(), Size(3 * Record().cxChar, 2 * Record().cyChar));
}

TEST_F(CaretPlace, HidesLeftOfTheWindow) {
    Record().nLeftColumn = 6;
    SetCursorColumn(object, 5);
    EXPECT_EQ(Place().first, -10);
    SetCursorColumn(object, 6);
    EXPECT_EQ(Place().first, 0);
}

TEST_F(CaretPlace, IsMeasuredByTheText) {
    const HGDIOBJ font = GetStockObject(ANSI_VAR_FONT);
    SendMessageA(object, WM_SETFONT, reinterpret_cast<WPARAM>(font), 0);
    object.PutText(0, 0, "iiiiMMMM");
    const HDC dc = GetDC(object);
    const HGDIOBJ before = SelectObject(dc, font);
    SIZE size = {};
    GetTextExtentPoint32A(dc, "iiiiMM", 6, &size);
    SelectObject(dc, before);
    ReleaseDC(object, dc);
    SetCursorColumn(object, 6);
    EXPECT_EQ(Place().first, size.cx);
}

TEST_F(CaretPlace, FollowsThePrintedText) {
    TerminalPrintString(object, "abc");
    SendMessageA(object, WM_USER + 2, 0, 0);
    EXPECT_EQ(Place(), Size(3 * Record().cxChar, 0));
}

TEST_F(CaretPlace, AbsurdCursorsAreSurvived) {
    for (const int value : {INT_MIN, -1, 1000000, INT_MAX}) {
        Record().nCursorRow = value;
        Record().nCursorColumn = value;
        PositionCaret(Record());
    }
    Record().nCursorRow = 0;
    Record().nCursorColumn = 0;
    PositionCaret(Record());
    EXPECT_EQ(Place(), Size(0, 0));
}

} // namespace
