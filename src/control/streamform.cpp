#include "streamform.h"

#include "diagnostics/debugtext.h"

#include <vector>

namespace {

constexpr DWORD version = 0x0900;
constexpr ULONG longestString = 0x100000; // bytes, with the terminating zero
constexpr ULONG halfCharacter = 1;        // a count that no string has

struct ScalarType {
    VARTYPE type;
    ULONG size;
};

constexpr ScalarType scalars[] = {
    {VT_EMPTY, 0}, {VT_NULL, 0}, {VT_I1, 1},  {VT_UI1, 1}, {VT_I2, 2},   {VT_UI2, 2},
    {VT_BOOL, 2},  {VT_I4, 4},   {VT_UI4, 4}, {VT_INT, 4}, {VT_UINT, 4}, {VT_R4, 4},
    {VT_ERROR, 4}, {VT_I8, 8},   {VT_UI8, 8}, {VT_R8, 8},  {VT_CY, 8},   {VT_DATE, 8},
};

const ScalarType* FindScalar(VARTYPE type) {
    for (const ScalarType& scalar : scalars)
        if (scalar.type == type)
            return &scalar;
    return nullptr;
}

bool IsObject(VARTYPE type) {
    return type == VT_DISPATCH || type == VT_UNKNOWN;
}

// All scalars of a variant start at the same place.
void* PlaceOf(VARIANT& value) {
    return &V_I8(&value);
}

HRESULT ReadCharacters(ByteSource& source, ULONG count, VARIANT& value) {
    std::vector<OLECHAR> characters(count / sizeof(OLECHAR) + 1);
    const HRESULT result = source.Read(characters.data(), count);
    if (FAILED(result))
        return result;
    const auto length =
        static_cast<UINT>(count / sizeof(OLECHAR) - 1); // the terminating zero is not the string's
    const BSTR text = SysAllocStringLen(characters.data(), length);
    if (!text)
        return E_OUTOFMEMORY;
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = text;
    return S_OK;
}

HRESULT ReadString(ByteSource& source, VARIANT& value) {
    ULONG count = 0;
    const HRESULT result = source.Read(&count, sizeof count);
    if (FAILED(result))
        return result;
    if (count == halfCharacter || count > longestString) {
        DebugText("Input stream may be corrupted. ");
        return E_FAIL;
    }
    if (count)
        return ReadCharacters(source, count, value);
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = nullptr;
    return S_OK;
}

HRESULT ReadObject(ByteSource& source, VARTYPE type, VARIANT& value) {
    IDispatch* object = nullptr;
    const HRESULT result = source.ReadObject(&object);
    if (FAILED(result))
        return result;
    V_VT(&value) = type;
    V_DISPATCH(&value) = object;
    return S_OK;
}

HRESULT ReadScalar(ByteSource& source, const ScalarType& scalar, VARIANT& value) {
    V_VT(&value) = scalar.type;
    return scalar.size ? source.Read(PlaceOf(value), scalar.size) : S_OK;
}

// Objects are made for the rows that have one: a damaged stream makes none elsewhere.
HRESULT ReadTyped(ByteSource& source, StoredAs kind, VARIANT& value) {
    VARTYPE type = VT_EMPTY;
    const HRESULT result = source.Read(&type, sizeof type);
    if (FAILED(result))
        return result;
    if (type == VT_BSTR)
        return ReadString(source, value);
    if (const ScalarType* scalar = FindScalar(type))
        return ReadScalar(source, *scalar, value);
    return IsObject(type) && kind == StoredAs::Object ? ReadObject(source, type, value) : E_FAIL;
}

HRESULT WriteString(ByteSink& sink, BSTR text) {
    const ULONG count = text ? static_cast<ULONG>((SysStringLen(text) + 1) * sizeof(OLECHAR)) : 0;
    const HRESULT result = sink.Write(&count, sizeof count);
    return SUCCEEDED(result) && count ? sink.Write(text, count) : result;
}

HRESULT WriteTyped(ByteSink& sink, VARIANT& value) {
    const ScalarType* scalar = FindScalar(V_VT(&value));
    if (!scalar && V_VT(&value) != VT_BSTR && !IsObject(V_VT(&value)))
        return E_FAIL;
    const HRESULT result = sink.Write(&V_VT(&value), sizeof V_VT(&value));
    if (FAILED(result))
        return result;
    if (V_VT(&value) == VT_BSTR)
        return WriteString(sink, V_BSTR(&value));
    if (!scalar)
        return sink.WriteObject(V_UNKNOWN(&value));
    return scalar->size ? sink.Write(PlaceOf(value), scalar->size) : S_OK;
}

} // namespace

HRESULT ReadVersion(ByteSource& source) {
    DWORD stored = 0;
    const HRESULT result = source.Read(&stored, sizeof stored);
    if (FAILED(result))
        return result;
    return stored <= version ? S_OK : E_FAIL;
}

HRESULT WriteVersion(ByteSink& sink) {
    return sink.Write(&version, sizeof version);
}

HRESULT StreamRowReader::Read(const PropertyRow& row, VARIANT& value) {
    if (!row.IsRaw())
        return ReadTyped(source_, row.kind, value);
    V_VT(&value) = VT_UI4;
    return source_.Read(&V_UI4(&value), sizeof V_UI4(&value));
}

HRESULT StreamRowWriter::Write(const PropertyRow& row, VARIANT& value) {
    return row.IsRaw() ? sink_.Write(&V_UI4(&value), sizeof V_UI4(&value)) : WriteTyped(sink_, value);
}
