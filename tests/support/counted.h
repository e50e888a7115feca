// Test doubles that a host hands out: they live where the test puts them and count what is asked of them.
#pragma once

#include "com/faces.h"

namespace host {

template <class Class, class... Bases>
class Counted : public Bases... {
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        Class& self = static_cast<Class&>(*this);
        *object = IsEqualIID(iid, IID_IUnknown) ? Class::Faces::Of(self) : Class::Faces::Find(self, iid);
        if (!*object)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override { return --references_; }

    // What others hold of it.
    ULONG References() const { return references_ - 1; }

    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

  protected:
    Counted() = default;
    virtual ~Counted() = default;

  private:
    ULONG references_ = 1;
};

} // namespace host
