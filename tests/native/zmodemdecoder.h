// ZModem's frames as the far end of a test writes and reads them: made by hand, byte by byte, so that they
// know nothing of the engine's own.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zmodem {

inline constexpr std::array<const char*, 20> names = {
    "ZRQINIT", "ZRINIT", "ZSINIT", "ZACK", "ZFILE",      "ZSKIP",  "ZNAK", "ZABORT",   "ZFIN",     "ZRPOS",
    "ZDATA",   "ZEOF",   "ZFERR",  "ZCRC", "ZCHALLENGE", "ZCOMPL", "ZCAN", "ZFREECNT", "ZCOMMAND", "ZSTDERR"};

inline std::string Name(int type) {
    return type >= 0 && type < 20 ? names[static_cast<size_t>(type)] : "Z" + std::to_string(type);
}

// x^16 + x^12 + x^5 + 1, bit by bit.
inline unsigned Crc16(const std::string& bytes) {
    unsigned value = 0;
    for (const char byte : bytes)
        for (unsigned bit = 0x80; bit; bit >>= 1) {
            const bool carry = (value & 0x8000) != 0;
            const bool set = (static_cast<unsigned char>(byte) & bit) != 0;
            value = ((value << 1) ^ (carry != set ? 0x1021u : 0u)) & 0xFFFF;
        }
    return value;
}

// IEEE 802.3, bit by bit, complemented.
inline uint32_t Crc32(const std::string& bytes) {
    uint32_t value = 0xFFFFFFFF;
    for (const char byte : bytes) {
        value ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            value = value & 1 ? (value >> 1) ^ 0xEDB88320u : value >> 1;
    }
    return ~value;
}

inline std::string HighFirst16(unsigned value) {
    return {static_cast<char>(value >> 8), static_cast<char>(value)};
}

inline std::string LowFirst32(uint32_t value) {
    std::string bytes;
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>(value >> (8 * i));
    return bytes;
}

inline std::string Escape(const std::string& bytes) {
    std::string line;
    for (const char byte : bytes) {
        const int c = static_cast<unsigned char>(byte);
        if ((c & 0x7F) == 0x11 || (c & 0x7F) == 0x13 || c == 0x18) {
            line += '\x18';
            line += static_cast<char>(c ^ 0x40);
        } else {
            line += byte;
        }
    }
    return line;
}

inline std::string HexOf(const std::string& bytes) {
    std::string digits;
    for (const char byte : bytes) {
        char text[3];
        std::snprintf(text, sizeof text, "%02x", static_cast<unsigned char>(byte));
        digits += text;
    }
    return digits;
}

// Headers. The position goes low byte first; as flags, ZF0 is its highest byte.
inline std::string Hex(int type, uint32_t position = 0) {
    const std::string body = static_cast<char>(type) + LowFirst32(position);
    return "**\x18"
           "B" +
           HexOf(body + HighFirst16(Crc16(body))) + "\r\x8A\x11";
}

inline std::string Binary(int type, uint32_t position = 0) {
    const std::string body = static_cast<char>(type) + LowFirst32(position);
    return "*\x18"
           "A" +
           Escape(body + HighFirst16(Crc16(body)));
}

inline std::string Binary32(int type, uint32_t position = 0) {
    const std::string body = static_cast<char>(type) + LowFirst32(position);
    return "*\x18"
           "C" +
           Escape(body + LowFirst32(Crc32(body)));
}

// With a length byte, which no check covers.
inline std::string LongHex(int type, const std::string& bytes) {
    const std::string body = static_cast<char>(type) + bytes;
    return "**\x18"
           "b" +
           HexOf(std::string(1, static_cast<char>(bytes.size()))) + HexOf(body + HighFirst16(Crc16(body))) +
           "\r\x8A\x11";
}

inline std::string Data(const std::string& bytes, char end) {
    return Escape(bytes) + '\x18' + end + Escape(HighFirst16(Crc16(bytes + end)));
}

inline std::string Garbled(std::string header) {
    char& inCrc = header[header.size() - 5];
    inCrc = inCrc == '0' ? '1' : '0';
    return header;
}

// Reads what a sender of CRC-16 frames says, in pieces as a reader of a test wants to see them: "hex ZRQINIT
// 0", "bin ZDATA 1024", "data 1024 G", "OO", "CAN 10"; "bad ..." for a wrong check or a wrong line end.
class Decoder {
  public:
    std::string contents; // of all data after ZDATA headers, each at its place
    std::string fileHeader;

    std::vector<std::string> Feed(const std::string& bytes) {
        line_ += bytes;
        std::vector<std::string> pieces;
        while (const std::optional<std::string> piece = Next())
            pieces.push_back(*piece);
        return pieces;
    }

    // Bytes that make no whole piece.
    const std::string& Rest() const { return line_; }

  private:
    static constexpr const char* ends = "EGQW";

    std::optional<std::string> Next() {
        if (StartsWith("**\x18"
                       "B"))
            return HexPiece();
        if (StartsWith("*\x18"
                       "A"))
            return BinaryPiece();
        if (inData_)
            return DataPiece();
        if (StartsWith("OO"))
            return Take("OO", 2);
        const size_t others = line_.find_first_not_of('\x18');
        if (line_.size() >= 10 && (others == std::string::npos || others >= 10))
            return Take("CAN 10", 10);
        if (line_.empty() || std::string("*\x18O").find(line_[0]) != std::string::npos)
            return std::nullopt;
        return Take("raw " + HexOf(line_.substr(0, 1)), 1);
    }

