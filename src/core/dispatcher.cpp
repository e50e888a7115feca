#include "dispatcher.h"

#include "ascii.h"
#include "input.h"
#include "live.h"
#include "port.h"
#include "portstatus.h"
#include "Tc-lkup.h"
#include "zmodemstart.h"

#include <array>

namespace {

constexpr int chunkSize = 1024; // bytes, bounds the work of one step

bool OfferNext(COMCTL& record) {
    OfferedInput& offered = record.Offered;
    if (offered.lookedUp == offered.searched)
        return FeedLookUp(record, offered.bytes[offered.lookedUp++]);
    return CheckAutoZModem(record, offered.bytes[offered.searched++]);
}

// A tick inside one of the events finds what is left of this chunk ahead of its own bytes, and leaves nothing
// of either. False: the object is gone.
bool OfferBytes(COMCTL& record, const char* bytes, int count) {
    OfferedInput& offered = record.Offered;
    offered.bytes.insert(offered.bytes.end(), bytes, bytes + count);
    while (offered.searched < offered.bytes.size())
        if (!OfferNext(record))
            return false;
    offered.bytes.clear();
    offered.lookedUp = offered.searched = 0;
    return true;
}

} // namespace

bool DispatchInput(COMCTL& record) {
    const ObjectWatch watch(record);
    std::array<char, chunkSize + 1> chunk;
    bool readAny = false;
    int count = chunkSize;
    while (count == chunkSize) {
        if (!IsDevice(record.hComm))
            break;
        count = ReadInput(record, chunk.data(), chunkSize);
        if (watch.Gone())
            return readAny;
        readAny = readAny || count;
        TakeFreshCount(record);
        if (watch.Gone())
            return readAny;
        if (!count)
            break;
        EchoInput(record, chunk.data(), count);
        if (watch.Gone() || !OfferBytes(record, chunk.data(), count))
            return readAny;
    }
    if (LookUpTurnIsDue(record))
        FeedLookUp(record, ascii::NUL);
    return readAny;
}
