// The property pages at work on a control: what they read and set, in which order, is in its log.
#include "pagestest.h"

#include "control/pageitems.h"
#include "control/PropAbout.h"
#include "control/PropCommunications.h"
#include "control/PropTerminal.h"
#include "control/PropWireTap.h"
#include "support/counted.h"

#include <ocidl.h>

#include <algorithm>
#include <vector>

using namespace host;
using dialogs::IsChecked;
using dialogs::IsEnabled;
using dialogs::ItemText;
using dialogs::Press;
using dialogs::Rows;
using dialogs::Selected;
using dialogs::SelectedRow;
using dialogs::Texts;
using dialogs::Type;
using pages::Make;
using pages::Page;
using pages::Pages;

namespace {

// All pages

struct InfoRow {
    Page (*make)();
    const wchar_t* title;
    const wchar_t* docString;
    RECT units;
    const char* trace;
};
const InfoRow infoRows[] = {
    {Make<CPropCommunications>,
     L"&Communications",
     L"Communications",
     {0, 0, 271, 137},
     "CPropCommunications::Apply\n"},
    {Make<CPropWireTap>, L"&WireTap", L"WireTap Properties", {0, 0, 271, 137}, "CPropWireTap::Apply\n"},
    {Make<CPropTerminal>, L"&Terminal", L"Terminal Properties", {0, 0, 271, 137}, "CPropTerminal::Apply\n"},
    {Make<CPropAbout>, L"&About", L"About Tarn Link Objects", {0, 0, 272, 130}, "CPropAbout::Apply\n"},
};

TEST_F(Pages, TellTitleTextAndSize) {
    for (const InfoRow& row : infoRows) {
        SCOPED_TRACE(testing::PrintToString(row.title));
        Open(row.make());
        PROPPAGEINFO info = {};
        info.cb = sizeof info;
        ASSERT_EQ(page->GetPageInfo(&info), S_OK);
        EXPECT_STREQ(info.pszTitle, row.title);
        EXPECT_STREQ(info.pszDocString, row.docString);
        EXPECT_EQ(info.pszHelpFile, nullptr);
        CoTaskMemFree(info.pszTitle);
        CoTaskMemFree(info.pszDocString);
        RECT size = row.units;
        ASSERT_TRUE(MapDialogRect(dialog, &size));
        EXPECT_EQ(info.size.cx, size.right);
        EXPECT_EQ(info.size.cy, size.bottom);
        EXPECT_EQ(page->Help(nullptr), E_NOTIMPL);
        page->Deactivate();
    }
}

TEST_F(Pages, ApplyIsTraced) {
    for (const InfoRow& row : infoRows) {
        SCOPED_TRACE(row.trace);
        Open(row.make());
        logfiles::DebuggerOutput output;
        EXPECT_EQ(page->Apply(), S_OK);
        EXPECT_NE(output.Text().find(row.trace), std::string::npos);
        page->Deactivate();
    }
}

TEST_F(Pages, WithoutAControlTheyOpenAllTheSame) {
    const ComPtr<IPropertyPage> other = Make<CPropAbout>(); // anything that is no control
    for (const InfoRow& row : infoRows) {
        SCOPED_TRACE(row.trace);
        Open(row.make(), {});
        EXPECT_EQ(page->Apply(), S_OK) << "nobody to be set";
        EXPECT_EQ(page->Deactivate(), S_OK);
        Open(row.make(), {other.Get()});
        EXPECT_EQ(page->Apply(), E_NOINTERFACE);
        EXPECT_EQ(page->Deactivate(), S_OK);
    }
}

TEST_F(Pages, ObjectBehindOneThatIsNoneIsSetStill) {
    const Page other = Make<CPropAbout>();
    ASSERT_EQ(control->put_Rows(30), S_OK);
    Open(Make<CPropTerminal>(), {other.Get(), static_cast<ITarnComm*>(control.Get())});
    Type(dialog, Terminal_Rows, "40");
    EXPECT_EQ(page->Apply(), E_NOINTERFACE);
    EXPECT_EQ(Get(&ITarnComm::get_Rows), 40);
}

TEST_F(Pages, AllObjectsAreSetTheFirstOneFills) {
    ComPtr<CTarnCommCtl> second;
    ASSERT_EQ(NewObject(second), S_OK);
    ASSERT_EQ(control->put_Rows(30), S_OK);
    ASSERT_EQ(second->put_Rows(35), S_OK);
    Open(Make<CPropTerminal>(),
         {static_cast<ITarnComm*>(control.Get()), static_cast<ITarnComm*>(second.Get())});
    EXPECT_EQ(ItemText(dialog, Terminal_Rows), "30");
    Type(dialog, Terminal_Rows, "44");
    EXPECT_TRUE(IsDirty());
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_FALSE(IsDirty());
    LONG rows = 0;
    EXPECT_EQ(Get(&ITarnComm::get_Rows), 44);
    EXPECT_EQ(second->get_Rows(&rows), S_OK);
    EXPECT_EQ(rows, 44);
}

// With everything in it enabled.
struct TabRow {
    Page (*make)();
    std::vector<int> items;
};
const TabRow tabRows[] = {
    {Make<CPropCommunications>,
     {Comm_Port, Comm_Speed, Comm_Parity, Comm_DataBits, Comm_StopBits, Comm_InBufferSize, Comm_OutBufferSize,
      Comm_ReplacesBytes, Comm_Replacement, Comm_TriggersReceive, Comm_RThreshold, Comm_TriggersOnComm}},
    {Make<CPropWireTap>,
     {WireTap_Enabled, WireTap_Input, WireTap_Output, WireTap_Events, WireTap_Warnings, WireTap_Properties,
      WireTap_Transfer}},
    {Make<CPropTerminal>,
     {Terminal_ScrollColumn, Terminal_ScrollRow, Terminal_ScrollKeyboard, Terminal_AutoReceive,
      Terminal_AutoSend, Terminal_Rows, Terminal_Columns, Terminal_ScrollRows, Terminal_InputEcho,
      Terminal_Echo, Terminal_CaptureMode, Terminal_CaptureFilename}},
};

TEST_F(Pages, TabReachesEachItemInItsOrder) {
    ASSERT_EQ(control->put_WireTap(VARIANT_TRUE), S_OK);
    ASSERT_EQ(control->put_RThreshold(1), S_OK);
    ASSERT_EQ(control->put_ParityReplace(_bstr_t(L"?")), S_OK);
    for (const TabRow& row : tabRows) {
        Open(row.make());
        EXPECT_EQ(dialogs::TabWalk(dialog, row.items.front()), row.items);
        page->Deactivate();
    }
}

TEST_F(Pages, PortIsReachedByItsLetter) {
    Open(Make<CPropCommunications>());
    SetFocus(GetDlgItem(dialog, Comm_TriggersOnComm));
    MSG message = {GetFocus(), WM_SYSCHAR, 'p', 0, 0, {}};
    EXPECT_EQ(page->TranslateAccelerator(&message), S_OK);
    EXPECT_TRUE(IsChild(GetDlgItem(dialog, Comm_Port), GetFocus()));
}

// Communications

class CommunicationsPage : public Pages {
  protected:
    void Start() { Open(Make<CPropCommunications>()); }
};

TEST_F(CommunicationsPage, ReadsInOrder) {
    LogProperties();
    Start();
    EXPECT_FALSE(IsDirty());
    EXPECT_EQ(NamesOf(ControlLines()), (Texts{"Settings", "InBufferSize", "OutBufferSize", "IgnoreOnComm",
                                              "RThreshold", "ParityReplace"}))
        << "the port is not logged";
}

TEST_F(CommunicationsPage, ListsArePorts0To62SpeedsAndWords) {
    Start();
    const Texts ports = Rows(dialog, Comm_Port);
    ASSERT_EQ(ports.size(), 64u);
    EXPECT_EQ(ports[0], "");
    for (int port = 0; port <= 62; ++port)
        EXPECT_EQ(ports[static_cast<size_t>(port) + 1], "COM" + std::to_string(port));
    EXPECT_EQ(Rows(dialog, Comm_Speed), (Texts{"", "110", "300", "1200", "2400", "4800", "9600", "19200",
                                               "38400", "57600", "115200", "230400", "460800", "921600"}));
    EXPECT_EQ(Rows(dialog, Comm_Parity), (Texts{"", "None", "Even", "Odd", "Mark", "Space"}));
    EXPECT_EQ(Rows(dialog, Comm_DataBits), (Texts{"", "5", "6", "7", "8"}));
    EXPECT_EQ(Rows(dialog, Comm_StopBits), (Texts{"", "1", "2", "1.5"}));
}

TEST_F(CommunicationsPage, ARowOfTheCharactersIsACode) {
    Start();
    const Texts rows = Rows(dialog, Comm_Replacement);
    ASSERT_EQ(rows.size(), 256u);
    EXPECT_EQ(rows[0], "");
    EXPECT_EQ(rows[1], "Chr(1)");
    EXPECT_EQ(rows[31], "Chr(31)");
    EXPECT_EQ(rows[32], "Chr(32) - ' '");
    EXPECT_EQ(rows[37], "Chr(37) - '%'");
    EXPECT_EQ(rows[65], "Chr(65) - 'A'");
    EXPECT_EQ(rows[255], "Chr(255) - '\xFF'");
}

TEST_F(CommunicationsPage, FillingAgainKeepsTheListsAsTheyAre) {
    Start();
    Refill();
    EXPECT_EQ(Rows(dialog, Comm_Port).size(), 64u);
    EXPECT_EQ(Rows(dialog, Comm_Replacement).size(), 256u);
    EXPECT_EQ(Rows(dialog, Comm_Speed).size(), 14u);
}

TEST_F(CommunicationsPage, ShowsTheControlsValues) {
    ASSERT_EQ(control->put_CommPort(_variant_t(7L)), S_OK);
    ASSERT_EQ(control->put_Settings(_bstr_t(L"14400,e,7,1.5")), S_OK);
    ASSERT_EQ(control->put_InBufferSize(5000), S_OK);
    ASSERT_EQ(control->put_OutBufferSize(6000), S_OK);
    ASSERT_EQ(control->put_IgnoreOnComm(VARIANT_FALSE), S_OK);
    ASSERT_EQ(control->put_RThreshold(12), S_OK);
    ASSERT_EQ(control->put_ParityReplace(_bstr_t(L"?")), S_OK);
    Start();
    EXPECT_EQ(ItemText(dialog, Comm_Port), "COM7");
    EXPECT_EQ(ItemText(dialog, Comm_Speed), "14400") << "not in the list";
    EXPECT_EQ(SelectedRow(dialog, Comm_Parity), "Even");
    EXPECT_EQ(SelectedRow(dialog, Comm_DataBits), "7");
    EXPECT_EQ(SelectedRow(dialog, Comm_StopBits), "1.5");
    EXPECT_EQ(ItemText(dialog, Comm_InBufferSize), "5000");
    EXPECT_EQ(ItemText(dialog, Comm_OutBufferSize), "6000");
    EXPECT_TRUE(IsChecked(dialog, Comm_TriggersOnComm));
    EXPECT_EQ(ItemText(dialog, Comm_RThreshold), "12");
    EXPECT_TRUE(IsEnabled(dialog, Comm_RThreshold));
    EXPECT_TRUE(IsChecked(dialog, Comm_TriggersReceive));
    EXPECT_EQ(Selected(dialog, Comm_Replacement), '?');
    EXPECT_TRUE(IsEnabled(dialog, Comm_Replacement));
    EXPECT_TRUE(IsChecked(dialog, Comm_ReplacesBytes));
}

TEST_F(CommunicationsPage, ShowsWhatIsOff) {
    ASSERT_EQ(control->put_IgnoreOnComm(VARIANT_TRUE), S_OK);
    ASSERT_EQ(control->put_RThreshold(0), S_OK);
    ASSERT_EQ(control->put_ParityReplace(_bstr_t(L"")), S_OK);
    Start();
    EXPECT_FALSE(IsChecked(dialog, Comm_TriggersOnComm));
    EXPECT_EQ(ItemText(dialog, Comm_RThreshold), "");
    EXPECT_FALSE(IsEnabled(dialog, Comm_RThreshold));
    EXPECT_FALSE(IsChecked(dialog, Comm_TriggersReceive));
    EXPECT_EQ(Selected(dialog, Comm_Replacement), 0);
    EXPECT_FALSE(IsEnabled(dialog, Comm_Replacement));
    EXPECT_FALSE(IsChecked(dialog, Comm_ReplacesBytes));
}

struct SettingsRow {
    const wchar_t* settings;
    const char* speed;
    int parity, dataBits, stopBits;
};
constexpr SettingsRow settingsRows[] = {
    {L"9600,n,8,1", "9600", 1, 4, 1},       {L"9600,o,5,2", "9600", 3, 1, 2},
    {L"115200,m,6,1.5", "115200", 4, 2, 3}, {L"300,s,7,1", "300", 5, 3, 1},
    {L"9600,,8,1", "9600", 0, 4, 1},        {L",n,8,1", "", 1, 4, 1},
};

TEST_F(CommunicationsPage, SettingsArePartedAtTheCommas) {
    Start();
    for (const SettingsRow& row : settingsRows) {
        SCOPED_TRACE(testing::PrintToString(row.settings));
        ASSERT_EQ(control->put_Settings(_bstr_t(row.settings)), S_OK);
        Refill();
        EXPECT_EQ(ItemText(dialog, Comm_Speed), row.speed);
        EXPECT_EQ(Selected(dialog, Comm_Parity), row.parity);
        EXPECT_EQ(Selected(dialog, Comm_DataBits), row.dataBits);
        EXPECT_EQ(Selected(dialog, Comm_StopBits), row.stopBits);
    }
}

TEST_F(CommunicationsPage, SetsInOrder) {
    Start();
    Type(dialog, Comm_Port, "COM9");
    Choose(Comm_Speed, 11);
    Choose(Comm_Parity, 3);
    Choose(Comm_DataBits, 3);
    Choose(Comm_StopBits, 2);
    Type(dialog, Comm_InBufferSize, "3000");
    Type(dialog, Comm_OutBufferSize, "4000");
    Press(dialog, Comm_TriggersReceive);
    Type(dialog, Comm_RThreshold, "17");
    CheckDlgButton(dialog, Comm_TriggersOnComm, BST_UNCHECKED);
    Choose(Comm_Replacement, 66);
    LogProperties();
    EXPECT_EQ(LinesOfApply(), (Texts{"Settings = \"230400,O,7,2\"", "CommPort = \"COM9\"",
                                     "InBufferSize = 3000", "OutBufferSize = 4000", "RThreshold = 17",
                                     "IgnoreOnComm = True", "ParityReplace = \"B\""}));
    _variant_t port;
    EXPECT_EQ(control->get_CommPort(&port), S_OK);
    EXPECT_EQ(port, _variant_t(L"COM9"));
}

TEST_F(CommunicationsPage, ApplyingWhatWasFilledChangesNothing) {
    ASSERT_EQ(control->put_CommPort(_variant_t(3L)), S_OK);
    ASSERT_EQ(control->put_Settings(_bstr_t(L"2400,m,7,1.5")), S_OK);
    ASSERT_EQ(control->put_ParityReplace(_bstr_t(L"\u00e9")), S_OK);
    Start();
    LogProperties();
    const Texts lines = LinesOfApply();
    ASSERT_EQ(lines.size(), 7u);
    EXPECT_EQ(lines[0], "Settings = \"2400,M,7,1.5\"");
    EXPECT_EQ(lines[1], "CommPort = \"COM3\"");
    EXPECT_EQ(GetText(&ITarnComm::get_Settings), "2400,m,7,1.5");
    EXPECT_EQ(GetText(&ITarnComm::get_ParityReplace), "\xE9");
}

TEST_F(CommunicationsPage, EmptyFieldIsAnEmptyPartOfTheSettings) {
    Start();
    Type(dialog, Comm_Speed, "9600");
    Choose(Comm_Parity, 0);
    Choose(Comm_DataBits, 4);
    Choose(Comm_StopBits, 1);
    LogProperties();
    EXPECT_EQ(LinesOfApply().front(), "Settings = \"9600,,8,1\"");
}

TEST_F(CommunicationsPage, FirstCharacterRowStoresNoReplacement) {
    ASSERT_EQ(control->put_ParityReplace(_bstr_t(L"?")), S_OK);
    Start();
    Choose(Comm_Replacement, 0);
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_ParityReplace), "");
    EXPECT_EQ(GetParityReplace(control->CommObject()), -1);
}

