// What is written into the registry and taken away again; the machine's and the user's hives are keys of the
// test's.
#include <toy.h>

#include "com/modulefile.h"
#include "com/registration.h"

#include <gtest/gtest.h>
#include <oaidl.h>
#include <sddl.h>

namespace {

constexpr wchar_t id[] = L"{7C1FB7A2-3C0E-4C39-9D3C-5B1D0C6A11E4}";
constexpr wchar_t library[] = L"{7C1FB7A2-3C0E-4C39-9D3C-5B1D0C6A11E0}";
constexpr wchar_t toyInterface[] = L"{7C1FB7A2-3C0E-4C39-9D3C-5B1D0C6A11E2}";
constexpr wchar_t eventInterface[] = L"{7C1FB7A2-3C0E-4C39-9D3C-5B1D0C6A11E3}";
constexpr wchar_t privateKey[] = L"Software\\TarnComTests";
constexpr GUID libraryId = {0x7c1fb7a2, 0x3c0e, 0x4c39, {0x9d, 0x3c, 0x5b, 0x1d, 0x0c, 0x6a, 0x11, 0xe0}};

// A hive of the system that stands on a key of the test's until the end.
class BorrowedHive {
  public:
    BorrowedHive(HKEY hive, const std::wstring& name) : hive_(hive), path_(privateKey + (L"\\" + name)) {
        RegCreateKeyExW(HKEY_CURRENT_USER, path_.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_,
                        nullptr);
    }
    ~BorrowedHive() { RegCloseKey(key_); }
    BorrowedHive(const BorrowedHive&) = delete;
    BorrowedHive& operator=(const BorrowedHive&) = delete;

    void Borrow() { RegOverridePredefKey(hive_, key_); }
    void GiveBack() { RegOverridePredefKey(hive_, nullptr); }
    HKEY Key() const { return key_; }

  private:
    HKEY hive_;
    std::wstring path_;
    HKEY key_ = nullptr;
};

// Nobody may write to the key while it lives.
class WriteProtection {
  public:
    WriteProtection(HKEY below, const wchar_t* path) {
        RegCreateKeyExW(below, path, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &key_, nullptr);
        Set(L"D:(D;;0x6;;;WD)(A;;KA;;;WD)"); // denied: setting values, creating keys
    }
    ~WriteProtection() {
        Set(L"D:(A;;KA;;;WD)");
        RegCloseKey(key_);
    }
    WriteProtection(const WriteProtection&) = delete;
    WriteProtection& operator=(const WriteProtection&) = delete;

  private:
    void Set(const wchar_t* text) {
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        EXPECT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(text, SDDL_REVISION_1, &descriptor,
                                                                         nullptr));
        EXPECT_EQ(RegSetKeySecurity(key_, DACL_SECURITY_INFORMATION, descriptor), ERROR_SUCCESS);
        LocalFree(descriptor);
    }

    HKEY key_ = nullptr;
};

