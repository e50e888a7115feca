// The frame of the troubleshooter: its panel, its pages, and what it sets when it ends.
#include "troubleshootuser.h"

using namespace troubleshooter;

namespace {

constexpr COLORREF panelColor = 0x804040;
constexpr COLORREF hoverColor = 0xC06060;
constexpr COLORREF white = 0xFFFFFF;

class TroubleShootDialog : public testing::Test {
  protected:
    TroubleShootDialog() {
        machine.ports["COM3"] = {true, PortKind::Serial, {9600, 8, NOPARITY}};
        machine.libraries["MFC42.dll"] = {"x", {}, {}};
        control.modems = {{"A Modem", "provider", 56000}};
    }

    INT_PTR Show(const User& user) {
        CTroubleShootDialog dialog(owner.get(), control, machine.Sources());
        return Play(dialog, user);
    }

    void Look(const User& user) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      user(hDlg);
                      PostMessageA(hDlg, WM_CLOSE, 0, 0);
                  }),
                  IDCANCEL);
        EXPECT_EQ(control.told, Texts());
    }

    HostDouble control;
    Machine machine;
    dialogs::Window owner = dialogs::MakeOwner();
};

// Painted with the focus elsewhere, so that no frame of dots is in the way.
std::unique_ptr<Picture> PictureOf(HWND hDlg) {
    auto picture = std::make_unique<Picture>(SizeOf(hDlg));
    SetFocus(nullptr);
    SendMessageA(Panel(hDlg), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(picture->Context()), PRF_CLIENT);
    return picture;
}

COLORREF GroundOf(HWND hDlg, int item) {
    const RECT box = TroubleShootItemBox(hDlg, item);
    return PictureOf(hDlg)->At(box.left + 2, box.bottom - 3);
}

TEST_F(TroubleShootDialog, HasItsTitleAndSize) {
    Look([](HWND hDlg) {
        EXPECT_EQ(dialogs::TextOf(hDlg), "Communications troubleshooting");
        RECT expected = {0, 0, 297, 183};
        MapDialogRect(hDlg, &expected);
        EXPECT_EQ(SizeOf(hDlg).cx, expected.right);
        EXPECT_EQ(SizeOf(hDlg).cy, expected.bottom);
        LOGFONTA font = {};
        GetObjectA(reinterpret_cast<HFONT>(SendMessageA(hDlg, WM_GETFONT, 0, 0)), sizeof font, &font);
        EXPECT_STREQ(font.lfFaceName, "Verdana");
    });
}

TEST_F(TroubleShootDialog, OpensWithTheWelcome) {
    Look([](HWND hDlg) {
        EXPECT_EQ(PagesOf(hDlg).size(), 5u);
        ASSERT_EQ(ShownPages(hDlg).size(), 1u);
        EXPECT_EQ(RowsOf(ShownPages(hDlg).front()), WelcomeRows());
    });
}

TEST_F(TroubleShootDialog, PagesStandRightOfThePanel) {
    Look([](HWND hDlg) {
        const RECT side = TroubleShootItemBox(hDlg, 0);
        for (const HWND hPage : PagesOf(hDlg)) {
            RECT box = {};
            GetWindowRect(hPage, &box);
            MapWindowPoints(nullptr, hDlg, reinterpret_cast<POINT*>(&box), 2);
            EXPECT_GT(box.left, side.right);
            EXPECT_LE(box.right, SizeOf(hDlg).cx);
            EXPECT_LE(box.bottom, SizeOf(hDlg).cy);
            if (GetDlgItem(hPage, Logging_WireTap))
                continue;
            EXPECT_EQ(SizeOf(GetDlgItem(hPage, List_Rows)).cx, box.right - box.left);
        }
    });
}

struct ItemRow {
    int item;
    const char* row; // the second of the page
};

const ItemRow itemRows[] = {{libraryItem, "10MFC42.dll"}, {portItem, "10COM3"}, {modemItem, "10A Modem"}};

void ExpectShown(HWND hDlg, const char* row) {
    const auto shown = ShownPages(hDlg);
    ASSERT_EQ(shown.size(), 1u);
    const Texts rows = RowsOf(shown.front());
    ASSERT_GE(rows.size(), 2u);
    EXPECT_EQ(rows[1], row);
}

