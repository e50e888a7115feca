// The other side of a Kermit transfer: packets as the protocol has them, and a script of them.
#pragma once

#include "memorydisk.h"
#include "transfer/kermitstate.h"
#include "transferdouble.h"

#include <string>
#include <vector>

inline int KermitCheck(const std::string& fields) {
    int sum = 0;
    for (const char c : fields)
        sum += static_cast<unsigned char>(c);
    return (sum + ((sum >> 6) & 3)) % 64;
}

// SOH and what follows it, the end of the line left out. The fields go as they are, however absurd.
inline std::string RawPacket(int len, int seq, int type, const std::string& data) {
    std::string fields;
    for (const int field : {len, seq, type})
        fields += static_cast<char>(field);
    fields += data;
    return '\x01' + fields + static_cast<char>(KermitCheck(fields) + 32);
}

inline std::string Packet(char type, int number, const std::string& data = "") {
    return RawPacket(static_cast<int>(data.size()) + 35, number + 32, type, data) + '\r';
}

// "F1 name" for a packet without padding and with its CR, "?" and the bytes for everything else.
inline std::string PacketText(const std::string& bytes) {
    if (bytes.size() < 6 || bytes[0] != 1)
        return "?" + bytes;
    const std::string data = bytes.substr(4, bytes.size() - 6);
    const std::string text = bytes[3] + std::to_string(bytes[2] - 32) + (data.empty() ? "" : " " + data);
    return Packet(bytes[3], bytes[2] - 32, data) == bytes ? text : "?" + bytes;
}

inline const std::string OurParameters = "~* @-#";
inline const std::string Silence;

// A transfer, its files, and answers to what it sends, one for each packet. After the last of them the far
// end is silent.
class KermitTest {
  public:
    explicit KermitTest(XferDirection direction) : transfer(direction, Protocol_Kermit) {
        transfer.keepBlocks = false;
        transfer.line.onWrite = [this](const std::string& bytes) {
            packets.push_back(PacketText(bytes));
            Next();
        };
    }

    void Next() {
        if (next_ < script.size())
            transfer.line.Say(script[next_++]);
    }

    size_t LogCount(const std::string& text) {
        size_t count = 0;
        for (const std::string& entry : transfer.object.journal)
            count += entry == "log " + text;
        return count;
    }
    bool Logged(const std::string& text) { return LogCount(text) > 0; }

    MemoryDisk disk;
    TransferDouble transfer;
    std::vector<std::string> script;
    std::vector<std::string> packets; // what the transfer has sent

  private:
    size_t next_ = 0;
};
