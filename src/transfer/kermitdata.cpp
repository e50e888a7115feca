#include "kermitdata.h"

#include "guarded.h"
#include "kermitpacket.h"
#include "services.h"

#include <algorithm>

using namespace kermit;

namespace {

constexpr int sevenBits = 0x7F;
constexpr int controlBit = 64;
constexpr int fillMargin = 8; // a buffer is full so many bytes before the size that the other side takes
constexpr int longestCode = 2;

static_assert(largestPacket - fillMargin - 1 + longestCode <= mostData, "the last byte still fits");

class PacketFiller {
  public:
    explicit PacketFiller(KermitState& kermit) : kermit_(kermit) {}

    int Length() const { return i_; }
    bool IsFull() const { return i_ >= kermit_.spsiz - fillMargin; }

    void Put(int t) {
        int c7 = t & sevenBits;
        const bool isQuote = c7 == static_cast<unsigned char>(kermit_.ctlq);
        if (c7 < ascii::SP || c7 == sevenBits || isQuote) {
            Store(kermit_.ctlq);
            if (!isQuote) {
                t ^= controlBit;
                c7 ^= controlBit;
            }
        }
        Store(kermit_.bImage ? t : c7);
    }

  private:
    void Store(int c) { kermit_.packet[static_cast<size_t>(i_++)] = static_cast<char>(c); }

    KermitState& kermit_;
    int i_ = 0;
};

// The count wraps: no file is refused for its length.
LONG Sum(LONG done, int count) {
    return static_cast<LONG>(static_cast<DWORD>(done) + static_cast<DWORD>(count));
}

// Shown is the size of the packet and not what it holds; kept so, see the tests.
void ShowFilled(KermitState& kermit) {
    TRANSFER& transfer = kermit.transfer;
    transfer.lBytesDone = Sum(transfer.lBytesDone, kermit.spsiz);
    xfUpdate(transfer, transfer.lBytesDone, kermit.spsiz);
}

int Fill(KermitState& kermit) {
    PacketFiller filler(kermit);
    for (;;) {
        const int t = FGetc(kermit.hFile, kermit.ahead);
        if (t < 0)
            return filler.Length() ? filler.Length() : endOfFile;
        filler.Put(t);
        if (filler.IsFull()) {
            ShowFilled(kermit);
            return filler.Length();
        }
    }
}

// The quote is always '#', whatever the other side has asked for; kept so, see the tests. After a quote at
// the end of the data comes the NUL that closes it.
std::string Decoded(const PacketData& data, int length) {
    std::string bytes;
    for (int i = 0; i < length; ++i) {
        int c = data[static_cast<size_t>(i)];
        if (c == quote) {
            c = data[static_cast<size_t>(++i)];
            if ((c & sevenBits) != quote)
                c ^= controlBit;
        }
        bytes += static_cast<char>(c);
    }
    return bytes;
}

} // namespace

int FillBuffer(KermitState& kermit) {
    return Guarded("Kermit: FillBuffer", fillFailed, [&] { return Fill(kermit); });
}

bool EmptyBuffer(KermitState& kermit, int length) {
    return Guarded("Kermit: EmptyBuffer", false, [&] {
        const std::string bytes = Decoded(kermit.packet, std::clamp(length, 0, mostData));
        const auto count = static_cast<DWORD>(bytes.size());
        kermit.cbWritten += count;
        return !count || Fwrite(kermit.hFile, bytes.data(), count) == count;
    });
}

void CountReceived(KermitState& kermit, int length) {
    TRANSFER& transfer = kermit.transfer;
    transfer.lBytesDone = Sum(transfer.lBytesDone, length);
    xfUpdate(transfer, transfer.lBytesDone, length);
}
