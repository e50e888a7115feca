// Lines of the log for properties and events of the control: "name.Property returns 1", "name.Property = 1",
// "name_Event() Event". Made for one line, by CTarnCommCtl::Log.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

class PropertyLog {
  public:
    // What decides about a line, taken from the control.
    struct State {
        HWND object;
        const std::string& name; // of the control, as the container calls it
        bool properties;         // lines of this kind are wanted
        bool events;
    };
    explicit PropertyLog(const State& state) : state_(state) {}

    void Returns(const char* property, LONG value) const;
    void ReturnsUnsigned(const char* property, ULONG value) const;
    void ReturnsBool(const char* property, bool value) const;
    void ReturnsWord(const char* property, const char* word) const;
    void ReturnsText(const char* property, const wchar_t* text) const;
    void ReturnsBytes(const char* property, const void* bytes, size_t count) const;

    void Assigned(const char* property, LONG value) const;
    void AssignedUnsigned(const char* property, ULONG value) const;
    void AssignedBool(const char* property, bool value) const;
    void AssignedText(const char* property, const wchar_t* text) const;
    void AssignedBytes(const char* property, const void* bytes, size_t count) const;

    // Arguments may be null for none.
    void Event(const char* event, const char* arguments = nullptr) const;

  private:
    State state_;
};
