// A page of the toy, in a frame of the test's.
#include "com/propertypage.h"
#include "com/unknown.h"
#include "support/counted.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <functional>
#include <optional>
#include <string>

namespace {

constexpr int nameItem = 301;
constexpr int checkItem = 302;
constexpr int listItem = 303;

class Site : public host::Counted<Site, IPropertyPageSite> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPageSite>>;

    HRESULT STDMETHODCALLTYPE OnStatusChange(DWORD flags) override {
        changes.push_back(flags);
        if (onChange)
            onChange();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetLocaleID(LCID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPageContainer(IUnknown**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*) override { return S_FALSE; }

    std::vector<DWORD> changes;
    std::function<void()> onChange;
};

class Object : public host::Counted<Object, IUnknown> {
  public:
    using Faces = FaceTable<FaceRow<IUnknown>>;
};

class ToyPage final : public Unknown<ToyPage, PropertyPage> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPage>>;

    ~ToyPage() override { ++gone; }

    std::vector<IUnknown*> filledFrom;
    std::vector<IUnknown*> appliedTo;
    std::vector<int> changed;
    HRESULT applyResult = S_OK;
    std::function<void()> onApply;
    std::function<void()> onFill;
    std::function<void()> onChanged;
    int resource = 300;

    HWND Window() const { return Dialog(); }
    static inline int gone = 0;

  private:
    const PageFacts& Facts() const override {
        static PageFacts facts;
        facts = {resource, L"&Toy", L"All about the toy"};
        return facts;
    }
    void OnFill(IUnknown* first) override {
        filledFrom.push_back(first);
        SetDlgItemTextA(Dialog(), nameItem, "filled");
        SendDlgItemMessageA(Dialog(), listItem, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>("row"));
        if (onFill)
            onFill();
    }
    HRESULT OnApply(const Objects& objects) override {
        for (const auto& object : objects) {
            appliedTo.push_back(object.Get());
            if (onApply)
                onApply();
        }
        return applyResult;
    }
    void OnChanged(int item) override {
        changed.push_back(item);
        if (onChanged)
            onChanged();
    }
};

class ComPropertyPage : public testing::Test {
  protected:
    ComPropertyPage() {
        window = CreateWindowExA(WS_EX_CONTROLPARENT, "Static", "Frame", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0,
                                 0, 500, 300, nullptr, nullptr, nullptr, nullptr);
        NewObject(page);
    }
    ~ComPropertyPage() override {
        page.Reset();
        DestroyWindow(window);
        EXPECT_EQ(site.References(), 0u);
        EXPECT_EQ(first.References(), 0u);
        EXPECT_EQ(second.References(), 0u);
    }

    void Give(std::vector<IUnknown*> objects) {
        EXPECT_EQ(page->SetObjects(static_cast<ULONG>(objects.size()), objects.data()), S_OK);
    }
    void Open() {
        ASSERT_EQ(page->SetPageSite(&site), S_OK);
        Give({&first, &second});
        ASSERT_EQ(page->Activate(window, &place, FALSE), S_OK);
        ASSERT_EQ(page->Show(SW_SHOW), S_OK);
    }
    HWND Item(int id) const { return GetDlgItem(page->Window(), id); }
    void Notify(int item, int notification) const {
        SendMessageA(page->Window(), WM_COMMAND, MAKEWPARAM(item, notification),
                     reinterpret_cast<LPARAM>(Item(item)));
    }
    RECT Where() const {
        RECT rectangle = {};
        GetWindowRect(page->Window(), &rectangle);
        MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&rectangle), 2);
        return rectangle;
    }

    HWND window;
    Site site;
    Object first, second;
    ComPtr<ToyPage> page;
    const RECT place = {10, 20, 310, 220};
};

bool Same(const RECT& left, const RECT& right) {
    return EqualRect(&left, &right);
}

std::wstring TakenText(LPOLESTR text) {
    const std::wstring copy = text ? text : L"(null)";
    CoTaskMemFree(text);
    return copy;
}