TEST_F(CommunicationsPage, UncheckingTheReplacementOnlyTurnsItsListOff) {
    ASSERT_EQ(control->put_ParityReplace(_bstr_t(L"?")), S_OK);
    Start();
    Press(dialog, Comm_ReplacesBytes);
    EXPECT_FALSE(IsEnabled(dialog, Comm_Replacement));
    EXPECT_TRUE(IsDirty());
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_ParityReplace), "?") << "stays in force";
    Press(dialog, Comm_ReplacesBytes);
    EXPECT_TRUE(IsEnabled(dialog, Comm_Replacement));
    EXPECT_EQ(Selected(dialog, Comm_Replacement), '?');
}

TEST_F(CommunicationsPage, CheckingTheThresholdBegins1AndUncheckingEmptiesIt) {
    Start();
    ASSERT_FALSE(IsChecked(dialog, Comm_TriggersReceive));
    Press(dialog, Comm_TriggersReceive);
    EXPECT_TRUE(IsEnabled(dialog, Comm_RThreshold));
    EXPECT_EQ(ItemText(dialog, Comm_RThreshold), "1");
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_RThreshold), 1);
    Press(dialog, Comm_TriggersReceive);
    EXPECT_FALSE(IsEnabled(dialog, Comm_RThreshold));
    EXPECT_EQ(ItemText(dialog, Comm_RThreshold), "");
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_RThreshold), 0);
}

