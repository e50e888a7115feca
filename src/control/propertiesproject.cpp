// The project's file, and the object for scripts.
#include "ansi.h"
#include "propertyrows.h"
#include "scriptextension.h"

STDMETHODIMP CTarnCommCtl::get_ProjectFilename(BSTR* value) {
    return ReadText("ProjectFilename", value, [this] { return NullOrBstr(m_Properties.m_sProjectFilename); });
}

// Logs another property in its place; kept so, see the tests.
STDMETHODIMP CTarnCommCtl::put_ProjectFilename(BSTR value) {
    return Body([&] {
        m_Properties.m_sProjectFilename = value ? value : L"";
        Log().AssignedText("LookUpText", m_Properties.m_sLookUpText.c_str());
        return S_OK;
    });
}

STDMETHODIMP CTarnCommCtl::get_ScriptExtension(IScriptExtension** value) {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        Log().ReturnsWord("ScriptExtension", "Object");
        return m_pScriptExtension->QueryInterface(IID_PPV_ARGS(value));
    });
}