TEST_F(ComPropertyPage, InfoHasTheTextsAndTheTemplatesSize) {
    PROPPAGEINFO info = {};
    info.cb = sizeof info;
    ASSERT_EQ(page->GetPageInfo(&info), S_OK);
    EXPECT_EQ(info.cb, sizeof info);
    EXPECT_EQ(TakenText(info.pszTitle), L"&Toy");
    EXPECT_EQ(TakenText(info.pszDocString), L"All about the toy");
    EXPECT_EQ(info.pszHelpFile, nullptr);
    EXPECT_EQ(info.dwHelpContext, 0u);
    Open();
    RECT units = {0, 0, 120, 60};
    ASSERT_TRUE(MapDialogRect(page->Window(), &units));
    EXPECT_EQ(info.size.cx, units.right);
    EXPECT_EQ(info.size.cy, units.bottom);
    EXPECT_EQ(page->GetPageInfo(nullptr), E_POINTER);
}

TEST_F(ComPropertyPage, InfoOfAMissingTemplateFails) {
    page->resource = 299;
    PROPPAGEINFO info = {};
    EXPECT_TRUE(FAILED(page->GetPageInfo(&info)));
    EXPECT_EQ(info.pszTitle, nullptr);
    EXPECT_TRUE(FAILED(page->Activate(window, &place, FALSE)));
    EXPECT_EQ(page->Deactivate(), E_UNEXPECTED);
}

TEST_F(ComPropertyPage, StandsInItsPlaceAndIsSeenOnceShown) {
    ASSERT_EQ(page->Activate(window, &place, FALSE), S_OK);
    EXPECT_EQ(GetParent(page->Window()), window);
    EXPECT_TRUE(Same(Where(), place));
    EXPECT_FALSE(IsWindowVisible(page->Window()));
    EXPECT_EQ(page->Show(SW_SHOWNORMAL), S_OK);
    EXPECT_TRUE(IsWindowVisible(page->Window()));
    EXPECT_EQ(page->Show(SW_HIDE), S_OK);
    EXPECT_FALSE(IsWindowVisible(page->Window()));
    EXPECT_EQ(page->Show(SW_MAXIMIZE), E_INVALIDARG);
    const RECT other = {0, 5, 200, 105};
    EXPECT_EQ(page->Move(&other), S_OK);
    EXPECT_TRUE(Same(Where(), other));
    EXPECT_EQ(page->Move(nullptr), E_POINTER);
    EXPECT_EQ(page->Activate(window, &place, FALSE), E_UNEXPECTED);
    EXPECT_EQ(page->Deactivate(), S_OK);
    EXPECT_EQ(GetWindow(window, GW_CHILD), nullptr);
}