// Counts the changes that it hears of, and passes each on at once.
class ApplyingSite : public Counted<ApplyingSite, IPropertyPageSite> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPageSite>>;

    explicit ApplyingSite(Page& page) : page_(page) {}
    HRESULT STDMETHODCALLTYPE OnStatusChange(DWORD) override {
        ++changes;
        return page_->Apply();
    }
    HRESULT STDMETHODCALLTYPE GetLocaleID(LCID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPageContainer(IUnknown**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*) override { return S_FALSE; }

    int changes = 0;

  private:
    Page& page_;
};

TEST_F(CommunicationsPage, CountThatThePageFillsInIsNoChangeOfItsOwn) {
    Start();
    ApplyingSite site(page);
    ASSERT_EQ(page->SetPageSite(&site), S_OK);
    Press(dialog, Comm_TriggersReceive);
    EXPECT_EQ(site.changes, 1);
    EXPECT_EQ(Get(&ITarnComm::get_RThreshold), 1);
    Press(dialog, Comm_TriggersReceive);
    EXPECT_EQ(site.changes, 2);
    EXPECT_EQ(Get(&ITarnComm::get_RThreshold), 0);
    EXPECT_FALSE(IsDirty());
    EXPECT_EQ(page->SetPageSite(nullptr), S_OK);
}

