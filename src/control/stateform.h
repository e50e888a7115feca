// The form in which a state is stored, as the walk over the rows sees it.
#pragma once

#include "propertymap.h"

#include <oleauto.h>
#include <windows.h>

// A value on its way; frees what it holds.
struct StateValue : VARIANT {
    StateValue() : VARIANT() {}
    ~StateValue() { VariantClear(this); }
    StateValue(const StateValue&) = delete;
    StateValue& operator=(const StateValue&) = delete;
};

// Raw rows go as VT_UI4.
class RowReader {
  public:
    virtual ~RowReader() = default;
    // S_FALSE: the form has none, the property keeps what it has.
    virtual HRESULT Read(const PropertyRow& row, VARIANT& value) = 0;
};

class RowWriter {
  public:
    virtual ~RowWriter() = default;
    virtual HRESULT Write(const PropertyRow& row, VARIANT& value) = 0;
};
