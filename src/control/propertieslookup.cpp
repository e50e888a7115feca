// The look-up of the control: waiting for one of several texts, or the match inside of the LookUp event.
#include "ansi.h"
#include "guards.h"
#include "lookuplist.h"
#include "objectaccess.h"
#include "propertyrows.h"

#include <algorithm>
#include <memory>
#include <new>

namespace {

constexpr LONG noMatch = -1;

bool EndsWith(std::string_view text, std::string_view end) {
    const auto length = static_cast<int>(end.size());
    return text.size() >= end.size() &&
           CompareStringA(LOCALE_SYSTEM_DEFAULT, NORM_IGNORECASE, text.data() + text.size() - end.size(),
                          length, end.data(), length) == CSTR_EQUAL;
}

// A buffer that was just full lacks the last byte of the text that came.
std::string_view WithoutMatch(std::string_view input, std::string_view match) {
    const size_t kept = EndsWith(input, match) ? match.size() : match.size() - 1;
    return input.substr(0, input.size() - std::min(kept, input.size()));
}

// The buffer is zeroed, and what came ends with a byte that is no NUL where a text was found.
std::string_view Filled(const char* buffer, size_t size) {
    while (size && !buffer[size - 1])
        --size;
    return {buffer, size};
}

struct Found {
    LONG index = noMatch;
    std::string before; // what came before it, or all that came
};

Found ReadUntil(HWND object, const std::string& list, LONG limit) {
    Found found;
    const std::unique_ptr<char[]> buffer(
        limit > 0 && limit < MAXLONG ? new (std::nothrow) char[static_cast<size_t>(limit) + 1]() : nullptr);
    if (!buffer)
        return found;
    found.index = InputUntilLookUp(object, list.c_str(), buffer.get(), limit + 1);
    const std::string_view input = Filled(buffer.get(), static_cast<size_t>(limit));
    found.before = found.index == noMatch ? input : WithoutMatch(input, LookUpEntry(list, found.index));
    return found;
}

} // namespace

READ_CACHED(LookUpInputLen, LONG, m_cbLookUpInputLen)
WRITE(LookUpInputLen, LONG, m_cbLookUpInputLen, SetLookUpInputLen)
READ_CACHED(LookUpTimeOut, LONG, m_lLookUpTimeOut)
WRITE(LookUpTimeOut, LONG, m_lLookUpTimeOut, SetLookUpTimeOut)

STDMETHODIMP CTarnCommCtl::get_LookUp(LONG* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = 0;
        ClearPendingError(CommObject());
        const int process = GetAutoProcess(CommObject());
        if (process == TARN_PROCESS_SERIAL || process == TARN_PROCESS_BOTH) {
            *value = LookUpMatchOf(CommObject());
        } else {
            const CBusyGuard Busy(*this, "LookUp");
            if (FAILED(Busy.Result()))
                return Busy.Result();
            *value = WaitForLookUp();
        }
        Log().Returns("LookUp", *value);
        return S_OK;
    });
}

// The host may do anything meanwhile; the texts of the start count.
LONG CTarnCommCtl::WaitForLookUp() {
    if (ControlOf(CommObject()) != this)
        return noMatch; // the look-up of a dead object would give the first text
    const std::string list =
        LookUpListOf(AnsiOf(m_Properties.m_sLookUpText), m_Properties.m_chLookUpSeparator);
    SetLookUpTimeOut(CommObject(), m_Properties.m_lLookUpTimeOut);
    if (!m_Properties.m_cbLookUpInputLen)
        return DiscardUntilLookUp(CommObject(), list.c_str());
    const Found found = ReadUntil(CommObject(), list, m_Properties.m_cbLookUpInputLen);
    m_Properties.m_sLookUpInput = found.before;
    return found.index;
}

READ_TEXT(LookUpInput, m_sLookUpInput)

STDMETHODIMP CTarnCommCtl::get_LookUpSeparator(BSTR* value) {
    return ReadText("LookUpSeparator", value,
                    [this] { return MakeBstr(std::string_view(&m_Properties.m_chLookUpSeparator, 1)); });
}

STDMETHODIMP CTarnCommCtl::put_LookUpSeparator(BSTR value) {
    return Body([&] {
        m_Properties.m_chLookUpSeparator = *AnsiOf(value).c_str();
        SetLookUpSeparator(CommObject(), m_Properties.m_chLookUpSeparator);
        Log().AssignedText("LookUpSeparator", value);
        return S_OK;
    });
}

READ_TEXT(LookUpText, m_sLookUpText)

STDMETHODIMP CTarnCommCtl::put_LookUpText(BSTR value) {
    return Body([&] {
        m_Properties.m_sLookUpText = value ? value : L"";
        SetLookUpText(CommObject(), AnsiOf(value).c_str(), m_Properties.m_chLookUpSeparator);
        Log().AssignedText("LookUpText", value);
        return S_OK;
    });
}