TEST_F(CommunicationsPage, FrameThatAppliesAtOnceSetsTheRowThatWasChosen) {
    ASSERT_EQ(control->put_Settings(_bstr_t(L"9600,n,8,1")), S_OK);
    Start();
    ApplyingSite site(page);
    ASSERT_EQ(page->SetPageSite(&site), S_OK);
    COMBOBOXINFO parts = {};
    parts.cbSize = sizeof parts;
    ASSERT_TRUE(GetComboBoxInfo(GetDlgItem(dialog, Comm_Speed), &parts));
    SendMessageA(parts.hwndList, LB_SETCURSEL, 7, 0); // as when a row is clicked: the edit follows later
    dialogs::Notify(dialog, Comm_Speed, CBN_SELCHANGE);
    EXPECT_EQ(GetText(&ITarnComm::get_Settings), "19200,n,8,1");
    EXPECT_EQ(page->SetPageSite(nullptr), S_OK);
}

TEST_F(CommunicationsPage, CheckingTheThresholdKeepsACountThatIsThere) {
    Start();
    Type(dialog, Comm_RThreshold, "5");
    Press(dialog, Comm_TriggersReceive);
    EXPECT_EQ(ItemText(dialog, Comm_RThreshold), "5");
}

TEST_F(CommunicationsPage, ThresholdMayBeNegative) {
    Start();
    Type(dialog, Comm_RThreshold, "-3");
    LogProperties();
    const Texts lines = LinesOfApply();
    EXPECT_EQ(std::ranges::count(lines, "RThreshold = -3"), 1) << testing::PrintToString(lines);
}