TEST_F(ComPropertyPage, WithoutADialogNothingIsDone) {
    EXPECT_EQ(page->Deactivate(), E_UNEXPECTED);
    EXPECT_EQ(page->Show(SW_SHOW), E_UNEXPECTED);
    EXPECT_EQ(page->Move(&place), E_UNEXPECTED);
    EXPECT_EQ(page->Apply(), E_UNEXPECTED);
    EXPECT_EQ(page->IsPageDirty(), S_FALSE);
    EXPECT_EQ(page->Help(nullptr), E_NOTIMPL);
    EXPECT_EQ(page->Activate(window, nullptr, FALSE), E_POINTER);
    MSG message = {window, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(page->TranslateAccelerator(&message), S_FALSE);
    EXPECT_EQ(page->TranslateAccelerator(nullptr), E_POINTER);
}

TEST_F(ComPropertyPage, FillsFromTheFirstObject) {
    Open();
    EXPECT_EQ(page->filledFrom, std::vector<IUnknown*>{&first});
    Give({&second});
    Give({});
    EXPECT_EQ(page->filledFrom, (std::vector<IUnknown*>{&first, &second, nullptr}));
    EXPECT_EQ(page->SetObjects(1, nullptr), E_POINTER);
}

TEST_F(ComPropertyPage, HidingAndShowingKeepsWhatWasTyped) {
    Open();
    SetDlgItemTextA(page->Window(), nameItem, "typed");
    page->Show(SW_HIDE);
    page->Show(SW_SHOW);
    char text[16] = {};
    GetDlgItemTextA(page->Window(), nameItem, text, sizeof text);
    EXPECT_STREQ(text, "typed");
    EXPECT_EQ(page->IsPageDirty(), S_OK);
}

TEST_F(ComPropertyPage, FillingIsNoChange) {
    Open();
    EXPECT_EQ(page->IsPageDirty(), S_FALSE);
    EXPECT_TRUE(site.changes.empty());
    EXPECT_TRUE(page->changed.empty());
}

TEST_F(ComPropertyPage, FillingWithinFillingIsNoChangeEither) {
    bool isFirst = true;
    page->onFill = [&] {
        if (!std::exchange(isFirst, false))
            return;
        Give({&second});
        SetDlgItemTextA(page->Window(), nameItem, "after the other");
    };
    Open();
    EXPECT_EQ(page->filledFrom, (std::vector<IUnknown*>{&first, &second}));
    EXPECT_TRUE(site.changes.empty());
    EXPECT_TRUE(page->changed.empty());
}

TEST_F(ComPropertyPage, FillingThatFailsLeavesNoPage) {
    page->onFill = [] { throw std::bad_alloc(); };
    EXPECT_EQ(page->Activate(window, &place, FALSE), E_OUTOFMEMORY);
    EXPECT_EQ(page->Window(), nullptr);
    EXPECT_EQ(GetWindow(window, GW_CHILD), nullptr);
    EXPECT_EQ(page->Deactivate(), E_UNEXPECTED);
    page->onFill = {};
    EXPECT_EQ(page->Activate(window, &place, FALSE), S_OK);
    Notify(checkItem, BN_CLICKED);
    EXPECT_EQ(page->IsPageDirty(), S_OK);
}

TEST_F(ComPropertyPage, RefillingThatFailsLeavesThePageOpenToChanges) {
    Open();
    page->onFill = [] { throw std::bad_alloc(); };
    EXPECT_EQ(page->SetObjects(0, nullptr), E_OUTOFMEMORY);
    Notify(checkItem, BN_CLICKED);
    EXPECT_EQ(page->IsPageDirty(), S_OK);
}

struct ChangeRow {
    const char* name;
    int item;
    int notification;
    bool changes;
};
constexpr ChangeRow changeRows[] = {
    {"typed", nameItem, EN_CHANGE, true},
    {"edit got the focus", nameItem, EN_SETFOCUS, false},
    {"edit is about to be drawn", nameItem, EN_UPDATE, false},
    {"clicked", checkItem, BN_CLICKED, true},
    {"button got the focus", checkItem, BN_SETFOCUS, false},
    {"double click", checkItem, BN_DOUBLECLICKED, false},
    {"chosen", listItem, CBN_SELCHANGE, true},
    {"typed into the list", listItem, CBN_EDITCHANGE, true},
    {"list is open", listItem, CBN_DROPDOWN, false},
    {"list got the focus", listItem, CBN_SETFOCUS, false},
};

TEST_F(ComPropertyPage, ChangeOfAControlMakesItDirtyAndTheSiteHears) {
    for (const ChangeRow& row : changeRows) {
        SCOPED_TRACE(row.name);
        NewObject(page);
        site.changes.clear();
        Open();
        Notify(row.item, row.notification);
        EXPECT_EQ(page->IsPageDirty(), row.changes ? S_OK : S_FALSE);
        EXPECT_EQ(page->changed, row.changes ? std::vector{row.item} : std::vector<int>());
        const std::vector<DWORD> told{PROPPAGESTATUS_DIRTY | PROPPAGESTATUS_VALIDATE};
        EXPECT_EQ(site.changes, row.changes ? told : std::vector<DWORD>());
    }
}

TEST_F(ComPropertyPage, ClickAndLettersOfAUserAreChanges) {
    Open();
    SendMessageA(Item(checkItem), BM_CLICK, 0, 0);
    EXPECT_EQ(page->changed, std::vector{checkItem});
    SendMessageA(Item(nameItem), WM_CHAR, 'x', 0);
    EXPECT_EQ(page->changed, (std::vector{checkItem, nameItem}));
}

TEST_F(ComPropertyPage, WhatThePageChangesItselfBelongsToTheUsersChange) {
    Open();
    page->onChanged = [this] { SetDlgItemTextA(page->Window(), nameItem, "by the page"); };
    SendMessageA(Item(checkItem), BM_CLICK, 0, 0);
    EXPECT_EQ(site.changes.size(), 1u);
    EXPECT_EQ(page->changed, std::vector{checkItem});
    page->onChanged = {};
    SendMessageA(Item(nameItem), WM_CHAR, 'x', 0);
    EXPECT_EQ(site.changes.size(), 2u);
}

TEST_F(ComPropertyPage, FrameThatHearsOfAChosenRowFindsItShown) {
    Open();
    SendMessageA(Item(listItem), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>("other"));
    SetDlgItemTextA(page->Window(), listItem, "typed");
    site.changes.clear();
    char shown[16] = {};
    site.onChange = [&] { GetDlgItemTextA(page->Window(), listItem, shown, sizeof shown); };
    COMBOBOXINFO parts = {};
    parts.cbSize = sizeof parts;
    ASSERT_TRUE(GetComboBoxInfo(Item(listItem), &parts));
    SendMessageA(parts.hwndList, LB_SETCURSEL, 1, 0); // as when a row is clicked: the edit follows later
    Notify(listItem, CBN_SELCHANGE);
    EXPECT_STREQ(shown, "other");
    EXPECT_EQ(site.changes.size(), 1u);
}

TEST_F(ComPropertyPage, WithoutASiteItIsDirtyAllTheSame) {
    ASSERT_EQ(page->Activate(window, &place, FALSE), S_OK);
    Notify(checkItem, BN_CLICKED);
    EXPECT_EQ(page->IsPageDirty(), S_OK);
}

TEST_F(ComPropertyPage, ApplyPassesAllObjectsAndCleans) {
    Open();
    Notify(checkItem, BN_CLICKED);
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(page->appliedTo, (std::vector<IUnknown*>{&first, &second}));
    EXPECT_EQ(page->IsPageDirty(), S_FALSE);
}

TEST_F(ComPropertyPage, ChangeWhileObjectsAreSetIsStillToBeApplied) {
    Open();
    Notify(checkItem, BN_CLICKED);
    bool isFirst = true;
    page->onApply = [&] {
        if (!std::exchange(isFirst, false))
            return;
        EXPECT_EQ(page->IsPageDirty(), S_FALSE);
        Notify(checkItem, BN_CLICKED);
    };
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(page->IsPageDirty(), S_OK);
}

TEST_F(ComPropertyPage, FailureOfApplyIsItsAnswer) {
    Open();
    Notify(checkItem, BN_CLICKED);
    page->applyResult = E_ACCESSDENIED;
    EXPECT_EQ(page->Apply(), E_ACCESSDENIED);
    EXPECT_EQ(page->IsPageDirty(), S_FALSE);
    Notify(checkItem, BN_CLICKED);
    page->onApply = [] { throw std::bad_alloc(); };
    EXPECT_EQ(page->Apply(), E_OUTOFMEMORY);
    EXPECT_EQ(page->IsPageDirty(), S_OK) << "nobody knows what was passed on";
}

TEST_F(ComPropertyPage, ObjectsThatAreTakenAwayDuringApplyStillGetIt) {
    Open();
    page->onApply = [this] { Give({}); };
    EXPECT_EQ(page->Apply(), S_OK);
    EXPECT_EQ(page->appliedTo, (std::vector<IUnknown*>{&first, &second}));
    EXPECT_EQ(first.References(), 0u);
}

TEST_F(ComPropertyPage, RefillingCleans) {
    Open();
    Notify(checkItem, BN_CLICKED);
    Give({&first});
    EXPECT_EQ(page->IsPageDirty(), S_FALSE);
}

TEST_F(ComPropertyPage, SiteIsTakenOnceAndGivenBack) {
    EXPECT_EQ(page->SetPageSite(&site), S_OK);
    EXPECT_EQ(site.References(), 1u);
    Site other;
    EXPECT_EQ(page->SetPageSite(&other), E_UNEXPECTED);
    EXPECT_EQ(page->SetPageSite(nullptr), S_OK);
    EXPECT_EQ(site.References(), 0u);
    EXPECT_EQ(page->SetPageSite(&other), S_OK);
    EXPECT_EQ(page->SetPageSite(nullptr), S_OK);
}

TEST_F(ComPropertyPage, FrameMayCloseThePageWhenItHearsOfAChange) {
    Open();
    site.onChange = [this] {
        EXPECT_EQ(page->Deactivate(), S_OK);
        EXPECT_EQ(page->SetPageSite(nullptr), S_OK);
    };
    SendMessageA(Item(checkItem), BM_CLICK, 0, 0);
    EXPECT_EQ(page->Window(), nullptr);
    EXPECT_EQ(site.changes.size(), 1u);
}

TEST_F(ComPropertyPage, FrameMayReleaseThePageWhenItHearsOfAChange) {
    Open();
    ToyPage::gone = 0;
    site.onChange = [this] {
        page.Reset();
        EXPECT_EQ(ToyPage::gone, 0) << "held while it runs";
    };
    SendMessageA(Item(checkItem), BM_CLICK, 0, 0);
    EXPECT_EQ(ToyPage::gone, 1);
    EXPECT_EQ(GetWindow(window, GW_CHILD), nullptr);
}

TEST_F(ComPropertyPage, FrameMayTakeItsWindowAway) {
    Open();
    DestroyWindow(window);
    EXPECT_EQ(page->Window(), nullptr);
    EXPECT_EQ(page->Deactivate(), E_UNEXPECTED);
    EXPECT_EQ(page->Apply(), E_UNEXPECTED);
}

TEST_F(ComPropertyPage, ReleasedWhileOpenItGivesAllBack) {
    const LONG locks = ModuleLockCount();
    Open();
    page.Reset();
    EXPECT_EQ(ModuleLockCount(), locks - 1);
    EXPECT_EQ(GetWindow(window, GW_CHILD), nullptr);
    EXPECT_EQ(site.References(), 0u);
    EXPECT_EQ(first.References(), 0u);
}

// Keys

class PressedKey {
  public:
    explicit PressedKey(int key) {
        if (!key)
            return;
        GetKeyboardState(before_);
        BYTE state[256] = {};
        state[key] = 0x80;
        SetKeyboardState(state);
    }
    ~PressedKey() { SetKeyboardState(before_); }
    PressedKey(const PressedKey&) = delete;
    PressedKey& operator=(const PressedKey&) = delete;

  private:
    BYTE before_[256] = {};
};

struct KeyRow {
    const char* name;
    int focus;
    UINT message;
    WPARAM key;
    int held;
    HRESULT result;
    int focusAfter;
};
constexpr KeyRow keyRows[] = {
    {"Tab goes on", nameItem, WM_KEYDOWN, VK_TAB, 0, S_OK, checkItem},
    {"Shift+Tab goes back", checkItem, WM_KEYDOWN, VK_TAB, VK_SHIFT, S_OK, nameItem},
    {"Tab at the end is the frame's", listItem, WM_KEYDOWN, VK_TAB, 0, S_FALSE, listItem},
    {"Shift+Tab at the start is the frame's", nameItem, WM_KEYDOWN, VK_TAB, VK_SHIFT, S_FALSE, nameItem},
    {"Ctrl+Tab is the frame's", nameItem, WM_KEYDOWN, VK_TAB, VK_CONTROL, S_FALSE, nameItem},
    {"Ctrl+Page Down is the frame's", nameItem, WM_KEYDOWN, VK_NEXT, VK_CONTROL, S_FALSE, nameItem},
    {"Enter is the frame's", nameItem, WM_KEYDOWN, VK_RETURN, 0, S_FALSE, nameItem},
    {"Escape is the frame's", nameItem, WM_KEYDOWN, VK_ESCAPE, 0, S_FALSE, nameItem},
    {"a mnemonic of the page", checkItem, WM_SYSCHAR, 'n', VK_MENU, S_OK, nameItem},
    {"in capitals", checkItem, WM_SYSCHAR, 'N', VK_MENU, S_OK, nameItem},
    {"none of the page's", checkItem, WM_SYSCHAR, 'c', VK_MENU, S_FALSE, checkItem},
    {"a letter behind an ampersand that was typed", checkItem, WM_SYSCHAR, 'q', VK_MENU, S_FALSE, checkItem},
    {"an item that is hidden", checkItem, WM_SYSCHAR, 'h', VK_MENU, S_FALSE, checkItem},
    {"an item that is off", checkItem, WM_SYSCHAR, 'o', VK_MENU, S_FALSE, checkItem},
    {"a text that shows its ampersands", checkItem, WM_SYSCHAR, 'v', VK_MENU, S_FALSE, checkItem},
    {"an ampersand that is shown", checkItem, WM_SYSCHAR, ' ', VK_MENU, S_FALSE, checkItem},
    {"the mouse", nameItem, WM_MOUSEMOVE, 0, 0, S_FALSE, nameItem},
};

TEST_F(ComPropertyPage, KeysArePartedBetweenThePageAndTheFrame) {
    Open();
    SetDlgItemTextA(page->Window(), nameItem, "&Quit");
    for (const KeyRow& row : keyRows) {
        SCOPED_TRACE(row.name);
        SetFocus(Item(row.focus));
        const HWND focus = GetFocus();
        ASSERT_TRUE(focus);
        MSG message = {focus, row.message, row.key, 0, 0, {}};
        const PressedKey held(row.held);
        EXPECT_EQ(page->TranslateAccelerator(&message), row.result);
        const HWND after = Item(row.focusAfter);
        EXPECT_TRUE(GetFocus() == after || IsChild(after, GetFocus()));
    }
}

TEST_F(ComPropertyPage, OpenListIsClosedByTheKeysOfTheFrame) {
    Open();
    for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) {
        SetFocus(Item(listItem));
        SendMessageA(Item(listItem), CB_SHOWDROPDOWN, TRUE, 0);
        ASSERT_TRUE(SendMessageA(Item(listItem), CB_GETDROPPEDSTATE, 0, 0));
        MSG message = {GetFocus(), WM_KEYDOWN, key, 1, 0, {}};
        EXPECT_EQ(page->TranslateAccelerator(&message), S_OK) << key;
        while (PeekMessageA(&message, nullptr, WM_CHAR, WM_CHAR, PM_REMOVE)) // what the key wrote
            EXPECT_EQ(page->TranslateAccelerator(&message), S_OK) << key;
        EXPECT_FALSE(SendMessageA(Item(listItem), CB_GETDROPPEDSTATE, 0, 0)) << key;
        message = {GetFocus(), WM_KEYDOWN, key, 1, 0, {}};
        EXPECT_EQ(page->TranslateAccelerator(&message), S_FALSE) << key;
    }
}

TEST_F(ComPropertyPage, KeysOfOtherWindowsAreTheFrames) {
    Open();
    MSG message = {window, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(page->TranslateAccelerator(&message), S_FALSE);
}

} // namespace
