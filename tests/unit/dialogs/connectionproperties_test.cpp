// The dialog of a connection: port or modem, country, area code, number.
#include "dialogtest.h"

#include "modem/connectionproperties.h"

#include <commctrl.h>

#include <stdexcept>

using namespace dialogs;

namespace {

constexpr char plainPort[] = "COM3";
constexpr char otherPort[] = "COM1";
constexpr char modem[] = "Fast Modem #2";
constexpr char otherModem[] = "Slow Modem";

class ConnectionProperties : public DialogTest, protected DialogUser {
  protected:
    ConnectionProperties() {
        doubles::service.lines = {otherModem, modem};
        doubles::service.countries = {{"Denmark (45)", 45},
                                      {"United States of America (1)", 1},
                                      {"Germany (49)", 49},
                                      {"Nowhere", 999}};
        doubles::service.countryId = 45;
        doubles::service.areaCode = "89";
        choice.port = modem;
        choice.settings = "9600,n,8,1";
        choice.handshaking = 2;
    }

    CConnectionProperties Make() {
        return {owner.get(), choice, tapi, [this] {
                    if (portsFail)
                        throw std::runtime_error("ports");
                    return Texts{plainPort, otherPort, otherModem, modem};
                }};
    }

    INT_PTR Show(const User& user) override {
        CConnectionProperties dialog = Make();
        return Play(dialog, user);
    }

