#include "typeinfo.h"

#include "modulefile.h"
#include "wall.h"

#include <cstring>
#include <map>
#include <mutex>

using Microsoft::WRL::ComPtr;

namespace {

struct Entry {
    ComPtr<ITypeInfo> seen;
    ComPtr<ITypeInfo> called;
};

struct ById {
    bool operator()(const GUID& left, const GUID& right) const {
        return std::memcmp(&left, &right, sizeof left) < 0;
    }
};

class Library {
  public:
    HRESULT Find(REFGUID id, Entry& entry) {
        const std::lock_guard guard(mutex_);
        if (const auto known = entries_.find(id); known != entries_.end()) {
            entry = known->second;
            return S_OK;
        }
        const HRESULT result = Look(id, entry);
        if (SUCCEEDED(result))
            entries_.emplace(id, entry);
        return result;
    }
    void Forget() {
        const std::lock_guard guard(mutex_);
        entries_.clear();
    }

  private:
    static HRESULT Look(REFGUID id, Entry& entry) {
        ComPtr<ITypeLib> library;
        HRESULT result = LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, &library);
        if (SUCCEEDED(result))
            result = library->GetTypeInfoOfGuid(id, &entry.seen);
        if (SUCCEEDED(result))
            entry.called = TableOf(*entry.seen.Get());
        return result;
    }
    // A dual interface has its table behind the reference -1; what has none is called by itself.
    static ComPtr<ITypeInfo> TableOf(ITypeInfo& seen) {
        HREFTYPE reference = 0;
        ComPtr<ITypeInfo> table;
        if (FAILED(seen.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference)) ||
            FAILED(seen.GetRefTypeInfo(reference, &table)))
            table = &seen;
        return table;
    }

    std::mutex mutex_;
    std::map<GUID, Entry, ById> entries_;
};

// Never destroyed: at the process's end the library's code may be gone before ours.
Library& TheLibrary() {
    static auto& library = *new Library;
    return library;
}

HRESULT Find(REFGUID id, ComPtr<ITypeInfo> Entry::*which, ComPtr<ITypeInfo>& info) noexcept {
    return AsResult([&] {
        Entry entry;
        const HRESULT result = TheLibrary().Find(id, entry);
        info = entry.*which;
        return result;
    });
}

} // namespace

HRESULT TypeInfoOf(REFGUID id, ComPtr<ITypeInfo>& info) noexcept {
    return Find(id, &Entry::seen, info);
}

HRESULT CallInfoOf(REFIID id, ComPtr<ITypeInfo>& info) noexcept {
    return Find(id, &Entry::called, info);
}

void ForgetTypeInfo() noexcept {
    AsResult([] {
        TheLibrary().Forget();
        return S_OK;
    });
}