TEST_F(TroubleShootDialog, ClickShowsThePageOfTheItemAlone) {
    Look([](HWND hDlg) {
        for (const ItemRow& row : itemRows) {
            Click(hDlg, row.item);
            ExpectShown(hDlg, row.row);
        }
        Click(hDlg, loggingItem);
        EXPECT_EQ(ShownPages(hDlg), std::vector<HWND>{LoggingPage(hDlg)});
        Click(hDlg, portItem);
        ExpectShown(hDlg, "10COM3");
        Click(hDlg, portItem);
        ExpectShown(hDlg, "10COM3");
    });
}

TEST_F(TroubleShootDialog, ClickBesideTheItemsChoosesNothing) {
    Look([](HWND hDlg) {
        const RECT first = TroubleShootItemBox(hDlg, 0);
        const RECT last = TroubleShootItemBox(hDlg, exitItem);
        for (const LPARAM point : {MAKELPARAM(5, first.top - 1), MAKELPARAM(5, last.bottom),
                                   MAKELPARAM(first.right, first.top + 2), MAKELPARAM(5, 5)})
            SendMessageA(Panel(hDlg), WM_LBUTTONDOWN, MK_LBUTTON, point);
        EXPECT_EQ(RowsOf(ShownPages(hDlg).front()), WelcomeRows());
    });
}

TEST_F(TroubleShootDialog, MachineWithoutPortsHasAnEmptyPage) {
    machine.ports.clear();
    Look([](HWND hDlg) {
        Click(hDlg, portItem);
        EXPECT_EQ(RowsOf(ShownPages(hDlg).front()), Texts());
    });
}

TEST_F(TroubleShootDialog, PageThatFailsTakesNoOtherWithIt) {
    control.modemsFail = true;
    control.wireTap = true;
    Look([](HWND hDlg) {
        EXPECT_EQ(PagesOf(hDlg).size(), 4u);
        Click(hDlg, modemItem);
        EXPECT_TRUE(ShownPages(hDlg).empty());
        Click(hDlg, portItem);
        ExpectShown(hDlg, "10COM3");
        EXPECT_TRUE(dialogs::IsChecked(LoggingPage(hDlg), 282));
    });
}

// Drawing

TEST_F(TroubleShootDialog, PanelIsPainted) {
    Look([](HWND hDlg) {
        const auto picture = PictureOf(hDlg);
        const SIZE size = SizeOf(hDlg);
        const RECT item = TroubleShootItemBox(hDlg, 0);
        const RECT page = TroubleShootPageBox(hDlg);
        EXPECT_EQ(picture->At(1, 1), panelColor);
        EXPECT_EQ(picture->At(size.cx - 2, 1), panelColor);
        EXPECT_EQ(picture->At(1, size.cy - 2), panelColor);
        EXPECT_EQ(picture->At(size.cx - 1, size.cy - 1), white);
        EXPECT_EQ(picture->At(page.left, page.top), white) << "a page covers no part of the corner";
        EXPECT_GT(picture->Count({0, 0, item.right, item.top}, white), 50) << "the heading";
        for (int i = libraryItem; i <= exitItem; ++i)
            EXPECT_GT(picture->Count(TroubleShootItemBox(hDlg, i), white), 20) << i;
    });
}

// From the panel's color to white along the diagonal, and further out than a square corner would.
TEST_F(TroubleShootDialog, InnerCornerIsRound) {
    Look([](HWND hDlg) {
        const auto picture = PictureOf(hDlg);
        const RECT item = TroubleShootItemBox(hDlg, 0);
        const int left = item.right;
        int top = 0;
        while (picture->At(SizeOf(hDlg).cx - 2, top) == panelColor)
            ++top;
        EXPECT_EQ(picture->At(left, top), panelColor);
        EXPECT_EQ(picture->At(left + 1, top + 1), panelColor);
        int steps = 0;
        while (picture->At(left + steps, top + steps) == panelColor)
            ++steps;
        int edge = 0;
        while (picture->At(left, top + edge) == panelColor)
            ++edge;
        EXPECT_GT(steps, 2);
        EXPECT_GT(edge, 2 * steps);
    });
}

