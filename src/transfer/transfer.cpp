#include "transfer.h"

#include <array>
#include <cstddef>

namespace {

// "Compuserve B+" has no engine: a transfer with its number fails.
constexpr std::array<const char*, 8> protocolNames = {
    "XModem", "XModem CRC", "XModem 1K", "YModem", "YModem-G", "ZModem", "Kermit", "Compuserve B+",
};

} // namespace

const char* ProtocolName(int nProtocol) {
    if (nProtocol < 0 || nProtocol >= static_cast<int>(protocolNames.size()))
        return "";
    return protocolNames[static_cast<size_t>(nProtocol)];
}
