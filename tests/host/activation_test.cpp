// The control made and used from outside, as programs and script engines do: by the registry or by the
// manifest.
#include "byname.h"
#include "registered.h"
#include "support/line.h"
#include "support/sinks.h"
#include "TarnLink.h"

#include <ocidl.h>

using namespace host;
using Microsoft::WRL::ComPtr;

namespace {

constexpr DWORD miscStatus = 131473;
constexpr DISPID receive = 1; // the event

class ActivationTest : public LineTest {
  protected:
    void SetUp() override {
        LineTest::SetUp();
        CoInitialize(nullptr);
    }
    void TearDown() override { CoUninitialize(); }

    static HRESULT Make(ComPtr<ITarnComm>& control) {
        return CoCreateInstance(CLSID_TarnComm, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&control));
    }
};

std::string DefaultValue(const std::string& key) {
    char text[MAX_PATH] = {};
    LONG size = sizeof text;
    return RegQueryValueA(HKEY_CLASSES_ROOT, key.c_str(), text, &size) == ERROR_SUCCESS ? text : "(none)";
}

// What the manifest says holds while it lives.
class ManifestInForce {
  public:
    explicit ManifestInForce(const std::string& path) {
        ACTCTXA description = {};
        description.cbSize = sizeof description;
        description.lpSource = path.c_str();
        context_ = CreateActCtxA(&description);
        active = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_);
    }
    ~ManifestInForce() {
        if (active)
            DeactivateActCtx(0, cookie_);
        if (context_ != INVALID_HANDLE_VALUE)
            ReleaseActCtx(context_);
    }
    ManifestInForce(const ManifestInForce&) = delete;
    ManifestInForce& operator=(const ManifestInForce&) = delete;

    bool active = false;

  private:
    HANDLE context_ = INVALID_HANDLE_VALUE;
    ULONG_PTR cookie_ = 0;
};

} // namespace

TEST_F(ActivationTest, TheRegistryTellsWhatHostsAsk) {
    const std::string key = "CLSID\\{0EA7156F-80D9-46C4-B722-2C416B03DEF1}";
    EXPECT_EQ(DefaultValue(key), "Tarn Comm Control");
    EXPECT_EQ(DefaultValue(key + "\\InprocServer32"), ModuleFolder() + "Lantry.ocx");
    EXPECT_EQ(DefaultValue(key + "\\ProgID"), "TarnLink.TarnComm.1");
    EXPECT_EQ(DefaultValue(key + "\\MiscStatus\\1"), std::to_string(miscStatus));
    EXPECT_EQ(DefaultValue(key + "\\ToolboxBitmap32"), ModuleFolder() + "Lantry.ocx, 101");
    EXPECT_EQ(DefaultValue("TarnLink.TarnComm\\CurVer"), "TarnLink.TarnComm.1");
    const HMODULE module = GetModuleHandleA("Lantry.ocx");
    const HANDLE picture = LoadImageA(module, MAKEINTRESOURCEA(101), IMAGE_BITMAP, 0, 0, 0);
    BITMAP bitmap = {};
    EXPECT_NE(GetObjectA(picture, sizeof bitmap, &bitmap), 0);
    EXPECT_EQ(bitmap.bmWidth, 16);
    EXPECT_EQ(bitmap.bmHeight, 16);
    DeleteObject(picture);
}

struct PageRow {
    const CLSID& id;
    const wchar_t* title;
};
const PageRow pages[] = {
    {CLSID_PropCommunications, L"&Communications"},
    {CLSID_PropTerminal, L"&Terminal"},
    {CLSID_PropWireTap, L"&WireTap"},
    {CLSID_PropAbout, L"&About"},
};

void ExpectPages() {
    for (const PageRow& row : pages) {
        SCOPED_TRACE(testing::PrintToString(row.title));
        ComPtr<IPropertyPage> page;
        ASSERT_EQ(CoCreateInstance(row.id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&page)), S_OK);
        PROPPAGEINFO info = {};
        info.cb = sizeof info;
        ASSERT_EQ(page->GetPageInfo(&info), S_OK);
        EXPECT_STREQ(info.pszTitle, row.title);
        EXPECT_GT(info.size.cx, 0);
        CoTaskMemFree(info.pszTitle);
        CoTaskMemFree(info.pszDocString);
    }
}