TEST_F(CommunicationsPage, ControlThatIsReleasedMeanwhileIsStillSet) {
    ASSERT_EQ(control->put_Settings(_bstr_t(L"9600,n,8,1")), S_OK);
    Start();
    Type(dialog, Comm_Speed, "19200");
    ComPtr<ITarnComm> held(control.Get());
    control.Reset();
    EXPECT_EQ(page->Apply(), S_OK);
    _bstr_t settings;
    EXPECT_EQ(held->get_Settings(settings.GetAddress()), S_OK);
    EXPECT_EQ(settings, _bstr_t(L"19200,n,8,1"));
}

// Closes the page as soon as the control says that one of its properties has changed.
class ClosingSink : public Counted<ClosingSink, IPropertyNotifySink> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyNotifySink>>;

    explicit ClosingSink(Page& page) : page_(page) {}
    HRESULT STDMETHODCALLTYPE OnChanged(DISPID) override {
        closed += page_->Deactivate() == S_OK;
        page_->SetObjects(0, nullptr);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE OnRequestEdit(DISPID) override { return S_OK; }

    int closed = 0;

  private:
    Page& page_;
};

TEST_F(CommunicationsPage, ClosedByTheFirstSetterItSetsTheOthersAsTheyStood) {
    Start();
    Type(dialog, Comm_Port, "COM9");
    Type(dialog, Comm_InBufferSize, "3000");
    ClosingSink sink(page);
    ComPtr<IConnectionPointContainer> points;
    ComPtr<IConnectionPoint> point;
    DWORD cookie = 0;
    ASSERT_EQ(control.As(&points), S_OK);
    ASSERT_EQ(points->FindConnectionPoint(IID_IPropertyNotifySink, &point), S_OK);
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(sink.closed, 1);
    _variant_t port;
    EXPECT_EQ(control->get_CommPort(&port), S_OK);
    EXPECT_EQ(port, _variant_t(L"COM9"));
    EXPECT_EQ(Get(&ITarnComm::get_InBufferSize), 3000);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
}