TEST_F(TroubleShootDialog, LinesAreBetweenItems) {
    Look([](HWND hDlg) {
        const auto picture = PictureOf(hDlg);
        for (int item = libraryItem; item <= exitItem; ++item) {
            const RECT box = TroubleShootItemBox(hDlg, item);
            EXPECT_EQ(picture->Count({box.left, box.top, box.right, box.top + 1}, white),
                      item == libraryItem ? 0 : box.right - box.left)
                << item;
        }
    });
}

TEST_F(TroubleShootDialog, SelectedItemIsAWhiteBarWithBlackText) {
    Look([](HWND hDlg) {
        for (int item = libraryItem; item < exitItem; ++item)
            EXPECT_EQ(GroundOf(hDlg, item), panelColor) << item;
        Click(hDlg, modemItem);
        for (int item = libraryItem; item <= exitItem; ++item)
            EXPECT_EQ(GroundOf(hDlg, item), item == modemItem ? white : panelColor) << item;
        EXPECT_GT(PictureOf(hDlg)->Count(TroubleShootItemBox(hDlg, modemItem), 0), 10);
        Click(hDlg, portItem);
        EXPECT_EQ(GroundOf(hDlg, modemItem), panelColor);
        EXPECT_EQ(GroundOf(hDlg, portItem), white);
    });
}

TEST_F(TroubleShootDialog, SelectionRepaintsTheTwoItemsAlone) {
    Look([](HWND hDlg) {
        Click(hDlg, libraryItem);
        SetFocus(nullptr);
        SendMessageA(Panel(hDlg), WM_SETFOCUS, 0, 0);
        ValidateRect(Panel(hDlg), nullptr);
        Click(hDlg, modemItem);
        const HRGN expected = CreateRectRgn(0, 0, 0, 0);
        for (const int item : {libraryItem, modemItem}) {
            const RECT box = TroubleShootItemBox(hDlg, item);
            const HRGN one = CreateRectRgnIndirect(&box);
            CombineRgn(expected, expected, one, RGN_OR);
            DeleteObject(one);
        }
        const HRGN found = CreateRectRgn(0, 0, 0, 0);
        GetUpdateRgn(Panel(hDlg), found, FALSE);
        EXPECT_TRUE(EqualRgn(found, expected));
        DeleteObject(found);
        DeleteObject(expected);
    });
}

TEST_F(TroubleShootDialog, ItemUnderTheMouseIsMarked) {
    Look([](HWND hDlg) {
        MoveTo(hDlg, loggingItem);
        EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_HAND));
        EXPECT_EQ(GroundOf(hDlg, loggingItem), hoverColor);
        MoveTo(hDlg, exitItem);
        EXPECT_EQ(GroundOf(hDlg, loggingItem), panelColor);
        EXPECT_EQ(GroundOf(hDlg, exitItem), hoverColor);
        SendMessageA(Panel(hDlg), WM_MOUSEMOVE, 0, MAKELPARAM(2, 2));
        EXPECT_EQ(GetCursor(), LoadCursorA(nullptr, IDC_ARROW));
        EXPECT_EQ(GroundOf(hDlg, exitItem), panelColor);
        MoveTo(hDlg, portItem);
        SendMessageA(Panel(hDlg), WM_MOUSELEAVE, 0, 0);
        EXPECT_EQ(GroundOf(hDlg, portItem), panelColor);
        EXPECT_EQ(RowsOf(ShownPages(hDlg).front()), WelcomeRows()) << "only a click chooses";
    });
}

TEST_F(TroubleShootDialog, SelectedItemStaysWhiteUnderTheMouse) {
    Look([](HWND hDlg) {
        Click(hDlg, portItem);
        MoveTo(hDlg, portItem);
        EXPECT_EQ(GroundOf(hDlg, portItem), white);
    });
}

