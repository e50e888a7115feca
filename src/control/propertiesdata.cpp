// Properties that carry the line's data, and those that say what becomes of it.
#include "ansi.h"
#include "core/deadline.h"
#include "core/growingpause.h"
#include "diagnostics/wiretap.h"
#include "guards.h"
#include "objectaccess.h"
#include "propertyrows.h"

#include <comdef.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <optional>

namespace {

constexpr LONG largestInput = 0x100000;
constexpr size_t longestLine = 1024;
constexpr size_t logLineSize = 128;
constexpr DWORD longestPause = 10; // ms between two looks at the input
constexpr VARTYPE byteArray = VT_ARRAY | VT_UI1;
constexpr int serialHalf = TARN_PROCESS_SERIAL;
constexpr int keyboardHalf = TARN_PROCESS_KEYBOARD;

constexpr const char* cannotWrite = "Cannot write to the communications port.";
constexpr const char* bufferIsFull =
    "The OutputBuffer is full.  Increase the value of the OutTimeOut property.";

// ---- Input ----

// Posted messages that nobody takes, such as a WM_QUIT, must not make this a loop without pauses.
void PauseBriefly(GrowingPause& pause, const Deadline& deadline) {
    const DWORD length = std::min(pause.Next(), deadline.Left());
    MsgWaitForMultipleObjects(0, nullptr, FALSE, length, QS_SENDMESSAGE);
}

// The bytes to read, after the wait for as many as the host asked for. None: the object is gone, and the
// host's messages took it away.
std::optional<LONG> AwaitInput(CTarnCommCtl& control) {
    const HWND object = control.CommObject();
    const LONG wanted = control.Properties().m_cbInputLen;
    if (!wanted)
        return GetInBufferCount(object);
    const Deadline deadline(std::max<LONG>(GetInputTimeOut(object), 0));
    GrowingPause pause(longestPause);
    while (GetInBufferCount(object) < wanted && !deadline.Passed() && !GetShutDown(object)) {
        control.IdleLoop();
        if (!control.Has(object))
            return std::nullopt;
        if (GetInBufferCount(object) < wanted)
            PauseBriefly(pause, deadline);
        if (!control.Has(object))
            return std::nullopt;
    }
    return std::min<LONG>(wanted, GetInBufferCount(object));
}

std::string ReadBytes(CTarnCommCtl& control, LONG count) {
    std::string bytes(static_cast<size_t>(count) + 1, '\0'); // one more, so that there is a buffer for none
    const int read = GetInput(control.CommObject(), bytes.data(), count);
    bytes.resize(static_cast<size_t>(std::max(read, 0)));
    return bytes;
}

void GiveText(const PropertyLog& log, const std::string& bytes, VARIANT& value) {
    V_BSTR(&value) = MakeBstr(std::string_view(bytes));
    V_VT(&value) = VT_BSTR;
    log.ReturnsText("Input", V_BSTR(&value));
}

void GiveBytes(const PropertyLog& log, const std::string& bytes, VARIANT& value) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    void* data = nullptr;
    if (!array)
        throw std::bad_alloc();
    if (SUCCEEDED(SafeArrayAccessData(array, &data))) {
        bytes.copy(static_cast<char*>(data), bytes.size());
        SafeArrayUnaccessData(array);
    }
    V_ARRAY(&value) = array;
    V_VT(&value) = byteArray;
    log.ReturnsBytes("Input", bytes.data(), bytes.size());
}

void LogNoInput(HWND object, int read, LONG size) {
    char line[logLineSize];
    std::snprintf(line, sizeof line, "INPUT (2332): Bytes read = %d, Inbuffercount=%d, size=%ld ", read,
                  GetInBufferCount(object), size);
    WireTapMsg(object, WireTapText, line, nullptr, 0);
}

// ---- Output ----

HRESULT OutputBytes(CTarnCommCtl& control, const std::string& bytes) {
    if (Output(control.CommObject(), bytes.data(), static_cast<int>(bytes.size())))
        return S_OK;
    return control.ReportError(GeneralFailure, cannotWrite);
}

