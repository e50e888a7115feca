#include "kermitpacket.h"

#include "guarded.h"
#include "kermitmessage.h"
#include "services.h"

#include <algorithm>
#include <iterator>

using namespace kermit;

namespace {

constexpr DWORD byteLimit = 1000; // ms
constexpr int searchReads = 10;   // for the SOH of a packet
constexpr int bodyPasses = 10;    // each ended by the SOH of another packet
constexpr int sevenBits = 0x7F;
constexpr int controlBit = 64;
constexpr unsigned char noByte = 0xFF; // stands for a byte that didn't come: no check has this value

constexpr char parameters[parameterCount + 1] = "~* @-#";

// Six bits; the upper two of the sum come in again below.
int CheckOf(int sum) {
    return (sum + ((sum & 0xC0) >> 6)) & 63;
}

// The fields of one packet as they come. After a byte that didn't come in time none is waited for any more.
class FieldReader {
  public:
    explicit FieldReader(KermitState& kermit) : kermit_(kermit) {}

    int Next() {
        const int c = silent_ ? -1 : xfGetChar(kermit_.transfer, byteLimit);
        silent_ = c < 0;
        if (silent_)
            return kermit_.bImage ? noByte : sevenBits;
        return kermit_.bImage ? c : c & sevenBits;
    }

    // For LEN, SEQ and TYPE. False: another packet begins here.
    bool NextSummed(int& value) {
        value = Next();
        sum_ += value;
        return value != ascii::SOH;
    }

    void Add(int value) { sum_ += value; }
    int Check() const { return CheckOf(sum_ & 0xFF); }

  private:
    KermitState& kermit_;
    int sum_ = 0;
    bool silent_ = false;
};

enum class Pass { Again, Good, Bad };

// A SOH in the data was put there by the line: it is left out, and its place keeps what it had.
void ReadData(FieldReader& reader, int length, PacketData& data) {
    for (int i = 0; i < length; ++i) {
        const int c = reader.Next();
        if (c == ascii::SOH)
            continue;
        reader.Add(c);
        if (i < mostData)
            data[static_cast<size_t>(i)] = static_cast<char>(c);
    }
}

Pass ReadBody(KermitState& kermit, Packet& packet, PacketData& data) {
    FieldReader reader(kermit);
    int len = 0;
    int seq = 0;
    if (!reader.NextSummed(len) || !reader.NextSummed(seq) || !reader.NextSummed(packet.type))
        return Pass::Again;
    const int length = len - lengthOffset;
    ReadData(reader, length, data);
    packet.length = std::clamp(length, 0, mostData);
    packet.number = seq - blank;
    data[static_cast<size_t>(packet.length)] = ascii::NUL;
    const int check = reader.Next() - blank;
    if (reader.Next() == ascii::SOH)
        return Pass::Again;
    // A packet that is longer than its buffer was cut, so it is not the one that was sent.
    return check == reader.Check() && length <= mostData ? Pass::Good : Pass::Bad;
}

bool FindStart(TRANSFER& transfer) {
    int t = 0;
    int tries = 0;
    while (t != ascii::SOH && !xfGetAbort(transfer) && tries++ < searchReads) {
        DebugText("(t != SOH) && (!xfGetAbort(pTransfer)) && tries++ < 10\n");
        t = xfGetChar(transfer, byteLimit) & sevenBits;
    }
    return t == ascii::SOH;
}

Packet ReadPacket(KermitState& kermit, PacketData& data) {
    if (!FindStart(kermit.transfer))
        return {};
    Packet packet;
    Pass pass = Pass::Again;
    for (int i = 0; i < bodyPasses && pass == Pass::Again && !xfGetAbort(kermit.transfer); ++i)
        pass = ReadBody(kermit, packet, data);
    if (pass == Pass::Again)
        return {};
    if (pass == Pass::Bad) {
        LogTransfer(kermit.transfer, "ReceivePacket returns invalid checksum");
        return {};
    }
    const char type[] = {static_cast<char>(packet.type), 0};
    LogTransfer(kermit.transfer, (std::string("ReceivePacket returns '") + type + "'.").c_str());
    return packet;
}

std::string PacketBytes(const KermitState& kermit, char type, int number, int length, const char* data) {
    std::string body;
    body += static_cast<char>(length + lengthOffset);
    body += static_cast<char>(number + blank);
    body += type;
    if (length > 0)
        body.append(data, static_cast<size_t>(length));
    int sum = 0;
    for (const char c : body)
        sum += static_cast<unsigned char>(c);
    std::string bytes(static_cast<size_t>(kermit.npad), kermit.padchar);
    bytes += ascii::SOH;
    bytes += body;
    bytes += static_cast<char>(CheckOf(sum) + blank);
    bytes += kermit.eol;
    return bytes;
}

} // namespace

bool SendPacket(KermitState& kermit, char type, int number, int length, const char* data) {
    return Guarded("Kermit: SendPacket", false, [&] {
        const std::string bytes = PacketBytes(kermit, type, number, std::clamp(length, -1, mostData), data);
        return xfWrite(kermit.transfer, bytes.data(), static_cast<DWORD>(bytes.size())) != 0;
    });
}

Packet ReceivePacket(KermitState& kermit, PacketData& data) {
    return Guarded("Kermit: ReceivePacket", Packet{PacketFault}, [&] { return ReadPacket(kermit, data); });
}

void FillParameters(PacketData& data) {
    std::copy_n(parameters, parameterCount, data.begin());
}

void ReadParameters(KermitState& kermit, const PacketData& data, int length) {
    const auto number = [&](size_t i) { return static_cast<unsigned char>(data[i]) - blank; };
    // The time-out, field 1, is of no use here: waits have limits of their own.
    if (length > 0)
        kermit.spsiz = std::clamp(number(0), 0, largestPacket);
    if (length > 2)
        kermit.npad = std::clamp(number(2), 0, largestPacket);
    if (length > 3)
        kermit.padchar = static_cast<char>(data[3] ^ controlBit);
    if (length > 4)
        kermit.eol = static_cast<char>(number(4));
    if (length > 5)
        kermit.ctlq = data[5];
}
