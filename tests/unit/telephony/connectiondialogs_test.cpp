// The connection dialogs with the service itself behind them.
#include "modem/connectionproperties.h"
#include "modem/portlist.h"
#include "modem/propertydialog.h"
#include "service.h"
#include "support/nocalls.h"
#include "unit/dialogs/dialoguser.h"

using namespace dialogs;

namespace {

class ServiceDialogs : public testing::Test {
  protected:
    ServiceDialogs() {
        ExchangeReset();
        ExchangeAddLine("Desk Set", "Provider V", LINEMEDIAMODE_INTERACTIVEVOICE, "101", nullptr);
        ExchangeAddLine("Beta Modem", "Provider B", LINEMEDIAMODE_DATAMODEM, "102", nullptr);
        ExchangeAddCountry("Denmark", 45, 45);
        ExchangeAddCountry("Canada", 107, 1);
        ExchangeAddCountry("Germany", 49, 49);
        ExchangeAddLocation("Home", "030", 49, 7);
        ExchangeSetCurrentLocation(7);
    }
    ~ServiceDialogs() override { ExchangeReset(); }

    INT_PTR Show(const User& user) {
        CTapiApp tapi(callOwner);
        PortList ports;
        CConnectionProperties dialog(owner.get(), choice, tapi, [&] {
            ports.PortAddPorts(&tapi);
            return ports.Names();
        });
        return Play(dialog, user);
    }

    host::NoCalls callOwner;
    Window owner = MakeOwner();
    ConnectionChoice choice = {"Beta Modem", "5551212", "9600,n,8,1", 0};
};

TEST_F(ServiceDialogs, ConnectionOffersModemsAndCountries) {
    Show([](HWND hDlg) {
        EXPECT_EQ(Rows(hDlg, 260), Texts({"Denmark (45)", "Canada (1)", "Germany (49)"}));
        EXPECT_EQ(Rows(hDlg, 267).back(), "Beta Modem");
        EXPECT_EQ(SelectedRow(hDlg, 267), "Beta Modem");
        EXPECT_TRUE(IsEnabled(hDlg, 261));
        Press(hDlg, IDCANCEL);
    });
}

TEST_F(ServiceDialogs, ConnectionTakesTheCurrentLocation) {
    Show([](HWND hDlg) {
        EXPECT_EQ(SelectedRow(hDlg, 260), "Germany (49)");
        EXPECT_EQ(ItemText(hDlg, 266), "030");
        Press(hDlg, IDCANCEL);
    });
}

// Several countries share a code; the row's identifier is another matter than its code.
TEST_F(ServiceDialogs, NumberHasTheCodeOfTheSelectedCountry) {
    const INT_PTR result = Show([](HWND hDlg) {
        Press(hDlg, 264);
        Choose(hDlg, 260, 1);
        EXPECT_EQ(Tell(hDlg, 260, CB_GETITEMDATA, 1), 107);
        Type(hDlg, 266, "416");
        Press(hDlg, IDOK);
    });
    EXPECT_EQ(result, IDOK);
    EXPECT_EQ(choice.phoneNumber, "+1 (416) 5551212");
    EXPECT_EQ(choice.port, "Beta Modem");
}

TEST_F(ServiceDialogs, ModemIsConfiguredByTheService) {
    Show([](HWND hDlg) {
        ExchangeClearRecord();
        Press(hDlg, 263);
        EXPECT_NE(telephony::RecordText().find("lineConfigDialog device=1 class=COMM owner=1"),
                  std::string::npos)
            << telephony::RecordText();
        Press(hDlg, IDCANCEL);
    });
}

TEST_F(ServiceDialogs, ServiceThatFailsLeavesTheDialog) {
    ExchangeFail("lineInitializeExA", static_cast<LONG>(LINEERR_OPERATIONFAILED), INFINITE);
    Show([](HWND hDlg) {
        EXPECT_EQ(Tell(hDlg, 260, CB_GETCOUNT), 0);
        EXPECT_FALSE(IsEnabled(hDlg, 261));
        Press(hDlg, IDCANCEL);
    });
}

TEST_F(ServiceDialogs, PropertyListsTheDataModems) {
    CTapiApp tapi(callOwner);
    CPropertyDialog dialog(owner.get(), choice, tapi);
    Play(dialog, [](HWND hDlg) {
        EXPECT_EQ(Rows(hDlg, 202), Texts({"Beta Modem"}));
        EXPECT_EQ(SelectedRow(hDlg, 202), "Beta Modem");
        Press(hDlg, IDCANCEL);
    });
}

} // namespace
