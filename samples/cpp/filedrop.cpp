// A file drop: answers calls, and keeps the files that callers send by ZModem.
//
//     cpp-filedrop PORT FOLDER [COUNT]
//
// PORT is a modem as Windows calls it, or a serial port with a modem at it. FOLDER ends with "\". Ends after
// COUNT files; without COUNT it doesn't end. The control has to be registered: regsvr32 Lantry.ocx.
#include "eventsink.h"

#include <comdef.h>

#include <algorithm>
#include <climits>
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

    // Empty, or why it doesn't.
    std::wstring Listen(const std::wstring& port) {
        if (!comm_.IsConnected())
            return L"The control is not registered.";
        comm_->put_Settings(_bstr_t(L"115200,n,8,1"));
        comm_->put_XferPath(_bstr_t(folder_.c_str()));
        comm_->put_XferProtocol(Protocol_ZModem);
        comm_->put_XferStatusDialog(Dialog_Hidden);
        PortType type = PortType_Unknown;
        comm_->GetPortType(_bstr_t(port.c_str()), &type);
        std::wstring problem = type == PortType_Modem ? AnswerByWindows(port) : AnswerByCommands(port);
        comm_->put_AutoZModem(VARIANT_TRUE); // a transfer that the caller starts is received by itself
        comm_->put_AutoReceive(VARIANT_TRUE);
        return problem;
    }

    void HangUp() { comm_->put_PortOpen(VARIANT_FALSE); }

  private:
    // Raises no error: what is read back tells.
    std::wstring AnswerByWindows(const std::wstring& modem) {
        VARIANT_BOOL answers = VARIANT_FALSE;
        comm_->put_CommPort(_variant_t(modem.c_str()));
        comm_->put_AnswerCalls(VARIANT_TRUE);
        comm_->get_AnswerCalls(&answers);
        return answers ? L"" : modem + L" does not answer calls.";
    }

    // Whoever reads the modem's words must not be the terminal.
    std::wstring AnswerByCommands(const std::wstring& port) {
        VARIANT_BOOL ready = VARIANT_FALSE;
        comm_->put_AutoReceive(VARIANT_FALSE);
        std::wstring problem = comm_.OpenPort(port);
        if (!problem.empty())
            return problem;
        comm_->get_InitModemForAnswer(&ready);
        return ready ? L"" : L"The modem at " + port + L" did not answer.";
    }

    void OnEvent(DISPID event) {
        if (event == PrepareFile)
            NameFile();
        else if (event == FinishFile)
            ShowFile();
        else if (event == AbortFile)
            ShowLostFile();
        else if (event == FinishFileTransfer || event == AbortFileTransfer) // behind files that are whole
            QuitAfterTheLast();
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

    void ShowLostFile() {
        std::printf("%ls is not whole.\n", name_.c_str());
        std::fflush(stdout);
    }

    void QuitAfterTheLast() const {
        if (left_ <= 0)
            PostQuitMessage(0);
    }

    std::wstring folder_;
    int left_; // files until the end; INT_MAX never come
    int number_ = 0;
    std::wstring name_; // of the file under way
    ConnectedControl comm_{[this](DISPID event) { OnEvent(event); }};
};

int Run(const wchar_t* port, const wchar_t* folder, int count) {
    FileDrop drop(folder, count);
    if (const std::wstring problem = drop.Listen(port); !problem.empty()) {
        std::printf("%ls\n", problem.c_str());
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
    const int result = Run(words[1], words[2], count > 3 ? _wtoi(words[3]) : INT_MAX);
    CoUninitialize();
    return result;
}
