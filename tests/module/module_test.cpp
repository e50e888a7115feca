// The finished module as a program meets it: loaded, used, unloaded, loaded again.
#include "support/line.h"

#include <psapi.h>
#include <tlhelp32.h>

#include <chrono>
#include <thread>

extern "C" int UseFromC(void);

namespace {

TEST(Module, WorksFromC) {
    EXPECT_EQ(UseFromC(), static_cast<int>(strlen("9600,n,8,1")));
}

TEST(Module, OverloadsOfTheLogFunctionsExist) {
    WireTapMsg(nullptr, 0, "wide ", L"text");
    const host::CommObject object;
    WireTapTransfer(object, "data ", static_cast<const void*>("x"), 1);
}

// Loads a copy of the module under another name, so that nothing else holds it.
class Loaded {
  public:
    Loaded() {
        char path[MAX_PATH], folder[MAX_PATH];
        GetModuleFileNameA(GetModuleHandleA("Lantry.ocx"), path, MAX_PATH);
        GetTempPathA(MAX_PATH, folder);
        copy_ = std::string(folder) + "Lantry2.ocx";
        CopyFileA(path, copy_.c_str(), FALSE);
        module = LoadLibraryA(copy_.c_str());
    }
    ~Loaded() { Unload(); }
    void Unload() {
        if (module)
            FreeLibrary(module);
        module = nullptr;
    }
    bool StillMapped() const { return GetModuleHandleA("Lantry2.ocx") != nullptr; }

    template <class Function>
    Function* Get(const char* name) const {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
    }

    HMODULE module = nullptr;

  private:
    std::string copy_;
};

TEST(Module, UnloadsAndLoadsAgain) {
    for (int turn = 0; turn < 5; ++turn) {
        Loaded loaded;
        ASSERT_NE(loaded.module, nullptr) << "turn " << turn;
        auto* create = loaded.Get<decltype(CreateCommObject)>("CreateCommObject");
        auto* destroy = loaded.Get<decltype(DestroyCommObject)>("DestroyCommObject");
        auto* open = loaded.Get<decltype(SetPortOpen)>("SetPortOpen");
        auto* setPort = loaded.Get<decltype(SetCommPort)>("SetCommPort");
        auto* setInterval = loaded.Get<decltype(SetInterval)>("SetInterval");
        ASSERT_TRUE(create && destroy && open && setPort && setInterval);
        const HWND object = create(nullptr);
        // With a timer, so without WaitCommEvent: Wine's thread behind that call ends without leaving the
        // loader's list of threads, and the next module that is loaded may crash in the loader.
        setInterval(object, 1000);
        setPort(object, host::nearPort);
        EXPECT_EQ(open(object, 1, nullptr), 1);
        EXPECT_EQ(destroy(object), 1);
        WNDCLASSA existing = {};
        EXPECT_TRUE(GetClassInfoA(loaded.module, "TarnCommObject", &existing));
        const HMODULE module = loaded.module;
        loaded.Unload();
        EXPECT_TRUE(host::PumpUntil([&] { return !loaded.StillMapped(); })) << "something holds the module";
        EXPECT_FALSE(GetClassInfoA(module, "TarnCommObject", &existing)) << "the class went with it";
    }
}

// Wine counts no handles of a process, but gives out the lowest that is free: so many new ones fill the gaps,
// and the last of them tells how far the table reaches.
DWORD HandlesInUse() {
    constexpr DWORD probes = 64;
    constexpr ULONG_PTR step = 4; // from one handle's value to the next
    DWORD count = 0;
    if (GetProcessHandleCount(GetCurrentProcess(), &count) && count)
        return count;
    std::vector<HANDLE> events;
    ULONG_PTR highest = 0;
    for (DWORD i = 0; i < probes; ++i) {
        events.push_back(CreateEventA(nullptr, TRUE, FALSE, nullptr));
        highest = std::max(highest, reinterpret_cast<ULONG_PTR>(events.back()));
    }
    for (const HANDLE event : events)
        CloseHandle(event);
    return static_cast<DWORD>(highest / step) - probes;
}

struct Holdings {
    DWORD handles = 0;
    SIZE_T memory = 0; // bytes
    int threads = 0;
    DWORD gdi = 0;
    DWORD user = 0;

