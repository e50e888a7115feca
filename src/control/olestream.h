// The platform's streams as sources and sinks of bytes, and a sink that only counts.
#pragma once

#include "streamform.h"

#include <objidl.h>
#include <wrl/client.h>

class OleStreamSource final : public ByteSource {
  public:
    explicit OleStreamSource(IStream* stream) : stream_(stream) {}
    HRESULT Read(void* bytes, ULONG count) override;
    HRESULT ReadObject(IDispatch** object) override;

  private:
    Microsoft::WRL::ComPtr<IStream> stream_;
};

class OleStreamSink final : public ByteSink {
  public:
    explicit OleStreamSink(IStream* stream) : stream_(stream) {}
    HRESULT Write(const void* bytes, ULONG count) override;
    HRESULT WriteObject(IUnknown* object) override;

  private:
    Microsoft::WRL::ComPtr<IStream> stream_;
};

class CountingSink final : public ByteSink {
  public:
    ULONGLONG Count() const { return count_; }
    HRESULT Write(const void* bytes, ULONG count) override;
    HRESULT WriteObject(IUnknown* object) override;

  private:
    ULONGLONG count_ = 0;
};