void LogArray(HWND object, LONG lower, LONG upper, const std::string& bytes) {
    char line[logLineSize];
    std::snprintf(line, sizeof line, "lbound=%ld, ubound=%ld, size=%zu: ", lower, upper, bytes.size());
    WireTapMsg(object, WireTapText, line, bytes.data(), static_cast<DWORD>(bytes.size()));
}

HRESULT OutputArray(CTarnCommCtl& control, SAFEARRAY* array) {
    if (SafeArrayGetDim(array) != 1)
        return control.ReportError(E_INVALIDARG,
                                   "Output only accepts one-dimensional byte arrays or strings.");
    LONG lower = 0;
    LONG upper = -1;
    SafeArrayGetLBound(array, 1, &lower);
    SafeArrayGetUBound(array, 1, &upper);
    std::string bytes(static_cast<size_t>(upper - lower + 1), '\0');
    void* data = nullptr;
    HRESULT result = SafeArrayAccessData(array, &data);
    if (FAILED(result))
        return result;
    if (!bytes.empty())
        std::memcpy(bytes.data(), data, bytes.size());
    SafeArrayUnaccessData(array);
    LogArray(control.CommObject(), lower, upper, bytes);
    result = OutputBytes(control, bytes);
    if (SUCCEEDED(result))
        control.Log().AssignedBytes("Output", bytes.data(), bytes.size());
    return result;
}

HRESULT OutputText(CTarnCommCtl& control, VARIANT& given) {
    HRESULT result = S_OK;
    if (V_VT(&given) != VT_BSTR)
        result = VariantChangeType(&given, &given, 0, VT_BSTR);
    if (SUCCEEDED(result))
        result = OutputBytes(control, AnsiOf(TextOf(V_BSTR(&given))));
    if (SUCCEEDED(result))
        control.Log().AssignedText("Output", V_BSTR(&given));
    return result;
}

// ---- Automatic processing ----

bool HasHalf(int process, int half) {
    return process == half || process == TARN_PROCESS_BOTH;
}

// One half changed, the other as it is.
void ChangeHalf(HWND object, int half, bool on) {
    const int other = half == serialHalf ? keyboardHalf : serialHalf;
    const int rest = HasHalf(GetAutoProcess(object), other) ? other : 0;
    SetAutoProcess(object, (on ? half : 0) | rest);
}

} // namespace

STDMETHODIMP CTarnCommCtl::get_Input(VARIANT* value) {
    return get_ComInput(value);
}

STDMETHODIMP CTarnCommCtl::get_ComInput(VARIANT* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        VariantInit(value);
        if (!CheckAutoReceive("Input"))
            return InvalidCall;
        const CBusyGuard Busy(*this, "Input");
        if (FAILED(Busy.Result()))
            return Busy.Result();
        ClearPendingError(CommObject());
        const std::optional<LONG> count = AwaitInput(*this);
        if (!count || *count < 0 || *count > largestInput)
            return S_OK;
        const std::string bytes = ReadBytes(*this, *count);
        const bool binary = m_Properties.m_nInputMode == InputMode_Binary;
        (binary ? GiveBytes : GiveText)(Log(), bytes, *value);
        if (bytes.empty())
            LogNoInput(CommObject(), 0, *count);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_LineInput(BSTR* value) {
    return get_ComLineInput(value);
}

STDMETHODIMP CTarnCommCtl::get_ComLineInput(BSTR* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = nullptr;
        if (!CheckAutoReceive("LineInput"))
            return InvalidCall;
        const CBusyGuard Busy(*this, "LineInput");
        if (FAILED(Busy.Result()))
            return Busy.Result();
        ClearPendingError(CommObject());
        char line[longestLine];
        const int length = GetLineInput(CommObject(), line, sizeof line);
        *value = MakeBstr(std::string_view(line, static_cast<size_t>(std::max(length, 0))));
        Log().ReturnsText("LineInput", *value);
        return S_OK;
    });
}

