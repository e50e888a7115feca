// The control in a container that somebody else wrote: the one of ATL's library, as Wine has it.
#include "byname.h"
#include "registered.h"
#include "support/host.h"
#include "TarnLink.h"

#include <gtest/gtest.h>
#include <objsafe.h>
#include <ocidl.h>
#include <oleidl.h>

#include <cstdio>

using namespace host;
using Microsoft::WRL::ComPtr;

namespace {

struct Asked {
    const char* name;
    const IID& id;
    bool has;
};

const Asked interfaces[] = {
    {"IUnknown", IID_IUnknown, true},
    {"IDispatch", IID_IDispatch, true},
    {"ITarnComm", IID_ITarnComm, true},
    {"IOleObject", IID_IOleObject, true},
    {"IOleControl", IID_IOleControl, true},
    {"IOleWindow", IID_IOleWindow, true},
    {"IOleInPlaceObject", IID_IOleInPlaceObject, true},
    {"IOleInPlaceObjectWindowless", IID_IOleInPlaceObjectWindowless, true},
    {"IOleInPlaceActiveObject", IID_IOleInPlaceActiveObject, true},
    {"IViewObject", IID_IViewObject, true},
    {"IViewObject2", IID_IViewObject2, true},
    {"IViewObjectEx", IID_IViewObjectEx, true},
    {"IDataObject", IID_IDataObject, true},
    {"IQuickActivate", IID_IQuickActivate, true},
    {"IPersist", IID_IPersist, true},
    {"IPersistStreamInit", IID_IPersistStreamInit, true},
    {"IPersistStorage", IID_IPersistStorage, true},
    {"IPersistPropertyBag", IID_IPersistPropertyBag, true},
    {"IConnectionPointContainer", IID_IConnectionPointContainer, true},
    {"ISpecifyPropertyPages", IID_ISpecifyPropertyPages, true},
    {"ISupportErrorInfo", IID_ISupportErrorInfo, true},
    {"IProvideClassInfo", IID_IProvideClassInfo, true},
    {"IProvideClassInfo2", IID_IProvideClassInfo2, true},
    {"IObjectSafety", IID_IObjectSafety, true},
    {"IPersistFile", IID_IPersistFile, false},
    {"IOleCache", IID_IOleCache, false},
    {"IMarshal", IID_IMarshal, false},
};

class ContainerTest : public testing::Test {
  protected:
    void SetUp() override {
        OleInitialize(nullptr);
        library = LoadLibraryA("atl100.dll");
        ASSERT_NE(library, nullptr);
        static const bool ready = Entry<BOOL WINAPI()>("AtlAxWinInit")() != FALSE; // once in a process
        ASSERT_TRUE(ready);
        window = CreateWindowExA(0, "STATIC", "", WS_POPUP | WS_VISIBLE, 0, 0, 400, 300, nullptr, nullptr,
                                 nullptr, nullptr);
    }
    void TearDown() override {
        if (window)
            DestroyWindow(window);
        control.Reset();
        container.Reset();
        OleUninitialize();
    }

    template <class Function>
    Function* Entry(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    }

    // The control's window with the terminal in it.
    void ExpectWindows() const {
        const HWND outer = FindWindowExA(window, nullptr, "TarnCommControl", nullptr);
        ASSERT_NE(outer, nullptr);
        RECT size = {};
        GetClientRect(outer, &size);
        EXPECT_EQ(size.right, 400);
        EXPECT_EQ(size.bottom, 300);
        EXPECT_NE(FindWindowExA(outer, nullptr, "TarnCommObject", nullptr), nullptr);
    }

    HMODULE library = nullptr;
    HWND window = nullptr;
    ComPtr<ITarnComm> control;
    ComPtr<IUnknown> container;
};

} // namespace

TEST_F(ContainerTest, TheControlHasTheInterfacesThatContainersAskFor) {
    ASSERT_EQ(CoCreateInstance(CLSID_TarnComm, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control)), S_OK);
    for (const Asked& each : interfaces) {
        ComPtr<IUnknown> found;
        const HRESULT result =
            control->QueryInterface(each.id, reinterpret_cast<void**>(found.GetAddressOf()));
        std::printf("  %-28s %s\n", each.name, SUCCEEDED(result) ? "yes" : "no");
        EXPECT_EQ(result, each.has ? S_OK : E_NOINTERFACE) << each.name;
    }
}

TEST_F(ContainerTest, AControlThatIsThereIsAttached) {
    ASSERT_EQ(CoCreateInstance(CLSID_TarnComm, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control)), S_OK);
    ASSERT_EQ(control->put_Rows(30), S_OK);
    auto* attach = Entry<HRESULT WINAPI(IUnknown*, HWND, IUnknown**)>("AtlAxAttachControl");
    ASSERT_EQ(attach(control.Get(), window, &container), S_OK);
    ExpectWindows();
    LONG rows = 0;
    EXPECT_EQ(control->get_Rows(&rows), S_OK);
    EXPECT_EQ(rows, 30) << "survives the change to the visible object";
}

TEST_F(ContainerTest, AControlIsMadeByItsName) {
    auto* create = Entry<HRESULT WINAPI(LPCOLESTR, HWND, IStream*, IUnknown**)>("AtlAxCreateControl");
    ASSERT_EQ(create(L"TarnLink.TarnComm", window, nullptr, &container), S_OK);
    ExpectWindows();
    auto* get = Entry<HRESULT WINAPI(HWND, IUnknown**)>("AtlAxGetControl");
    ComPtr<IUnknown> made;
    ASSERT_EQ(get(window, &made), S_OK);
    ASSERT_EQ(made.As(&control), S_OK);
    EXPECT_EQ(control->put_Columns(132), S_OK);
    LONG columns = 0;
    EXPECT_EQ(control->get_Columns(&columns), S_OK);
    EXPECT_EQ(columns, 132);
}

TEST_F(ContainerTest, TheControlOutlivesItsPlace) {
    auto* create = Entry<HRESULT WINAPI(LPCOLESTR, HWND, IStream*, IUnknown**)>("AtlAxCreateControl");
    ASSERT_EQ(create(L"TarnLink.TarnComm", window, nullptr, &container), S_OK);
    auto* get = Entry<HRESULT WINAPI(HWND, IUnknown**)>("AtlAxGetControl");
    ComPtr<IUnknown> made;
    ASSERT_EQ(get(window, &made), S_OK);
    ASSERT_EQ(made.As(&control), S_OK);
    made.Reset();
    container.Reset();
    DestroyWindow(std::exchange(window, nullptr));
    VARIANT_BOOL open = VARIANT_TRUE;
    EXPECT_EQ(control->get_PortOpen(&open), S_OK);
    EXPECT_EQ(open, VARIANT_FALSE);
}