    ConnectionChoice choice;
    bool portsFail = false;
};

constexpr int portRow = 0;
constexpr int modemRow = 3;

struct NumberRow {
    const char* number;
    const char* country;
    const char* areaCode;
    const char* shown;
    bool checked;
};

// The place of the machine is Denmark with the area code 89.
const NumberRow numberRows[] = {
    {"+1 (212) 5551212", "United States of America (1)", "212", "5551212", true},
    {"+49 5551212", "Germany (49)", "", "5551212", true},
    {"5551212", "Denmark (45)", "89", "5551212", false},
    {"", "Denmark (45)", "89", "", false},
    {"+77 (1) 2", "Denmark (45)", "1", "2", true},
};

TEST_F(ConnectionProperties, NumberIsTakenApart) {
    for (const NumberRow& row : numberRows) {
        SCOPED_TRACE(row.number);
        choice.phoneNumber = row.number;
        Look([&](HWND hDlg) {
            EXPECT_EQ(SelectedRow(hDlg, 260), row.country);
            EXPECT_EQ(ItemText(hDlg, 266), row.areaCode);
            EXPECT_EQ(ItemText(hDlg, 261), row.shown);
            EXPECT_EQ(IsChecked(hDlg, 264), row.checked);
            for (const int item : {260, 266})
                EXPECT_EQ(IsEnabled(hDlg, item), row.checked) << item;
        });
    }
}

TEST_F(ConnectionProperties, HasOneTab) {
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

TEST_F(ConnectionProperties, ListsPortsAndModemsInTheirOrder) {
    Look([](HWND hDlg) {
        EXPECT_EQ(Rows(hDlg, 267), Texts({plainPort, otherPort, otherModem, modem}));
        EXPECT_EQ(SelectedRow(hDlg, 267), modem);
    });
}

TEST_F(ConnectionProperties, ListsCountriesWithTheirIdentifiers) {
    Look([](HWND hDlg) {
        EXPECT_EQ(Rows(hDlg, 260),
                  Texts({"Denmark (45)", "United States of America (1)", "Germany (49)", "Nowhere"}));
        EXPECT_EQ(Tell(hDlg, 260, CB_GETITEMDATA, 2), 49);
    });
}

TEST_F(ConnectionProperties, PortIsFoundWhateverItsCase) {
    choice.port = "com1";
    Look([](HWND hDlg) { EXPECT_EQ(SelectedRow(hDlg, 267), otherPort); });
}

TEST_F(ConnectionProperties, PortThatIsNotListedStaysTheChoice) {
    choice.port = "COM77";
    Confirm([](HWND hDlg) { EXPECT_EQ(Selected(hDlg, 267), -1); });
    EXPECT_EQ(choice.port, "COM77");
}

struct EnabledRow {
    const char* port;
    const char* number;
    bool modemItems; // 261 and 264
    bool areaItems;  // 260 and 266
};

const EnabledRow enabledRows[] = {
    {modem, "+1 (212) 5551212", true, true},       {modem, "5551212", true, false},
    {plainPort, "+1 (212) 5551212", false, false}, {plainPort, "5551212", false, false},
    {"COM77", "+1 (212) 5551212", false, false},
};

void ExpectEnabled(HWND hDlg, bool modemItems, bool areaItems) {
    for (const int item : {261, 264})
        EXPECT_EQ(IsEnabled(hDlg, item), modemItems) << item;
    for (const int item : {260, 266})
        EXPECT_EQ(IsEnabled(hDlg, item), areaItems) << item;
    EXPECT_TRUE(IsEnabled(hDlg, 263));
}

TEST_F(ConnectionProperties, NumberIsForModemsAlone) {
    for (const EnabledRow& row : enabledRows) {
        SCOPED_TRACE(std::string(row.port) + " " + row.number);
        choice.port = row.port;
        choice.phoneNumber = row.number;
        Look([&](HWND hDlg) { ExpectEnabled(hDlg, row.modemItems, row.areaItems); });
    }
}

TEST_F(ConnectionProperties, AnotherSelectionEnablesWhatItNeeds) {
    choice.phoneNumber = "+1 (212) 5551212";
    Look([](HWND hDlg) {
        Choose(hDlg, 267, portRow);
        ExpectEnabled(hDlg, false, false);
        Choose(hDlg, 267, modemRow);
        ExpectEnabled(hDlg, true, true);
        Press(hDlg, 264);
        ExpectEnabled(hDlg, true, false);
        Choose(hDlg, 267, portRow);
        Choose(hDlg, 267, modemRow);
        ExpectEnabled(hDlg, true, false);
    });
}

TEST_F(ConnectionProperties, SelectionByKeysEnablesToo) {
    choice.port = otherPort;
    Look([](HWND hDlg) {
        ExpectEnabled(hDlg, false, false);
        Tell(hDlg, 267, WM_KEYDOWN, VK_DOWN, 1);
        EXPECT_EQ(SelectedRow(hDlg, 267), otherModem);
        ExpectEnabled(hDlg, true, false);
    });
}

TEST_F(ConnectionProperties, TabGoesOverWhatIsEnabled) {
    struct Row {
        const char* port;
        const char* number;
        std::vector<int> items;
    };
    for (const Row& row :
         {Row{modem, "+1 (212) 5551212", {260, 266, 261, 267, 263, 264, IDOK, IDCANCEL, 268}},
          {modem, "5551212", {261, 267, 263, 264, IDOK, IDCANCEL, 268}},
          {plainPort, "5551212", {267, 263, IDOK, IDCANCEL, 268}}}) {
        SCOPED_TRACE(std::string(row.port) + " " + row.number);
        choice.port = row.port;
        choice.phoneNumber = row.number;
        Look([&](HWND hDlg) { EXPECT_EQ(TabWalk(hDlg, row.items.front()), row.items); });
    }
}

TEST_F(ConnectionProperties, CheckBoxEnablesCountryAndAreaCode) {
    Look([](HWND hDlg) {
        ExpectEnabled(hDlg, true, false);
        Press(hDlg, 264);
        ExpectEnabled(hDlg, true, true);
        Press(hDlg, 264);
        ExpectEnabled(hDlg, true, false);
    });
}

// Configure...

TEST_F(ConnectionProperties, ModemIsConfiguredAtOnceByTheService) {
    Look([](HWND hDlg) {
        Press(hDlg, 263);
        EXPECT_EQ(doubles::service.configured, Texts({std::string(modem) + " over Properties"}));
        EXPECT_EQ(OpenDialogWith(Serial_Restore), nullptr);
    });
    EXPECT_EQ(doubles::service.configured.size(), 1u);
}

struct ConfigureRow {
    int inner;
    int outer;
    const char* settings;
    int handshaking;
};

const ConfigureRow configureRows[] = {
    {IDOK, IDOK, "9600,N,8,2", 0},
    {IDCANCEL, IDOK, "9600,n,8,1", 2},
    {IDOK, IDCANCEL, "9600,n,8,1", 2},
    {IDCANCEL, IDCANCEL, "9600,n,8,1", 2},
};

TEST_F(ConnectionProperties, PortIsConfiguredByItsOwnDialog) {
    choice.port = plainPort;
    const ConnectionChoice before = choice;
    for (const ConfigureRow& row : configureRows) {
        SCOPED_TRACE(std::to_string(row.inner) + " " + std::to_string(row.outer));
        choice = before;
        const INT_PTR result = Show([&](HWND hDlg) {
            const auto inside = WhenOpen(Serial_Restore, [&](HWND hInner) {
                EXPECT_EQ(GetWindow(hInner, GW_OWNER), hDlg);
                EXPECT_EQ(ItemText(hInner, 202), "9600");
                EXPECT_EQ(SelectedRow(hInner, 273), "Xon/Xoff");
                Choose(hInner, 205, 3);
                Choose(hInner, 273, 1);
                Press(hInner, row.inner);
            });
            Press(hDlg, 263);
            EXPECT_EQ(choice.settings, before.settings);
            EXPECT_EQ(choice.handshaking, before.handshaking);
            Press(hDlg, row.outer);
        });
        EXPECT_EQ(result, row.outer);
        EXPECT_EQ(choice.settings, row.settings);
        EXPECT_EQ(choice.handshaking, row.handshaking);
    }
    EXPECT_TRUE(doubles::service.configured.empty());
}

TEST_F(ConnectionProperties, SecondConfigureShowsWhatTheFirstOneLeft) {
    choice.port = plainPort;
    Look([](HWND hDlg) {
        for (const char* speed : {"9600", "7200"}) {
            const auto inside = WhenOpen(Serial_Restore, [&](HWND hInner) {
                EXPECT_EQ(ItemText(hInner, 202), speed);
                Type(hInner, 202, "7200");
                Press(hInner, IDOK);
            });
            Press(hDlg, 263);
        }
    });
    EXPECT_EQ(choice.settings, "9600,n,8,1");
}

// OK and Cancel

struct BuiltRow {
    const char* name;
    int country; // row
    const char* areaCode;
    const char* number;
    bool checked;
    const char* built;
};

const BuiltRow builtRows[] = {
    {"with area code", 2, "30", "12345", true, "+49 (30) 12345"},
    {"without area code", 2, "", "12345", true, "+49 () 12345"},
    {"row without a code", 3, "30", "12345", true, "+1 (30) 12345"},
    {"no row at all", -1, "30", "12345", true, "+1 (30) 12345"},
    {"box clear", 2, "30", "12345", false, "12345"},
    {"box clear, canonical", 2, "30", "+1 (2) 3", false, "+1 (2) 3"},
    {"percent signs", 2, "%s", "%d%n", true, "+49 (%s) %d%n"},
};

TEST_F(ConnectionProperties, OKBuildsTheNumber) {
    for (const BuiltRow& row : builtRows) {
        SCOPED_TRACE(row.name);
        choice.phoneNumber = "5551212";
        Confirm([&](HWND hDlg) {
            CheckDlgButton(hDlg, 264, row.checked ? BST_CHECKED : BST_UNCHECKED);
            Choose(hDlg, 260, row.country);
            Type(hDlg, 266, row.areaCode);
            Type(hDlg, 261, row.number);
        });
        EXPECT_EQ(choice.phoneNumber, row.built);
        EXPECT_EQ(choice.port, modem);
    }
}

// What the fields show is less than the text: a code without a row, an area code without brackets.
constexpr const char* keptNumbers[] = {
    "5551212",
    "",
    "+1 (212) 5551212",
    "+49 (30) 123",
    "+49 5551212",
    "+77 (1) 2",
    "+1-212-5551212",
    "+ 1 ( 212 5551212",
    "+",
    "+1 (123456789012345678901234567890) 5",
};

TEST_F(ConnectionProperties, NumberThatNobodyTouchedStays) {
    for (const bool countries : {true, false}) {
        if (!countries)
            doubles::service.countries.clear();
        for (const std::string number : keptNumbers) {
            SCOPED_TRACE(number + (countries ? "" : ", no countries"));
            choice.phoneNumber = number;
            Confirm([](HWND) {});
            EXPECT_EQ(choice.phoneNumber, number);
        }
    }
    choice.phoneNumber = std::string(300, '5');
    Confirm([](HWND) {});
    EXPECT_EQ(choice.phoneNumber, std::string(300, '5'));
}

TEST_F(ConnectionProperties, NumberIsNoneOfAPlainPorts) {
    for (const std::string number : keptNumbers) {
        SCOPED_TRACE(number);
        choice.port = modem;
        choice.phoneNumber = number;
        Confirm([](HWND hDlg) {
            Type(hDlg, 261, "42");
            Choose(hDlg, 267, portRow);
        });
        EXPECT_EQ(choice.phoneNumber, number);
        EXPECT_EQ(choice.port, plainPort);
    }
}

struct TouchRow {
    const char* name;
    User touch;
    const char* built;
};

const TouchRow touches[] = {
    {"number", [](HWND hDlg) { Type(hDlg, 261, "9"); }, "+1 (212) 9"},
    {"area code", [](HWND hDlg) { Type(hDlg, 266, "9"); }, "+1 (9) 5551212"},
    {"country", [](HWND hDlg) { Choose(hDlg, 260, 2); }, "+49 (212) 5551212"},
    {"box", [](HWND hDlg) { Press(hDlg, 264); }, "5551212"},
    {"port and number",
     [](HWND hDlg) {
         Choose(hDlg, 267, 2);
         Type(hDlg, 261, "9");
     },
     "+1 (212) 9"},
};

TEST_F(ConnectionProperties, AnyFieldOfTheNumberMakesItAnew) {
    for (const TouchRow& row : touches) {
        SCOPED_TRACE(row.name);
        choice.phoneNumber = "+1 (212)5551212";
        Confirm(row.touch);
        EXPECT_EQ(choice.phoneNumber, row.built);
    }
}

TEST_F(ConnectionProperties, PortThatNobodyChoseKeepsItsCase) {
    choice.port = "com1";
    Confirm([](HWND) {});
    EXPECT_EQ(choice.port, "com1");
}

TEST_F(ConnectionProperties, OKTakesTheSelectedPort) {
    for (const int row : {portRow, modemRow}) {
        Confirm([&](HWND hDlg) { Choose(hDlg, 267, row); });
        EXPECT_EQ(choice.port, row == portRow ? plainPort : modem);
    }
    EXPECT_EQ(choice.settings, "9600,n,8,1");
    EXPECT_EQ(choice.handshaking, 2);
}

TEST_F(ConnectionProperties, TextsAreCutAtTheirLimits) {
    Confirm([](HWND hDlg) {
        Press(hDlg, 264);
        Choose(hDlg, 260, 1);
        Type(hDlg, 261, std::string(300, '5'));
        Type(hDlg, 266, std::string(40, '2'));
    });
    EXPECT_EQ(choice.phoneNumber, "+1 (" + std::string(19, '2') + ") " + std::string(127, '5'));
}

TEST_F(ConnectionProperties, NoMoreCanBeTypedThanIsTaken) {
    Look([](HWND hDlg) {
        EXPECT_EQ(Tell(hDlg, 261, EM_GETLIMITTEXT), 127);
        EXPECT_EQ(Tell(hDlg, 266, EM_GETLIMITTEXT), 19);
    });
}

void ChangeEverything(HWND hDlg) {
    Press(hDlg, 264);
    Choose(hDlg, 260, 1);
    Type(hDlg, 261, "1");
    Type(hDlg, 266, "2");
    Choose(hDlg, 267, portRow);
}

TEST_F(ConnectionProperties, CancelChangesNothing) {
    choice.phoneNumber = "5551212";
    for (const bool byKey : {false, true}) {
        EXPECT_EQ(Show([&](HWND hDlg) {
                      ChangeEverything(hDlg);
                      if (byKey)
                          PostMessageA(GetDlgItem(hDlg, 267), WM_KEYDOWN, VK_ESCAPE, 1);
                      else
                          PostMessageA(hDlg, WM_CLOSE, 0, 0);
                  }),
                  IDCANCEL);
        EXPECT_EQ(choice.port, modem);
        EXPECT_EQ(choice.phoneNumber, "5551212");
        EXPECT_EQ(choice.settings, "9600,n,8,1");
        EXPECT_EQ(choice.handshaking, 2);
    }
}

TEST_F(ConnectionProperties, EnterConfirms) {
    choice.phoneNumber = "5551212";
    EXPECT_EQ(Show([](HWND hDlg) {
                  Type(hDlg, 261, "42");
                  PostMessageA(GetDlgItem(hDlg, 261), WM_KEYDOWN, VK_RETURN, 1);
              }),
              IDOK);
    EXPECT_EQ(choice.phoneNumber, "42");
}

// Failures

struct FailureRow {
    const char* fails;
    const char* step;
    bool filled; // what the choice shows
};

const FailureRow failureRows[] = {
    {"ports", "Adding modems", false},
    {"AddCountriesToCombo", "Adding Countries", false},
    {"GetCurrentLocation", "Getting current location", false},
    {"FindModem", "OnSelEndOK", true},
};

TEST_F(ConnectionProperties, FailureIsReportedWithItsStepAndTheDialogStays) {
    choice.phoneNumber = "5551212";
    for (const FailureRow& row : failureRows) {
        SCOPED_TRACE(row.fails);
        doubles::reports.clear();
        doubles::service.fails = row.fails;
        portsFail = doubles::service.fails == "ports";
        Look([&](HWND hDlg) {
            EXPECT_EQ(doubles::reports,
                      Texts({std::string("Exception in CConnectionProperties::InitDialog ") + row.step}));
            EXPECT_EQ(Tell(hDlg, 268, TCM_GETITEMCOUNT), 1);
            EXPECT_EQ(ItemText(hDlg, 261), row.filled ? "5551212" : "");
        });
    }
}

TEST_F(ConnectionProperties, NothingToReportWhereNothingFails) {
    Look([](HWND) {});
    EXPECT_TRUE(doubles::reports.empty());
}

TEST_F(ConnectionProperties, NoServiceLeavesThePorts) {
    doubles::service = {};
    choice.port = plainPort;
    Confirm([](HWND hDlg) {
        EXPECT_EQ(Tell(hDlg, 260, CB_GETCOUNT), 0);
        ExpectEnabled(hDlg, false, false);
    });
    EXPECT_EQ(choice.port, plainPort);
    EXPECT_TRUE(doubles::reports.empty());
}

// The owner goes

TEST_F(ConnectionProperties, OwnerMayGoWhileItIsOpen) {
    choice.phoneNumber = "5551212";
    EXPECT_NE(Show([&](HWND hDlg) {
                  ChangeEverything(hDlg);
                  owner.reset();
              }),
              IDOK);
    EXPECT_EQ(choice.port, modem);
    EXPECT_EQ(choice.phoneNumber, "5551212");
}

TEST_F(ConnectionProperties, OwnerMayGoWhileAPortIsConfigured) {
    choice.port = plainPort;
    EXPECT_NE(Show([&](HWND hDlg) {
                  const auto inside = WhenOpen(Serial_Restore, [&](HWND hInner) {
                      Choose(hInner, 273, 1);
                      owner.reset();
                  });
                  Press(hDlg, 263);
                  EXPECT_FALSE(IsWindow(hDlg));
              }),
              IDOK);
    EXPECT_EQ(OpenDialogWith(Serial_Restore), nullptr);
    EXPECT_EQ(choice.handshaking, 2);
}

} // namespace
