// From the cached values to the comm object: after the start, at the first window, after a load.
#include "ansi.h"
#include "logsilence.h"
#include "objectaccess.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

#include <olectl.h>

namespace {

constexpr const char* nameWithoutContainer = "TarnComm";
constexpr int emulationInPlaceOfNone = 1;

} // namespace

// The order counts: sizes before the font, the switches of the log twice.
void CTarnCommCtl::ApplyProperties() {
    const HWND object = CommObject();
    if (!object)
        return;
    const ControlProperties& p = m_Properties;
    AttachControl(object, this);
    const LogSilence silence(m_nNoLog);
    SetAutoProcess(object, p.m_nAutoProcess);
    SetAutoScroll(object, p.m_nAutoScroll);
    SetAutoSize(object, 0, nullptr); // whatever the cached value
    SetBackspace(object, p.m_nBackSpace);
    SetCaptureFilename(object, AnsiOf(p.m_sCaptureFilename).c_str());
    SetCaptureMode(object, p.m_nCaptureMode);
    SetCarrierTimeOut(object, p.m_lCDTimeOut);
    SetColorFilter(object, p.m_nColorFilter);
    SetColor(object, p.m_nColor);
    SetColumns(object, p.m_nColumns);
    SetCommEcho(object, p.m_bCommEcho);
    SetCommPort(object, p.m_szPort);
    SetWireTapFlags();

    SetCTSTimeOut(object, p.m_lCTSTimeOut);
    SetDialMode(object, p.m_nDialMode);
    SetDialTimeOut(object, p.m_lDialTimeOut);
    SetDSRTimeOut(object, p.m_lDSRTimeOut);
    SetEcho(object, p.m_bEcho);
    PassEmulation();
    SetEndOfLineMode(object, p.m_nEndOfLineMode);
    SetHandshaking(object, p.m_nHandshaking);
    SetInBufferSize(object, p.m_cbInBufferSize);
    SetInputEcho(object, p.m_bInputEcho);
    SetInputTimeOut(object, p.m_lInTimeOut);
    SetOutputTimeOut(object, p.m_lOutTimeOut);
    SetLookUpTimeOut(object, p.m_lLookUpTimeOut);
    SetModemOptions(object, p.m_szModemOptions);
    SetNullDiscard(object, p.m_bNullDiscard);
    SetOutBufferSize(object, p.m_cbOutBufferSize);

    PassParityReplace();

    SetRows(object, p.m_nRows);
    SetRThreshold(object, p.m_nRThreshold);
    SetRTS(object, 1); // whatever was stored; kept so, see the tests
    SetScrollRows(object, p.m_nScrollRows);
    if (!p.m_sSettings.empty())
        SetSettings(object, AnsiOf(p.m_sSettings).c_str());
    SetSThreshold(object, p.m_nSThreshold);
    SetProtocol(object, p.m_nXferProtocol);
    SetTransferDialogType(object, p.m_nXferStatusDialog);

    PassFont();
    SetWireTapFlags();
    EnableWindow(object, p.m_bEnabled != 0);
    UpdateStatus();

    m_szControlName = AnsiOf(Ambient().DisplayName());
    if (m_szControlName.empty())
        m_szControlName = nameWithoutContainer;
    SetWindowTextA(object, m_szControlName.c_str());
}

void CTarnCommCtl::PassEmulation() {
    const int emulation = m_Properties.m_nEmulation;
    SetEmulation(CommObject(), emulation ? emulation : emulationInPlaceOfNone);
}

void CTarnCommCtl::PassParityReplace() {
    const std::string replace = AnsiOf(m_Properties.m_sParityReplace.c_str());
    SetParityReplace(CommObject(), replace.empty() ? noParityReplace : static_cast<BYTE>(replace[0]));
}

void CTarnCommCtl::SetWireTapFlags() {
    const ControlProperties& p = m_Properties;
    const HWND object = CommObject();
    SetWireTapInput(object, p.m_bWireTap && p.m_bWireTapInput);
    SetWireTapOutput(object, p.m_bWireTap && p.m_bWireTapOutput);
    SetWireTapTransfer(object, p.m_bWireTap && p.m_bWireTapTransfer);
}

void CTarnCommCtl::SetDefaultFont() {
    FONTDESC description = {};
    wchar_t face[] = L"Terminal";
    description.cbSizeofstruct = sizeof description;
    description.lpstrName = face;
    description.cySize.int64 = 100000; // 10 points, in ten-thousandths
    description.sWeight = FW_NORMAL;
    description.sCharset = OEM_CHARSET;
    OleCreateFontIndirect(&description, IID_IFontDisp,
                          reinterpret_cast<void**>(m_pFont.ReleaseAndGetAddressOf()));
}

void CTarnCommCtl::PassFont() {
    m_FontInUse.Hold(m_pFont.Get(), [this](HFONT handle) {
        SendMessageA(CommObject(), WM_SETFONT, reinterpret_cast<WPARAM>(handle), TRUE);
    });
}
