// The plain rows of the property table: a getter asks the comm object, converts and logs; a setter stores the
// value in the cached copy, passes it on and logs. One line a row.
//
//     PLAIN(Rows, LONG, m_nRows, GetRows, SetRows)
#pragma once

#include "ansi.h"
#include "TarnComm.h"
#include "TarnCommCtl.h"

#include <type_traits>

namespace propertyrows {

template <class Value>
constexpr bool isBool = std::is_same_v<Value, VARIANT_BOOL>;

template <class Value, class Flat>
Value ToValue(Flat flat) {
    if constexpr (isBool<Value>)
        return flat ? VARIANT_TRUE : VARIANT_FALSE;
    else
        return static_cast<Value>(flat);
}

template <class Value>
void LogReturns(const PropertyLog& log, const char* name, Value value) {
    if constexpr (isBool<Value>)
        log.ReturnsBool(name, value != VARIANT_FALSE);
    else
        log.Returns(name, static_cast<LONG>(value));
}

template <class Value>
void LogAssigned(const PropertyLog& log, const char* name, Value value) {
    if constexpr (isBool<Value>)
        log.AssignedBool(name, value != VARIANT_FALSE);
    else
        log.Assigned(name, static_cast<LONG>(value));
}

} // namespace propertyrows

template <class Value, class Flat>
HRESULT CTarnCommCtl::Read(const char* name, Flat flat, Value* value) noexcept {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = propertyrows::ToValue<Value>(flat(CommObject()));
        propertyrows::LogReturns(Log(), name, *value);
        return S_OK;
    });
}

template <class Value, class Cached>
HRESULT CTarnCommCtl::ReadCached(const char* name, const Cached& cached, Value* value) noexcept {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = propertyrows::ToValue<Value>(cached);
        propertyrows::LogReturns(Log(), name, *value);
        return S_OK;
    });
}

template <class Value, class Cached, class Flat>
HRESULT CTarnCommCtl::Write(const char* name, Cached ControlProperties::*cached, Flat flat,
                            Value value) noexcept {
    return Body([&]() -> HRESULT {
        m_Properties.*cached = static_cast<Cached>(value);
        flat(CommObject(), m_Properties.*cached);
        propertyrows::LogAssigned(Log(), name, value);
        return S_OK;
    });
}

template <class Value, class Flat>
HRESULT CTarnCommCtl::WriteThrough(const char* name, Flat flat, Value value) noexcept {
    return Body([&]() -> HRESULT {
        flat(CommObject(), static_cast<int>(value));
        propertyrows::LogAssigned(Log(), name, value);
        return S_OK;
    });
}

template <class Value, class Cached>
HRESULT CTarnCommCtl::WriteCached(const char* name, Cached ControlProperties::*cached, Value value) noexcept {
    return Body([&]() -> HRESULT {
        m_Properties.*cached = static_cast<Cached>(value);
        propertyrows::LogAssigned(Log(), name, value);
        return S_OK;
    });
}

template <class Make>
HRESULT CTarnCommCtl::ReadText(const char* name, BSTR* value, Make&& make) noexcept {
    return Body([&]() -> HRESULT {
        if (!value)
            return E_POINTER;
        *value = nullptr; // what stays if there is no memory
        *value = make();
        Log().ReturnsText(name, *value);
        return S_OK;
    });
}

// Rows. READ and WRITE are the two halves, for properties of which only one is plain.
#define READ(name, Value, get)                                                                               \
    STDMETHODIMP CTarnCommCtl::get_##name(Value* value) {                                                    \
        return Read(#name, get, value);                                                                      \
    }
#define WRITE(name, Value, cached, set)                                                                      \
    STDMETHODIMP CTarnCommCtl::put_##name(Value value) {                                                     \
        return Write(#name, &ControlProperties::cached, set, value);                                         \
    }
// As WRITE, and the sinks of IPropertyNotifySink hear of it.
#define WRITE_TOLD(name, Value, cached, set, id)                                                             \
    STDMETHODIMP CTarnCommCtl::put_##name(Value value) {                                                     \
        return Body([&] {                                                                                    \
            const HRESULT result = Write(#name, &ControlProperties::cached, set, value);                     \
            FireOnChanged(id);                                                                               \
            return result;                                                                                   \
        });                                                                                                  \
    }
#define READ_TEXT(name, cached)                                                                              \
    STDMETHODIMP CTarnCommCtl::get_##name(BSTR* value) {                                                     \
        return ReadText(#name, value, [this] { return MakeBstr(m_Properties.cached); });                     \
    }
#define READ_CACHED(name, Value, cached)                                                                     \
    STDMETHODIMP CTarnCommCtl::get_##name(Value* value) {                                                    \
        return ReadCached(#name, m_Properties.cached, value);                                                \
    }
#define WRITE_CACHED(name, Value, cached)                                                                    \
    STDMETHODIMP CTarnCommCtl::put_##name(Value value) {                                                     \
        return WriteCached(#name, &ControlProperties::cached, value);                                        \
    }
// Kept by the comm object alone
#define UNCACHED(name, Value, get, set)                                                                      \
    READ(name, Value, get)                                                                                   \
    STDMETHODIMP CTarnCommCtl::put_##name(Value value) {                                                     \
        return WriteThrough(#name, set, value);                                                              \
    }
#define PLAIN(name, Value, cached, get, set)                                                                 \
    READ(name, Value, get)                                                                                   \
    WRITE(name, Value, cached, set)
// Kept by the control alone
#define CACHED(name, Value, cached)                                                                          \
    READ_CACHED(name, Value, cached)                                                                         \
    WRITE_CACHED(name, Value, cached)
