// The about page and box with the module's version, and all pages in the system's frame.
#include "pagestest.h"

#include "com/classfactory.h"
#include "control/pageitems.h"
#include "control/PropAbout.h"
#include "control/PropCommunications.h"
#include "control/PropTerminal.h"
#include "control/PropWireTap.h"
#include "support/versionblock.h"
#include "unit/diagnostics/namedmodule.h"

#include <commctrl.h>
#include <olectl.h>
#include <prsht.h>

#include <string>

using namespace host;
using dialogs::ItemText;
using dialogs::SelectedRow;
using dialogs::Texts;
using pages::Make;
using pages::Pages;

namespace {

// About

constexpr char ownVersion[] = "Version 7.5 Build 40001"; // of this program

class About : public Pages {
  protected:
    // Opens the box, where the user acts once.
    HRESULT Play(const dialogs::User& user) {
        bool acted = false;
        const auto when = dialogs::WhenOpen(About_Version, [&](HWND box) {
            acted = true;
            user(box);
        });
        const HRESULT result = control->About();
        EXPECT_TRUE(acted);
        return result;
    }
    static void EndWith(HWND box, int button) {
        PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
    }
};

TEST_F(About, PageShowsMajorMinorAndBuildOfItsOwnModule) {
    const NamedModule other("Lantry.ocx", AddVersion);
    ASSERT_NE(other.Address(), 0u);
    Open(Make<CPropAbout>());
    EXPECT_EQ(ItemText(dialog, About_Version), ownVersion);
    EXPECT_FALSE(IsDirty());
}

TEST_F(About, ApplyOfThePageSetsNothing) {
    Open(Make<CPropAbout>());
    LogProperties();
    EXPECT_EQ(LinesOfApply(), Texts());
}

TEST_F(About, BoxShowsTheSameUntilOk) {
    EXPECT_EQ(Play([](HWND box) {
                  EXPECT_EQ(dialogs::TextOf(box), "About Tarn Link Objects");
                  EXPECT_EQ(ItemText(box, About_Version), ownVersion);
                  EXPECT_EQ(SendMessageA(box, DM_GETDEFID, 0, 0), MAKELRESULT(IDOK, DC_HASDEFID));
                  EXPECT_EQ(ItemText(box, IDOK), "OK");
                  EndWith(box, IDOK);
              }),
              S_OK);
    EXPECT_EQ(dialogs::OpenDialogWith(About_Version), nullptr);
}

TEST_F(About, KeysCloseTheBox) {
    for (const WPARAM key : {VK_ESCAPE, VK_RETURN, VK_SPACE}) {
        SCOPED_TRACE(key);
        EXPECT_EQ(Play([key](HWND box) {
                      EXPECT_EQ(GetFocus(), GetDlgItem(box, IDOK));
                      PostMessageA(GetFocus(), WM_KEYDOWN, key, 1);
                      PostMessageA(GetFocus(), WM_KEYUP, key, 1);
                  }),
                  S_OK);
    }
}

TEST_F(About, HostMayReleaseTheControlWhileTheBoxIsOpen) {
    ITarnComm* asked = control.Get();
    bool acted = false;
    const auto when = dialogs::WhenOpen(About_Version, [&](HWND box) {
        acted = true;
        control.Reset();
        EndWith(box, IDOK);
    });
    EXPECT_EQ(asked->About(), S_OK);
    EXPECT_TRUE(acted);
}

// The system's frame

// The system's own page is not on every machine; this one stands in for it.
class FontPage final : public Unknown<FontPage, PropertyPage> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPage>>;

  private:
    const PageFacts& Facts() const override {
        static constexpr PageFacts facts = {AboutPageTemplate, L"Font", L"Fonts"};
        return facts;
    }
    void OnFill(IUnknown* first) override {
        ComPtr<ITarnComm> control;
        ComPtr<IFontDisp> font;
        const bool has = first && SUCCEEDED(first->QueryInterface(IID_PPV_ARGS(&control))) &&
                         SUCCEEDED(control->get_Font(&font)) && font;
        SetDlgItemTextA(Dialog(), About_Version, has ? "a font" : "none");
    }
    HRESULT OnApply(const Objects&) override { return S_OK; }
};

constexpr ClassRow pageClasses[] = {
    {&CLSID_PropCommunications, CreateClass<CPropCommunications>},
    {&CLSID_PropTerminal, CreateClass<CPropTerminal>},
    {&CLSID_PropWireTap, CreateClass<CPropWireTap>},
    {&CLSID_PropAbout, CreateClass<CPropAbout>},
    {&CLSID_CFontPropPage, CreateClass<FontPage>},
};

class RunningPages {
  public:
    RunningPages() {
        for (size_t i = 0; i < std::size(pageClasses); ++i) {
            ComPtr<IUnknown> factory;
            EXPECT_EQ(GetClassObject(pageClasses, *pageClasses[i].id, IID_PPV_ARGS(&factory)), S_OK);
            EXPECT_EQ(CoRegisterClassObject(*pageClasses[i].id, factory.Get(), CLSCTX_INPROC_SERVER,
                                            REGCLS_MULTIPLEUSE, &cookies_[i]),
                      S_OK);
        }
    }
    ~RunningPages() {
        for (const DWORD cookie : cookies_)
            CoRevokeClassObject(cookie);
    }
    RunningPages(const RunningPages&) = delete;
    RunningPages& operator=(const RunningPages&) = delete;

  private:
    DWORD cookies_[std::size(pageClasses)] = {};
};

