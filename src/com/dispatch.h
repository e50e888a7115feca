// IDispatch of a dual interface, by the module's type library.
#pragma once

#include "interfaces.h"

#include <oaidl.h>

HRESULT GetDualTypeInfo(REFIID face, UINT index, ITypeInfo** info) noexcept;
HRESULT GetDualIds(REFIID face, LPOLESTR* names, UINT count, LCID locale, DISPID* ids) noexcept;
// Holds the object while the call runs.
HRESULT InvokeDual(REFIID face, IDispatch* object, DISPID id, WORD flags, DISPPARAMS* arguments,
                   VARIANT* result, EXCEPINFO* exception, UINT* badArgument) noexcept;

// The base that gives a class its dual interface; the class writes the interface's own functions.
template <class Face>
class Dual : public Face {
  public:
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (!count)
            return E_POINTER;
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        return GetDualTypeInfo(__uuidof(Face), index, info);
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* ids) override {
        return GetDualIds(__uuidof(Face), names, count, locale, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override {
        return InvokeDual(__uuidof(Face), this, id, flags, arguments, result, exception, badArgument);
    }

  protected:
    virtual ~Dual() = default;
};