TEST_F(ActivationTest, ThePropertyPagesAreMadeByTheirIdentifiers) {
    ExpectPages();
}

TEST_F(ActivationTest, RegistrationLeavesNothingBehind) {
    ASSERT_TRUE(Unregister());
    const std::vector<std::string> before = ListClasses();
    ASSERT_TRUE(Register());
    const std::vector<std::string> registered = ListClasses();
    EXPECT_GT(registered.size(), before.size());
    ASSERT_TRUE(Unregister());
    EXPECT_TRUE(ListClasses() == before);
    ASSERT_TRUE(Register());
}

TEST_F(ActivationTest, TheTypeLibraryIsFound) {
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadRegTypeLib(LIBID_TarnLink, 1, 0, 0, &library), S_OK);
}

TEST_F(ActivationTest, TheControlSaysTheSameStatusAsTheRegistry) {
    ComPtr<ITarnComm> control;
    ASSERT_EQ(Make(control), S_OK);
    ComPtr<IOleObject> object;
    ASSERT_EQ(control.As(&object), S_OK);
    DWORD status = 0;
    EXPECT_EQ(object->GetMiscStatus(DVASPECT_CONTENT, &status), S_OK);
    EXPECT_EQ(status, miscStatus);
}

TEST_F(ActivationTest, ByIdentifierAndTableItTalksAndTellsWhatComes) {
    ComPtr<ITarnComm> control;
    ASSERT_EQ(Make(control), S_OK);
    EventSink sink(DIID__ITarnCommEvents);
    ComPtr<IConnectionPointContainer> points;
    ComPtr<IConnectionPoint> point;
    DWORD cookie = 0;
    ASSERT_EQ(control.As(&points), S_OK);
    ASSERT_EQ(points->FindConnectionPoint(DIID__ITarnCommEvents, &point), S_OK);
    ASSERT_EQ(point->Advise(&sink, &cookie), S_OK);
    FarEnd far_;
    EXPECT_EQ(control->put_AutoProcess(0), S_OK);
    EXPECT_EQ(control->put_CommPort(_variant_t(L"COM5")), S_OK);
    EXPECT_EQ(control->put_Settings(_bstr_t(L"115200,n,8,1")), S_OK);
    EXPECT_EQ(control->put_RThreshold(1), S_OK);
    EXPECT_EQ(control->put_PortOpen(VARIANT_TRUE), S_OK);
    VARIANT_BOOL open = VARIANT_FALSE;
    EXPECT_EQ(control->get_PortOpen(&open), S_OK);
    ASSERT_EQ(open, VARIANT_TRUE);
    EXPECT_EQ(control->put_Output(_variant_t(L"hello")), S_OK);
    EXPECT_EQ(far_.Read(5), "hello");
    ASSERT_TRUE(far_.Send("x"));
    EXPECT_TRUE(PumpUntil([&] { return std::ranges::count(sink.events, receive) > 0; }));
    _variant_t input;
    EXPECT_EQ(control->get_Input(&input), S_OK);
    EXPECT_EQ(input, _variant_t(L"x"));
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(sink.References(), 0u);
}

