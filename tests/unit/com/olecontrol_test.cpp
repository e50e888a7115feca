// The windowed control in its container: activation in place, verbs, extent, picture, quick activation, its
// end.
#include "toycontrol.h"

#include "com/classfactory.h"
#include "com/himetric.h"
#include "support/container.h"
#include "support/holdings.h"
#include "support/sinks.h"

#include <gtest/gtest.h>
#include <olectl.h>

namespace {

using Calls = std::vector<std::string>;

class ComControl : public testing::Test {
  public:
    ComControl() {
        EXPECT_EQ(NewObject(toy), S_OK);
        EXPECT_EQ(container.Hold(static_cast<IToy*>(toy.Get())), S_OK);
    }

    RECT PlaceOfWindow() {
        RECT place = {};
        GetWindowRect(toy->Window(), &place);
        MapWindowPoints(nullptr, container.window, reinterpret_cast<POINT*>(&place), 2);
        return place;
    }

    host::Container container;
    ComPtr<ToyControl> toy;
};

TEST_F(ComControl, ActivationFollowsTheProtocol) {
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_EQ(container.calls,
              (Calls{"CanInPlaceActivate", "OnInPlaceActivate", "GetWindowContext", "ShowObject"}));
    EXPECT_TRUE(toy->IsInPlaceActive());
    EXPECT_FALSE(toy->IsUIActive());
    HWND window = nullptr;
    EXPECT_EQ(toy->GetWindow(&window), S_OK);
    EXPECT_EQ(GetParent(window), container.window);
    const LONG style = GetWindowLongA(window, GWL_STYLE);
    EXPECT_EQ(style & (WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN),
              WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN);
    const RECT place = PlaceOfWindow();
    EXPECT_TRUE(EqualRect(&place, &container.site.at));
    char name[32] = {};
    GetClassNameA(window, name, sizeof name);
    EXPECT_STREQ(name, toyWindowClass);
}

TEST_F(ComControl, ShowActivatesWithItsUserInterface) {
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    EXPECT_TRUE(toy->IsUIActive());
    EXPECT_TRUE(container.Saw("OnUIActivate"));
    EXPECT_NE(container.frame.active.Get(), nullptr);
    EXPECT_EQ(GetFocus(), toy->Window());
    EXPECT_TRUE(container.Saw("OnFocus"));
    container.calls.clear();
    EXPECT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    EXPECT_EQ(container.calls, (Calls{"GetWindowContext", "ShowObject"})) << "once is enough";
}

TEST_F(ComControl, DeactivationGoesBackStepByStep) {
    ASSERT_EQ(container.Do(OLEIVERB_UIACTIVATE), S_OK);
    const HWND window = toy->Window();
    container.calls.clear();
    EXPECT_EQ(toy->UIDeactivate(), S_OK);
    EXPECT_EQ(container.calls, (Calls{"SetActiveObject none", "OnUIDeactivate"}));
    EXPECT_TRUE(IsWindow(window));
    EXPECT_EQ(toy->InPlaceDeactivate(), S_OK);
    EXPECT_EQ(container.calls.back(), "OnInPlaceDeactivate");
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(toy->Window(), nullptr);
    HWND none = nullptr;
    EXPECT_EQ(toy->GetWindow(&none), E_FAIL);
    container.calls.clear();
    EXPECT_EQ(toy->InPlaceDeactivate(), S_OK);
    EXPECT_TRUE(container.calls.empty());
}

TEST_F(ComControl, RefusalsLeaveItInactive) {
    struct Row {
        const char* call;
        HRESULT answer;
        HRESULT expected;
    };
    const Row rows[] = {
        {"CanInPlaceActivate", S_FALSE, E_FAIL},
        {"CanInPlaceActivate", E_ACCESSDENIED, E_ACCESSDENIED},
        {"OnInPlaceActivate", E_ACCESSDENIED, E_ACCESSDENIED},
        {"GetWindowContext", E_ACCESSDENIED, E_ACCESSDENIED},
    };
    for (const Row& row : rows) {
        container.answers = {{row.call, row.answer}};
        EXPECT_EQ(container.Do(OLEIVERB_SHOW), row.expected) << row.call;
        EXPECT_FALSE(toy->IsInPlaceActive());
        EXPECT_EQ(toy->Window(), nullptr);
    }
    EXPECT_EQ(container.Count("OnInPlaceDeactivate"), 1) << "only where the site had been told";
    container.answers.clear();
    toy->refuseWindow = true;
    EXPECT_EQ(container.Do(OLEIVERB_SHOW), E_FAIL);
    EXPECT_FALSE(toy->IsInPlaceActive());
    toy->refuseWindow = false;
    EXPECT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
}

TEST_F(ComControl, WithoutASiteThereIsNoPlace) {
    EXPECT_EQ(toy->SetClientSite(nullptr), S_OK);
    EXPECT_EQ(container.Do(OLEIVERB_SHOW), OLE_E_NOT_INPLACEACTIVE);
    EXPECT_EQ(toy->Window(), nullptr);
}

TEST_F(ComControl, HideKeepsTheWindow) {
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    EXPECT_EQ(container.Do(OLEIVERB_HIDE), S_OK);
    EXPECT_FALSE(toy->IsUIActive());
    EXPECT_FALSE(IsWindowVisible(toy->Window()));
    EXPECT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    EXPECT_TRUE(IsWindowVisible(toy->Window()));
}

TEST_F(ComControl, PropertiesAreTheContainersFirst) {
    EXPECT_EQ(container.Do(OLEIVERB_PRIMARY), S_OK);
    EXPECT_EQ(container.Do(OLEIVERB_PROPERTIES), S_OK);
    EXPECT_EQ(container.Count("ShowPropertyFrame"), 2);
    EXPECT_EQ(container.Do(7), OLEOBJ_S_INVALIDVERB);
    EXPECT_EQ(container.Do(-77), E_NOTIMPL);
}

TEST_F(ComControl, RectsMoveTheWindowAndClipIt) {
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    const RECT place = {300, 40, 500, 140};
    EXPECT_EQ(toy->SetObjectRects(&place, &container.site.visible), S_OK);
    const RECT now = PlaceOfWindow();
    EXPECT_TRUE(EqualRect(&now, &place));
    const HRGN region = CreateRectRgn(0, 0, 0, 0);
    RECT box = {};
    EXPECT_NE(GetWindowRgn(toy->Window(), region), 0);
    GetRgnBox(region, &box);
    EXPECT_EQ(box.right, 100) << "the container's view ends there";
    EXPECT_EQ(box.bottom, 100);
    EXPECT_EQ(toy->SetObjectRects(&container.site.at, &container.site.visible), S_OK);
    EXPECT_EQ(GetWindowRgn(toy->Window(), region), 0) << "all of it is in view again";
    DeleteObject(region);
    EXPECT_EQ(toy->SetObjectRects(nullptr, nullptr), E_POINTER);
}

TEST_F(ComControl, CloseSavesWhatIsDirtyAndTellsIt) {
    host::AdviseSink sink;
    DWORD connection = 0;
    ASSERT_EQ(toy->Advise(&sink, &connection), S_OK);
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    container.calls.clear();
    toy->SetDirty(true);
    EXPECT_EQ(toy->Close(OLECLOSE_SAVEIFDIRTY), S_OK);
    EXPECT_EQ(container.calls.front(), "SaveObject");
    EXPECT_EQ(container.calls.back(), "OnInPlaceDeactivate");
    EXPECT_EQ(sink.closes, 1);
    toy->SetDirty(false);
    container.calls.clear();
    EXPECT_EQ(toy->Close(OLECLOSE_SAVEIFDIRTY), S_OK);
    EXPECT_TRUE(container.calls.empty());
    toy->TellSaved();
    EXPECT_EQ(sink.saves, 1);
    EXPECT_EQ(toy->Unadvise(connection), S_OK);
    EXPECT_EQ(toy->Unadvise(connection), OLE_E_NOCONNECTION);
}

TEST_F(ComControl, ExtentStartsAtItsDefaultAndMakesDirty) {
    SIZEL extent = {};
    ASSERT_EQ(toy->GetExtent(DVASPECT_CONTENT, &extent), S_OK);
    const SIZE pixels = HimetricToPixels(extent);
    EXPECT_NEAR(pixels.cx, 320, 1);
    EXPECT_NEAR(pixels.cy, 200, 1);
    EXPECT_FALSE(toy->IsDirty());
    SIZEL wanted = {5000, 4000};
    EXPECT_EQ(toy->SetExtent(DVASPECT_CONTENT, &wanted), S_OK);
    EXPECT_TRUE(toy->IsDirty());
    EXPECT_EQ(toy->Extent().cx, 5000);
    EXPECT_EQ(toy->SetExtent(DVASPECT_ICON, &wanted), DV_E_DVASPECT);
    toy->SetSizesItself(true);
    EXPECT_EQ(toy->SetExtent(DVASPECT_CONTENT, &wanted), S_OK) << "nothing changes";
    wanted.cx = 1;
    EXPECT_EQ(toy->SetExtent(DVASPECT_CONTENT, &wanted), E_FAIL);
    EXPECT_EQ(toy->Extent().cx, 5000);
}

TEST_F(ComControl, RegistryAnswersForVerbsAndTheTableForTheRest) {
    IEnumOLEVERB* verbs = nullptr;
    EXPECT_EQ(toy->EnumVerbs(&verbs), OLE_S_USEREG);
    DWORD status = 0;
    EXPECT_EQ(toy->GetMiscStatus(DVASPECT_CONTENT, &status), S_OK);
    EXPECT_EQ(status, 131473u);
    EXPECT_EQ(toy->GetMiscStatus(DVASPECT_ICON, &status), S_OK);
    EXPECT_EQ(status, 0u);
    LPOLESTR type = nullptr;
    ASSERT_EQ(toy->GetUserType(USERCLASSTYPE_FULL, &type), S_OK);
    EXPECT_STREQ(type, L"Toy");
    CoTaskMemFree(type);
    CLSID id = {};
    EXPECT_EQ(toy->GetUserClassID(&id), S_OK);
    EXPECT_TRUE(IsEqualCLSID(id, __uuidof(Toy)));
}

TEST_F(ComControl, AmbientsAreReadWhereTheContainerHasThem) {
    EXPECT_TRUE(toy->Ambient().IsUserMode()) << "run time, where nobody says";
    EXPECT_EQ(toy->Ambient().DisplayName(), L"");
    container.site.ambients[DISPID_AMBIENT_USERMODE] = _variant_t(false);
    container.site.ambients[DISPID_AMBIENT_DISPLAYNAME] = _variant_t(L"Toy1");
    EXPECT_FALSE(toy->Ambient().IsUserMode());
    EXPECT_EQ(toy->Ambient().DisplayName(), L"Toy1");
    EXPECT_EQ(toy->OnAmbientPropertyChange(DISPID_AMBIENT_DISPLAYNAME), S_OK);
    EXPECT_EQ(toy->ambientsChanged, std::vector<DISPID>{DISPID_AMBIENT_DISPLAYNAME});
    _variant_t value;
    EXPECT_EQ(toy->Ambient().Get(DISPID_AMBIENT_FONT, VT_DISPATCH, value), DISP_E_MEMBERNOTFOUND);
}

TEST_F(ComControl, FreezesAreCounted) {
    toy->FreezeEvents(FALSE);
    EXPECT_FALSE(toy->EventsAreFrozen());
    toy->FreezeEvents(TRUE);
    toy->FreezeEvents(TRUE);
    toy->FreezeEvents(FALSE);
    EXPECT_TRUE(toy->EventsAreFrozen());
    toy->FreezeEvents(FALSE);
    EXPECT_FALSE(toy->EventsAreFrozen());
}

TEST_F(ComControl, KeysAreTheControlsFirstThenTheContainers) {
    MSG key = {nullptr, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    toy->onKey = [](MSG& message) { return message.wParam == VK_TAB; };
    EXPECT_EQ(toy->TranslateAccelerator(&key), S_OK);
    EXPECT_TRUE(container.calls.empty());
    key.wParam = 'A';
    container.answers["TranslateAccelerator"] = S_FALSE;
    EXPECT_EQ(toy->TranslateAccelerator(&key), S_FALSE);
    EXPECT_TRUE(container.Saw("TranslateAccelerator"));
}

TEST_F(ComControl, MessagesGoThroughTheHook) {
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    EXPECT_EQ(SendMessageA(toy->Window(), WM_USER, 0, 0), 4711);
    EXPECT_EQ(SendMessageA(toy->Window(), WM_USER + 1, 0, 0), 0);
    EXPECT_EQ(std::ranges::count(toy->messages, UINT{WM_USER + 1}), 1);
}

TEST_F(ComControl, WhatAHookThrowsStaysInsideTheWindowProcedure) {
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    container.onCall = [](const std::string& call) {
        if (call == "OnFocus")
            throw 1;
    };
    SendMessageA(toy->Window(), WM_SETFOCUS, 0, 0);
    EXPECT_TRUE(container.Saw("OnFocus"));
    container.onCall = {};
}

TEST_F(ComControl, FocusAndClicksActivateTheUserInterface) {
    ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
    SendMessageA(toy->Window(), WM_MOUSEACTIVATE, reinterpret_cast<WPARAM>(container.window),
                 MAKELPARAM(HTCLIENT, WM_LBUTTONDOWN));
    EXPECT_TRUE(toy->IsUIActive());
    toy->UIDeactivate();
    SetFocus(container.window);
    EXPECT_TRUE(container.Saw("OnFocus lost"));
    SetFocus(toy->Window());
    EXPECT_TRUE(toy->IsUIActive());
}

TEST_F(ComControl, PictureIsDrawnIntoTheBoundsAndTheContextLeftAsItCame) {
    const HDC context = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateBitmap(50, 50, 1, 32, nullptr);
    const HGDIOBJ before = SelectObject(context, bitmap);
    PatBlt(context, 0, 0, 50, 50, WHITENESS);
    const HGDIOBJ pen = GetCurrentObject(context, OBJ_PEN);
    const RECTL bounds = {10, 10, 30, 30};
    const auto draw = [&](DWORD aspect, const RECTL* where) {
        return toy->Draw(aspect, -1, nullptr, nullptr, nullptr, context, where, nullptr, nullptr, 0);
    };
    EXPECT_EQ(draw(DVASPECT_CONTENT, &bounds), S_OK);
    EXPECT_EQ(GetPixel(context, 15, 15), RGB(0, 0, 0));
    EXPECT_EQ(GetPixel(context, 5, 5), RGB(255, 255, 255));
    EXPECT_EQ(GetCurrentObject(context, OBJ_PEN), pen);
    EXPECT_EQ(draw(DVASPECT_ICON, &bounds), DV_E_DVASPECT);
    EXPECT_EQ(draw(DVASPECT_CONTENT, nullptr), E_INVALIDARG);
    SelectObject(context, before);
    DeleteObject(bitmap);
    DeleteDC(context);
}

TEST_F(ComControl, ViewIsToldWhileThereIsNoWindow) {
    host::AdviseSink sink;
    EXPECT_EQ(toy->SetAdvise(DVASPECT_CONTENT, 0, &sink), S_OK);
    toy->ViewChanged();
    EXPECT_EQ(sink.views, 1);
    EXPECT_EQ(toy->SetAdvise(DVASPECT_CONTENT, ADVF_PRIMEFIRST | ADVF_ONLYONCE, &sink), S_OK);
    EXPECT_EQ(sink.views, 2);
    toy->ViewChanged();
    EXPECT_EQ(sink.views, 2);
    EXPECT_EQ(sink.References(), 0u);
    IAdviseSink* kept = &sink;
    EXPECT_EQ(toy->GetAdvise(nullptr, nullptr, &kept), S_OK);
    EXPECT_EQ(kept, nullptr);
}

TEST_F(ComControl, HitsAreByTheBounds) {
    const RECT bounds = {0, 0, 10, 10};
    DWORD result = 0;
    EXPECT_EQ(toy->QueryHitPoint(DVASPECT_CONTENT, &bounds, {5, 5}, 0, &result), S_OK);
    EXPECT_EQ(result, static_cast<DWORD>(HITRESULT_HIT));
    EXPECT_EQ(toy->QueryHitPoint(DVASPECT_CONTENT, &bounds, {10, 5}, 0, &result), S_OK);
    EXPECT_EQ(result, static_cast<DWORD>(HITRESULT_OUTSIDE));
    const RECT apart = {20, 20, 30, 30};
    EXPECT_EQ(toy->QueryHitRect(DVASPECT_CONTENT, &bounds, &apart, 0, &result), S_OK);
    EXPECT_EQ(result, static_cast<DWORD>(HITRESULT_OUTSIDE));
}

constexpr FORMATETC metafileFormat = {CF_METAFILEPICT, nullptr, DVASPECT_CONTENT, -1, TYMED_MFPICT};

TEST_F(ComControl, PictureIsToBeHadAsAMetafile) {
    FORMATETC format = metafileFormat;
    STGMEDIUM medium = {};
    EXPECT_EQ(toy->QueryGetData(&format), S_OK);
    ASSERT_EQ(toy->GetData(&format, &medium), S_OK);
    const auto* picture = static_cast<const METAFILEPICT*>(GlobalLock(medium.hMetaFilePict));
    EXPECT_EQ(picture->xExt, toy->Extent().cx);
    EXPECT_EQ(picture->yExt, toy->Extent().cy);
    EXPECT_EQ(picture->mm, MM_ANISOTROPIC);
    const HDC context = CreateCompatibleDC(nullptr);
    const HBITMAP bitmap = CreateBitmap(50, 50, 1, 32, nullptr);
    const HGDIOBJ before = SelectObject(context, bitmap);
    PatBlt(context, 0, 0, 50, 50, WHITENESS);
    SetMapMode(context, MM_ANISOTROPIC);
    SetViewportExtEx(context, 20, 20, nullptr);
    EXPECT_TRUE(PlayMetaFile(context, picture->hMF));
    SetMapMode(context, MM_TEXT);
    EXPECT_EQ(GetPixel(context, 10, 10), RGB(0, 0, 0));
    EXPECT_EQ(GetPixel(context, 30, 30), RGB(255, 255, 255));
    SelectObject(context, before);
    DeleteObject(bitmap);
    DeleteDC(context);
    GlobalUnlock(medium.hMetaFilePict);
    ReleaseStgMedium(&medium);
}

TEST_F(ComControl, OtherDataAreRefused) {
    struct Refusal {
        FORMATETC format;
        HRESULT result;
    };
    const Refusal refusals[] = {
        {{CF_TEXT, nullptr, DVASPECT_CONTENT, -1, TYMED_MFPICT}, DV_E_FORMATETC},
        {{CF_METAFILEPICT, nullptr, DVASPECT_CONTENT, -1, TYMED_HGLOBAL}, DV_E_TYMED},
        {{CF_METAFILEPICT, nullptr, DVASPECT_ICON, -1, TYMED_MFPICT}, DV_E_DVASPECT},
        {{CF_METAFILEPICT, nullptr, DVASPECT_CONTENT, 0, TYMED_MFPICT}, DV_E_LINDEX},
    };
    for (Refusal refusal : refusals) {
        STGMEDIUM medium = {};
        EXPECT_EQ(toy->QueryGetData(&refusal.format), refusal.result);
        EXPECT_EQ(toy->GetData(&refusal.format, &medium), refusal.result);
    }
    EXPECT_EQ(toy->QueryGetData(nullptr), E_POINTER);
    EXPECT_EQ(toy->GetData(nullptr, nullptr), E_POINTER);
}

TEST_F(ComControl, SinksOfDataHearOfANewPicture) {
    host::AdviseSink sink;
    FORMATETC format = metafileFormat;
    DWORD connection = 0;
    EXPECT_EQ(toy->DUnadvise(1), OLE_E_NOCONNECTION);
    ASSERT_EQ(toy->DAdvise(&format, 0, &sink, &connection), S_OK);
    toy->ViewChanged();
    EXPECT_EQ(sink.data, 1);
    EXPECT_EQ(toy->DUnadvise(connection), S_OK);
    toy->ViewChanged();
    EXPECT_EQ(sink.data, 1);
}

TEST_F(ComControl, QuickActivationConnectsEverything) {
    container.Drop();
    host::PropertySink properties;
    host::EventSink events(__uuidof(_IToyEvents));
    host::AdviseSink view;
    QACONTAINER in = {};
    in.cbSize = sizeof in;
    in.pClientSite = &container.site;
    in.pAdviseSink = reinterpret_cast<decltype(in.pAdviseSink)>(&view);
    in.pPropertyNotifySink = &properties;
    in.pUnkEventSink = &events;
    QACONTROL out = {};
    out.cbSize = sizeof out;
    ASSERT_EQ(toy->QuickActivate(&in, &out), S_OK);
    EXPECT_EQ(out.dwMiscStatus, 131473u);
    EXPECT_EQ(out.dwViewStatus, static_cast<DWORD>(VIEWSTATUS_OPAQUE));
    EXPECT_NE(out.dwEventCookie, 0u);
    EXPECT_NE(out.dwPropNotifyCookie, 0u);
    toy->FireOnChanged(2);
    EXPECT_EQ(properties.changed, std::vector<DISPID>{2});
    toy.Reset();
    EXPECT_EQ(properties.References() + events.References() + view.References(), 0u);
    EXPECT_EQ(container.site.References(), 0u);
}

// What a host may do inside of any call that activation makes.
TEST_F(ComControl, HostMayCloseOrDropItInsideOfEveryCall) {
    const char* calls[] = {"CanInPlaceActivate", "OnInPlaceActivate", "GetWindowContext", "OnUIActivate",
                           "SetActiveObject",    "OnFocus",           "ShowObject"};
    for (const char* moment : calls) {
        SCOPED_TRACE(moment);
        ComPtr<ToyControl> fresh;
        ASSERT_EQ(NewObject(fresh), S_OK);
        host::Container host;
        const int alive = ToyControl::alive;
        ASSERT_EQ(host.Hold(static_cast<IToy*>(fresh.Get())), S_OK);
        fresh.Reset();
        bool dropped = false;
        host.onCall = [&](const std::string& call) {
            if (call == moment && !dropped) {
                dropped = true;
                host.Drop();
            }
        };
        const auto object = host.object.Get(); // the container's own reference goes inside
        object->DoVerb(OLEIVERB_SHOW, nullptr, &host.site, 0, host.window, nullptr);
        EXPECT_TRUE(dropped);
        EXPECT_EQ(ToyControl::alive, alive - 1);
        EXPECT_EQ(host.site.References(), 0u);
        EXPECT_EQ(host.frame.References(), 0u);
        EXPECT_EQ(GetWindow(host.window, GW_CHILD), nullptr);
    }
}

TEST_F(ComControl, WindowThatItsParentTakesAlongIsForgotten) {
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    DestroyWindow(container.window);
    EXPECT_EQ(toy->Window(), nullptr);
    EXPECT_EQ(toy->Close(OLECLOSE_NOSAVE), S_OK);
    EXPECT_FALSE(toy->IsInPlaceActive());
}

TEST_F(ComControl, LastReleaseTakesTheWindowAndTheSiteAlong) {
    ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
    const HWND window = toy->Window();
    container.frame.active.Reset(); // a frame holds it as long as it is told
    container.object.Reset();
    toy.Reset();
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(container.site.References(), 0u);
    EXPECT_EQ(container.frame.References(), 0u);
}

TEST(ComControlCycles, CountsSeeOneMore) {
    const int drawing = host::GdiObjects();
    const HRGN region = CreateRectRgn(0, 0, 1, 1);
    EXPECT_EQ(host::GdiObjects(), drawing + 1);
    DeleteObject(region);
    EXPECT_EQ(host::GdiObjects(), drawing);
    const host::Container other; // what a thread's first window brings along is there now
    const int windows = host::ThreadWindows();
    {
        host::Container container;
        ComPtr<ToyControl> toy;
        ASSERT_EQ(NewObject(toy), S_OK);
        ASSERT_EQ(container.Hold(static_cast<IToy*>(toy.Get())), S_OK);
        ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
        EXPECT_EQ(host::ThreadWindows(), windows + 2) << "the container's and the control's";
    }
    EXPECT_EQ(host::ThreadWindows(), windows);
}

TEST(ComControlCycles, NothingIsLeftAfterFiveHundred) {
    const auto cycle = [] {
        ComPtr<ToyControl> toy;
        ASSERT_EQ(NewObject(toy), S_OK);
        host::Container container;
        ASSERT_EQ(container.Hold(static_cast<IToy*>(toy.Get())), S_OK);
        ASSERT_EQ(container.Do(OLEIVERB_SHOW), S_OK);
        UpdateWindow(toy->Window());
        const RECT clipped = {300, 40, 500, 140};
        toy->SetObjectRects(&clipped, &container.site.visible);
        toy.Reset();
        container.Drop();
        EXPECT_EQ(container.site.References() + container.frame.References(), 0u);
    };
    cycle(); // what is made once stays
    const int alive = ToyControl::alive;
    const LONG locks = ModuleLockCount();
    const int open = ToyControl::windowsMade - ToyControl::windowsGone;
    const int drawing = host::GdiObjects();
    const int windows = host::ThreadWindows();
    for (int i = 0; i < 500; ++i)
        cycle();
    EXPECT_EQ(ToyControl::alive, alive);
    EXPECT_EQ(ModuleLockCount(), locks);
    EXPECT_EQ(locks, 0);
    EXPECT_EQ(ToyControl::windowsMade - ToyControl::windowsGone, open);
    EXPECT_LE(host::GdiObjects(), drawing);
    EXPECT_LE(host::ThreadWindows(), windows);
    EXPECT_EQ(CanUnloadNow(), S_OK);
}

} // namespace
