// Talk with a person at the far end of the line: their keys, and what their screen shows.
#include "ansi.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

#include <cstdio>

namespace {

constexpr LONG keyTimeOut = 30000; // ms
constexpr char backspace = 8;
constexpr char enter = 13;
constexpr char bell[] = "\a";
constexpr char rubOut[] = "\b \b";
constexpr char passwordEcho[] = "*";
constexpr int brightBit = 8;
constexpr int backgroundOffset = 10;

// The numbers of the foreground colours on an ANSI terminal, by our own dark ones.
constexpr int anColors[] = {30, 34, 32, 36, 31, 35, 33, 37};
constexpr int darkMask = 7;

bool Send(HWND object, std::string_view text) {
    return Output(object, text.data(), static_cast<int>(text.size()));
}

template <class... Values>
void SendSequence(HWND object, const char* format, Values... values) {
    char sequence[64];
    std::snprintf(sequence, sizeof sequence, format, values...);
    Send(object, sequence);
}

// One line of text as it is being typed, with what the person sees of it.
class TypedLine {
  public:
    TypedLine(short maximum, bool password)
        : maximum_(maximum > 0 ? static_cast<size_t>(maximum) : 0), password_(password) {}

    const std::string& Text() const { return text_; }

    // What to echo for a key that is not Enter.
    std::string Take(char key) {
        if (key == backspace)
            return RubOut();
        if (text_.size() >= maximum_)
            return "";
        text_ += key;
        return password_ ? passwordEcho : std::string(1, key);
    }

  private:
    std::string RubOut() {
        if (text_.empty())
            return bell;
        text_.pop_back();
        return rubOut;
    }

    const size_t maximum_;
    const bool password_;
    std::string text_;
};

void RestUntilMessage() {
    constexpr DWORD longest = 50; // ms
    MsgWaitForMultipleObjects(0, nullptr, FALSE, longest, QS_ALLINPUT);
}

} // namespace

STDMETHODIMP CTarnCommCtl::HostInputKey(short* Result) {
    return Body([&]() -> HRESULT {
        if (!Result)
            return E_POINTER;
        BYTE key = 0;
        *Result = 0;
        if (WaitForInput(CommObject(), keyTimeOut) && GetInput(CommObject(), &key, 1) == 1)
            *Result = key;
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::HostInput(short MaximumLength, BSTR* Result) {
    return HostInputText(MaximumLength, false, Result);
}

STDMETHODIMP CTarnCommCtl::HostInputPassword(short MaximumLength, BSTR* Result) {
    return HostInputText(MaximumLength, true, Result);
}

HRESULT CTarnCommCtl::HostInputText(short maximum, bool password, BSTR* result) {
    return Body([&]() -> HRESULT {
        if (!result)
            return E_POINTER;
        TypedLine line(maximum, password);
        // A wait below this one keeps the input from us, and would do so for ever.
        for (bool goesOn = true; goesOn;) {
            char key = 0;
            goesOn = WaitForInput(CommObject(), keyTimeOut) && !GetBusy(CommObject());
            const bool came = goesOn && GetInput(CommObject(), &key, 1) == 1;
            if (came && key == enter)
                break;
            if (came)
                Send(CommObject(), line.Take(key));
            else if (goesOn)
                RestUntilMessage(); // a file transfer has the input
            if (!GetPortOpen(CommObject()))
                break;
            IdleLoop();
        }
        *result = MakeBstr(std::string_view(line.Text()));
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::HostPrint(BSTR Text) {
    return Body([&]() -> HRESULT {
        const std::string text = AnsiOf(TextOf(Text));
        if (!Send(CommObject(), text))
            return ReportError(GeneralFailure, "Cannot write to the communications port.");
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::HostLocate(short row, short col) {
    return Body([&] {
        SendSequence(CommObject(), "\x1b[%d;%dH", row, col);
        return S_OK;
    });
}

// The background has no bright half.
STDMETHODIMP CTarnCommCtl::HostColor(TerminalColor Foreground, TerminalColor Background) {
    return Body([&] {
        const int foreground = anColors[Foreground & darkMask];
        const int background = anColors[Background & darkMask] + backgroundOffset;
        const char* bright = Foreground >= brightBit ? ";1" : "";
        SendSequence(CommObject(), "\x1b[0;%d;%d%sm", foreground, background, bright);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::HostCLS() {
    return Body([&] {
        Send(CommObject(), "\x1b[2J");
        return S_OK;
    });
}