TEST_F(ActivationTest, ByNameItTalksAndItsErrorsHaveWords) {
    CLSID id = {};
    ComPtr<IDispatch> object;
    ASSERT_EQ(CLSIDFromProgID(L"TarnLink.TarnComm", &id), S_OK);
    EXPECT_TRUE(IsEqualCLSID(id, CLSID_TarnComm));
    ASSERT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&object)), S_OK);
    ByName control(object);
    control.Get(L"Input");
    EXPECT_EQ(control.result, static_cast<HRESULT>(0x800A0005));
    EXPECT_EQ(control.problem, L"Cannot access the Input property while AutoReceive is True.");
    FarEnd far_;
    EXPECT_EQ(control.Put(L"AutoReceive", _variant_t(false)), S_OK);
    EXPECT_EQ(control.Put(L"CommPort", 5L), S_OK);
    EXPECT_EQ(control.Put(L"Settings", L"115200,n,8,1"), S_OK);
    EXPECT_EQ(control.Put(L"PortOpen", _variant_t(true)), S_OK);
    ASSERT_EQ(control.Get(L"PortOpen"), _variant_t(true));
    EXPECT_EQ(control.Get(L"CommPort"), _variant_t(L"COM5"));
    EXPECT_EQ(control.Put(L"Output", L"by name"), S_OK);
    EXPECT_EQ(far_.Read(7), "by name");
    EXPECT_EQ(control.Put(L"PortOpen", _variant_t(false)), S_OK);
    control.Get(L"NoSuchThing");
    EXPECT_EQ(control.result, DISP_E_UNKNOWNNAME);
}

TEST_F(ActivationTest, ObjectsAreNotAggregatedAndOtherClassesAreRefused) {
    ComPtr<IUnknown> object;
    EventSink outer(IID_IUnknown);
    EXPECT_EQ(CoCreateInstance(CLSID_TarnComm, &outer, CLSCTX_INPROC_SERVER, IID_IUnknown, &object),
              CLASS_E_NOAGGREGATION);
    using GetClassObject = HRESULT WINAPI(REFCLSID, REFIID, void**);
    const HMODULE module = GetModuleHandleA("Lantry.ocx");
    auto* get = reinterpret_cast<GetClassObject*>(
        reinterpret_cast<void*>(GetProcAddress(module, "DllGetClassObject")));
    ASSERT_NE(get, nullptr);
    EXPECT_EQ(get(CLSID_ScriptExtension, IID_IClassFactory, &object), CLASS_E_CLASSNOTAVAILABLE);
}

TEST_F(ActivationTest, TheModuleMayGoWhenItsObjectsAreGone) {
    using CanUnload = HRESULT WINAPI();
    const HMODULE module = GetModuleHandleA("Lantry.ocx");
    auto* canUnload =
        reinterpret_cast<CanUnload*>(reinterpret_cast<void*>(GetProcAddress(module, "DllCanUnloadNow")));
    ASSERT_NE(canUnload, nullptr);
    EXPECT_EQ(canUnload(), S_OK);
    ComPtr<ITarnComm> control;
    ASSERT_EQ(Make(control), S_OK);
    EXPECT_EQ(canUnload(), S_FALSE);
    control.Reset();
    EXPECT_EQ(canUnload(), S_OK);
}

TEST_F(ActivationTest, TheManifestStandsInForTheRegistry) {
    ASSERT_TRUE(Unregister());
    ComPtr<ITarnComm> control;
    EXPECT_EQ(Make(control), REGDB_E_CLASSNOTREG);
    {
        const ManifestInForce manifest(ModuleFolder() + "Lantry.manifest");
        ASSERT_TRUE(manifest.active);
        EXPECT_EQ(Make(control), S_OK);
        CLSID alias = {}; // the system's own, for as long as the manifest is in force
        EXPECT_EQ(CLSIDFromProgID(L"TarnLink.TarnComm", &alias), S_OK);
        ComPtr<ITarnComm> named;
        EXPECT_EQ(CoCreateInstance(alias, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&named)), S_OK);
        named.Reset();
        DWORD status = 0;
        EXPECT_EQ(OleRegGetMiscStatus(CLSID_TarnComm, DVASPECT_CONTENT, &status), S_OK);
        EXPECT_EQ(status, miscStatus);
        ComPtr<ITypeLib> library;
        EXPECT_EQ(LoadRegTypeLib(LIBID_TarnLink, 1, 0, 0, &library), S_OK);
        LONG rows = 0;
        ASSERT_NE(control.Get(), nullptr);
        EXPECT_EQ(control->get_Rows(&rows), S_OK);
        EXPECT_EQ(rows, 25);
        control.Reset();
        ExpectPages();
    }
    ASSERT_TRUE(Register());
}
