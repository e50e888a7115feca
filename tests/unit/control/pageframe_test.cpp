// The about page and box with the module's version, and all pages in the system's frame.
#include "pagestest.h"

#include "com/classfactory.h"
#include "control/pageitems.h"
#include "control/PropAbout.h"
#include "control/PropCommunications.h"
#include "control/PropTerminal.h"
#include "control/PropWireTap.h"
#include "unit/diagnostics/namedmodule.h"

#include <commctrl.h>
#include <olectl.h>
#include <prsht.h>

#include <algorithm>

using namespace host;
using dialogs::ItemText;
using dialogs::SelectedRow;
using dialogs::Texts;
using pages::Make;
using pages::Pages;

namespace {

// About

// A copy of this program under the module's name, with a version.
class VersionedModule {
  public:
    VersionedModule() : module_("Lantry.ocx", AddVersion) {}

  private:
    struct Block { // the root of a version resource, without texts
        WORD length = sizeof(Block);
        WORD valueLength = sizeof(VS_FIXEDFILEINFO);
        WORD type = 0; // binary
        wchar_t key[16] = L"VS_VERSION_INFO";
        WORD padding = 0;
        VS_FIXEDFILEINFO value = {};
    };
    static void AddVersion(const std::string& path) {
        Block block;
        block.value.dwSignature = 0xFEEF04BD;
        block.value.dwStrucVersion = 0x10000;
        block.value.dwFileVersionMS = MAKELONG(2, 12);
        block.value.dwFileVersionLS = MAKELONG(65535, 3);
        const HANDLE update = BeginUpdateResourceA(path.c_str(), FALSE);
        UpdateResourceA(update, MAKEINTRESOURCEA(16), MAKEINTRESOURCEA(VS_VERSION_INFO), 0x409, &block,
                        sizeof block);
        EndUpdateResourceA(update, FALSE);
    }

    NamedModule module_;
};

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

TEST_F(About, PageShowsMajorMinorAndBuild) {
    const VersionedModule module;
    Open(Make<CPropAbout>());
    EXPECT_EQ(ItemText(dialog, About_Version), "Version 12.2 Build 65535");
    EXPECT_FALSE(IsDirty());
}

TEST_F(About, PageOfAModuleWithoutAVersionShowsNone) {
    Open(Make<CPropAbout>());
    EXPECT_EQ(ItemText(dialog, About_Version), "");
}

TEST_F(About, ApplyOfThePageSetsNothing) {
    Open(Make<CPropAbout>());
    LogProperties();
    EXPECT_EQ(LinesOfApply(), Texts());
}

TEST_F(About, BoxShowsTheSameUntilOk) {
    const VersionedModule module;
    EXPECT_EQ(Play([](HWND box) {
                  EXPECT_EQ(dialogs::TextOf(box), "About Tarn Link Objects");
                  EXPECT_EQ(ItemText(box, About_Version), "Version 12.2 Build 65535");
                  EXPECT_EQ(SendMessageA(box, DM_GETDEFID, 0, 0), MAKELRESULT(IDOK, DC_HASDEFID));
                  EXPECT_EQ(ItemText(box, IDOK), "OK");
                  EndWith(box, IDOK);
              }),
              S_OK);
    EXPECT_EQ(dialogs::OpenDialogWith(About_Version), nullptr);
}

TEST_F(About, EscapeClosesTheBox) {
    EXPECT_EQ(Play([](HWND box) { EndWith(box, IDCANCEL); }), S_OK);
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

constexpr ClassRow pageClasses[] = {
    {&CLSID_PropCommunications, CreateClass<CPropCommunications>},
    {&CLSID_PropTerminal, CreateClass<CPropTerminal>},
    {&CLSID_PropWireTap, CreateClass<CPropWireTap>},
    {&CLSID_PropAbout, CreateClass<CPropAbout>},
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

constexpr const char* tabTitles[] = {"Communications", "Terminal", "WireTap", "About"};

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
    if (GetDlgCtrlID(hWnd) == search.item)
        search.page = GetParent(hWnd);
    return !search.page;
}

HWND PageWith(HWND sheet, int item) {
    ItemSearch search = {item, nullptr};
    EnumChildWindows(sheet, KeepPage, reinterpret_cast<LPARAM>(&search));
    return search.page;
}

class SystemsFrame : public Pages {
  protected:
    HRESULT Show(const dialogs::User& user) {
        const RunningPages running;
        CLSID ids[std::size(pageClasses)];
        std::ranges::transform(pageClasses, ids, [](const ClassRow& row) { return *row.id; });
        IUnknown* object = static_cast<ITarnComm*>(control.Get());
        bool acted = false;
        const auto when = When([] { return OpenSheet() != nullptr; },
                               [&] {
                                   acted = true;
                                   user(OpenSheet());
                               });
        const HRESULT result = OleCreatePropertyFrame(frame.get(), 0, 0, L"Comm1", 1, &object, std::size(ids),
                                                      ids, 0, 0, nullptr);
        EXPECT_TRUE(acted);
        return result;
    }
};

TEST_F(SystemsFrame, HasATabForEachPage) {
    const LONG locks = ModuleLockCount();
    EXPECT_EQ(Show([](HWND sheet) {
                  const auto tabs = reinterpret_cast<HWND>(SendMessageA(sheet, PSM_GETTABCONTROL, 0, 0));
                  Texts titles;
                  const int count = TabCtrl_GetItemCount(tabs);
                  for (int i = 0; i < count; ++i) {
                      char text[64] = {};
                      TCITEMA tab = {};
                      tab.mask = TCIF_TEXT;
                      tab.pszText = text;
                      tab.cchTextMax = sizeof text;
                      SendMessageA(tabs, TCM_GETITEMA, static_cast<WPARAM>(i),
                                   reinterpret_cast<LPARAM>(&tab));
                      titles.push_back(text);
                      titles.back().erase(std::remove(titles.back().begin(), titles.back().end(), '&'),
                                          titles.back().end());
                  }
                  EXPECT_EQ(titles, Texts(std::begin(tabTitles), std::end(tabTitles)));
                  PostMessageA(sheet, WM_COMMAND, IDCANCEL, 0);
              }),
              S_OK);
    EXPECT_EQ(ModuleLockCount(), locks) << "all pages are gone";
}

// What the frame does at OK is the system's affair: Wine's calls no Apply.
TEST_F(SystemsFrame, ShowsAFilledPageInItsTab) {
    ASSERT_EQ(control->put_Settings(_bstr_t(L"19200,o,7,2")), S_OK);
    EXPECT_EQ(Show([](HWND sheet) {
                  const HWND opened = PageWith(sheet, Comm_Replacement);
                  ASSERT_TRUE(opened);
                  EXPECT_TRUE(IsWindowVisible(opened));
                  EXPECT_EQ(ItemText(opened, Comm_Speed), "19200");
                  EXPECT_EQ(SelectedRow(opened, Comm_Parity), "Odd");
                  dialogs::Tell(opened, Comm_Speed, CB_SETCURSEL, 10);
                  dialogs::Notify(opened, Comm_Speed, CBN_SELCHANGE);
                  PostMessageA(sheet, WM_COMMAND, IDCANCEL, 0);
              }),
              S_OK);
    EXPECT_EQ(GetText(&ITarnComm::get_Settings), "19200,o,7,2") << "cancelled";
}

} // namespace
