// A system that registers no more window classes.
#include "support/device/devicetest.h"
#include "support/importdouble.h"

#include "core/comobject.h"

namespace {

bool classesAreOut = false;

ATOM WINAPI DoubleRegisterClassA(const WNDCLASSA* window) {
    if (!classesAreOut)
        return host::Platform<decltype(&::RegisterClassA)>("user32.dll", "RegisterClassA")(window);
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}

class NoClasses {
  public:
    NoClasses() { classesAreOut = true; }
    ~NoClasses() { classesAreOut = false; }
    NoClasses(const NoClasses&) = delete;
    NoClasses& operator=(const NoClasses&) = delete;
};

struct Maker {
    const char* name;
    HWND (*make)();
};

const Maker makers[] = {
    {"CreateCommObject", [] { return CreateCommObject(nullptr); }},
    {"CreateCommObject with a parent", [] { return CreateCommObject(GetDesktopWindow()); }},
    {"CreateCommObjectName", [] { return CreateCommObjectName(GetDesktopWindow(), "name"); }},
};

TEST(ObjectClass, ThatIsNotRegisteredMakesNoObject) {
    const int before = LiveObjectCount();
    for (const Maker& maker : makers) {
        UnregisterObjectClass(ThisModule());
        {
            const NoClasses none;
            EXPECT_EQ(maker.make(), nullptr) << maker.name;
        }
        EXPECT_EQ(LiveObjectCount(), before) << maker.name;
        const HWND object = maker.make();
        EXPECT_NE(object, nullptr) << maker.name << ": the next one is made";
        DestroyCommObject(object);
    }
}

TEST(ObjectClass, ThatIsThereIsNotRegisteredAgain) {
    const host::CommObject first;
    const NoClasses none;
    const host::CommObject second;
    EXPECT_NE(RecordOf(second), nullptr);
}

} // namespace

extern "C" {
TARN_IMPORT_DOUBLE(RegisterClassA, 4)
}
