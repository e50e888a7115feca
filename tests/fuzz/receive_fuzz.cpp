// A whole receive by XModem, YModem or ZModem against a far end of the fuzzer's making: it always ends, and a
// file that it calls good holds no more than was said. The first byte chooses the protocol and the options;
// the rest is what is said, in turns, one for each time that the receiver has spoken: a kind, a length, the
// bytes.
#include "memorydisk.h"
#include "platform.h"
#include "transfer/crc.h"
#include "transfer/modemprotocol.h"
#include "transferdouble.h"
#include "zmodemcase.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr size_t longestInput = 2048; // bytes: bounds the simulated time
constexpr uint8_t protocols = 6;
constexpr uint8_t resumeBit = 0x40;
constexpr uint8_t abortBit = 0x80;
constexpr DWORD abortAfter = 30000; // ms
constexpr size_t shortBlock = 128;
constexpr size_t longBlock = 1024;
constexpr size_t repeatLimit = 100; // of one turn

void Require(bool condition, int line = __builtin_LINE()) {
    if (condition)
        return;
    std::fprintf(stderr, "not so in line %d\n", line);
    std::abort();
}

uint32_t PositionIn(const std::string& bytes) {
    uint32_t position = 0;
    for (size_t i = 0; i < 4 && i + 1 < bytes.size(); ++i)
        position |= static_cast<uint32_t>(static_cast<unsigned char>(bytes[i + 1])) << 8 * i;
    return position;
}

int First(const std::string& bytes) {
    return bytes.empty() ? 0 : static_cast<unsigned char>(bytes[0]);
}

// Number, then data, filled up.
std::string Block(const std::string& bytes, size_t size, char start) {
    std::string data = bytes.empty() ? "" : bytes.substr(1, size);
    data.resize(size, '\0');
    const auto number = static_cast<char>(First(bytes));
    return std::string{start, number, static_cast<char>(~number)} + data +
           zmodem::HighFirst16(zmodem::Crc16(data));
}

std::string SummedBlock(const std::string& bytes) {
    std::string block = Block(bytes, shortBlock, '\x01');
    block.resize(block.size() - 2);
    char sum = 0;
    for (size_t i = 3; i < block.size(); ++i)
        sum = static_cast<char>(sum + block[i]);
    return block + sum;
}

std::string EndedData(const std::string& bytes, std::string (*frame)(const std::string&, char)) {
    return frame(bytes.empty() ? "" : bytes.substr(1), static_cast<char>('h' + (First(bytes) & 3)));
}

// What a turn's bytes become; the fuzzer could not guess a check.
std::string (*const turns[])(const std::string&) = {
    [](const std::string& bytes) { return bytes; },
    [](const std::string& bytes) { return zmodem::Hex(First(bytes) % 24, PositionIn(bytes)); },
    [](const std::string& bytes) { return zmodem::Binary(First(bytes) % 24, PositionIn(bytes)); },
    [](const std::string& bytes) { return zmodem::Binary32(First(bytes) % 24, PositionIn(bytes)); },
    [](const std::string& bytes) { return EndedData(bytes, zmodem::Data); },
    [](const std::string& bytes) { return EndedData(bytes, zmodem::Data32); },
    [](const std::string& bytes) { return zmodem::LongBinary(First(bytes) % 24, bytes.substr(0, 16)); },
    [](const std::string& bytes) { return Block(bytes, shortBlock, '\x01'); },
    [](const std::string& bytes) { return Block(bytes, longBlock, '\x02'); },
    [](const std::string& bytes) { return SummedBlock(bytes); },
};

class FarEnd {
  public:
    FarEnd(WorkerLine& line, const std::string& script) : line_(line), script_(script) {
        line.onWrite = [this](const std::string&) { Speak(); };
    }

    size_t said = 0; // bytes

  private:
    int Next() { return at_ < script_.size() ? static_cast<unsigned char>(script_[at_++]) : 0; }

    // Bits of the kind: one more turn right behind this one.
    void Speak() {
        bool more = true;
        for (size_t i = 0; more && at_ < script_.size() && i < repeatLimit; ++i) {
            const int kind = Next();
            const auto length = static_cast<size_t>(Next());
            const std::string bytes = script_.substr(std::min(at_, script_.size()), length);
            at_ += bytes.size();
            const std::string turn = turns[static_cast<size_t>(kind & 0x7F) % std::size(turns)](bytes);
            line_.Say(turn);
            said += turn.size();
            more = kind & 0x80;
        }
    }

    WorkerLine& line_;
    std::string script_;
    size_t at_ = 0;
};

void CheckFiles(const MemoryDisk& disk, const FarEnd& farEnd, size_t present) {
    size_t total = 0;
    for (const auto& [name, file] : disk.files)
        total += file.contents.size();
    Require(total <= farEnd.said + present);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (!size || size > longestInput)
        return 0;
    platform::SetTick(0);
    const uint8_t options = bytes[0];
    MemoryDisk disk;
    disk.files["a"].contents = std::string(1000, 'a');
    TransferDouble transfer(XferDownload, options % 16 % protocols);
    transfer.keepBlocks = false;
    if (options & abortBit)
        transfer.line.abortAt = abortAfter;
    FarEnd farEnd(transfer.line, std::string(reinterpret_cast<const char*>(bytes) + 1, size - 1));

    CModemProtocol engine(transfer.transfer, options & resumeBit);
    const int result = engine.StartModemReceive(transfer.transfer.nProtocol);
    Require(result == 0 || result == 1);
    CheckFiles(disk, farEnd, 1000);
    return 0;
}
