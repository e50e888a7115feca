// Reference count and interface look-up of an object with several interfaces.
//
//     class Control : public Unknown<Control, Dual<IControl>, ClassInfo> {
//       public:
//         using Faces = FaceTable<FaceRow<IControl>, FaceRow<IDispatch, IControl>,
//         FaceRow<IProvideClassInfo2>>; HRESULT FinalConstruct() override; void FinalRelease() override;
//     };
//     ComPtr<Control> control;
//     HRESULT result = NewObject(control);
//
// Objects are never aggregated. They die on their last Release and live only on the heap.
#pragma once

#include "faces.h"
#include "locks.h"
#include "wall.h"

#include <wrl/client.h>

#include <atomic>
#include <utility>

using Microsoft::WRL::ComPtr;

template <class Class, class... Bases>
class Unknown : public Bases... {
  public:
    Unknown(const Unknown&) = delete;
    Unknown& operator=(const Unknown&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (!object)
            return E_POINTER;
        Class& self = static_cast<Class&>(*this);
        *object = IsEqualIID(iid, IID_IUnknown) ? Class::Faces::Of(self) : Class::Faces::Find(self, iid);
        if (!*object)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0)
            Leave();
        return left;
    }

    // Called once, when the object is complete and holds the maker's reference. A failure releases it again,
    // so that FinalRelease has to cope with an object that is half made.
    virtual HRESULT FinalConstruct() { return S_OK; }

  protected:
    Unknown() = default;
    virtual ~Unknown() = default;

    // Called after the last Release, while all of the object is still there. References that are taken and
    // given back meanwhile change nothing.
    virtual void FinalRelease() {}

  private:
    static constexpr ULONG leaving = 0x40000000;

    void Leave() noexcept {
        references_ = leaving;
        AsResult([this] {
            FinalRelease();
            return S_OK;
        });
        (LetGo<Bases>(), ...);
        delete static_cast<Class*>(this);
    }

    // A base that holds references of the host's has a function LetGo for the time when host code may still
    // ask the object.
    template <class Base>
    void LetGo() {
        if constexpr (requires(Base & base) { base.LetGo(); })
            static_cast<Base&>(*this).LetGo();
    }

    std::atomic<ULONG> references_{1};
    ModuleLock lock_;
};

template <class Class, class... Arguments>
HRESULT NewObject(ComPtr<Class>& made, Arguments&&... arguments) noexcept {
    return AsResult([&] {
        ComPtr<Class> object;
        *object.GetAddressOf() = new Class(std::forward<Arguments>(arguments)...); // with its first reference
        const HRESULT result = object->FinalConstruct();
        if (SUCCEEDED(result))
            made = std::move(object);
        return result;
    });
}