    static Holdings Now() {
        Holdings now;
        now.handles = HandlesInUse();
        PROCESS_MEMORY_COUNTERS memory = {};
        K32GetProcessMemoryInfo(GetCurrentProcess(), &memory, sizeof memory);
        now.memory = memory.PagefileUsage;
        const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
        THREADENTRY32 entry = {};
        entry.dwSize = sizeof entry;
        for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry))
            now.threads += entry.th32OwnerProcessID == GetCurrentProcessId();
        CloseHandle(snapshot);
        now.gdi = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
        now.user = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
        return now;
    }
};

class Cycles : public host::LineTest {
  protected:
    // One life of an object while bytes flow both ways. Returns the ms that closing took.
    DWORD Live(host::FarEnd& peer) {
        const HWND object = CreateCommObject(nullptr);
        SetCommPort(object, host::nearPort);
        SetRThreshold(object, 1);
        EXPECT_EQ(SetPortOpen(object, 1, nullptr), 1);
        const std::string block(200, 'd');
        peer.Send(block);
        EXPECT_EQ(Output(object, block.data(), 200), 1);
        char bytes[256];
        GetInput(object, bytes, sizeof bytes);
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageA(&message);
        const DWORD start = GetTickCount();
        SetPortOpen(object, 0, nullptr);
        const DWORD closing = GetTickCount() - start;
        EXPECT_EQ(DestroyCommObject(object), 1);
        peer.Read();
        return closing;
    }
};

TEST_F(Cycles, AThousandLivesLeaveNothingBehind) {
    host::FarEnd peer;
    for (int i = 0; i < 50; ++i) // first uses of run-times and of the platform
        Live(peer);
    const Holdings before = Holdings::Now();
    DWORD longest = 0;
    for (int i = 0; i < 1000; ++i)
        longest = std::max(longest, Live(peer));
    host::PumpUntil([&] { return Holdings::Now().threads <= before.threads; });
    const Holdings after = Holdings::Now();
    std::printf(
        "1000 lives: handles %lu to %lu, threads %d to %d, memory %lu to %lu KB, longest close %lu ms\n",
        before.handles, after.handles, before.threads, after.threads,
        static_cast<unsigned long>(before.memory / 1024), static_cast<unsigned long>(after.memory / 1024),
        longest);
    EXPECT_LE(after.handles, before.handles + 8) << "a life that kept one would keep a thousand";
    // A bare WaitCommEvent loses some 220 bytes under Wine, more in 64 bits.
    EXPECT_LE(after.memory, before.memory + 800 * 1000) << "bytes";
    EXPECT_LE(after.threads, before.threads);
    EXPECT_LE(after.gdi, before.gdi);
    EXPECT_LE(after.user, before.user);
    EXPECT_LT(longest, 1000u) << "ms: closing waited for a thread that did not come";
}

TEST_F(Cycles, StallingHostLosesNothingThatItsBufferHolds) {
    constexpr int bufferSize = 32768;
    constexpr size_t total = 400000;
    host::CommObject object;
    SetInBufferSize(object, bufferSize);
    ASSERT_EQ(object.Open(host::nearPort, "921600,n,8,1"), "");
    cable.Baud(921600);
    cable.Do("fifo a " + std::to_string(bufferSize));

    std::string sent(total, '\0');
    for (size_t i = 0; i < total; ++i)
        sent[i] = static_cast<char>(i * 31 + (i >> 8));
    std::thread sender([&] {
        host::FarEnd peer;
        for (size_t at = 0; at < total; at += 4000)
            peer.Send(sent.substr(at, 4000));
        peer.Send("");
    });

    std::string got;
    char bytes[4096];
    while (got.size() < total && WaitForInput(object, 3000)) {
        Sleep(200); // the host is busy with something else
        // The model hands on its FIFO in small pieces, so an empty queue alone is not yet the end of it.
        while (GetInBufferCount(object) || cable.Stat("ba.held") > 0) {
            const int count = GetInput(object, bytes, sizeof bytes);
            got.append(bytes, static_cast<size_t>(count));
        }
    }
    sender.join();
    EXPECT_EQ(got.size(), total);
    EXPECT_EQ(cable.Stat("ba.overrun"), 0);
    EXPECT_TRUE(got == sent);
}

} // namespace
