// A file drop: answers calls, and keeps the files that callers send by ZModem.
//
//     cpp-filedrop PORT FOLDER [COUNT]
//
// PORT is a modem as Windows calls it, or a serial port with a modem at it. FOLDER ends with "\". Ends after
// COUNT files; without COUNT it doesn't end. The control has to be registered: regsvr32 Lantry.ocx.
#include "eventsink.h"

#include <comdef.h>

#include <algorithm>
#include <cstdio>
#include <cwchar>
#include <iterator>
#include <string>
#include <string_view>

namespace {

constexpr std::wstring_view plain = L"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_";

bool IsOdd(wchar_t c) {
    return plain.find(c) == std::wstring_view::npos;
}

class FileDrop {
  public:
    FileDrop(std::wstring folder, int count) : folder_(std::move(folder)), left_(count) {}

    bool Listen(const wchar_t* port) {
        if (!comm_.IsConnected())
            return false;
        comm_->put_CommPort(_variant_t(port));
        comm_->put_Settings(_bstr_t(L"115200,n,8,1"));
        comm_->put_XferPath(_bstr_t(folder_.c_str()));
        comm_->put_XferProtocol(Protocol_ZModem);
        comm_->put_XferStatusDialog(Dialog_Hidden);
        PortType type = PortType_Unknown;
        comm_->GetPortType(_bstr_t(port), &type);
        if (!(type == PortType_Modem ? AnswerByWindows() : AnswerByCommands()))
            return false;
        comm_->put_AutoZModem(VARIANT_TRUE); // a transfer that the caller starts is received by itself
        comm_->put_AutoReceive(VARIANT_TRUE);
        return true;
    }

    void HangUp() { comm_->put_PortOpen(VARIANT_FALSE); }

  private:
    bool AnswerByWindows() { return SUCCEEDED(comm_->put_AnswerCalls(VARIANT_TRUE)); }

    // Whoever reads the modem's words must not be the terminal.
    bool AnswerByCommands() {
        VARIANT_BOOL ready = VARIANT_FALSE;
        comm_->put_AutoReceive(VARIANT_FALSE);
        comm_->put_PortOpen(VARIANT_TRUE);
        comm_->get_InitModemForAnswer(&ready);
        return ready;
    }

    void OnEvent(DISPID event) {
        if (event == PrepareFile)
            NameFile();
        else if (event == FinishFile)
            ShowFile();
        else if (event == FinishFileTransfer && left_ == 0)
            PostQuitMessage(0);
    }

    // The last moment in which the name can be changed; the file isn't made yet.
    void NameFile() {
        _bstr_t offered;
        comm_->get_XferSourceFilename(offered.GetAddress());
        name_ = PlainName(static_cast<const wchar_t*>(offered));
        comm_->put_XferDestFilename(_bstr_t(name_.c_str()));
    }

    // The caller chooses the name that it offers, and a hostile one may point anywhere: "..\start.bat",
    // "C:\autoexec.bat", "nul". Of the offered name only the last part is used, of that only plain
    // characters, and behind a number: no device has such a name, and no file that is there already is
    // written over.
    std::wstring PlainName(const std::wstring& offered) {
        std::wstring last = offered.substr(offered.find_last_of(L"/\\:") + 1).substr(0, 60);
        std::ranges::replace_if(last, IsOdd, L'_');
        wchar_t number[16];
        do
            std::swprintf(number, std::size(number), L"%04d-", ++number_);
        while (GetFileAttributesW((folder_ + number + last).c_str()) != INVALID_FILE_ATTRIBUTES);
        return number + last;
    }

    void ShowFile() {
        long bytes = 0;
        comm_->get_XferTransferred(&bytes);
        std::printf("%ls: %ld bytes.\n", name_.c_str(), bytes);
        std::fflush(stdout);
        --left_;
    }

    std::wstring folder_;
    int left_; // files until the end, or for ever
    int number_ = 0;
    std::wstring name_; // of the file under way
    ConnectedControl comm_{[this](DISPID event) { OnEvent(event); }};
};

int Run(const wchar_t* port, const wchar_t* folder, int count) {
    FileDrop drop(folder, count);
    if (!drop.Listen(port)) {
        std::printf("%ls does not answer calls.\n", port);
        return 1;
    }
    std::printf("%ls waits for calls.\n", port);
    std::fflush(stdout);
    const int result = ServeMessages();
    drop.HangUp();
    return result;
}

} // namespace

int wmain(int count, wchar_t** words) {
    if (count < 3) {
        std::printf("cpp-filedrop PORT FOLDER [COUNT]\n");
        return 1;
    }
    CoInitialize(nullptr);
    const int result = Run(words[1], words[2], count > 3 ? _wtoi(words[3]) : -1);
    CoUninitialize();
    return result;
}