CACHED(InputLen, LONG, m_cbInputLen)
CACHED(InputMode, CommInputMode, m_nInputMode)
PLAIN(InputEcho, VARIANT_BOOL, m_bInputEcho, GetInputEcho, SetInputEcho)
PLAIN(Echo, VARIANT_BOOL, m_bEcho, GetEcho, SetEcho)
PLAIN(CommEcho, VARIANT_BOOL, m_bCommEcho, GetCommEcho, SetCommEcho)

// On a closed port nothing happens, and that is no error.
STDMETHODIMP CTarnCommCtl::put_Output(VARIANT value) {
    return Body([&]() -> HRESULT {
        if (!GetPortOpen(CommObject()))
            return S_OK;
        ClearPendingError(CommObject());
        _variant_t given; // scripts hand their variables over by reference
        const HRESULT result = VariantCopyInd(&given, &value);
        if (FAILED(result))
            return result;
        return V_VT(&given) == byteArray ? OutputArray(*this, V_ARRAY(&given)) : OutputText(*this, given);
    });
}

STDMETHODIMP CTarnCommCtl::put_OutputLine(BSTR value) {
    return Body([&]() -> HRESULT {
        const CBusyGuard Busy(*this, "OutputLine");
        if (FAILED(Busy.Result()))
            return Busy.Result();
        if (!GetPortOpen(CommObject()))
            return S_OK;
        const std::string text = AnsiOf(TextOf(value));
        if (!Output(CommObject(), text.data(), static_cast<int>(text.size())) ||
            !Output(CommObject(), "\r", 1))
            return ReportError(GeneralFailure, bufferIsFull);
        Log().AssignedText("OutputLine", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_OutputModem(BSTR value) {
    return Body([&]() -> HRESULT {
        const CBusyGuard Busy(*this, "OutputModem");
        if (FAILED(Busy.Result()))
            return Busy.Result();
        ClearPendingError(CommObject());
        if (!OutputModem(CommObject(), AnsiOf(value).c_str()))
            return ReportError(GeneralFailure, bufferIsFull);
        Log().AssignedText("OutputModem", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_Pause(LONG value) {
    return Body([&]() -> HRESULT {
        ComPause(CommObject(), value);
        return S_OK;
    });
}

PLAIN(AutoProcess, LONG, m_nAutoProcess, GetAutoProcess, SetAutoProcess)

STDMETHODIMP CTarnCommCtl::get_AutoReceive(VARIANT_BOOL* value) {
    return Read(
        "AutoReceive", [](HWND object) { return HasHalf(GetAutoProcess(object), serialHalf); }, value);
}

// The boolean goes into the cached AutoProcess, so that the guard of Input, which asks that one, lets
// everything through from here on. Hosts count on it.
STDMETHODIMP CTarnCommCtl::put_AutoReceive(VARIANT_BOOL value) {
    return Body([&]() -> HRESULT {
        ChangeHalf(CommObject(), serialHalf, value != VARIANT_FALSE);
        Log().AssignedBool("AutoReceive", value != VARIANT_FALSE);
        m_Properties.m_nAutoProcess = value;
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_AutoSend(VARIANT_BOOL* value) {
    return Read(
        "AutoSend", [](HWND object) { return HasHalf(GetAutoProcess(object), keyboardHalf); }, value);
}

// Leaves the cached AutoProcess as it is.
STDMETHODIMP CTarnCommCtl::put_AutoSend(VARIANT_BOOL value) {
    const auto change = [](HWND object, int on) { ChangeHalf(object, keyboardHalf, on != 0); };
    return WriteThrough("AutoSend", change, value);
}

STDMETHODIMP CTarnCommCtl::get_AutoZModem(VARIANT_BOOL* value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = m_Properties.m_bAutoZModem ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_AutoZModem(VARIANT_BOOL value) {
    return Body([&]() -> HRESULT {
        m_Properties.m_bAutoZModem = value;
        SetAutoZModem(CommObject(), value);
        return S_OK;
    });
}
