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

// False: the object is gone.
bool OfferBytes(COMCTL& record, const char* bytes, int count) {
    for (int i = 0; i < count; ++i)
        if (!FeedLookUp(record, bytes[i]) || !CheckAutoZModem(record, bytes[i]))
            return false;
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
