#include "runtimeerror.h"

#include "wiretap.h"

RuntimeError::RuntimeError(DWORD code) : std::runtime_error("CComm runtime error"), code_(code), text_{} {
    const DWORD how = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    const DWORD neutral = MAKELANGID(LANG_NEUTRAL, SUBLANG_NEUTRAL);
    if (FormatMessageA(how, nullptr, code, neutral, text_, sizeof text_, nullptr))
        LogText(text_);
}
