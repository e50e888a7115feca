// The dialog of a line's settings.
#include "dialogtest.h"

#include "modem/SerialPortProperties.h"
#include "support/memorylimit.h"

#include <commctrl.h>

#include <optional>

using namespace dialogs;

namespace {

class SerialPortProperties : public DialogTest, protected DialogUser {
  protected:
    INT_PTR Show(const User& user) override {
        CSerialPortProperties dialog(owner.get(), settings, handshaking);
        return Play(dialog, user);
    }

    std::string settings = "9600,n,8,1";
    int handshaking = 0;
};

struct ListRow {
    int item;
    Texts rows;
};

const ListRow lists[] = {
    {202,
     {"(default)", "110", "300", "600", "1200", "2400", "4800", "9600", "14400", "19200", "28800", "38400",
      "57600", "115200", "230400", "460800", "921600"}},
    {203, {"(default)", "None", "Odd", "Even", "Mark", "Space"}},
    {204, {"(default)", "5", "6", "7", "8"}},
    {205, {"(default)", "1", "1.5", "2"}},
    {273, {"(default)", "None", "Hardware", "Xon/Xoff", "Both"}},
};

TEST_F(SerialPortProperties, ListsHaveTheirRows) {
    Look([](HWND hDlg) {
        size_t rows = 0;
        for (const ListRow& list : lists) {
            EXPECT_EQ(Rows(hDlg, list.item), list.rows) << list.item;
            rows += Rows(hDlg, list.item).size();
        }
        EXPECT_EQ(rows, 37u);
    });
}

TEST_F(SerialPortProperties, HasOneTab) {
    Look([](HWND hDlg) {
        char title[32] = {};
        TCITEMA tab = {};
        tab.mask = TCIF_TEXT;
        tab.pszText = title;
        tab.cchTextMax = sizeof title;
        EXPECT_EQ(Tell(hDlg, 268, TCM_GETITEMCOUNT), 1);
        EXPECT_TRUE(Tell(hDlg, 268, TCM_GETITEMA, 0, reinterpret_cast<LPARAM>(&tab)));
        EXPECT_STREQ(title, "Connection");
    });
}

struct SettingsRow {
    const char* settings;
    const char* speed;
    const char* parity;
    const char* dataBits;
    const char* stopBits;
    const char* result; // of OK alone
};

const SettingsRow settingsRows[] = {
    {"9600,n,8,1", "9600", "None", "8", "1", "9600,N,8,1"},
    {"115200,e,7,2", "115200", "Even", "7", "2", "115200,E,7,2"},
    {"110,O,5,1.5", "110", "Odd", "5", "1.5", "110,O,5,1.5"},
    {"300,m,6,1", "300", "Mark", "6", "1", "300,M,6,1"},
    {"300,Space,6,1", "300", "Space", "6", "1", "300,S,6,1"},
    {"7200,n,8,1", "7200", "None", "8", "1", "7200,N,8,1"},
    {",n,8,1", "(default)", "None", "8", "1", ",N,8,1"},
    {"9600,,8,1", "9600", "(default)", "8", "1", "9600,,8,1"},
    {"9600,n,,1", "9600", "None", "(default)", "1", "9600,N,,1"},
    {"9600,n,8,", "9600", "None", "8", "(default)", "9600,N,8,"},
    {"9600", "9600", "(default)", "(default)", "(default)", "9600,,,"},
    {"", "(default)", "(default)", "(default)", "(default)", ",,,"},
    {",,,", "(default)", "(default)", "(default)", "(default)", ",,,"},
    {"9600,x,9,3", "9600", "(default)", "(default)", "(default)", "9600,,,"},
    {"9600, e, 7, 2", "9600", "Even", "7", "2", "9600,E,7,2"},
    {"9600,n,8,1,more", "9600", "None", "8", "1", "9600,N,8,1"},
};

TEST_F(SerialPortProperties, SettingsAreShownAndReadBack) {
    for (const SettingsRow& row : settingsRows) {
        SCOPED_TRACE(row.settings);
        settings = row.settings;
        Confirm([&](HWND hDlg) {
            EXPECT_EQ(ItemText(hDlg, 202), row.speed);
            EXPECT_EQ(SelectedRow(hDlg, 203), row.parity);
            EXPECT_EQ(SelectedRow(hDlg, 204), row.dataBits);
            EXPECT_EQ(SelectedRow(hDlg, 205), row.stopBits);
        });
        EXPECT_EQ(settings, row.result);
    }
}

struct FlowRow {
    int handshaking;
    int row;
};

TEST_F(SerialPortProperties, FlowControlIsTheRowLessOne) {
    for (const FlowRow& row : {FlowRow{-1, 0}, {0, 1}, {1, 2}, {2, 3}, {3, 4}}) {
        SCOPED_TRACE(row.handshaking);
        handshaking = row.handshaking;
        Confirm([&](HWND hDlg) {
            EXPECT_EQ(Selected(hDlg, 273), row.row);
            EXPECT_EQ(handshaking, row.handshaking);
        });
        EXPECT_EQ(handshaking, row.handshaking);
        handshaking = 99;
        Confirm([&](HWND hDlg) { Choose(hDlg, 273, row.row); });
        EXPECT_EQ(handshaking, row.handshaking);
    }
}

TEST_F(SerialPortProperties, FlowControlWithoutARowIsLeftAlone) {
    for (const int value : {5, 99, -2, -100, 0x7FFFFFFF}) {
        handshaking = value;
        Confirm([](HWND hDlg) { EXPECT_EQ(Selected(hDlg, 273), -1); });
        EXPECT_EQ(handshaking, value);
    }
}

struct PresetRow {
    int chosen; // row
    int result;
};

TEST_F(SerialPortProperties, FlowControlThatNobodySetIsADefaultToo) {
    for (const PresetRow& row : {PresetRow{0, 4}, {1, 0}, {2, 1}, {4, 3}}) {
        SCOPED_TRACE(row.chosen);
        handshaking = 4;
        Confirm([&](HWND hDlg) {
            EXPECT_EQ(Selected(hDlg, 273), 0);
            Choose(hDlg, 273, row.chosen);
        });
        EXPECT_EQ(handshaking, row.result);
    }
}

TEST_F(SerialPortProperties, DefaultsYieldCommasAlone) {
    Confirm([](HWND hDlg) {
        Type(hDlg, 202, "7200");
        Press(hDlg, 276);
        for (const int item : {202, 203, 204, 205, 273})
            EXPECT_EQ(SelectedRow(hDlg, item), "(default)") << item;
        EXPECT_EQ(ItemText(hDlg, 202), "(default)");
    });
    EXPECT_EQ(settings, ",,,");
    EXPECT_EQ(handshaking, -1);
}

TEST_F(SerialPortProperties, ChosenRowsMakeTheSettings) {
    Confirm([](HWND hDlg) {
        Choose(hDlg, 202, 13);
        Choose(hDlg, 203, 5);
        Choose(hDlg, 204, 3);
        Choose(hDlg, 205, 2);
    });
    EXPECT_EQ(settings, "115200,S,7,1.5");
}

TEST_F(SerialPortProperties, SpeedCanBeTyped) {
    Confirm([](HWND hDlg) { Type(hDlg, 202, "12345"); });
    EXPECT_EQ(settings, "12345,N,8,1");
}

TEST_F(SerialPortProperties, CancelChangesNothing) {
    for (const bool byKey : {false, true}) {
        const INT_PTR result = Show([&](HWND hDlg) {
            Press(hDlg, 276);
            if (byKey)
                PostMessageA(GetDlgItem(hDlg, 203), WM_KEYDOWN, VK_ESCAPE, 1);
            else
                PostMessageA(hDlg, WM_CLOSE, 0, 0);
        });
        EXPECT_EQ(result, IDCANCEL);
        EXPECT_EQ(settings, "9600,n,8,1");
        EXPECT_EQ(handshaking, 0);
    }
}

TEST_F(SerialPortProperties, FailureIsReportedWithItsStepAndTheDialogStays) {
    constexpr size_t size = 3000000;
    settings.assign(size, '1');
    std::optional<host::MemoryLimit> limit(std::in_place, size - 1);
    Look([&](HWND hDlg) {
        EXPECT_EQ(doubles::reports, Texts({"Exception in CSerialPortProperties::OnInitDialog: Settings"}));
        EXPECT_EQ(Tell(hDlg, 203, CB_GETCOUNT), 6);
        limit.reset();
    });
    EXPECT_EQ(settings.size(), size);
}

TEST_F(SerialPortProperties, OwnerMayGoWhileItIsOpen) {
    EXPECT_NE(Show([&](HWND hDlg) {
                  Press(hDlg, 276);
                  owner.reset();
              }),
              IDOK);
    EXPECT_EQ(settings, "9600,n,8,1");
}

} // namespace