// WireTap

class WireTapPage : public Pages {
  protected:
    void Start() { Open(Make<CPropWireTap>()); }

    static constexpr int subjects[] = {WireTap_Input,    WireTap_Output,     WireTap_Events,
                                       WireTap_Warnings, WireTap_Properties, WireTap_Transfer};
    static constexpr const char* names[] = {"WireTapInput",    "WireTapOutput",     "WireTapEvents",
                                            "WireTapWarnings", "WireTapProperties", "WireTapTransfer"};
};

TEST_F(WireTapPage, ReadsInOrder) {
    LogProperties();
    Start();
    EXPECT_EQ(NamesOf(ControlLines()), (Texts{"CommPort", "WireTapInput", "WireTapOutput", "WireTapEvents",
                                              "WireTapWarnings", "WireTapProperties"}))
        << "the control calls the first by another name, and logs no reading of the last";
}

struct SubjectRow {
    int item;
    HRESULT (STDMETHODCALLTYPE ITarnComm::*get)(VARIANT_BOOL*);
    HRESULT (STDMETHODCALLTYPE ITarnComm::*put)(VARIANT_BOOL);
};
const SubjectRow subjectRows[] = {
    {WireTap_Input, &ITarnComm::get_WireTapInput, &ITarnComm::put_WireTapInput},
    {WireTap_Output, &ITarnComm::get_WireTapOutput, &ITarnComm::put_WireTapOutput},
    {WireTap_Events, &ITarnComm::get_WireTapEvents, &ITarnComm::put_WireTapEvents},
    {WireTap_Warnings, &ITarnComm::get_WireTapWarnings, &ITarnComm::put_WireTapWarnings},
    {WireTap_Properties, &ITarnComm::get_WireTapProperties, &ITarnComm::put_WireTapProperties},
    {WireTap_Transfer, &ITarnComm::get_WireTapTransfer, &ITarnComm::put_WireTapTransfer},
};

TEST_F(WireTapPage, EachSubjectIsItsOwnProperty) {
    for (const SubjectRow& row : subjectRows) {
        SCOPED_TRACE(row.item);
        for (const SubjectRow& each : subjectRows)
            (control.Get()->*each.put)(&each == &row ? VARIANT_TRUE : VARIANT_FALSE);
        Start();
        for (const SubjectRow& each : subjectRows)
            EXPECT_EQ(IsChecked(dialog, each.item), &each == &row) << each.item;
        for (const SubjectRow& each : subjectRows)
            CheckDlgButton(dialog, each.item, &each == &row ? BST_UNCHECKED : BST_CHECKED);
        EXPECT_EQ(page->Apply(), S_OK);
        for (const SubjectRow& each : subjectRows)
            EXPECT_EQ(Get(each.get), &each == &row ? VARIANT_FALSE : VARIANT_TRUE) << each.item;
        page->Deactivate();
    }
}