// The panel's fonts are not the template's: what is written must fit.
TEST_F(TroubleShootDialog, NoItemIsCut) {
    Look([](HWND hDlg) {
        const auto picture = PictureOf(hDlg);
        for (int item = libraryItem; item <= exitItem; ++item) {
            const RECT box = TroubleShootItemBox(hDlg, item);
            EXPECT_EQ(picture->Count({box.right - 4, box.top + 1, box.right, box.bottom}, white), 0) << item;
            EXPECT_EQ(picture->Count({box.left, box.bottom - 1, box.right, box.bottom}, white), 0) << item;
        }
    });
}

// Keys

void Key(HWND hDlg, WPARAM key) {
    SendMessageA(Panel(hDlg), WM_KEYDOWN, key, 1);
}

TEST_F(TroubleShootDialog, PanelHasTheFocusAtFirst) {
    Look([](HWND hDlg) { EXPECT_EQ(GetFocus(), Panel(hDlg)); });
}

struct KeyRow {
    std::vector<WPARAM> keys;
    int item;
};

const KeyRow keyRows[] = {
    {{}, libraryItem},
    {{VK_DOWN}, portItem},
    {{VK_DOWN, VK_DOWN, VK_UP}, portItem},
    {{VK_RIGHT, VK_RIGHT}, modemItem},
    {{VK_RIGHT, VK_RIGHT, VK_LEFT}, portItem},
    {{VK_UP}, libraryItem},
    {{VK_END, VK_DOWN, VK_UP, VK_UP}, modemItem},
    {{VK_END, VK_HOME}, libraryItem},
};

TEST_F(TroubleShootDialog, ArrowsReachEachItemAndEnterChooses) {
    for (const WPARAM choose : {VK_RETURN, VK_SPACE})
        for (const KeyRow& row : keyRows)
            Look([&](HWND hDlg) {
                for (const WPARAM key : row.keys)
                    Key(hDlg, key);
                EXPECT_EQ(RowsOf(ShownPages(hDlg).front()), WelcomeRows());
                if (!row.keys.empty()) {
                    EXPECT_EQ(GroundOf(hDlg, row.item), hoverColor);
                }
                Key(hDlg, choose);
                EXPECT_EQ(GroundOf(hDlg, row.item), white);
                ExpectShown(hDlg, itemRows[row.item].row);
            });
}

TEST_F(TroubleShootDialog, FocusIsSeen) {
    Look([](HWND hDlg) {
        const RECT box = TroubleShootItemBox(hDlg, 0);
        const auto without = PictureOf(hDlg);
        SetFocus(Panel(hDlg));
        Picture with(SizeOf(hDlg));
        SendMessageA(Panel(hDlg), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(with.Context()), PRF_CLIENT);
        EXPECT_LT(with.Count(box, panelColor), without->Count(box, panelColor));
    });
}

TEST_F(TroubleShootDialog, KeysComeThroughTheDialogsOwnLoop) {
    EXPECT_EQ(Show([](HWND hDlg) {
                  for (const WPARAM key : {VK_END, VK_RETURN})
                      PostMessageA(Panel(hDlg), WM_KEYDOWN, key, 1);
              }),
              IDOK);
    EXPECT_EQ(control.told.size(), 2u);
}

TEST_F(TroubleShootDialog, TabGoesFromPanelToThePageAndBack) {
    Look([](HWND hDlg) {
        Click(hDlg, loggingItem);
        const HWND hPage = LoggingPage(hDlg);
        std::vector<HWND> found;
        HWND hItem = Panel(hDlg);
        for (int i = 0; i < 7; ++i) {
            hItem = GetNextDlgTabItem(hDlg, hItem, FALSE);
            found.push_back(hItem);
        }
        std::vector<HWND> expected;
        for (const int item : {282, 283, 284, 285, 286, 287})
            expected.push_back(GetDlgItem(hPage, item));
        expected.push_back(Panel(hDlg));
        EXPECT_EQ(found, expected);
        Click(hDlg, portItem);
        EXPECT_EQ(GetNextDlgTabItem(hDlg, Panel(hDlg), FALSE),
                  GetDlgItem(ShownPages(hDlg).front(), List_Rows));
    });
}

