// The property verb where the container has no frame of its own: the system's frame with the control's pages.
#include "com/classfactory.h"
#include "support/container.h"
#include "toycontrol.h"

#include <cstring>

#include <gtest/gtest.h>
#include <olectl.h>

namespace {

class Page : public Unknown<Page, IPropertyPage> {
  public:
    using Faces = FaceTable<FaceRow<IPropertyPage>>;

    HRESULT STDMETHODCALLTYPE SetPageSite(IPropertyPageSite* site) override {
        site_ = site;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Activate(HWND, LPCRECT, BOOL) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Deactivate() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetPageInfo(PROPPAGEINFO* info) override {
        const ULONG size = info->cb;
        *info = {};
        info->cb = size;
        info->pszTitle = static_cast<LPOLESTR>(CoTaskMemAlloc(sizeof L"Page"));
        std::memcpy(info->pszTitle, L"Page", sizeof L"Page");
        info->size = {100, 80};
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetObjects(ULONG count, IUnknown** objects) override {
        ComPtr<IToy> toy;
        for (ULONG i = 0; i < count; ++i)
            objectsSeen += SUCCEEDED(objects[i]->QueryInterface(IID_PPV_ARGS(&toy)));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Show(UINT) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Move(LPCRECT) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE IsPageDirty() override { return S_FALSE; }
    HRESULT STDMETHODCALLTYPE Apply() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE Help(LPCOLESTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*) override { return S_FALSE; }

    static int objectsSeen;

  private:
    ComPtr<IPropertyPageSite> site_;
};

int Page::objectsSeen = 0;

constexpr ClassRow pages[] = {
    {&__uuidof(Toy), CreateClass<Page>},
    {&__uuidof(IToy), CreateClass<Page>},
};

class RunningPages {
  public:
    RunningPages() {
        EXPECT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
        for (size_t i = 0; i < std::size(pages); ++i) {
            ComPtr<IUnknown> factory;
            EXPECT_EQ(GetClassObject(pages, *pages[i].id, IID_PPV_ARGS(&factory)), S_OK);
            EXPECT_EQ(CoRegisterClassObject(*pages[i].id, factory.Get(), CLSCTX_INPROC_SERVER,
                                            REGCLS_MULTIPLEUSE, &cookies_[i]),
                      S_OK);
        }
    }
    ~RunningPages() {
        for (const DWORD cookie : cookies_)
            CoRevokeClassObject(cookie);
        CoUninitialize();
    }
    RunningPages(const RunningPages&) = delete;
    RunningPages& operator=(const RunningPages&) = delete;

  private:
    DWORD cookies_[std::size(pages)] = {};
};

std::wstring caption;

BOOL CALLBACK CancelDialog(HWND window, LPARAM) {
    char name[16] = {};
    GetClassNameA(window, name, sizeof name);
    if (std::string(name) != "#32770" || !IsWindowVisible(window))
        return TRUE;
    wchar_t text[64] = {};
    GetWindowTextW(window, text, 64);
    caption = text;
    PostMessageA(window, WM_COMMAND, IDCANCEL, 0);
    return FALSE;
}

void CALLBACK CancelOnTimer(HWND, UINT, UINT_PTR, DWORD) {
    EnumThreadWindows(GetCurrentThreadId(), CancelDialog, 0);
}

TEST(ComPropertyFrame, SystemsFrameShowsThePagesForTheControl) {
    const LONG locks = ModuleLockCount();
    caption.clear();
    Page::objectsSeen = 0;
    {
        const RunningPages running;
        ComPtr<ToyControl> toy;
        ASSERT_EQ(NewObject(toy), S_OK);
        host::Container container;
        ASSERT_EQ(container.Hold(static_cast<IToy*>(toy.Get())), S_OK);
        container.answers["ShowPropertyFrame"] = E_NOTIMPL;
        container.site.ambients[DISPID_AMBIENT_DISPLAYNAME] = _variant_t(L"Toy1");
        const UINT_PTR timer = SetTimer(nullptr, 0, 50, CancelOnTimer);
        EXPECT_EQ(container.Do(OLEIVERB_PROPERTIES), S_OK);
        KillTimer(nullptr, timer);
    }
    EXPECT_NE(caption.find(L"Toy1"), std::wstring::npos) << testing::PrintToString(caption);
    EXPECT_GE(Page::objectsSeen, 2) << "each page was given the control";
    EXPECT_EQ(ModuleLockCount(), locks);
}

} // namespace