TEST_F(WireTapPage, SubjectsAreOnOnlyWhileTheLogIs) {
    Start();
    ASSERT_FALSE(IsChecked(dialog, WireTap_Enabled));
    for (const int item : subjects)
        EXPECT_FALSE(IsEnabled(dialog, item)) << item;
    Press(dialog, WireTap_Enabled);
    for (const int item : subjects)
        EXPECT_TRUE(IsEnabled(dialog, item)) << item;
    Press(dialog, WireTap_Enabled);
    for (const int item : subjects)
        EXPECT_FALSE(IsEnabled(dialog, item)) << item;
    EXPECT_TRUE(IsDirty());
}

// The setters are logged as long as their own subject is on, so that one stays on.
TEST_F(WireTapPage, SetsInOrder) {
    LogProperties();
    for (const bool even : {false, true}) {
        const auto isChecked = [even](int item) {
            return item == WireTap_Properties || (item % 2 == 0) == even;
        };
        for (const SubjectRow& row : subjectRows)
            (control.Get()->*row.put)(isChecked(row.item) && row.item != WireTap_Properties ? VARIANT_FALSE
                                                                                            : VARIANT_TRUE);
        Start();
        Texts expected = {"WireTap = True"};
        for (const int item : subjects) {
            CheckDlgButton(dialog, item, isChecked(item) ? BST_CHECKED : BST_UNCHECKED);
            expected.push_back(std::string(names[item - WireTap_Input]) + " = " +
                               (isChecked(item) ? "True" : "False"));
        }
        EXPECT_EQ(LinesOfApply(), expected);
        for (const SubjectRow& row : subjectRows)
            EXPECT_EQ(Get(row.get) != VARIANT_FALSE, isChecked(row.item)) << row.item;
        page->Deactivate();
    }
}

TEST_F(WireTapPage, UncheckingTheLogLeavesItOn) {
    ASSERT_EQ(control->put_WireTap(VARIANT_TRUE), S_OK);
    Start();
    ASSERT_TRUE(IsChecked(dialog, WireTap_Enabled));
    Press(dialog, WireTap_Enabled);
    ASSERT_FALSE(IsChecked(dialog, WireTap_Enabled));
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_WireTap), VARIANT_TRUE);
}

// Terminal

class TerminalPage : public Pages {
  protected:
    void Start() { Open(Make<CPropTerminal>()); }
};

TEST_F(TerminalPage, ReadsInOrder) {
    LogProperties();
    Start();
    EXPECT_EQ(NamesOf(ControlLines()), (Texts{"AutoReceive", "AutoSend", "AutoScrollRow", "AutoScrollColumn",
                                              "AutoScrollKeyboard", "Echo", "InputEcho", "CaptureMode",
                                              "CaptureFilename", "Columns", "Rows", "ScrollRows"}));
    EXPECT_FALSE(IsDirty());
}

TEST_F(TerminalPage, SetsInOrder) {
    Start();
    const int checked[] = {Terminal_AutoSend, Terminal_ScrollColumn, Terminal_InputEcho};
    for (int item = Terminal_ScrollColumn; item <= Terminal_Echo; ++item)
        if (item < Terminal_Rows || item > Terminal_ScrollRows)
            CheckDlgButton(dialog, item, std::ranges::count(checked, item) ? BST_CHECKED : BST_UNCHECKED);
    Choose(Terminal_CaptureMode, 2);
    Type(dialog, Terminal_Rows, "30");
    Type(dialog, Terminal_Columns, "100");
    Type(dialog, Terminal_ScrollRows, "200");
    LogProperties();
    EXPECT_EQ(
        LinesOfApply(),
        (Texts{"AutoSend = True", "AutoReceive = False", "AutoScrollRow = False", "AutoScrollColumn = True",
               "AutoScrollKeyboard = False", "InputEcho = True", "Echo = False", "CaptureMode = 2",
               "CaptureFilename = \"\"", "Columns = 100", "Rows = 30", "ScrollRows = 200"}));
}

