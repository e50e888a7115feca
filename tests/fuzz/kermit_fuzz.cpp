// Kermit's receiver under bytes of the fuzzer's making, some of them in packets with a right check: it comes
// to an end within its limits and leaves no file open.
#include "kermitfarend.h"
#include "platform.h"
#include "transfer/kermit.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

constexpr DWORD longestWait = 60 * 60 * 1000; // ms, of the simulated clock
constexpr size_t mostPackets = 200;

void Require(bool condition, int line = __builtin_LINE()) {
    if (condition)
        return;
    std::fprintf(stderr, "not so in line %d\n", line);
    std::abort();
}

// The packet that would be due now, one with fields of any value, or bytes as they are.
class FarEnd {
  public:
    explicit FarEnd(FuzzedDataProvider& data) : data_(data) {}

    std::string Next() {
        switch (data_.ConsumeIntegralInRange(0, 3)) {
        case 0:
            return data_.ConsumeRandomLengthString(300);
        case 1:
            return Absurd();
        default:
            return Due();
        }
    }

  private:
    std::string Due() {
        constexpr char types[] = {'S', 'F', 'D', 'D', 'D', 'Z', 'B', 'E', 'N', 'Q'};
        const char type = data_.PickValueInArray(types);
        const std::string text = data_.ConsumeRandomLengthString(93);
        const int number = number_;
        number_ = (number_ + data_.ConsumeIntegralInRange(0, 1)) % 64;
        return Packet(type, number, text);
    }

    std::string Absurd() {
        const auto field = [&] { return data_.ConsumeIntegral<uint8_t>(); };
        const int len = field();
        const int seq = field();
        const int type = field();
        return RawPacket(len, seq, type, data_.ConsumeRandomLengthString(220)) + "\r";
    }

    FuzzedDataProvider& data_;
    int number_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzedDataProvider data(bytes, size);
    const int handles = platform::OpenHandles();
    {
        KermitTest test(XferDownload);
        test.disk.full = data.ConsumeIntegralInRange(0, 15) == 0;
        test.disk.readOnly = data.ConsumeIntegralInRange(0, 15) == 0;
        const int inUse = platform::OpenHandles();
        FarEnd farEnd(data);
        size_t packets = 0;
        test.transfer.line.onWrite = [&](const std::string&) {
            Require(++packets < 10 * mostPackets);
            if (data.remaining_bytes() && packets < mostPackets)
                test.transfer.line.Say(farEnd.Next());
        };
        test.transfer.line.Say(farEnd.Next());
        const int result = KermitReceive(test.transfer.transfer);
        Require(result == 0 || result == 1);
        Require(test.transfer.line.waited < longestWait);
        Require(platform::OpenHandles() == inUse);
        size_t written = 0;
        for (const auto& [name, file] : test.disk.files)
            written += file.contents.size();
        Require(!test.disk.full || !written);
    }
    Require(platform::OpenHandles() == handles);
    return 0;
}