TEST_F(TroubleShootDialog, EnterPressesAButtonOfThePage) {
    EXPECT_EQ(Show([](HWND hDlg) {
                  Click(hDlg, loggingItem);
                  const HWND hButton = GetDlgItem(LoggingPage(hDlg), 283);
                  SendMessageA(hDlg, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(hButton), TRUE);
                  PostMessageA(hButton, WM_KEYDOWN, VK_RETURN, 1);
                  PostMessageA(hButton, WM_KEYDOWN, VK_ESCAPE, 1);
              }),
              IDCANCEL);
    EXPECT_EQ(machine.logActions, Texts({"open " + WindowsFile("WireTap.txt")}));
}

TEST_F(TroubleShootDialog, EnterElsewhereEndsNothing) {
    Look([](HWND hDlg) {
        SendMessageA(hDlg, WM_COMMAND, MAKEWPARAM(IDOK, BN_CLICKED), 0);
        Click(hDlg, loggingItem);
        EXPECT_EQ(ShownPages(hDlg).size(), 1u);
    });
}

// Logging, and the end

struct ExitRow {
    bool wireTap;
    const char* capture;
    bool clickWireTap;
    bool clickCapture;
    bool setWireTap;
    bool setCapture;
};

const ExitRow exitRows[] = {
    {false, "", false, false, false, false},
    {false, "", true, false, true, false},
    {false, "", false, true, false, true},
    {true, "C:\\mine.txt", false, false, true, true},
    {true, "C:\\mine.txt", true, true, false, false},
};

TEST_F(TroubleShootDialog, ExitAppliesTheLoggingPage) {
    for (const ExitRow& row : exitRows) {
        control.wireTap = row.wireTap;
        control.capture = row.capture;
        control.told.clear();
        EXPECT_EQ(Show([&](HWND hDlg) {
                      const HWND hPage = LoggingPage(hDlg);
                      EXPECT_EQ(dialogs::IsChecked(hPage, 282), row.wireTap);
                      EXPECT_EQ(dialogs::IsChecked(hPage, 285), row.capture[0] != 0);
                      Click(hDlg, loggingItem);
                      if (row.clickWireTap)
                          Press(hPage, 282);
                      if (row.clickCapture)
                          Press(hPage, 285);
                      EXPECT_EQ(control.told, Texts());
                      Click(hDlg, exitItem);
                  }),
                  IDOK);
        EXPECT_EQ(control.told,
                  Texts({row.setWireTap ? "WireTap on" : "WireTap off",
                         "capture " + (row.setCapture ? WindowsFile("CommTerminal.txt") : std::string())}));
    }
}

TEST_F(TroubleShootDialog, ClosingAppliesNothing) {
    for (const bool byKey : {false, true}) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      Click(hDlg, loggingItem);
                      Press(LoggingPage(hDlg), 282);
                      Press(LoggingPage(hDlg), 285);
                      if (byKey)
                          PostMessageA(Panel(hDlg), WM_KEYDOWN, VK_ESCAPE, 1);
                      else
                          PostMessageA(hDlg, WM_CLOSE, 0, 0);
                  }),
                  IDCANCEL);
        EXPECT_EQ(control.told, Texts());
    }
}

TEST_F(TroubleShootDialog, ExitWhileTheHostIsToldSetsNothingTwice) {
    EXPECT_EQ(Show([&](HWND hDlg) {
                  control.onWireTap = [this, hDlg] {
                      if (control.told.size() < 3)
                          Click(hDlg, exitItem);
                  };
                  Click(hDlg, exitItem);
              }),
              IDOK);
    EXPECT_EQ(control.told, Texts({"WireTap off", "capture "}));
}

TEST_F(TroubleShootDialog, ExitThatFailsCanBeChosenAgain) {
    EXPECT_EQ(Show([&](HWND hDlg) {
                  control.onWireTap = [] { throw std::runtime_error("host"); };
                  Click(hDlg, exitItem);
                  EXPECT_TRUE(IsWindow(hDlg));
                  control.onWireTap = {};
                  Click(hDlg, exitItem);
              }),
              IDOK);
    EXPECT_EQ(control.told, Texts({"WireTap off", "WireTap off", "capture "}));
}

