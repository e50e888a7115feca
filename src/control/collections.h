// Collections of strings for scripts: the ports of the machine, the dialling locations.
#pragma once

#include "com/dispatch.h"
#include "com/enumvariant.h"
#include "com/unknown.h"
#include "TarnLink.h"

#include <string>
#include <vector>

template <class Face>
class StringCollection final : public Unknown<StringCollection<Face>, Dual<Face>> {
  public:
    using Faces = FaceTable<FaceRow<Face>, FaceRow<IDispatch, Face>>;

    void Fill(std::vector<std::wstring> texts) { texts_ = std::move(texts); }

    STDMETHOD(get__NewEnum)(IUnknown** enumerator) override {
        return MakeStringEnumerator(texts_, enumerator);
    }

    // The first has the index 1.
    STDMETHOD(get_Item)(LONG index, BSTR* text) override {
        if (!text)
            return E_POINTER;
        *text = nullptr;
        if (index < 1)
            return E_INVALIDARG;
        const auto place = static_cast<size_t>(index) - 1;
        if (place >= texts_.size())
            return E_FAIL;
        *text = SysAllocStringLen(texts_[place].data(), static_cast<UINT>(texts_[place].size()));
        return *text ? S_OK : E_OUTOFMEMORY;
    }

    STDMETHOD(get_Count)(LONG* count) override {
        if (!count)
            return E_POINTER;
        *count = static_cast<LONG>(texts_.size());
        return S_OK;
    }

  private:
    std::vector<std::wstring> texts_;
};

using CCommPort = StringCollection<ICommPort>;
using CTapiLocation = StringCollection<ITapiLocation>;
