// XModem and YModem on lines of the fuzzer's making: each transfer ends, and a file that is reported good
// holds what the blocks said.
#include "memorydisk.h"
#include "transfer/modemprotocol.h"
#include "transferdouble.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

constexpr DWORD longestWait = 60 * 60 * 1000; // ms: of a script's few pieces none takes that long

void Require(bool condition) {
    if (!condition)
        std::abort();
}

// CRC-16 or the sum, so that the fuzzer doesn't have to find them.
std::string Sealed(std::string block, bool withCrc) {
    unsigned crc = 0;
    unsigned sum = 0;
    for (size_t i = 3; i < block.size(); ++i) {
        const auto byte = static_cast<unsigned char>(block[i]);
        sum += byte;
        crc ^= static_cast<unsigned>(byte) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc << 1 ^ (crc & 0x8000 ? 0x1021u : 0u)) & 0xFFFF;
    }
    if (withCrc)
        block += static_cast<char>(crc >> 8);
    return block + static_cast<char>(withCrc ? crc : sum);
}

std::string MakeBlock(FuzzedDataProvider& data, bool withCrc) {
    const bool isLong = data.ConsumeBool();
    const auto number = data.ConsumeIntegral<char>();
    std::string block = {isLong ? '\x02' : '\x01', number, static_cast<char>(~number)};
    block += data.ConsumeRandomLengthString(isLong ? 1024 : 128);
    block.resize(3 + (isLong ? 1024 : 128), '\0');
    return Sealed(block, withCrc);
}

// A piece of the line: a good block, raw bytes, or nothing for a while.
void Say(FuzzedDataProvider& data, WorkerLine& line, bool withCrc) {
    switch (data.ConsumeIntegralInRange(0, 3)) {
    case 0:
        return line.Say(MakeBlock(data, withCrc));
    case 1:
        return line.Say(std::string(1, data.PickValueInArray({'\x04', '\x06', '\x15', '\x18', 'C', 'G'})));
    case 2:
        return line.Say(data.ConsumeRandomLengthString(64), data.ConsumeIntegralInRange(0u, 20000u));
    default:
        return;
    }
}

void SetUpDisk(FuzzedDataProvider& data, MemoryDisk& disk) {
    disk.full = data.ConsumeBool();
    disk.readOnly = data.ConsumeBool();
    disk.closesFail = data.ConsumeBool();
    if (data.ConsumeBool())
        disk.files["a"].contents = std::string(data.ConsumeIntegralInRange<size_t>(0, 3000), 'x');
}

void FuzzTransfer(FuzzedDataProvider& data) {
    MemoryDisk disk;
    SetUpDisk(data, disk);
    const int protocol = data.ConsumeIntegralInRange<int>(Protocol_XModemChecksum, Protocol_YModemG);
    const bool sends = data.ConsumeBool();
    TransferDouble transfer(sends ? XferUpload : XferDownload, protocol);
    transfer.keepBlocks = false;
    if (data.ConsumeBool())
        transfer.Queue("a");
    transfer.line.patience = longestWait;
    if (data.ConsumeBool())
        transfer.line.abortAt = GetTickCount() + data.ConsumeIntegralInRange(1u, 100000u);
    transfer.line.onWrite = [&](const std::string&) {
        if (data.remaining_bytes())
            Say(data, transfer.line, protocol != Protocol_XModemChecksum);
    };
    CModemProtocol engine(transfer.transfer, data.ConsumeBool());
    const int failed = sends ? engine.StartModemSend(protocol) : engine.StartModemReceive(protocol);
    Require(failed == 0 || failed == 1);
    const bool finished = std::ranges::find(transfer.journal, "finish") != transfer.journal.end();
    if (!sends)
        Require(!finished || !disk.closesFail);
    Require(!finished || !disk.readOnly || disk.files.contains("a"));
}

// The block lies alone on the heap, so that a byte too many is seen.
void FuzzHeader(FuzzedDataProvider& data) {
    MemoryDisk disk;
    SetUpDisk(data, disk);
    TransferDouble transfer(XferDownload);
    ModemLine line(transfer.transfer);
    ReceivedFile file(line, data.ConsumeBool());
    file.bZModem = data.ConsumeBool();
    file.zconv = data.ConsumeIntegral<BYTE>();
    file.zmanag = data.ConsumeIntegral<BYTE>();
    file.Lzmanag = data.ConsumeIntegral<BYTE>();
    const std::vector<char> block = data.ConsumeRemainingBytes<char>();
    const int result = file.ProcessHeader(block.data(), block.size());
    Require(result == FileProceeds || result == FileIsSkipped || result == FileCantBeOpened);
    Require(file.IsOpen() == (result == FileProceeds && !block.empty() && block[0]));
    Require(file.Bytesleft >= 0 && file.Rxbytes >= 0 && file.Pathname.size() <= 512);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzedDataProvider data(bytes, size);
    if (data.ConsumeBool())
        FuzzTransfer(data);
    else
        FuzzHeader(data);
    return 0;
}
