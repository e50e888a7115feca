// The connection on one page.
#include "dialogtest.h"

#include "modem/propertydialog.h"

using namespace dialogs;

namespace {

constexpr char modem[] = "Fast Modem #2";

class PropertyDialog : public DialogTest, protected DialogUser {
  protected:
    PropertyDialog() {
        doubles::service.lines = {"Slow Modem", "", modem};
        choice = {"COM3", "", "9600,n,8,1", 1};
    }

    INT_PTR Show(const User& user) override {
        CPropertyDialog dialog(owner.get(), choice, tapi);
        return Play(dialog, user);
    }

    ConnectionChoice choice;
};

struct ListRow {
    int item;
    Texts rows;
};

const ListRow lists[] = {
    {202, {"Slow Modem", modem}},
    {203, {"None", "Even", "Odd", "Mark", "Space"}},
    {204, {"5", "6", "7", "8"}},
    {205, {"1", "1.5", "2"}},
    {251,
     {"110", "300", "1200", "2400", "4800", "9600", "19200", "38400", "57600", "115200", "230400", "460800",
      "921600"}},
};

TEST_F(PropertyDialog, ListsHaveTheirRows) {
    Look([](HWND hDlg) {
        for (const ListRow& list : lists)
            EXPECT_EQ(Rows(hDlg, list.item), list.rows) << list.item;
        const Texts ports = Rows(hDlg, 201);
        ASSERT_EQ(ports.size(), 64u);
        for (size_t port = 0; port < ports.size(); ++port)
            EXPECT_EQ(ports[port], "COM" + std::to_string(port + 1));
    });
}

struct SettingsRow {
    const char* settings;
    const char* speed;
    const char* parity;
    const char* dataBits;
    int stopBitsRow;
    const char* result; // of OK alone
};

const SettingsRow settingsRows[] = {
    {"9600,n,8,1", "9600", "None", "8", 0, "9600,n,8,1"},
    {"7200,e,7,1", "7200", "Even", "7", 0, "7200,e,7,1"},
    {"110,E,5,1", "110", "Even", "5", 0, "110,e,5,1"},
    {"300,o,6,1", "300", "Odd", "6", 0, "300,o,6,1"},
    {"300,O,6,1", "300", "Odd", "6", 0, "300,o,6,1"},
    {"300,m,6,1", "300", "Mark", "6", 0, "300,m,6,1"},
    {"300,M,6,1", "300", "Mark", "6", 0, "300,m,6,1"},
    {"300,s,6,1", "300", "Space", "6", 0, "300,s,6,1"},
    {"300,S,6,1", "300", "Space", "6", 0, "300,s,6,1"},
    {"300,x,6,1", "300", "None", "6", 0, "300,n,6,1"},
    {"9600n,8,1", "9600", "None", "8", 0, "9600,n,8,1"},
    {"9600e,8,1", "9600", "Even", "8", 0, "9600,e,8,1"},
    {"9600,,7,1", "9600", "None", "7", 0, "9600,n,7,1"},
    {",e,7,1", "", "Even", "7", 0, "0,e,7,1"},
    {"9600,n,8,1.5", "9600", "None", "8", 2, "9600,n,8,2"},
    {"9600,n,8,2", "9600", "None", "8", 1, "9600,n,8,1.5"},
    {"9600,n,9,1", "9600", "None", "8", 0, "9600,n,8,1"},
    {"9600,n,4,1", "9600", "None", "8", 0, "9600,n,8,1"},
    {"9600", "9600", "None", "8", 1, "9600,n,8,1.5"},
    {"", "", "None", "8", 1, "0,n,8,1.5"},
};

TEST_F(PropertyDialog, SettingsAreShownAndReadBack) {
    for (const SettingsRow& row : settingsRows) {
        SCOPED_TRACE(row.settings);
        choice.settings = row.settings;
        Confirm([&](HWND hDlg) {
            EXPECT_EQ(ItemText(hDlg, 251), row.speed);
            EXPECT_EQ(SelectedRow(hDlg, 203), row.parity);
            EXPECT_EQ(SelectedRow(hDlg, 204), row.dataBits);
            EXPECT_EQ(Selected(hDlg, 205), row.stopBitsRow);
        });
        EXPECT_EQ(choice.settings, row.result);
        EXPECT_EQ(choice.handshaking, 1);
    }
}

TEST_F(PropertyDialog, ChosenRowsMakeTheSettings) {
    Confirm([](HWND hDlg) {
        Choose(hDlg, 251, 9);
        Choose(hDlg, 203, 4);
        Choose(hDlg, 204, 1);
        Choose(hDlg, 205, 2);
    });
    EXPECT_EQ(choice.settings, "115200,s,6,2");
}

TEST_F(PropertyDialog, PortThatIsNotListedIsAdded) {
    choice.port = "COM99";
    Confirm([](HWND hDlg) {
        EXPECT_EQ(Rows(hDlg, 201).size(), 65u);
        EXPECT_EQ(SelectedRow(hDlg, 201), "COM99");
    });
    EXPECT_EQ(choice.port, "COM99");
}

TEST_F(PropertyDialog, PortIsSelected) {
    Confirm([](HWND hDlg) {
        EXPECT_EQ(SelectedRow(hDlg, 201), "COM3");
        EXPECT_EQ(Rows(hDlg, 201).size(), 64u);
        Choose(hDlg, 201, 63);
    });
    EXPECT_EQ(choice.port, "COM64");
}

TEST_F(PropertyDialog, NoPortAddsNone) {
    choice.port = "";
    Confirm([](HWND hDlg) { EXPECT_EQ(Rows(hDlg, 201).size(), 64u); });
    EXPECT_EQ(choice.port, "");
}

constexpr int portPage[] = {253, 201, 258, 251, 203, 204, 205, 254, 255, 256};
constexpr int modemPage[] = {257, 202};

void ExpectPage(HWND hDlg, bool direct) {
    EXPECT_EQ(IsChecked(hDlg, 249), direct);
    EXPECT_EQ(IsChecked(hDlg, 250), !direct);
    for (const int item : portPage)
        EXPECT_EQ(IsWindowVisible(GetDlgItem(hDlg, item)) != 0, direct) << item;
    for (const int item : modemPage)
        EXPECT_EQ(IsWindowVisible(GetDlgItem(hDlg, item)) != 0, !direct) << item;
}

TEST_F(PropertyDialog, RadioButtonsTurnThePage) {
    Look([](HWND hDlg) {
        ExpectPage(hDlg, true);
        Press(hDlg, 250);
        ExpectPage(hDlg, false);
        Press(hDlg, 249);
        ExpectPage(hDlg, true);
    });
}

// Of the radio buttons the checked one alone.
TEST_F(PropertyDialog, TabGoesOverThePageThatIsShown) {
    using Items = std::vector<int>;
    Look([](HWND hDlg) {
        EXPECT_EQ(TabWalk(hDlg, 249), (Items{249, 240, 201, 251, 203, 204, 205, IDOK, IDCANCEL}));
        Press(hDlg, 250);
        EXPECT_EQ(TabWalk(hDlg, 250), (Items{250, 240, 202, IDOK, IDCANCEL}));
    });
}

TEST_F(PropertyDialog, NumberOpensTheModemsPage) {
    choice.phoneNumber = "5551212";
    choice.port = modem;
    Look([](HWND hDlg) {
        ExpectPage(hDlg, false);
        EXPECT_EQ(ItemText(hDlg, 240), "5551212");
        EXPECT_EQ(SelectedRow(hDlg, 202), modem);
        EXPECT_EQ(GetFocus(), GetDlgItem(hDlg, 250));
    });
}

struct ConfirmRow {
    const char* name;
    int radio;
    int modemRow;
    const char* port;
    const char* number;
};

const ConfirmRow confirmRows[] = {
    {"direct", 249, 1, "COM3", ""},
    {"modem", 250, 1, modem, "555"},
    {"no modem", 250, -1, "COM3", "555"},
};

TEST_F(PropertyDialog, OKTakesThePageThatIsShown) {
    for (const ConfirmRow& row : confirmRows) {
        SCOPED_TRACE(row.name);
        choice.port = "COM3";
        Confirm([&](HWND hDlg) {
            Type(hDlg, 240, "555");
            Choose(hDlg, 202, row.modemRow);
            Press(hDlg, row.radio);
        });
        EXPECT_EQ(choice.port, row.port);
        EXPECT_EQ(choice.phoneNumber, row.number);
        EXPECT_EQ(choice.settings, "9600,n,8,1");
    }
}

TEST_F(PropertyDialog, NumberIsCutAt256Characters) {
    Confirm([](HWND hDlg) {
        Press(hDlg, 250);
        Type(hDlg, 240, std::string(400, '5'));
    });
    EXPECT_EQ(choice.phoneNumber, std::string(256, '5'));
}

TEST_F(PropertyDialog, CancelChangesNothing) {
    Look([](HWND hDlg) {
        Type(hDlg, 251, "110");
        Choose(hDlg, 201, 1);
        Choose(hDlg, 202, 1);
        Press(hDlg, 250);
        Type(hDlg, 240, "1");
    });
    EXPECT_EQ(choice.port, "COM3");
    EXPECT_EQ(choice.phoneNumber, "");
    EXPECT_EQ(choice.settings, "9600,n,8,1");
}

} // namespace
