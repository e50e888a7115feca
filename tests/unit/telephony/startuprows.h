// Why the service does not start, and what people are told of it.
#pragma once

#include "modem/tapiservice.h"

namespace telephony {

struct StartUpRow {
    DWORD error;
    const char* text;
};

inline constexpr StartUpRow startUpRows[] = {
    {LINEERR_INIFILECORRUPT, "Unable to access the Windows Telephony API: Ini file is corrupt."},
    {LINEERR_INVALAPPNAME, "Unable to access the Windows Telephony API: Invalid application name."},
    {LINEERR_INVALPARAM, "Unable to access the Windows Telephony API: Invalid parameter."},
    {LINEERR_INVALPOINTER, "Unable to access the Windows Telephony API: Invalid pointer."},
    {LINEERR_NOMEM, "Unable to access the Windows Telephony API: Out of memory."},
    {LINEERR_OPERATIONFAILED, "Unable to access the Windows Telephony API: Operation failed."},
    {LINEERR_REINIT, "Unable to access the Windows Telephony API: Line re-initialized."},
    {LINEERR_NODRIVER, "Unable to access the Windows Telephony API: Error code -2147483581."},
    // Success with nothing filled in. So does the service of a machine without telephony.
    {0, "Unable to access the Windows Telephony API: Operation failed."},
};

} // namespace telephony
