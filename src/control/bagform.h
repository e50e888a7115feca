// The form of a state in a property bag: one named value a row.
#pragma once

#include "stateform.h"

#include <ocidl.h>
#include <wrl/client.h>

class BagRowReader final : public RowReader {
  public:
    BagRowReader(IPropertyBag* bag, IErrorLog* log) : bag_(bag), log_(log) {}
    HRESULT Read(const PropertyRow& row, VARIANT& value) override;

  private:
    Microsoft::WRL::ComPtr<IPropertyBag> bag_;
    Microsoft::WRL::ComPtr<IErrorLog> log_;
};

class BagRowWriter final : public RowWriter {
  public:
    explicit BagRowWriter(IPropertyBag* bag) : bag_(bag) {}
    HRESULT Write(const PropertyRow& row, VARIANT& value) override;

  private:
    Microsoft::WRL::ComPtr<IPropertyBag> bag_;
};
