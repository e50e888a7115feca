// Dials of a control, and the box that it shows meanwhile.
#pragma once

#include "telephonycontrol.h"

namespace telephony {

inline constexpr const char* rings = "5550101";
inline constexpr const char* connects = "5550100";

class DialTest : public TelephonyTest {
  protected:
    // Once the far end is heard to ring.
    static std::unique_ptr<host::Every> WhenItRings(std::function<void()> action) {
        return host::When([] { return Logged("Ring back") > 0; }, std::move(action));
    }
    void Connect() {
        ASSERT_EQ(StartAtAlpha().Dial(connects), S_OK);
        ASSERT_TRUE(phone->IsOpen()) << phone->Status();
    }
};

inline BOOL CALLBACK TakeBox(HWND window, LPARAM found) {
    char name[64] = {}, title[64] = {};
    GetClassNameA(window, name, sizeof name);
    GetWindowTextA(window, title, sizeof title);
    const bool isBox = name == std::string("#32770") && title == std::string("Dial");
    if (isBox)
        *reinterpret_cast<HWND*>(found) = window;
    return !isBox;
}

inline HWND Box() {
    HWND found = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), TakeBox, reinterpret_cast<LPARAM>(&found));
    return found;
}

inline void PressCancel() {
    SendMessageA(GetDlgItem(Box(), IDCANCEL), BM_CLICK, 0, 0);
}

} // namespace telephony
