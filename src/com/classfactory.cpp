#include "classfactory.h"

#include "typeinfo.h"

#include <algorithm>

namespace {

class ClassFactory final : public Unknown<ClassFactory, IClassFactory> {
  public:
    using Faces = FaceTable<FaceRow<IClassFactory>>;

    explicit ClassFactory(const ClassRow& row) : row_(row) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** object) override {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        return outer ? CLASS_E_NOAGGREGATION : row_.create(iid, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        LockModule(lock);
        return S_OK;
    }

  private:
    const ClassRow& row_;
};

} // namespace

HRESULT GetClassObject(std::span<const ClassRow> classes, REFCLSID id, REFIID iid, void** object) noexcept {
    if (!object)
        return E_POINTER;
    *object = nullptr;
    const auto row =
        std::ranges::find_if(classes, [&](const ClassRow& each) { return IsEqualCLSID(*each.id, id); });
    if (row == classes.end())
        return CLASS_E_CLASSNOTAVAILABLE;
    ComPtr<ClassFactory> factory;
    const HRESULT result = NewObject(factory, *row);
    return SUCCEEDED(result) ? factory->QueryInterface(iid, object) : result;
}

HRESULT CanUnloadNow() noexcept {
    if (ModuleLockCount() > 0)
        return S_FALSE;
    ForgetTypeInfo();
    return S_OK;
}
