// The terminal: what it shows and how, its size, its font.
#include "ansi.h"
#include "propertyrows.h"

#include <olectl.h>

#include <algorithm>
#include <memory>
#include <new>

namespace {

constexpr DISPID dispidColumns = 21;
constexpr DISPID dispidEmulation = 50;
constexpr int colorBits = 4; // of the foreground; the background lies above
constexpr int colorMask = 15;

// Memory that is not to be had gives an empty text.
template <class Flat>
std::string TextFrom(Flat flat, HWND object, long long room) {
    const int size = static_cast<int>(std::clamp(room, 0LL, static_cast<long long>(MAXLONG)));
    const std::unique_ptr<char[]> buffer(size ? new (std::nothrow) char[static_cast<size_t>(size)]()
                                              : nullptr);
    if (!buffer)
        return "";
    const int length = flat(object, buffer.get(), size);
    return std::string(buffer.get(), static_cast<size_t>(std::clamp(length, 0, size)));
}

// The room for so many rows. A narrow screen of many rows needs more for its line ends and is cut; kept so,
// see the tests.
long long RoomForRows(HWND object, int rows) {
    return (rows + 2LL) * GetColumns(object) + 1;
}

int AutoScrollMode(const ControlProperties& flags) {
    if (flags.m_bAutoScrollColumn)
        return flags.m_bAutoScrollRow ? TARN_AUTO_SCROLL_BOTH : TARN_AUTO_SCROLL_COLUMN;
    if (flags.m_bAutoScrollKeyboard)
        return TARN_AUTO_SCROLL_KEYBOARD;
    return flags.m_bAutoScrollRow ? TARN_AUTO_SCROLL_ROW : TARN_AUTO_SCROLL_NONE;
}

// Makes the window's client area as large as another window.
void SizeClientAs(HWND window, HWND model) {
    RECT wanted = {};
    RECT outer = {};
    RECT client = {};
    GetWindowRect(model, &wanted);
    GetWindowRect(window, &outer);
    GetClientRect(window, &client);
    const LONG frameWidth = outer.right - outer.left - client.right;
    const LONG frameHeight = outer.bottom - outer.top - client.bottom;
    SetWindowPos(window, nullptr, 0, 0, wanted.right - wanted.left + frameWidth,
                 wanted.bottom - wanted.top + frameHeight, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

void MoveToCorner(HWND window) {
    SetWindowPos(window, nullptr, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

} // namespace

PLAIN(Rows, LONG, m_nRows, GetRows, SetRows)
PLAIN(ScrollRows, LONG, m_nScrollRows, GetScrollRows, SetScrollRows)
PLAIN(ColorFilter, ColorFilter, m_nColorFilter, GetColorFilter, SetColorFilter)
PLAIN(BackSpace, BackSpace, m_nBackSpace, GetBackspace, SetBackspace)
PLAIN(EndOfLineMode, EndOfLineMode, m_nEndOfLineMode, GetEndOfLineMode, SetEndOfLineMode)
PLAIN(CaptureMode, CaptureMode, m_nCaptureMode, GetCaptureMode, SetCaptureMode)
UNCACHED(CursorColumn, LONG, GetCursorColumn, SetCursorColumn)
UNCACHED(CursorRow, LONG, GetCursorRow, SetCursorRow)
UNCACHED(SelLength, LONG, GetSelectionLength, SetSelectionLength)
UNCACHED(SelStart, LONG, GetSelectionStart, SetSelectionStart)
READ(Columns, LONG, GetColumns)
WRITE_TOLD(Columns, LONG, m_nColumns, SetColumns, dispidColumns)
READ_CACHED(Emulation, Emulation, m_nEmulation)
WRITE_TOLD(Emulation, Emulation, m_nEmulation, ([this](HWND, int) { PassEmulation(); }), dispidEmulation)
READ(BackColor, TerminalColor, [](HWND object) { return GetColor(object) >> colorBits; })
READ(ForeColor, TerminalColor, [](HWND object) { return GetColor(object) & colorMask; })
READ(AutoScroll, LONG,
     [this](HWND object) { return object ? GetAutoScroll(object) : m_Properties.m_nAutoScroll; })
WRITE(AutoScroll, LONG, m_nAutoScroll, SetAutoScroll)
READ_CACHED(BorderStyle, CommBorderStyle, m_nBorderStyle)
READ_CACHED(AutoSize, AutoSize, m_nAutoSize)
READ_CACHED(Enabled, VARIANT_BOOL, m_bEnabled)

// Each flag goes into the one mode of the comm object.
#define SCROLL_FLAG(name)                                                                                    \
    READ_CACHED(name, VARIANT_BOOL, m_b##name)                                                               \
    WRITE(name, VARIANT_BOOL, m_b##name,                                                                     \
          ([this](HWND object, int) { SetAutoScroll(object, AutoScrollMode(m_Properties)); }))

SCROLL_FLAG(AutoScrollRow)
SCROLL_FLAG(AutoScrollColumn)
SCROLL_FLAG(AutoScrollKeyboard)

#undef SCROLL_FLAG

// A design shows the colour at once.
STDMETHODIMP CTarnCommCtl::put_BackColor(TerminalColor value) {
    return Body([&] {
        m_Properties.m_nColor = (m_Properties.m_nColor & colorMask) | (value << colorBits);
        SetColor(CommObject(), m_Properties.m_nColor);
        Log().Assigned("BackColor", value);
        if (!Ambient().IsUserMode())
            SetContents(CommObject(), "", 0);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_ForeColor(TerminalColor value) {
    return Body([&] {
        m_Properties.m_nColor = (m_Properties.m_nColor & ~colorMask) | (value & colorMask);
        SetColor(CommObject(), m_Properties.m_nColor);
        Log().Assigned("ForeColor", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_Contents(BSTR* value) {
    return ReadText("Contents", value, [object = CommObject()] {
        return MakeBstr(TextFrom(GetContents, object, RoomForRows(object, GetRows(object))));
    });
}

STDMETHODIMP CTarnCommCtl::put_Contents(BSTR value) {
    return Body([&] {
        const std::string text = AnsiOf(TextOf(value));
        SetContents(CommObject(), text.data(), static_cast<int>(text.size()));
        Log().AssignedText("Contents", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_ScrollContents(BSTR* value) {
    return ReadText("ScrollContents", value, [object = CommObject()] {
        return MakeBstr(TextFrom(GetScrollContents, object, RoomForRows(object, GetScrollRows(object))));
    });
}

STDMETHODIMP CTarnCommCtl::get_SelText(BSTR* value) {
    return ReadText("SelText", value, [object = CommObject()] {
        const long long room = GetSelectionLength(object) + 2LL * GetRows(object);
        return MakeBstr(TextFrom(GetSelectionText, object, room));
    });
}

STDMETHODIMP CTarnCommCtl::put_Display(BSTR value) {
    return Body([&] {
        TerminalPrintString(CommObject(), AnsiOf(value).c_str());
        Log().AssignedText("Display", value);
        return S_OK;
    });
}

// Logs under the other name; kept so, see the tests.
STDMETHODIMP CTarnCommCtl::put_DisplayLine(BSTR value) {
    return Body([&] {
        TerminalPrintString(CommObject(), AnsiOf(value).c_str());
        TerminalPrintString(CommObject(), "\r\n");
        Log().AssignedText("Display", value);
        return S_OK;
    });
}

READ_TEXT(CaptureFilename, m_sCaptureFilename)

STDMETHODIMP CTarnCommCtl::put_CaptureFilename(BSTR value) {
    return Body([&] {
        SetCaptureFilename(CommObject(), AnsiOf(value).c_str());
        m_Properties.m_sCaptureFilename = value ? value : L"";
        Log().AssignedText("CaptureFilename", value);
        return S_OK;
    });
}

// Not logged.
#define BAR(name)                                                                                            \
    STDMETHODIMP CTarnCommCtl::get_##name(VARIANT_BOOL* value) {                                             \
        if (!value)                                                                                          \
            return E_POINTER;                                                                                \
        *value = propertyrows::ToValue<VARIANT_BOOL>(m_Properties.m_b##name);                                \
        return S_OK;                                                                                         \
    }                                                                                                        \
    STDMETHODIMP CTarnCommCtl::put_##name(VARIANT_BOOL value) {                                              \
        return ShowBar(&ControlProperties::m_b##name, value);                                                \
    }

BAR(ToolbarVisible)
BAR(StatusbarVisible)

#undef BAR

HRESULT CTarnCommCtl::ShowBar(int ControlProperties::*flag, VARIANT_BOOL value) {
    return Body([&] {
        if ((m_Properties.*flag != 0) == (value != VARIANT_FALSE))
            return S_OK;
        m_Properties.*flag = value;
        if (Window())
            Layout();
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_BorderStyle(CommBorderStyle value) {
    return Body([&] {
        m_Properties.m_nBorderStyle = value == CommBorderStyle_Single;
        SetBorder();
        Log().Assigned("BorderStyle", value);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::put_AutoSize(AutoSize value) {
    return Body([&] {
        if (value < AutoSize_None || value > AutoSize_Parent)
            return S_OK;
        m_Properties.m_nAutoSize = value;
        if (Window())
            SizeControl(value);
        Log().Assigned("AutoSize", value);
        return S_OK;
    });
}

// Without automatic size the windows stay as they are.
void CTarnCommCtl::SizeControl(AutoSize mode) {
    SetSizesItself(mode != AutoSize_None);
    if (mode == AutoSize_None)
        return;
    MoveToCorner(Window());
    if (mode == AutoSize_Terminal) {
        SetAutoSize(CommObject(), mode, Window());
        SizeClientAs(Window(), CommObject());
    } else {
        SizeClientAs(Window(), GetParent(Window()));
        SetAutoSize(CommObject(), mode, Window());
    }
}

STDMETHODIMP CTarnCommCtl::put_Enabled(VARIANT_BOOL value) {
    return Write("Enabled", &ControlProperties::m_bEnabled, EnableWindow, value);
}

STDMETHODIMP CTarnCommCtl::get_Font(IFontDisp** value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = m_pFont.Get();
        if (*value)
            (*value)->AddRef();
        return S_OK;
    });
}

// By value: the control gets a font of its own.
STDMETHODIMP CTarnCommCtl::put_Font(IFontDisp* value) {
    return Body([&]() -> HRESULT {
        ComPtr<IFont> given;
        ComPtr<IFont> copy;
        ComPtr<IFontDisp> font;
        HRESULT result = S_OK;
        if (value)
            result = value->QueryInterface(IID_PPV_ARGS(given.GetAddressOf()));
        if (given && SUCCEEDED(result))
            result = given->Clone(copy.GetAddressOf());
        if (copy && SUCCEEDED(result))
            result = copy.As(&font);
        return SUCCEEDED(result) ? TakeFont(font.Get()) : result;
    });
}

STDMETHODIMP CTarnCommCtl::putref_Font(IFontDisp* value) {
    return Body([&] { return TakeFont(value); });
}

HRESULT CTarnCommCtl::TakeFont(IFontDisp* font) {
    if (FireOnRequestEdit(DISPID_FONT) == S_FALSE)
        return S_FALSE;
    m_pFont = font;
    PassFont();
    SetDirty(true);
    FireOnChanged(DISPID_FONT);
    ViewChanged();
    return S_OK;
}