    bool StartsWith(const std::string& text) const { return line_.compare(0, text.size(), text) == 0; }

    std::string Take(const std::string& piece, size_t count) {
        line_.erase(0, count);
        return piece;
    }

    std::string Header(const char* kind, const std::string& body) {
        uint32_t position = 0;
        for (size_t i = 4; i >= 1; --i)
            position = position << 8 | static_cast<unsigned char>(body[i]);
        const int type = static_cast<unsigned char>(body[0]);
        inData_ = type == 2 || type == 4 || type == 10;
        dataOf_ = type;
        if (type == 10)
            position_ = position;
        const bool good = Crc16(body.substr(0, 5)) == Number16(body.substr(5));
        return (good ? "" : "bad ") + std::string(kind) + " " + Name(type) + " " + std::to_string(position);
    }

    static unsigned Number16(const std::string& bytes) {
        return static_cast<unsigned>(static_cast<unsigned char>(bytes[0]) << 8 |
                                     static_cast<unsigned char>(bytes[1]));
    }

    std::optional<std::string> HexPiece() {
        constexpr size_t digits = 14;
        constexpr size_t start = 4;
        if (line_.size() < start + digits + 2)
            return std::nullopt;
        std::string body;
        for (size_t i = start; i < start + digits; i += 2)
            body += static_cast<char>(std::stoi(line_.substr(i, 2), nullptr, 16));
        const bool hasXOn = body[0] != 8 && body[0] != 3; // ZFIN, ZACK
        const std::string end = hasXOn ? "\r\x8A\x11" : "\r\x8A";
        if (line_.size() < start + digits + end.size())
            return std::nullopt;
        const bool good = line_.compare(start + digits, end.size(), end) == 0;
        const std::string piece = Header("hex", body);
        return Take(good ? piece : "bad end of " + piece, start + digits + end.size());
    }

    // The byte at a place of the line, which moves on; nothing if it has not come.
    std::optional<int> Unescaped(size_t& at, bool& isEnd) const {
        isEnd = false;
        if (at >= line_.size())
            return std::nullopt;
        const int c = static_cast<unsigned char>(line_[at++]);
        if (c != 0x18)
            return c;
        if (at >= line_.size())
            return std::nullopt;
        const int next = static_cast<unsigned char>(line_[at++]);
        if (next == 'l')
            return 0x7F;
        if (next == 'm')
            return 0xFF;
        isEnd = next >= 'h' && next <= 'k';
        return isEnd ? next : next ^ 0x40;
    }

    std::optional<std::string> BinaryPiece() {
        size_t at = 3;
        std::string body;
        for (bool isEnd; body.size() < 7;) {
            const std::optional<int> c = Unescaped(at, isEnd);
            if (!c)
                return std::nullopt;
            body += static_cast<char>(*c);
        }
        const std::string piece = Header("bin", body);
        return Take(piece, at);
    }

    std::optional<std::string> DataPiece() {
        size_t at = 0;
        std::string bytes;
        int end = 0;
        for (bool isEnd = false; !isEnd;) {
            const std::optional<int> c = Unescaped(at, isEnd);
            if (!c)
                return std::nullopt;
            if (isEnd)
                end = *c;
            else
                bytes += static_cast<char>(*c);
        }
        std::string check;
        for (bool isEnd; check.size() < 2;) {
            const std::optional<int> c = Unescaped(at, isEnd);
            if (!c)
                return std::nullopt;
            check += static_cast<char>(*c);
        }
        if (end == 'k') { // ends in XOn
            if (at >= line_.size())
                return std::nullopt;
            check += line_[at++];
        }
        const bool good =
            Crc16(bytes + static_cast<char>(end)) == Number16(check) && (end != 'k' || check[2] == '\x11');
        inData_ = end == 'i' || end == 'j';
        Keep(bytes);
        return Take((good ? "data " : "bad data ") + std::to_string(bytes.size()) + " " + ends[end - 'h'],
                    at);
    }

    void Keep(const std::string& bytes) {
        if (dataOf_ == 4)
            fileHeader = bytes;
        if (dataOf_ != 10 || bytes.empty())
            return;
        if (contents.size() < position_ + bytes.size())
            contents.resize(position_ + bytes.size());
        contents.replace(position_, bytes.size(), bytes);
        position_ += bytes.size();
    }

    std::string line_;
    bool inData_ = false;
    int dataOf_ = 0;
    size_t position_ = 0;
};

// What the far end says once it has heard a piece that begins so.
struct Exchange {
    std::string heard;
    std::string said;
};

// A far end by a script: each exchange waits for its turn.
class FarEnd {
  public:
    explicit FarEnd(std::vector<Exchange> script) : script_(std::move(script)) {}

    template <class Line>
    void Plug(Line& line) {
        line.onWrite = [this, &line](const std::string& bytes) {
            for (const std::string& piece : decoder.Feed(bytes)) {
                heard.push_back(piece);
                if (next_ == script_.size() ||
                    piece.compare(0, script_[next_].heard.size(), script_[next_].heard))
                    continue;
                if (!script_[next_].said.empty())
                    line.Say(script_[next_].said);
                ++next_;
            }
        };
    }

    bool ScriptIsDone() const { return next_ == script_.size(); }

    std::vector<std::string> heard;
    Decoder decoder;

  private:
    std::vector<Exchange> script_;
    size_t next_ = 0;
};

} // namespace zmodem
