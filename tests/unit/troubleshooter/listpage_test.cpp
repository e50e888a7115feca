// A page with rows: how they are drawn, and their links.
#include "troubleshootuser.h"

using namespace troubleshooter;

namespace {

constexpr COLORREF linkColor = 0xC00000;
constexpr char target[] = "http://the.target/%s";
const TroubleShootRows shownRows = {"00", "10Heading", "00Heading",
                                    std::string("00go |") + target + "|over there| now",
                                    "10no |x|link| here"};
enum : WPARAM { emptyRow, headingRow, plainRow, linkRow, barsRow };

class TroubleShootListPage : public testing::Test {
  protected:
    TroubleShootListPage() { page.Create(); }

    HWND List() const { return GetDlgItem(page.Window(), List_Rows); }

    RECT BoxOf(WPARAM row) const {
        RECT box = {};
        SendMessageA(List(), LB_GETITEMRECT, row, reinterpret_cast<LPARAM>(&box));
        return box;
    }

    // The columns of the row that have a pixel of the color.
    std::vector<int> Columns(WPARAM row, COLORREF color) const {
        const Picture picture(SizeOf(List()));
        Draw(row, picture);
        const RECT box = BoxOf(row);
        std::vector<int> columns;
        for (int x = 0; x < box.right; ++x)
            if (picture.Count({x, box.top, x + 1, box.bottom}, color))
                columns.push_back(x);
        return columns;
    }

    void Draw(WPARAM row, const Picture& picture, UINT state = 0) const {
        DRAWITEMSTRUCT item = {};
        item.CtlType = ODT_LISTBOX;
        item.CtlID = List_Rows;
        item.itemID = static_cast<UINT>(row);
        item.itemState = state;
        item.hwndItem = List();
        item.hDC = picture.Context();
        item.rcItem = BoxOf(row);
        SendMessageA(page.Window(), WM_DRAWITEM, List_Rows, reinterpret_cast<LPARAM>(&item));
    }

    int Inked(WPARAM row) const {
        const Picture picture(SizeOf(List()));
        Draw(row, picture);
        const RECT box = BoxOf(row);
        return (box.right - box.left) * (box.bottom - box.top) - picture.Count(box, 0xFFFFFF);
    }

    LPARAM PointIn(WPARAM row, int x) const {
        const RECT box = BoxOf(row);
        return MAKELPARAM(x, (box.top + box.bottom) / 2);
    }

    bool IsHandOver(LPARAM point) const {
        SetCursor(LoadCursorA(nullptr, IDC_WAIT));
        SendMessageA(List(), WM_MOUSEMOVE, 0, point);
        return GetCursor() == LoadCursorA(nullptr, IDC_HAND);
    }

    dialogs::Window owner = dialogs::MakeOwner();
    CTroubleShootListDialog page{owner.get(), shownRows};
};

TEST_F(TroubleShootListPage, HasTheRowsAsTheyAreGiven) {
    EXPECT_EQ(RowsOf(page.Window()), shownRows);
}

TEST_F(TroubleShootListPage, EmptyRowDrawsNothing) {
    EXPECT_EQ(Inked(emptyRow), 0);
    EXPECT_GT(Inked(plainRow), 0);
}

TEST_F(TroubleShootListPage, HeadingIsBold) {
    EXPECT_GT(Inked(headingRow), Inked(plainRow) + 10);
}

TEST_F(TroubleShootListPage, LinkWordsAreBlueAndTheTargetIsNotDrawn) {
    EXPECT_FALSE(Columns(linkRow, linkColor).empty());
    for (const WPARAM row : {headingRow, plainRow, barsRow})
        EXPECT_TRUE(Columns(row, linkColor).empty()) << row;
    const int words = Columns(linkRow, linkColor).back() - Columns(linkRow, linkColor).front();
    const std::vector<int> black = Columns(linkRow, 0);
    EXPECT_LT(black.front(), Columns(linkRow, linkColor).front());
    EXPECT_LT(black.back() - Columns(linkRow, linkColor).back(), words) << "only \" now\" follows";
}

TEST_F(TroubleShootListPage, RowThatHasTheFocusIsFramed) {
    const Picture picture(SizeOf(List()));
    Draw(emptyRow, picture, ODS_FOCUS | ODS_SELECTED);
    const RECT box = BoxOf(emptyRow);
    EXPECT_LT(picture.Count(box, 0xFFFFFF), (box.right - box.left) * (box.bottom - box.top));
    const Picture hidden(SizeOf(List()));
    Draw(emptyRow, hidden, ODS_FOCUS | ODS_SELECTED | ODS_NOFOCUSRECT);
    EXPECT_EQ(hidden.Count(box, 0xFFFFFF), (box.right - box.left) * (box.bottom - box.top));
}

TEST_F(TroubleShootListPage, RowThatIsNotThereDrawsNothing) {
    DRAWITEMSTRUCT item = {};
    item.itemID = static_cast<UINT>(-1);
    item.hwndItem = List();
    const Picture picture({10, 10});
    item.hDC = picture.Context();
    item.rcItem = {0, 0, 10, 10};
    SendMessageA(page.Window(), WM_DRAWITEM, List_Rows, reinterpret_cast<LPARAM>(&item));
    EXPECT_EQ(picture.Count(item.rcItem, 0xFFFFFF), 100);
}

TEST_F(TroubleShootListPage, HandIsShownOverLinkWordsAlone) {
    const std::vector<int> words = Columns(linkRow, linkColor);
    ASSERT_FALSE(words.empty());
    EXPECT_TRUE(IsHandOver(PointIn(linkRow, words.front())));
    EXPECT_TRUE(IsHandOver(PointIn(linkRow, words.back())));
    EXPECT_FALSE(IsHandOver(PointIn(linkRow, words.front() - 3)));
    EXPECT_FALSE(IsHandOver(PointIn(linkRow, words.back() + 3)));
    EXPECT_FALSE(IsHandOver(PointIn(plainRow, words.front())));
    EXPECT_FALSE(IsHandOver(PointIn(barsRow, words.front())));
    EXPECT_FALSE(IsHandOver(MAKELPARAM(words.front(), SizeOf(List()).cy - 1))) << "below the rows";
    EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_ARROW));
}

