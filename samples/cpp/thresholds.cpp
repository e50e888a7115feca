// A protocol that runs in the control's events alone: RThreshold says how many bytes the next step needs.
//
//     cpp-thresholds PORT
//
// The far end sends packets: ":", the body's length in two digits, the body, in plain ASCII, and the low byte
// of the sum of the body's bytes in two hexadecimal digits. Each is answered by "+" if its sum is right and
// by "-" if it isn't. An empty body ends the program. The control has to be registered: regsvr32 Lantry.ocx.
#include "eventsink.h"

#include <comdef.h>

#include <cstdio>
#include <cwchar>
#include <iterator>
#include <numeric>
#include <string>

namespace {

class Station {
  public:
    // Empty, or why it doesn't open.
    std::wstring Open(const wchar_t* port) {
        if (!comm_.IsConnected())
            return L"The control is not registered.";
        comm_->put_AutoReceive(VARIANT_FALSE); // what comes in is for the event, and not for the terminal
        comm_->put_Settings(_bstr_t(L"9600,n,8,1"));
        Expect(headerSize);
        return comm_.OpenPort(port);
    }

    // Before the program's COM ends.
    void Close() { comm_->put_PortOpen(VARIANT_FALSE); }

  private:
    static constexpr long headerSize = 3;
    static constexpr long sumSize = 2;

    // The event is raised once so many bytes wait, and not for every byte.
    void Expect(long count) {
        wanted_ = count;
        comm_->put_RThreshold(count);
        comm_->put_InputLen(count);
    }

    // What comes next may be there already: it is taken at once, and needs no event.
    void OnReceive() {
        for (long waiting = 0; SUCCEEDED(comm_->get_InBufferCount(&waiting)) && waiting >= wanted_;) {
            _variant_t input;
            comm_->get_Input(&input);
            const std::wstring bytes(V_BSTR(&input), SysStringLen(V_BSTR(&input)));
            if (inBody_)
                TakeBody(bytes);
            else
                TakeHeader(bytes);
        }
    }

    void TakeHeader(const std::wstring& header) {
        int length = -1;
        std::swscanf(header.c_str(), L":%2d", &length);
        if (length <= 0) // the end, or a far end that speaks another language
            PostQuitMessage(length < 0);
        inBody_ = length > 0;
        Expect(inBody_ ? length + sumSize : headerSize);
    }

    void TakeBody(const std::wstring& bytes) {
        const std::wstring body = bytes.substr(0, bytes.size() - sumSize);
        wchar_t digits[sumSize + 1];
        std::swprintf(digits, std::size(digits), L"%02X",
                      std::accumulate(body.begin(), body.end(), 0U) % 256);
        const bool whole = _wcsicmp(bytes.c_str() + body.size(), digits) == 0;
        std::printf("%s %ls\n", whole ? "good" : "bad ", body.c_str());
        comm_->put_Output(_variant_t(whole ? L"+" : L"-"));
        inBody_ = false;
        Expect(headerSize);
    }

    long wanted_ = headerSize;
    bool inBody_ = false;
    ConnectedControl comm_{[this](DISPID event) {
        if (event == Receive)
            OnReceive();
    }};
};

int Run(const wchar_t* port) {
    Station station;
    if (const std::wstring problem = station.Open(port); !problem.empty()) {
        std::printf("%ls\n", problem.c_str());
        return 1;
    }
    std::printf("%ls is open.\n", port);
    std::fflush(stdout);
    const int result = ServeMessages();
    station.Close();
    return result;
}

} // namespace

int wmain(int count, wchar_t** words) {
    CoInitialize(nullptr);
    const int result = Run(count > 1 ? words[1] : L"COM1");
    CoUninitialize();
    return result;
}
