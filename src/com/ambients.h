// What the container tells about the place that a control stands in.
#pragma once

#include <oaidl.h>
#include <wrl/client.h>

#include <string>

class Ambients {
  public:
    void Attach(IUnknown* site);

    // One ambient property, converted to the type that is asked for. The caller clears the value.
    HRESULT Get(DISPID id, VARTYPE type, VARIANT& value) const;

    bool IsUserMode() const;          // true means run time, and so does a container that does not tell
    std::wstring DisplayName() const; // empty, where the container does not tell

  private:
    Microsoft::WRL::ComPtr<IDispatch> site_;
};
