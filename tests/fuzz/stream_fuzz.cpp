// The stream form of a control's state: whatever the bytes, a load ends as good or bad, asks for no more than
// a string may hold, and what it read is written and read again as the same.
#include "control/streamform.h"

#include "automationdouble.h"
#include "diagnostics/debugtext.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

constexpr ULONG longestString = 0x100000;

void Require(bool condition) {
    if (!condition)
        std::abort();
}

class Bytes final : public ByteSource, public ByteSink {
  public:
    explicit Bytes(std::string bytes) : bytes_(std::move(bytes)) {}

    HRESULT Read(void* bytes, ULONG count) override {
        Require(count <= longestString);
        const size_t there = std::min<size_t>(count, bytes_.size() - at_);
        std::memcpy(bytes, bytes_.data() + at_, there);
        at_ += there;
        return there == count ? S_OK : E_FAIL;
    }
    // Objects are the platform's; here there is none.
    HRESULT ReadObject(IDispatch** object) override {
        *object = nullptr;
        return S_OK;
    }
    HRESULT Write(const void* bytes, ULONG count) override {
        bytes_.append(static_cast<const char*>(bytes), count);
        return S_OK;
    }
    HRESULT WriteObject(IUnknown* object) override {
        Require(!object);
        return S_OK;
    }

    const std::string& All() const { return bytes_; }

  private:
    std::string bytes_;
    size_t at_ = 0;
};

// Writes what it reads. The number of rows that were read.
size_t Copy(const std::string& from, std::string& to) {
    Bytes source(from);
    Bytes sink({});
    const HRESULT version = ReadVersion(source);
    Require(version == S_OK || version == E_FAIL);
    if (FAILED(version))
        return 0;
    Require(WriteVersion(sink) == S_OK);
    StreamRowReader reader(source);
    StreamRowWriter writer(sink);
    size_t count = 0;
    for (const PropertyRow& row : StoredProperties()) {
        StateValue value;
        const HRESULT result = reader.Read(row, value);
        Require(result == S_OK || result == E_FAIL);
        if (FAILED(result))
            break;
        Require(writer.Write(row, value) == S_OK);
        ++count;
    }
    to = sink.All();
    return count;
}

} // namespace

// Nobody listens.
void DebugText(const char*) {}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    std::string first;
    std::string second;
    const size_t count = Copy({reinterpret_cast<const char*>(bytes), size}, first);
    Require(first.empty() || Copy(first, second) == count);
    Require(first == second);
    Require(automation::Strings() == 0);
    return 0;
}
