#include "registered.h"

#include "support/host.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace host {

namespace {

class Output {
  public:
    Output() {
        char folder[MAX_PATH] = {}, name[MAX_PATH] = {};
        GetTempPathA(sizeof folder, folder);
        GetTempFileNameA(folder, "out", 0, name);
        path_ = name;
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        file_ = CreateFileA(name, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                            CREATE_ALWAYS, 0, nullptr);
    }
    ~Output() {
        CloseHandle(file_);
        DeleteFileA(path_.c_str());
    }
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    HANDLE File() const { return file_; }
    std::string Text() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

  private:
    std::string path_;
    HANDLE file_;
};

void ListKeys(HKEY hive, const std::string& path, std::vector<std::string>& names) {
    HKEY key = nullptr;
    if (RegOpenKeyExA(hive, path.c_str(), 0, KEY_READ, &key) != ERROR_SUCCESS)
        return;
    char name[256] = {};
    for (DWORD index = 0;; ++index) {
        DWORD length = sizeof name;
        if (RegEnumKeyExA(key, index, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.push_back((hive == HKEY_CURRENT_USER ? "user " : "machine ") + path + "\\" + name);
    }
    RegCloseKey(key);
}

bool RunRegsvr32(const char* switches) {
    const Ended ended = Run("regsvr32 " + std::string(switches) + " \"" + ModuleFolder() + "Lantry.ocx\"");
    return ended.inTime && ended.code == 0;
}

class Registration : public testing::Environment {
    void SetUp() override { ASSERT_TRUE(Register()); }
    void TearDown() override { EXPECT_TRUE(Unregister()); }
};

[[maybe_unused]] const testing::Environment* const registration =
    testing::AddGlobalTestEnvironment(new Registration);

} // namespace

std::string ModuleFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(GetModuleHandleA("Lantry.ocx"), path, MAX_PATH);
    const std::string text(path);
    return text.substr(0, text.find_last_of('\\') + 1);
}

bool Register() {
    return RunRegsvr32("/s");
}

bool Unregister() {
    return RunRegsvr32("/s /u");
}

std::vector<std::string> ListClasses() {
    std::vector<std::string> names;
    for (const HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER}) {
        for (const char* below : {"", "\\CLSID", "\\Interface", "\\TypeLib"})
            ListKeys(hive, std::string("Software\\Classes") + below, names);
    }
    return names;
}

Ended Run(const std::string& commandLine, DWORD limitMilliseconds) {
    const Output output;
    STARTUPINFOA start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = start.hStdError = output.File();
    PROCESS_INFORMATION process = {};
    std::string line = commandLine;
    if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process))
        return {};
    Ended ended;
    ended.inTime = PumpUntil([&] { return WaitForSingleObject(process.hProcess, 0) == WAIT_OBJECT_0; },
                             limitMilliseconds);
    if (!ended.inTime)
        TerminateProcess(process.hProcess, 1);
    GetExitCodeProcess(process.hProcess, &ended.code);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    ended.output = output.Text();
    return ended;
}

} // namespace host
