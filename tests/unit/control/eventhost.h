// A control in its container, with a sink that writes down what it hears: "KeyDown 65 1".
#pragma once

#include "control/events.h"
#include "control/TarnCommCtl.h"
#include "coreobject.h"
#include "support/container.h"
#include "support/holdings.h"
#include "support/line.h"
#include "support/sinks.h"
#include "unit/diagnostics/logfiles.h"

#include <gtest/gtest.h>
#include <olectl.h>

#include <sstream>

namespace host {

using Lines = std::vector<std::string>;

inline constexpr const char* eventNames[] = {
    "Receive",
    "Click",
    "KeyDown",
    "KeyPress",
    "KeyUp",
    "Send",
    "CTSChanged",
    "DSRChanged",
    "CarrierChanged",
    "Ring",
    "AbortFileTransfer",
    "FinishFileTransfer",
    "WaitForFile",
    "PrepareFile",
    "StartFile",
    "AbortFile",
    "FinishFile",
    "TransferBlock",
    "OnComm",
    "Command",
    "DblClick",
    "Hide",
    "Paint",
    "Show",
    "MouseMove",
    "MouseDown",
    "MouseUp",
    "NewConnection",
    "LookUp",
};

inline std::string NameOf(DISPID id) {
    const bool known = id >= 1 && id <= static_cast<DISPID>(std::size(eventNames));
    return known ? eventNames[id - 1] : "event " + std::to_string(id);
}

// The first argument of the declaration stands last.
inline VARIANT& Argument(DISPPARAMS& arguments, UINT place) {
    return arguments.rgvarg[arguments.cArgs - 1 - place];
}

inline std::string TextOf(const VARIANT& argument) {
    std::ostringstream text;
    if (V_VT(&argument) == (VT_I2 | VT_BYREF))
        text << *V_I2REF(&argument);
    else if (V_VT(&argument) == (VT_R4 | VT_BYREF))
        text << *V_R4REF(&argument);
    else if (V_VT(&argument) == VT_I4)
        text << V_I4(&argument);
    else if (V_VT(&argument) == (VT_BOOL | VT_BYREF))
        text << (*V_BOOLREF(&argument) ? "True" : "False");
    else
        text << "type " << V_VT(&argument);
    return text.str();
}

class Ear {
  public:
    using Handler = std::function<void(DISPID id, DISPPARAMS& arguments)>;

    ~Ear() { Disconnect(); }
    Ear() = default;
    Ear(const Ear&) = delete;
    Ear& operator=(const Ear&) = delete;

    void Connect(CTarnCommCtl& control) {
        EXPECT_EQ(control.FindConnectionPoint(DIID__ITarnCommEvents, &point_), S_OK);
        EXPECT_EQ(point_->Advise(&sink_, &cookie_), S_OK);
    }
    void Disconnect() {
        if (point_)
            point_->Unadvise(cookie_);
        point_.Reset();
    }
    // For a control that is to end with its sink connected.
    void LoseControl() { point_.Reset(); }

    int Count(const std::string& line) const { return static_cast<int>(std::ranges::count(heard, line)); }
    ULONG References() const { return sink_.References(); }

    Lines heard;
    Handler onEvent;
    bool alwaysOnThread = true;

  private:
    void Hear(DISPID id, DISPPARAMS& arguments) {
        alwaysOnThread = alwaysOnThread && GetCurrentThreadId() == thread_;
        std::string line = NameOf(id);
        for (UINT place = 0; place < arguments.cArgs; ++place)
            line += " " + TextOf(Argument(arguments, place));
        heard.push_back(line);
        if (const Handler handler = onEvent)
            handler(id, arguments);
    }

    const DWORD thread_ = GetCurrentThreadId();
    EventSink sink_{DIID__ITarnCommEvents, [this](DISPID id, DISPPARAMS& arguments) { Hear(id, arguments); }};
    ComPtr<IConnectionPoint> point_;
    DWORD cookie_ = 0;
};

class Apartment {
  public:
    Apartment() { CoInitialize(nullptr); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;
};

class EventControlTest : public LineTest {
  public:
    EventControlTest() {
        StartLogAnew();
        logfiles::RemoveLog();
        EXPECT_EQ(NewObject(control), S_OK);
        EXPECT_EQ(container.Hold(static_cast<ITarnComm*>(control.Get())), S_OK);
        ear.Connect(*control.Get());
        StartLogAnew(); // telephony has told of its start
        logfiles::RemoveLog();
    }
    ~EventControlTest() override {
        ear.onEvent = nullptr;
        container.onCall = nullptr;
        StartLogAnew();
        logfiles::RemoveLog();
    }

    HWND Object() const { return control->CommObject(); }
    void Name(const wchar_t* name) {
        container.site.ambients[DISPID_AMBIENT_DISPLAYNAME] = _variant_t(name);
        control->ApplyProperties();
    }
    void Show() {
        ASSERT_EQ(container.Do(OLEIVERB_INPLACEACTIVATE), S_OK);
        ASSERT_TRUE(IsWindow(Object()));
        Pump(50); // what comes by itself: its first paint
        ear.heard.clear();
    }
    void LogEvents() {
        control->Properties().m_bWireTap = trueFlag;
        control->Properties().m_bWireTapEvents = trueFlag;
    }
    // The lines of the log without stamps and without its banner.
    static Lines Log() {
        Lines lines;
        std::istringstream text(logfiles::Messages());
        constexpr std::string_view stamp = "<time> ";
        for (std::string line; std::getline(text, line);) {
            while (!line.empty() && (line.back() == '\r' || line.back() == ' '))
                line.pop_back();
            if (line.starts_with(stamp))
                lines.push_back(line.substr(stamp.size()));
        }
        return lines;
    }
    Lines TakeHeard() { return std::exchange(ear.heard, {}); }

    Apartment apartment;
    Container container;
    ComPtr<CTarnCommCtl> control;
    Ear ear;
};

} // namespace host
