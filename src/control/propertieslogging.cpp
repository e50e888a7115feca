// The switches of the log.
#include "propertyrows.h"

namespace {

constexpr DISPID dispidWireTap = 29;
constexpr DISPID dispidWireTapTransfer = 132;

} // namespace

#define SWITCH(name)                                                                                         \
    READ_CACHED(name, VARIANT_BOOL, m_b##name)                                                               \
    WRITE(name, VARIANT_BOOL, m_b##name, ([this](HWND, int) { SetWireTapFlags(); }))

SWITCH(WireTapEvents)
SWITCH(WireTapInput)
SWITCH(WireTapOutput)
SWITCH(WireTapProperties)
SWITCH(WireTapWarnings)

#undef SWITCH

// Logs under another name; kept so, see the tests.
STDMETHODIMP CTarnCommCtl::get_WireTap(VARIANT_BOOL* value) {
    return ReadCached("CommPort", m_Properties.m_bWireTap, value);
}

// The log can be switched on only, whatever is given; kept so, see the tests.
STDMETHODIMP CTarnCommCtl::put_WireTap(VARIANT_BOOL) {
    return Body([&] {
        m_Properties.m_bWireTap = 1;
        SetWireTapFlags();
        FireOnChanged(dispidWireTap);
        Log().AssignedBool("WireTap", true);
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_WireTapTransfer(VARIANT_BOOL* value) {
    if (!value)
        return E_POINTER;
    *value = propertyrows::ToValue<VARIANT_BOOL>(m_Properties.m_bWireTapTransfer);
    return S_OK;
}

WRITE_TOLD(WireTapTransfer, VARIANT_BOOL, m_bWireTapTransfer, ([this](HWND, int) { SetWireTapFlags(); }),
           dispidWireTapTransfer)