TEST_F(TroubleShootDialog, ExitWithoutALoggingPageSetsNothing) {
    EXPECT_EQ(Show([&](HWND hDlg) {
                  DestroyWindow(LoggingPage(hDlg));
                  Click(hDlg, exitItem);
              }),
              IDOK);
    EXPECT_EQ(control.told, Texts());
}

// Somebody goes

TEST_F(TroubleShootDialog, OwnerMayGoWhileItIsOpen) {
    EXPECT_NE(Show([&](HWND hDlg) {
                  Click(hDlg, loggingItem);
                  Press(LoggingPage(hDlg), 282);
                  owner.reset();
              }),
              IDOK);
    EXPECT_EQ(control.told, Texts());
}

TEST_F(TroubleShootDialog, OwnerMayGoWhileTheHostIsTold) {
    control.onWireTap = [this] { owner.reset(); };
    EXPECT_NE(Show([&](HWND hDlg) {
                  Press(LoggingPage(hDlg), 285);
                  Click(hDlg, exitItem);
              }),
              IDOK);
    EXPECT_EQ(control.told, Texts({"WireTap off", "capture " + WindowsFile("CommTerminal.txt")}));
}

TEST_F(TroubleShootDialog, OwnerMayGoWhileAMessageIsOpen) {
    machine.logActionsFail = true;
    Texts seen;
    EXPECT_NE(Show([&](HWND hDlg) {
                  const auto box = WhenBox("View WireTap Log", seen, [&] { owner.reset(); });
                  Press(LoggingPage(hDlg), 283);
              }),
              IDOK);
    EXPECT_EQ(seen.size(), 1u);
    EXPECT_EQ(control.told, Texts());
}

TEST_F(TroubleShootDialog, WaitsForItsMessages) {
    machine.logActionsFail = true;
    control.modems = {{"A Modem", "|target|link|", 0}};
    Look([](HWND hDlg) {
        Texts seen;
        const auto expectWaiting = [&] { EXPECT_FALSE(IsWindowEnabled(hDlg)); };
        const auto report = WhenBox("View WireTap Log", seen, expectWaiting);
        Press(LoggingPage(hDlg), 283);
        Click(hDlg, modemItem);
        const HWND hList = GetDlgItem(ShownPages(hDlg).front(), List_Rows);
        SendMessageA(hList, LB_SETCURSEL, 2, 0);
        const auto link = WhenBox("Communications troubleshooting", seen, expectWaiting);
        SendMessageA(hList, WM_KEYDOWN, VK_SPACE, 1);
        EXPECT_EQ(seen.size(), 2u);
        EXPECT_TRUE(IsWindowEnabled(hDlg));
    });
}

TEST_F(TroubleShootDialog, ModelessIsClosedByExitToo) {
    CTroubleShootDialog dialog(owner.get(), control, machine.Sources());
    ASSERT_TRUE(dialog.Create());
    Click(dialog.Window(), exitItem);
    EXPECT_EQ(dialog.Window(), nullptr);
    EXPECT_EQ(control.told.size(), 2u);
}

TEST_F(TroubleShootDialog, OwnerIsDisabledMeanwhile) {
    Look([&](HWND hDlg) {
        EXPECT_FALSE(IsWindowEnabled(owner.get()));
        EXPECT_EQ(GetWindow(hDlg, GW_OWNER), owner.get());
    });
    EXPECT_TRUE(IsWindowEnabled(owner.get()));
}

TEST_F(TroubleShootDialog, ShowsThisMachineToo) {
    const HeldLibrary held("OleAut32.dll");
    CTroubleShootDialog dialog(owner.get(), control);
    EXPECT_EQ(Play(dialog,
                   [](HWND hDlg) {
                       Click(hDlg, libraryItem);
                       const Texts rows = RowsOf(ShownPages(hDlg).front());
                       EXPECT_EQ(rows, LibraryRows(FindLoadedLibrary));
                       EXPECT_GE(rows.size(), 5u);
                       Click(hDlg, portItem);
                       EXPECT_EQ(RowsOf(ShownPages(hDlg).front()), PortRows(ProbePort));
                       PostMessageA(hDlg, WM_CLOSE, 0, 0);
                   }),
              IDCANCEL);
}

} // namespace
