#include "statewalk.h"

#include "com/olecontrol.h"
#include "diagnostics/debugtext.h"

#include <cstdio>

using Microsoft::WRL::ComPtr;

namespace {

constexpr size_t traceSize = 80;

template <class... Arguments>
HRESULT Fail(const char* format, Arguments... arguments) {
    char text[traceSize];
    std::snprintf(text, sizeof text, format, arguments...);
    DebugText(text);
    return E_FAIL;
}

// The number that traces give a row: the first is 1.
int NumberOf(const PropertyRow& row) {
    return static_cast<int>(&row - StoredProperties().data()) + 1;
}

HRESULT Dispatch(IDispatch& values, DISPID id, WORD flags, DISPPARAMS& arguments, VARIANT* result) {
    return values.Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &arguments, result, nullptr, nullptr);
}

HRESULT Get(IDispatch& values, DISPID id, VARIANT& value) {
    DISPPARAMS none = {};
    return Dispatch(values, id, DISPATCH_PROPERTYGET, none, &value);
}

// An object goes by reference, where the property takes one so.
HRESULT Put(IDispatch& values, DISPID id, VARIANT& value) {
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS arguments = {&value, &put, 1, 1};
    const bool isObject = value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN;
    if (isObject && SUCCEEDED(Dispatch(values, id, DISPATCH_PROPERTYPUTREF, arguments, nullptr)))
        return S_OK;
    return Dispatch(values, id, DISPATCH_PROPERTYPUT, arguments, nullptr);
}

template <HRESULT Access(IDispatch& values, DISPID id, VARIANT& value)>
HRESULT ByDispatch(IDispatch& values, const PropertyRow& row, VARIANT& value) {
    ComPtr<IDispatch> dispatch;
    if (FAILED(values.QueryInterface(IID_PPV_ARGS(&dispatch))))
        return Fail("Failed to get a dispatch pointer for property #%i\n", NumberOf(row));
    if (FAILED(Access(*dispatch.Get(), row.id, value)))
        return Fail("Invoked failed on DISPID %x\n", static_cast<unsigned>(row.id));
    return S_OK;
}

LONG SIZEL::*SideOf(const PropertyRow& row) {
    return row.kind == StoredAs::Width ? &SIZEL::cx : &SIZEL::cy;
}

void RestoreSide(OleControl& control, const PropertyRow& row, const VARIANT& value) {
    SIZEL extent = control.Extent();
    extent.*SideOf(row) = static_cast<LONG>(value.ulVal);
    control.RestoreExtent(extent);
}

void TakeSide(const OleControl& control, const PropertyRow& row, VARIANT& value) {
    value.vt = VT_UI4;
    value.ulVal = static_cast<ULONG>(control.Extent().*SideOf(row));
}

HRESULT LoadRow(IDispatch& values, OleControl& control, RowReader& reader, const PropertyRow& row) {
    StateValue value;
    const HRESULT result = reader.Read(row, value);
    if (result != S_OK)
        return result;
    if (!row.IsRaw())
        return ByDispatch<Put>(values, row, value);
    RestoreSide(control, row, value);
    return S_OK;
}

HRESULT SaveRow(IDispatch& values, const OleControl& control, RowWriter& writer, const PropertyRow& row) {
    StateValue value;
    if (row.IsRaw())
        TakeSide(control, row, value);
    else if (const HRESULT result = ByDispatch<Get>(values, row, value); FAILED(result))
        return result;
    return writer.Write(row, value);
}

} // namespace

HRESULT LoadState(IDispatch& values, OleControl& control, RowReader& reader) {
    for (const PropertyRow& row : StoredProperties())
        if (const HRESULT result = LoadRow(values, control, reader, row); FAILED(result))
            return result;
    return S_OK;
}

HRESULT SaveState(IDispatch& values, const OleControl& control, RowWriter& writer) {
    for (const PropertyRow& row : StoredProperties())
        if (const HRESULT result = SaveRow(values, control, writer, row); FAILED(result))
            return result;
    return S_OK;
}
