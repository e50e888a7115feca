// A ZModem sender before a scripted far end.
#pragma once

#include "memorydisk.h"
#include "platform.h"
#include "transfer/zmodemsender.h"
#include "transferdouble.h"
#include "zmodemdecoder.h"

#include <algorithm>
#include <random>
#include <string>

inline std::string AllBytes(size_t count, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::string bytes(count, '\0');
    std::ranges::generate(bytes, [&] { return static_cast<char>(random()); });
    return bytes;
}

struct SenderCase {
    explicit SenderCase(size_t cbFile, std::vector<zmodem::Exchange> script) : peer(std::move(script)) {
        disk.files["a"].contents = AllBytes(cbFile);
        framing.Rxtimeout = 600;
        fin.Open("a", FileMode::Read);
        peer.Plug(transfer.line);
        transfer.line.patience = 4 * 60 * 60 * 1000;
        transfer.keepBlocks = false;
    }

    int Send() { return sender.SendZFile("a\0001 2 3", 8); }

    bool Logged(const std::string& text) const {
        return std::ranges::any_of(transfer.object.journal,
                                   [&](const std::string& line) { return line == "log " + text; });
    }

    int Count(const std::string& piece) const {
        return static_cast<int>(std::ranges::count_if(
            peer.heard, [&](const std::string& heard) { return heard.starts_with(piece); }));
    }

    MemoryDisk disk;
    TransferDouble transfer{XferUpload};
    ModemLine line{transfer.transfer};
    ZModemFraming framing{line};
    FileStream fin;
    ZModemSender sender{framing, fin};
    zmodem::FarEnd peer;
};
