// What the control does around a load and a save.
#include "com/raised.h"
#include "com/wall.h"
#include "diagnostics/debugtext.h"
#include "logsilence.h"
#include "propertymap.h"
#include "TarnCommCtl.h"

#include <olectl.h>

namespace {

struct LoadFailure {
    HRESULT code;
    const char* message;
};

// Failures of other kinds are silent.
constexpr LoadFailure loadFailures[] = {
    {E_FAIL, "Failed for some unknown reason."},
    {E_UNEXPECTED, "There was an unexpected error loading the properties of Tarn Comm."},
    {E_OUTOFMEMORY, "Not enough memory to load Tarn Link Objects."},
};

struct PageClass {
    Page page;
    const CLSID* id;
};

constexpr PageClass pageClasses[] = {
    {Page::Terminal, &CLSID_PropTerminal}, {Page::Communications, &CLSID_PropCommunications},
    {Page::WireTap, &CLSID_PropWireTap},   {Page::Font, &CLSID_CFontPropPage},
    {Page::About, &CLSID_PropAbout},
};

// A stream holds the opposite of the property.
void Invert(int& flag) {
    flag = flag ? 0 : trueFlag;
}

} // namespace

std::vector<CLSID> CTarnCommCtl::Pages() const {
    std::vector<CLSID> ids;
    for (const Page named : NamedPages())
        for (const PageClass& row : pageClasses)
            if (row.page == named)
                ids.push_back(*row.id);
    return ids;
}

// A damaged stream leaves a control that works, with what was read so far. The inversion comes whatever was
// read; kept so, see the tests.
HRESULT CTarnCommCtl::AroundStreamLoad(const std::function<HRESULT()>& read) {
    DebugText("Load event\n");
    const Raised loading(m_bLoading);
    HRESULT result = S_OK;
    {
        const LogSilence silence(m_nNoLog);
        result = AsResult(read);
    }
    m_bCreated = true;
    Invert(m_Properties.m_bUseTAPI);
    ApplyProperties();
    for (const LoadFailure& failure : loadFailures)
        if (failure.code == result)
            ReportError(failure.code, failure.message);
    return S_OK;
}

// The setters have done the work.
HRESULT CTarnCommCtl::AroundBagLoad(const std::function<HRESULT()>& read) {
    const Raised loading(m_bLoading);
    const LogSilence silence(m_nNoLog);
    return AsResult(read);
}

HRESULT CTarnCommCtl::AroundStreamSave(const std::function<HRESULT()>& write) {
    Invert(m_Properties.m_bUseTAPI);
    const HRESULT result = AroundBagSave(write);
    Invert(m_Properties.m_bUseTAPI);
    return result;
}

HRESULT CTarnCommCtl::AroundBagSave(const std::function<HRESULT()>& write) {
    const LogSilence silence(m_nNoLog);
    return AsResult(write);
}