struct TabRow {
    const char* title;
    int item; // of the page
    std::string (*shown)(HWND hPage, int item);
    const char* expected;
};
constexpr TabRow tabs[] = {
    {"Terminal", Terminal_CaptureMode, SelectedRow, "Visible"},
    {"Communications", Comm_Speed, ItemText, "19200"},
    {"WireTap", WireTap_Events,
     [](HWND hPage, int item) { return std::string(dialogs::IsChecked(hPage, item) ? "on" : "off"); }, "on"},
    {"Font", About_Version, ItemText, "a font"},
    {"About", About_Version, ItemText, ownVersion},
};

BOOL CALLBACK KeepSheet(HWND hWnd, LPARAM found) {
    if (!IsWindowVisible(hWnd) || !SendMessageA(hWnd, PSM_GETTABCONTROL, 0, 0))
        return TRUE;
    *reinterpret_cast<HWND*>(found) = hWnd;
    return FALSE;
}

HWND OpenSheet() {
    HWND sheet = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), KeepSheet, reinterpret_cast<LPARAM>(&sheet));
    return sheet;
}

struct ItemSearch {
    int item;
    HWND page;
};

BOOL CALLBACK KeepPage(HWND hWnd, LPARAM parameter) {
    auto& search = *reinterpret_cast<ItemSearch*>(parameter);
    if (GetDlgCtrlID(hWnd) == search.item && IsWindowVisible(hWnd))
        search.page = GetParent(hWnd);
    return !search.page;
}

// The one that is shown.
HWND PageWith(HWND sheet, int item) {
    ItemSearch search = {item, nullptr};
    EnumChildWindows(sheet, KeepPage, reinterpret_cast<LPARAM>(&search));
    return search.page;
}

class SystemsFrame : public Pages {
  protected:
    HRESULT Show(const dialogs::User& user) {
        const RunningPages running;
        ComPtr<ISpecifyPropertyPages> list;
        CAUUID ids = {};
        EXPECT_EQ(control.As(&list), S_OK);
        EXPECT_EQ(list->GetPages(&ids), S_OK);
        IUnknown* object = static_cast<ITarnComm*>(control.Get());
        bool acted = false;
        const auto when = When([] { return OpenSheet() != nullptr; },
                               [&] {
                                   acted = true;
                                   user(OpenSheet());
                               });
        const HRESULT result = OleCreatePropertyFrame(frame.get(), 0, 0, L"Comm1", 1, &object, ids.cElems,
                                                      ids.pElems, 0, 0, nullptr);
        CoTaskMemFree(ids.pElems);
        EXPECT_TRUE(acted);
        return result;
    }
};

HWND TabsOf(HWND sheet) {
    return reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETTABCONTROL, 0, 0));
}

// Without the ampersand.
std::string TitleOf(HWND sheet, int place) {
    char text[64] = {};
    TCITEMA tab = {};
    tab.mask = TCIF_TEXT;
    tab.pszText = text;
    tab.cchTextMax = sizeof text;
    SendMessageA(TabsOf(sheet), TCM_GETITEMA, static_cast<WPARAM>(place), reinterpret_cast<LPARAM>(&tab));
    std::string title = text;
    std::erase(title, '&');
    return title;
}

TEST_F(SystemsFrame, HasATabForEachPageOfTheControl) {
    const LONG locks = ModuleLockCount();
    EXPECT_EQ(Show([](HWND sheet) {
                  EXPECT_EQ(TabCtrl_GetItemCount(TabsOf(sheet)), static_cast<int>(std::size(tabs)));
                  for (int place = 0; const TabRow& row : tabs)
                      EXPECT_EQ(TitleOf(sheet, place++), row.title);
                  PostMessageA(sheet, WM_COMMAND, IDCANCEL, 0);
              }),
              S_OK);
    EXPECT_EQ(ModuleLockCount(), locks) << "all pages are gone";
}

TEST_F(SystemsFrame, EachTabShowsItsFilledPageAlone) {
    ASSERT_EQ(control->put_Settings(_bstr_t(L"19200,o,7,2")), S_OK);
    ASSERT_EQ(control->put_CaptureMode(Capture_Visible), S_OK);
    ASSERT_EQ(control->put_WireTapEvents(VARIANT_TRUE), S_OK);
    EXPECT_EQ(Show([](HWND sheet) {
                  for (int place = 0; const TabRow& row : tabs) {
                      SCOPED_TRACE(row.title);
                      EXPECT_TRUE(SendMessageA(sheet, PSM_SETCURSEL, static_cast<WPARAM>(place++), 0));
                      for (const TabRow& each : tabs)
                          EXPECT_EQ(PageWith(sheet, each.item) != nullptr, each.item == row.item)
                              << each.title;
                      EXPECT_EQ(row.shown(PageWith(sheet, row.item), row.item), row.expected);
                  }
                  PostMessageA(sheet, WM_COMMAND, IDCANCEL, 0);
              }),
              S_OK);
}

// What the frame does with a change is the system's affair: Wine's hears of none, and calls no Apply at OK.
TEST_F(SystemsFrame, CancelledChangeSetsNothing) {
    ASSERT_EQ(control->put_Settings(_bstr_t(L"19200,o,7,2")), S_OK);
    EXPECT_EQ(Show([](HWND sheet) {
                  SendMessageA(sheet, PSM_SETCURSEL, 1, 0);
                  const HWND page = PageWith(sheet, Comm_Speed);
                  EXPECT_TRUE(page);
                  dialogs::Tell(page, Comm_Speed, CB_SETCURSEL, 10);
                  dialogs::Notify(page, Comm_Speed, CBN_SELCHANGE);
                  PostMessageA(sheet, WM_COMMAND, IDCANCEL, 0);
              }),
              S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_Settings), "19200,o,7,2");
}

} // namespace
