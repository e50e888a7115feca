// An application of the service as the tests of the exchange drive it, and the exchange that they start from.
#pragma once

#include "service.h"
#include "support/line.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace telephony {

inline constexpr DWORD version = 0x20000;
inline constexpr DWORD nowhere = 77;
inline constexpr DWORD generous = 5000; // milliseconds

// An application of the service with the messages it got.
class App {
  public:
    App() {
        LINEINITIALIZEEXPARAMS parameters = {};
        parameters.dwTotalSize = sizeof parameters;
        parameters.dwOptions = LINEINITIALIZEEXOPTION_USEEVENT;
        result = Service().lineInitializeExA(&handle, nullptr, nullptr, "test", &devices, &apiVersion,
                                             &parameters);
        event = parameters.Handles.hEvent;
    }
    ~App() {
        if (handle)
            Service().lineShutdown(handle);
    }
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    HLINE Open(DWORD device, DWORD privileges = LINECALLPRIVILEGE_NONE) {
        HLINE line = 0;
        openResult = Service().lineOpenA(handle, device, &line, version, 0, device + 1000, privileges,
                                         LINEMEDIAMODE_DATAMODEM, nullptr);
        return line;
    }
    HLINE Own(DWORD device) { return Open(device, LINECALLPRIVILEGE_OWNER); }

    // The next message that waits, or comes within the limit.
    bool Next(LINEMESSAGE& message, DWORD limit = generous) {
        if (WaitForSingleObject(event, limit) != WAIT_OBJECT_0)
            return false;
        return Service().lineGetMessage(handle, &message, 0) == 0;
    }
    // The next messages, each as its identifier and first parameter, and for a reply whether it is good.
    std::vector<std::pair<DWORD, DWORD>> Take(std::size_t count) {
        std::vector<std::pair<DWORD, DWORD>> taken;
        LINEMESSAGE message = {};
        while (taken.size() < count && Next(message)) {
            last = message;
            const bool isReply = message.dwMessageID == LINE_REPLY;
            taken.emplace_back(message.dwMessageID,
                               static_cast<DWORD>(isReply ? message.dwParam2 : message.dwParam1));
        }
        return taken;
    }
    // Messages until the call's state.
    bool Reach(DWORD state) {
        LINEMESSAGE message = {};
        while (Next(message)) {
            last = message;
            if (message.dwMessageID == LINE_CALLSTATE && message.dwParam1 == state)
                return true;
        }
        return false;
    }
    bool HasMessage() const { return WaitForSingleObject(event, 0) == WAIT_OBJECT_0; }

    HLINEAPP handle = 0;
    DWORD devices = nowhere;
    DWORD apiVersion = version;
    HANDLE event = nullptr;
    LONG result = 0;
    LONG openResult = 0;
    LINEMESSAGE last = {};
};

using Messages = std::vector<std::pair<DWORD, DWORD>>;

class Exchange : public testing::Test {
  protected:
    Exchange() {
        ExchangeReset();
        ExchangeSetPace(1);
        ExchangeAddLine("Modem One", "Tarn", LINEMEDIAMODE_DATAMODEM, "5550001", nullptr);
        ExchangeAddLine("Modem Two", "Tarn", LINEMEDIAMODE_DATAMODEM, "5550002", host::nearPort);
        ExchangeAddLine("Voice", "Other", LINEMEDIAMODE_INTERACTIVEVOICE, nullptr, nullptr);
    }
    ~Exchange() override { ExchangeReset(); }

    LONG Call(HLINE line, const char* number, HCALL& call, const LINECALLPARAMS* parameters = nullptr) {
        return Service().lineMakeCallA(line, &call, number, 0, const_cast<LINECALLPARAMS*>(parameters));
    }
};

} // namespace telephony
