// An enumerator over a list of its own: the four functions that all of the system's enumerators share.
#pragma once

#include "unknown.h"

#include <algorithm>
#include <vector>

// Copier gives an element away: static HRESULT Copy(const Element&, Given&), static void Drop(Given&).
template <class Interface, class Given, class Element, class Copier>
class ListEnumerator final : public Unknown<ListEnumerator<Interface, Given, Element, Copier>, Interface> {
  public:
    using Faces = FaceTable<FaceRow<Interface>>;

    explicit ListEnumerator(std::vector<Element> list, size_t next = 0)
        : list_(std::move(list)), next_(next) {}

    HRESULT STDMETHODCALLTYPE Next(ULONG wanted, Given* given, ULONG* count) override {
        if (count)
            *count = 0;
        if (!given || (!count && wanted != 1))
            return E_POINTER;
        const ULONG able = static_cast<ULONG>(std::min<size_t>(wanted, list_.size() - next_));
        const HRESULT result = Give(given, able);
        if (FAILED(result))
            return result;
        next_ += able;
        if (count)
            *count = able;
        return able == wanted ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG wanted) override {
        const size_t able = std::min<size_t>(wanted, list_.size() - next_);
        next_ += able;
        return able == wanted ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        next_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(Interface** clone) override {
        if (!clone)
            return E_POINTER;
        *clone = nullptr;
        return AsResult([&] {
            ComPtr<ListEnumerator> made;
            const HRESULT result = NewObject(made, list_, next_);
            *clone = made.Detach();
            return result;
        });
    }

  private:
    // All or nothing.
    HRESULT Give(Given* given, ULONG count) {
        return AsResult([&] {
            for (ULONG i = 0; i < count; ++i) {
                const HRESULT result = Copier::Copy(list_[next_ + i], given[i]);
                if (FAILED(result)) {
                    std::for_each(given, given + i, Copier::Drop);
                    return result;
                }
            }
            return S_OK;
        });
    }

    const std::vector<Element> list_;
    size_t next_;
};

template <class Enumerator, class Interface, class List>
HRESULT GiveEnumerator(List&& list, Interface** enumerator) noexcept {
    if (!enumerator)
        return E_POINTER;
    *enumerator = nullptr;
    ComPtr<Enumerator> made;
    const HRESULT result = NewObject(made, std::forward<List>(list));
    *enumerator = made.Detach();
    return result;
}