std::wstring ValueOf(HKEY hive, const std::wstring& key, const wchar_t* name = nullptr) {
    wchar_t text[1024] = {};
    DWORD size = sizeof text;
    const std::wstring path = L"Software\\Classes\\" + key;
    if (RegGetValueW(hive, path.c_str(), name, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS)
        return L"(none)";
    return text;
}

int CountKeys(HKEY key) {
    int count = 0;
    wchar_t name[256];
    for (DWORD index = 0; RegEnumKeyW(key, index, name, 256) == ERROR_SUCCESS; ++index) {
        HKEY child = nullptr;
        if (RegOpenKeyExW(key, name, 0, KEY_READ, &child) == ERROR_SUCCESS) {
            count += 1 + CountKeys(child);
            RegCloseKey(child);
        }
    }
    return count;
}

class ComRegistration : public testing::Test {
  public:
    ComRegistration() {
        machine.Borrow();
        user.Borrow();
    }
    ~ComRegistration() override {
        user.GiveBack();
        machine.GiveBack();
        RegDeleteTreeW(HKEY_CURRENT_USER, privateKey);
        RegDeleteKeyW(HKEY_CURRENT_USER, privateKey);
    }

    const CoclassRegistration rows[2] = {
        {&__uuidof(Toy), L"Toy Control", L"Tests.Toy", L"1", true, L"131473", L"101"},
        {&__uuidof(IToy), L"Toy Page"},
    };
    ModuleRegistration module = {ModulePath(), &libraryId, L"1.0", rows};
    BorrowedHive machine{HKEY_LOCAL_MACHINE, L"Machine"};
    BorrowedHive user{HKEY_CURRENT_USER, L"User"};
};

TEST_F(ComRegistration, EveryRowIsWritten) {
    ASSERT_EQ(RegisterModule(module), S_OK);
    const std::wstring path = ModulePath();
    const std::wstring coclass = std::wstring(L"CLSID\\") + id;
    const std::wstring type = std::wstring(L"TypeLib\\") + library + L"\\1.0";
    const std::wstring dual = std::wstring(L"Interface\\") + toyInterface;
    struct Row {
        std::wstring key;
        const wchar_t* name;
        std::wstring value;
    };
    const Row expected[] = {
        {coclass, nullptr, L"Toy Control"},
        {coclass + L"\\InprocServer32", nullptr, path},
        {coclass + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {coclass + L"\\ProgID", nullptr, L"Tests.Toy.1"},
        {coclass + L"\\VersionIndependentProgID", nullptr, L"Tests.Toy"},
        {coclass + L"\\TypeLib", nullptr, library},
        {coclass + L"\\Version", nullptr, L"1.0"},
        {coclass + L"\\MiscStatus", nullptr, L"0"},
        {coclass + L"\\MiscStatus\\1", nullptr, L"131473"},
        {coclass + L"\\ToolboxBitmap32", nullptr, path + L", 101"},
        {coclass + L"\\Control", nullptr, L""},
        {coclass + L"\\Insertable", nullptr, L""},
        {coclass + L"\\Programmable", nullptr, L""},
        {coclass + L"\\verb\\0", nullptr, L"&Properties...,0,2"},
        {coclass + L"\\Implemented Categories\\{40FC6ED4-2438-11CF-A3DB-080036F12502}", nullptr, L""},
        {L"Tests.Toy", nullptr, L"Toy Control"},
        {L"Tests.Toy\\CLSID", nullptr, id},
        {L"Tests.Toy\\CurVer", nullptr, L"Tests.Toy.1"},
        {L"Tests.Toy.1", nullptr, L"Toy Control"},
        {L"Tests.Toy.1\\CLSID", nullptr, id},
        {std::wstring(L"CLSID\\") + toyInterface, nullptr, L"Toy Page"},
        {std::wstring(L"CLSID\\") + toyInterface + L"\\InprocServer32", nullptr, path},
        {std::wstring(L"CLSID\\") + toyInterface + L"\\ProgID", nullptr, L"(none)"},
        {std::wstring(L"CLSID\\") + toyInterface + L"\\Control", nullptr, L"(none)"},
        {type, nullptr, L"Toy 1.0 Type Library"},
        {type + L"\\FLAGS", nullptr, L"0"},
        {type + L"\\HELPDIR", nullptr, path.substr(0, path.find_last_of(L'\\'))},
        {type + (sizeof(void*) == 8 ? L"\\0\\win64" : L"\\0\\win32"), nullptr, path},
        {dual, nullptr, L"IToy"},
        {dual + L"\\ProxyStubClsid32", nullptr, L"{00020424-0000-0000-C000-000000000046}"},
        {dual + L"\\TypeLib", nullptr, library},
        {dual + L"\\TypeLib", L"Version", L"1.0"},
        {std::wstring(L"Interface\\") + eventInterface, nullptr, L"_IToyEvents"},
        {std::wstring(L"Interface\\") + eventInterface + L"\\ProxyStubClsid32", nullptr,
         L"{00020420-0000-0000-C000-000000000046}"},
    };
    for (const Row& row : expected)
        EXPECT_EQ(ValueOf(machine.Key(), row.key, row.name), row.value) << testing::PrintToString(row.key);
    EXPECT_EQ(CountKeys(user.Key()), 0) << "nothing for the user";
}

TEST_F(ComRegistration, RemovalLeavesNoKeyOfOursAndTheOthersAlone) {
    HKEY foreign = nullptr;
    const wchar_t* others[] = {L"Software\\Classes\\CLSID\\{Other}", L"Software\\Classes\\TypeLib\\{Other}",
                               L"Software\\Classes\\Interface\\{Other}", L"Software\\Classes\\Tests.Toys"};
    for (const wchar_t* other : others) {
        RegCreateKeyW(machine.Key(), other, &foreign);
        RegCloseKey(foreign);
    }
    const int before = CountKeys(machine.Key());
    ASSERT_EQ(RegisterModule(module), S_OK);
    EXPECT_GT(CountKeys(machine.Key()), before + 20);
    const int registered = CountKeys(machine.Key());
    EXPECT_EQ(RegisterModule(module), S_OK) << "again";
    EXPECT_EQ(CountKeys(machine.Key()), registered);
    EXPECT_EQ(UnregisterModule(module), S_OK);
    EXPECT_EQ(CountKeys(machine.Key()), before);
    EXPECT_EQ(UnregisterModule(module), S_OK) << "again";
    EXPECT_EQ(CountKeys(machine.Key()), before);
}

TEST_F(ComRegistration, OtherWidthKeepsTheSharedKeys) {
    ASSERT_EQ(RegisterModule(module), S_OK);
    const std::wstring language = std::wstring(L"TypeLib\\") + library + L"\\1.0\\0";
    const std::wstring other =
        L"Software\\Classes\\" + language + (sizeof(void*) == 8 ? L"\\win32" : L"\\win64");
    HKEY key = nullptr;
    RegCreateKeyW(machine.Key(), other.c_str(), &key);
    RegCloseKey(key);
    EXPECT_EQ(UnregisterModule(module), S_OK);
    EXPECT_EQ(ValueOf(machine.Key(), std::wstring(L"TypeLib\\") + library + L"\\1.0"),
              L"Toy 1.0 Type Library");
    EXPECT_EQ(ValueOf(machine.Key(), std::wstring(L"CLSID\\") + id), L"(none)");
    EXPECT_EQ(ValueOf(machine.Key(), L"Tests.Toy\\CLSID"), id);
    EXPECT_EQ(ValueOf(machine.Key(), L"Tests.Toy.1\\CLSID"), id);
}

TEST_F(ComRegistration, MachineThatRefusesMeansTheUser) {
    const WriteProtection protection(machine.Key(), L"Software\\Classes");
    EXPECT_EQ(RegisterModule(module), S_OK);
    EXPECT_EQ(ValueOf(machine.Key(), L"Tests.Toy\\CLSID"), L"(none)");
    EXPECT_EQ(ValueOf(user.Key(), L"Tests.Toy\\CLSID"), id);
    EXPECT_EQ(UnregisterModule(module), S_OK) << "there is nothing of ours that would have to be written";
    EXPECT_EQ(ValueOf(user.Key(), L"Tests.Toy\\CLSID"), L"(none)");
}

TEST_F(ComRegistration, RemovalThatIsRefusedSaysSo) {
    ASSERT_EQ(RegisterModule(module), S_OK);
    const WriteProtection protection(machine.Key(), L"Software\\Classes");
    EXPECT_EQ(UnregisterModule(module), HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED));
    EXPECT_EQ(ValueOf(machine.Key(), L"Tests.Toy\\CLSID"), id);
}

TEST_F(ComRegistration, ModuleWithoutALibraryIsRefusedBeforeAnythingIsWritten) {
    module.path += L".none";
    EXPECT_TRUE(FAILED(RegisterModule(module)));
    EXPECT_EQ(CountKeys(machine.Key()) + CountKeys(user.Key()), 0);
}

} // namespace
