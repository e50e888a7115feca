// The box of a dial, and the ways to end it.
#include "dialtest.h"

namespace {

using namespace telephony;
using host::Failure;
using host::FailureOf;

class ControlDialBox : public DialTest {};

struct BoxRow {
    StatusDialog kind;
    bool shown;
    bool disables;
};

constexpr BoxRow boxes[] = {
    {Dialog_Hidden, false, false},
    {Dialog_Modal, true, true},
    {Dialog_Modeless, true, false},
};

TEST_F(ControlDialBox, TheBoxIsAsTheProgramWants) {
    for (const BoxRow& row : boxes)
        for (const bool visible : {true, false}) {
            SCOPED_TRACE(std::to_string(row.kind) + (visible ? " shown" : " not shown"));
            StartAtAlpha()->put_DialStatusDialog(row.kind);
            if (visible)
                phone->Show();
            StartLogAnew();
            const HWND top = phone->container.window;
            SetActiveWindow(top);
            bool looked = false;
            const auto watch = WhenItRings([&] {
                looked = true;
                EXPECT_EQ(Box() != nullptr && IsWindowVisible(Box()), row.shown);
                EXPECT_EQ(!IsWindowEnabled(top), row.disables && visible);
                phone->Is(&ITarnComm::get_HangUp);
            });
            EXPECT_EQ(phone->Dial(rings), S_OK);
            EXPECT_TRUE(looked);
            EXPECT_EQ(Box(), nullptr);
            EXPECT_TRUE(IsWindowEnabled(top));
            EXPECT_EQ(GetActiveWindow(), top);
            phone.reset();
        }
}

TEST_F(ControlDialBox, AWindowThatWasDisabledStaysSo) {
    StartAtAlpha()->put_DialStatusDialog(Dialog_Modal);
    phone->Show();
    EnableWindow(phone->container.window, FALSE);
    const auto watch = WhenItRings([&] { phone->Is(&ITarnComm::get_HangUp); });
    EXPECT_EQ(phone->Dial(rings), S_OK);
    EXPECT_FALSE(IsWindowEnabled(phone->container.window));
}

// The form alone waits for the dial; what it belongs to stays the user's.
TEST_F(ControlDialBox, AnOwnedFormIsDisabledAndNotItsOwner) {
    const host::Container other;
    StartAtAlpha()->put_DialStatusDialog(Dialog_Modal);
    const HWND form = phone->container.window;
    SetWindowLongPtrA(form, GWLP_HWNDPARENT, reinterpret_cast<LONG_PTR>(other.window));
    ASSERT_EQ(GetParent(form), other.window) << "as a parent it is told";
    phone->Show();
    SetActiveWindow(form);
    bool looked = false;
    const auto watch = WhenItRings([&] {
        looked = true;
        EXPECT_FALSE(IsWindowEnabled(form));
        EXPECT_TRUE(IsWindowEnabled(other.window));
        phone->Is(&ITarnComm::get_HangUp);
    });
    EXPECT_EQ(phone->Dial(rings), S_OK);
    EXPECT_TRUE(looked);
    EXPECT_TRUE(IsWindowEnabled(form));
    EXPECT_EQ(GetActiveWindow(), form);
    SetWindowLongPtrA(form, GWLP_HWNDPARENT, 0);
}

TEST_F(ControlDialBox, AFailedDialClosesTheBox) {
    ExchangeAddRule("5551", ExchangeBusy, 0);
    StartAtAlpha()->put_DialStatusDialog(Dialog_Modal);
    phone->Show();
    EXPECT_EQ(phone->Dial("5551"), S_OK);
    EXPECT_EQ(phone->Status(), "Busy");
    EXPECT_EQ(Box(), nullptr);
    EXPECT_TRUE(IsWindowEnabled(phone->container.window));
}

// Ways to end a dial

struct EndRow {
    const char* name;
    void (*end)(PhoneHost& phone);
};

constexpr EndRow ends[] = {
    {"Cancel", [](PhoneHost&) { PressCancel(); }},
    {"HangUp", [](PhoneHost& phone) { EXPECT_TRUE(phone.Is(&ITarnComm::get_HangUp)); }},
    {"PortOpen = False", [](PhoneHost& phone) { EXPECT_EQ(phone->put_PortOpen(VARIANT_FALSE), S_OK); }},
};

TEST_F(ControlDialBox, IsEndedByTheHost) {
    for (const EndRow& row : ends) {
        SCOPED_TRACE(row.name);
        StartLogAnew();
        StartAtAlpha()->put_DialStatusDialog(Dialog_Modeless);
        ExchangeClearRecord();
        const auto watch = WhenItRings([&] { row.end(*phone); });
        EXPECT_EQ(FailureOf(phone->Dial(rings)), (Failure{S_OK, ""}));
        EXPECT_FALSE(phone->IsOpen());
        EXPECT_EQ(phone->Status(), "") << "a call that is dropped has no reason";
        EXPECT_EQ(phone->ear.heard, (Lines{"OnComm", "CarrierChanged"}));
        EXPECT_TRUE(HasNoLine());
        EXPECT_EQ(Asked("lineDrop"), 1) << RecordText();
        EXPECT_EQ(phone->Dial(connects), S_OK);
        EXPECT_EQ(phone->Status(), "Connected") << "the next one";
        phone.reset();
    }
}

TEST_F(ControlDialBox, IsEndedByTheHostThoughTheServiceIsSilent) {
    ExchangeAddRule("5553", ExchangeNeverReplies, 0);
    for (const EndRow& row : ends) {
        SCOPED_TRACE(row.name);
        StartAtAlpha()->put_DialStatusDialog(Dialog_Modeless);
        ExchangeClearRecord();
        const auto watch = host::When([] { return Asked("lineMakeCall") > 0; }, [&] { row.end(*phone); });
        EXPECT_EQ(phone->Dial("5553"), S_OK);
        EXPECT_FALSE(phone->IsOpen());
        EXPECT_EQ(phone->Status(), "Canceled");
        EXPECT_TRUE(HasNoLine());
        phone.reset();
    }
}

TEST_F(ControlDialBox, IsEndedInAnEvent) {
    for (const EndRow& row : ends) {
        SCOPED_TRACE(row.name);
        StartLogAnew();
        StartAtAlpha()->put_DialStatusDialog(Dialog_Modeless);
        int acted = 0;
        phone->ear.onEvent = [&](DISPID id, DISPPARAMS&) {
            if (id == events::Ring && acted++ == 0)
                row.end(*phone);
        };
        const auto watch = WhenItRings(
            [] { ExchangeSendMessage(alphaLine, LINE_LINEDEVSTATE, LINEDEVSTATE_RINGING, 1, 1); });
        EXPECT_EQ(phone->Dial(rings), S_OK);
        EXPECT_EQ(acted, 1);
        EXPECT_FALSE(phone->IsOpen());
        EXPECT_TRUE(HasNoLine());
        phone.reset();
    }
}

TEST_F(ControlDialBox, AProgramThatQuitsGetsItsMessageBack) {
    StartAtAlpha()->put_DialStatusDialog(Dialog_Modeless);
    const auto watch = WhenItRings([] { PostQuitMessage(7); });
    EXPECT_EQ(phone->Dial(rings), S_OK);
    EXPECT_EQ(phone->Status(), "Canceled");
    EXPECT_FALSE(phone->IsOpen());
    MSG message = {};
    ASSERT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7U);
}

} // namespace
