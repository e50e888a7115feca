// A ZModem receiver before a scripted far end.
#pragma once

#include "memorydisk.h"
#include "transfer/zmodemreceiver.h"
#include "zmodemcase.h"

#include <string>
#include <vector>

namespace zmodem {

// What a sender says of a file, its flags as ZF0, ZF1.
inline std::string Offer(const std::string& name, const std::string& text, int conversion = 0,
                         int management = 0) {
    const auto flags = static_cast<uint32_t>(conversion) << 24 | static_cast<uint32_t>(management) << 16;
    return Binary(4, flags) + Data(name + '\0' + text + '\0', 'k') + "\x11";
}

inline std::string DataFrame(uint32_t position, const std::string& bytes, char end = 'h') {
    return Binary(10, position) + Data(bytes, end);
}

inline std::string End(uint32_t position) {
    return Binary(11, position);
}

} // namespace zmodem

struct ReceiveCase : FramingCase {
    explicit ReceiveCase(std::vector<zmodem::Exchange> script, bool resume = false)
        : file(line, resume), farEnd(std::move(script)) {
        farEnd.Plug(transfer.line);
    }

    int Run() {
        const int opening = receiver.TryZModem();
        return opening == ZFILE ? receiver.ReceiveFiles() : opening;
    }

    size_t Count(const std::string& piece) const {
        return static_cast<size_t>(
            std::ranges::count_if(farEnd.heard, [&](const auto& heard) { return heard.starts_with(piece); }));
    }

    std::string Contents(const std::string& name) const {
        const auto found = disk.files.find(name);
        return found == disk.files.end() ? "(none)" : found->second.contents;
    }

    MemoryDisk disk;
    ReceivedFile file;
    ZModemReceiver receiver{framing, file};
    zmodem::FarEnd farEnd;
};
