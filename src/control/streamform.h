// The stream form of a state, little-endian: a version, then each row's value with its type before it; a raw
// row stands without. Bytes come from any source, so that the form can be tried without the platform's
// streams.
#pragma once

#include "stateform.h"

// All the bytes that are asked for, or a failure.
class ByteSource {
  public:
    virtual ~ByteSource() = default;
    virtual HRESULT Read(void* bytes, ULONG count) = 0;
    virtual HRESULT ReadObject(IDispatch** object) = 0;
};

class ByteSink {
  public:
    virtual ~ByteSink() = default;
    virtual HRESULT Write(const void* bytes, ULONG count) = 0;
    virtual HRESULT WriteObject(IUnknown* object) = 0; // null is stored, too
};

HRESULT ReadVersion(ByteSource& source);
HRESULT WriteVersion(ByteSink& sink);

class StreamRowReader final : public RowReader {
  public:
    explicit StreamRowReader(ByteSource& source) : source_(source) {}
    HRESULT Read(const PropertyRow& row, VARIANT& value) override;

  private:
    ByteSource& source_;
};

class StreamRowWriter final : public RowWriter {
  public:
    explicit StreamRowWriter(ByteSink& sink) : sink_(sink) {}
    HRESULT Write(const PropertyRow& row, VARIANT& value) override;

  private:
    ByteSink& sink_;
};
