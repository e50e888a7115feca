#include "bagform.h"

// The type that a value has on entry is a wish; VT_EMPTY takes any.
HRESULT BagRowReader::Read(const PropertyRow& row, VARIANT& value) {
    value.vt = row.IsRaw() ? VT_UI4 : VT_EMPTY;
    if (FAILED(bag_->Read(row.name, &value, log_.Get())))
        return S_FALSE;
    return row.IsRaw() && FAILED(VariantChangeType(&value, &value, 0, VT_UI4)) ? E_FAIL : S_OK;
}

HRESULT BagRowWriter::Write(const PropertyRow& row, VARIANT& value) {
    return bag_->Write(row.name, &value);
}
