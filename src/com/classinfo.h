// IProvideClassInfo2: which coclass the object is, and which event interface is its own.
#pragma once

#include "interfaces.h"
#include "typeinfo.h"

#include <ocidl.h>

// Coclass is the class that the interface compiler declares for it, Events its default source.
template <class Coclass, class Events>
class ClassInfo : public IProvideClassInfo2 {
  public:
    HRESULT STDMETHODCALLTYPE GetClassInfo(ITypeInfo** info) override {
        if (!info)
            return E_POINTER;
        Microsoft::WRL::ComPtr<ITypeInfo> found;
        const HRESULT result = TypeInfoOf(__uuidof(Coclass), found);
        *info = found.Detach();
        return result;
    }
    HRESULT STDMETHODCALLTYPE GetGUID(DWORD kind, GUID* id) override {
        if (!id)
            return E_POINTER;
        const bool known = kind == GUIDKIND_DEFAULT_SOURCE_DISP_IID;
        *id = known ? __uuidof(Events) : GUID_NULL;
        return known ? S_OK : E_INVALIDARG;
    }

  protected:
    virtual ~ClassInfo() = default;
};
