// The far end of an X or YModem transfer by script: its blocks, and one answer to each write of this side.
#pragma once

#include "memorydisk.h"
#include "transfer/modemprotocol.h"
#include "transferdouble.h"

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace modem {

using namespace std::string_literals;

inline const std::string ACK = "\x06";
inline const std::string NAK = "\x15";
inline const std::string EOT = "\x04";
inline const std::string CAN = "\x18";
inline const std::string SUB = "\x1A";
inline const std::string cancel(10, '\x18');
inline const std::string silence;

// Bit by bit, so that the engine's table is held against something else.
inline unsigned Crc16(std::string_view bytes) {
    unsigned value = 0;
    for (const char byte : bytes) {
        value ^= static_cast<unsigned>(static_cast<unsigned char>(byte)) << 8;
        for (int bit = 0; bit < 8; ++bit)
            value = (value << 1 ^ (value & 0x8000 ? 0x1021u : 0u)) & 0xFFFF;
    }
    return value;
}

inline char Sum8(std::string_view bytes) {
    unsigned sum = 0;
    for (const char byte : bytes)
        sum += static_cast<unsigned char>(byte);
    return static_cast<char>(sum);
}

inline std::string Times(size_t count, const std::string& text) {
    std::string all;
    for (size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

inline std::string Padded(std::string data, char pad = '\x1A') {
    data.resize(data.size() > 128 ? 1024 : 128, pad);
    return data;
}

inline std::string Head(int number, const std::string& data) {
    return (data.size() == 1024 ? "\x02"s : "\x01"s) + static_cast<char>(number) + static_cast<char>(~number);
}

// The data is padded to 128 bytes, or to 1024 if it is longer than that.
inline std::string SumBlock(int number, const std::string& text) {
    const std::string data = Padded(text);
    return Head(number, data) + data + Sum8(data);
}

inline std::string CrcBlock(int number, const std::string& text, char pad = '\x1A') {
    const std::string data = Padded(text, pad);
    const unsigned crc = Crc16(data);
    return Head(number, data) + data + static_cast<char>(crc >> 8) + static_cast<char>(crc);
}

inline std::string HeaderBlock(const std::string& header) {
    return CrcBlock(0, header, '\0');
}

inline std::string Bytes(size_t count) {
    std::string bytes;
    for (size_t i = 0; i < count; ++i)
        bytes += static_cast<char>(i * 7 + i / 256);
    return bytes;
}

inline constexpr size_t fullBuffer = 1024; // is written out in the middle of a block

class Transfer {
  public:
    explicit Transfer(XferDirection direction, int protocol, bool resume = false)
        : double_(direction, protocol), engine_(double_.transfer, resume), start_(GetTickCount()) {
        double_.keepBlocks = false;
        double_.line.onWrite = [this](const std::string& bytes) {
            if (bytes.size() < fullBuffer)
                Answer();
        };
    }

    // One answer to each write, silence after the last.
    void AnswerWith(std::initializer_list<std::string> answers) { answers_.assign(answers); }
    void AnswerWith(const std::vector<std::string>& answers) {
        answers_.assign(answers.begin(), answers.end());
    }

    int Receive() { return engine_.StartModemReceive(double_.transfer.nProtocol); }
    int Send() { return engine_.StartModemSend(double_.transfer.nProtocol); }

    TransferDouble& Double() { return double_; }
    WorkerLine& Line() { return double_.line; }
    const std::string& Sent() { return double_.line.sent; }
    DWORD Elapsed() const { return GetTickCount() - start_; } // ms

    // The status line's texts, and the host's events, each in one string: "one|two".
    std::string Statuses() { return Entries(true); }
    std::string Events() { return Entries(false); }

    bool Logged(const std::string& text) {
        const auto& journal = double_.object.journal;
        return std::ranges::find(journal, "log " + text) != journal.end();
    }

    size_t CountStatus(const std::string& text) {
        return static_cast<size_t>(std::ranges::count(double_.journal, "status " + text));
    }

  private:
    void Answer() {
        if (answers_.empty())
            return;
        const std::string answer = answers_.front();
        answers_.pop_front();
        double_.line.Say(answer);
    }

    std::string Entries(bool statuses) {
        std::string all;
        for (const std::string& entry : double_.journal) {
            const bool isStatus = entry.starts_with("status ");
            if (isStatus != statuses || entry.starts_with("title "))
                continue;
            all += (all.empty() ? "" : "|") + (isStatus ? entry.substr(7) : entry);
        }
        return all;
    }

    TransferDouble double_;
    CModemProtocol engine_;
    std::deque<std::string> answers_;
    DWORD start_;
};

} // namespace modem
