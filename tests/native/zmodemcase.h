// ZModem's framing before a far end of bytes, and what was told of it: status line and log.
#pragma once

#include "platform.h"
#include "transfer/zmodemframing.h"
#include "transferdouble.h"
#include "zmodemdecoder.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace zmodem {

// More kinds than a sender of CRC-16 needs.
inline std::string Data32(const std::string& bytes, char end) {
    return Escape(bytes) + '\x18' + end + Escape(LowFirst32(Crc32(bytes + end)));
}

inline std::string Body(int type, const std::string& bytes) {
    return static_cast<char>(type) + bytes;
}

inline std::string Length(const std::string& bytes) {
    return Escape(std::string(1, static_cast<char>(bytes.size())));
}

inline std::string LongBinary(int type, const std::string& bytes) {
    const std::string body = Body(type, bytes);
    return "*\x18"
           "a" +
           Length(bytes) + Escape(body + HighFirst16(Crc16(body)));
}

inline std::string LongBinary32(char kind, int type, const std::string& bytes) {
    const std::string body = Body(type, bytes);
    return std::string("*\x18") + kind + Length(bytes) + Escape(body + LowFirst32(Crc32(body)));
}

inline std::string WithKind(std::string header, char kind) {
    header[header.find('\x18') + 1] = kind;
    return header;
}

} // namespace zmodem

struct FramingCase {
    FramingCase() {
        transfer.line.patience = 60 * 60 * 1000;
        transfer.keepBlocks = false;
    }

    bool Logged(const std::string& text) const {
        return std::ranges::find(transfer.object.journal, "log " + text) != transfer.object.journal.end();
    }

    bool Showed(const std::string& text) const {
        return std::ranges::find(transfer.journal, "status " + text) != transfer.journal.end();
    }

    std::string Sent() {
        line.WriteFlush();
        return std::exchange(transfer.line.sent, "");
    }

    void Say(const std::string& bytes) { transfer.line.Say(bytes); }

    TransferDouble transfer{XferDownload};
    ModemLine line{transfer.transfer};
    ZModemFraming framing{line};
};