TEST_F(TroubleShootListPage, ClickOnLinkWordsShowsTheTarget) {
    Texts seen;
    const auto box = WhenBox("Communications troubleshooting", seen);
    SendMessageA(List(), WM_LBUTTONDOWN, MK_LBUTTON, PointIn(linkRow, Columns(linkRow, linkColor).front()));
    EXPECT_EQ(seen, Texts({target}));
}

TEST_F(TroubleShootListPage, SpaceBarShowsTheTargetOfTheSelectedRow) {
    Texts seen;
    SendMessageA(List(), LB_SETCURSEL, plainRow, 0);
    SendMessageA(List(), WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_EQ(OpenBox("Communications troubleshooting"), nullptr);
    const auto box = WhenBox("Communications troubleshooting", seen);
    SendMessageA(List(), LB_SETCURSEL, linkRow, 0);
    SendMessageA(List(), WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_EQ(seen, Texts({target}));
}

TEST_F(TroubleShootListPage, WideRowsCanBeScrolledAndTheirLinksMoveAlong) {
    CTroubleShootListDialog wide(owner.get(), {"00" + std::string(200, 'w') + "|t|words|"});
    ASSERT_TRUE(wide.Create());
    const HWND hList = GetDlgItem(wide.Window(), List_Rows);
    const LRESULT extent = SendMessageA(hList, LB_GETHORIZONTALEXTENT, 0, 0);
    ASSERT_GT(extent, SizeOf(hList).cx);
    SendMessageA(hList, WM_HSCROLL, SB_RIGHT, 0);
    const int position = GetScrollPos(hList, SB_HORZ);
    ASSERT_GT(position, 0);
    const int x = static_cast<int>(extent) - position - 12; // within the last letters
    SendMessageA(hList, WM_MOUSEMOVE, 0, MAKELPARAM(x, 5));
    EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_HAND));
    SendMessageA(hList, WM_HSCROLL, SB_LEFT, 0);
    SendMessageA(hList, WM_MOUSEMOVE, 0, MAKELPARAM(x, 5));
    EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_ARROW));
}

TEST_F(TroubleShootListPage, NarrowRowsCannotBeScrolled) {
    EXPECT_LE(SendMessageA(List(), LB_GETHORIZONTALEXTENT, 0, 0), SizeOf(List()).cx);
}

TEST_F(TroubleShootListPage, ListFillsThePage) {
    SetWindowPos(page.Window(), nullptr, 0, 0, 123, 77, SWP_NOZORDER);
    RECT box = {};
    GetWindowRect(List(), &box);
    EXPECT_EQ(box.right - box.left, 123);
    EXPECT_EQ(box.bottom - box.top, 77);
}

TEST_F(TroubleShootListPage, StaysWhenKeysWouldEndADialog) {
    for (const int button : {IDOK, IDCANCEL})
        SendMessageA(page.Window(), WM_COMMAND, MAKEWPARAM(button, BN_CLICKED), 0);
    EXPECT_TRUE(IsWindow(page.Window()));
}

TEST_F(TroubleShootListPage, OwnerMayGoWhileTheTargetIsShown) {
    Texts seen;
    const auto box = WhenBox("Communications troubleshooting", seen, [&] { owner.reset(); });
    SendMessageA(List(), WM_LBUTTONDOWN, MK_LBUTTON, PointIn(linkRow, Columns(linkRow, linkColor).front()));
    EXPECT_EQ(page.Window(), nullptr);
    EXPECT_EQ(seen.size(), 1u);
}

} // namespace