const SubjectRow terminalChecks[] = {
    {Terminal_AutoReceive, &ITarnComm::get_AutoReceive, &ITarnComm::put_AutoReceive},
    {Terminal_AutoSend, &ITarnComm::get_AutoSend, &ITarnComm::put_AutoSend},
    {Terminal_ScrollRow, &ITarnComm::get_AutoScrollRow, &ITarnComm::put_AutoScrollRow},
    {Terminal_ScrollColumn, &ITarnComm::get_AutoScrollColumn, &ITarnComm::put_AutoScrollColumn},
    {Terminal_ScrollKeyboard, &ITarnComm::get_AutoScrollKeyboard, &ITarnComm::put_AutoScrollKeyboard},
    {Terminal_Echo, &ITarnComm::get_Echo, &ITarnComm::put_Echo},
    {Terminal_InputEcho, &ITarnComm::get_InputEcho, &ITarnComm::put_InputEcho},
};

TEST_F(TerminalPage, EachCheckIsItsOwnProperty) {
    for (const SubjectRow& row : terminalChecks) {
        SCOPED_TRACE(row.item);
        for (const SubjectRow& each : terminalChecks)
            (control.Get()->*each.put)(VARIANT_FALSE);
        (control.Get()->*row.put)(VARIANT_TRUE);
        Start();
        for (const SubjectRow& each : terminalChecks)
            EXPECT_EQ(IsChecked(dialog, each.item), Get(each.get) != VARIANT_FALSE) << each.item;
        EXPECT_TRUE(IsChecked(dialog, row.item));
        page->Deactivate();
    }
}

TEST_F(TerminalPage, CaptureModeIsTheRow) {
    ASSERT_EQ(control->put_CaptureMode(Capture_Binary), S_OK);
    Start();
    EXPECT_EQ(Rows(dialog, Terminal_CaptureMode), (Texts{"Standard", "Binary", "Visible"}));
    EXPECT_EQ(SelectedRow(dialog, Terminal_CaptureMode), "Binary");
    Choose(Terminal_CaptureMode, 0);
    EXPECT_TRUE(IsDirty());
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_CaptureMode), Capture_Standard);
}

TEST_F(TerminalPage, WithoutAModeChosenTheObjectKeepsIts) {
    ASSERT_EQ(control->put_CaptureMode(Capture_Binary), S_OK);
    Start();
    dialogs::Tell(dialog, Terminal_CaptureMode, CB_SETCURSEL, static_cast<WPARAM>(-1));
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(Get(&ITarnComm::get_CaptureMode), Capture_Binary);
}

TEST_F(TerminalPage, FileNameHasRoomFor260Bytes) {
    Start();
    EXPECT_EQ(dialogs::Tell(dialog, Terminal_CaptureFilename, EM_GETLIMITTEXT), 260);
    Type(dialog, Terminal_CaptureFilename, std::string(300, 'x'));
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(control->Properties().m_sCaptureFilename, std::wstring(260, L'x'));
    control->put_CaptureFilename(nullptr);
}

TEST_F(TerminalPage, NumbersAreSigned) {
    Start();
    Type(dialog, Terminal_ScrollRows, "-1");
    LogProperties();
    EXPECT_EQ(LinesOfApply().back(), "ScrollRows = -1");
}

TEST_F(TerminalPage, ANumberCanBeTypedWithItsSign) {
    Start();
    for (const int item : {Terminal_Rows, Terminal_Columns, Terminal_ScrollRows}) {
        Type(dialog, item, "");
        for (const char letter : {'-', '5'})
            dialogs::Tell(dialog, item, WM_CHAR, static_cast<WPARAM>(letter));
        EXPECT_EQ(ItemText(dialog, item), "-5") << item;
    }
}

TEST_F(TerminalPage, LeavesTheGuardOfInputQuiet) {
    ASSERT_EQ(control->put_AutoProcess(3), S_OK);
    VARIANT input = {};
    ASSERT_EQ(FailureOf(control->get_Input(&input)).code, static_cast<HRESULT>(0x800A0005)) << "the guard";
    Start();
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(control->Properties().m_nAutoProcess, VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_AutoReceive), VARIANT_TRUE);
    EXPECT_EQ(Get(&ITarnComm::get_AutoSend), VARIANT_TRUE);
    EXPECT_EQ(control->get_Input(&input), S_OK);
    VariantClear(&input);
}

} // namespace
