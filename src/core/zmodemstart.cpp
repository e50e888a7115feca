#include "zmodemstart.h"

#include "ascii.h"
#include "live.h"
#include "rooms.h"

namespace {

// Two pad bytes, the escape and the head of a hex header of type ZRQINIT; the NUL behind it is what the byte
// after a success is compared with, since the count then stays where it is.
constexpr char startSequence[] = {'*', '*', ascii::CAN, 'B', '0', '0', ascii::NUL};
constexpr int sequenceLength = sizeof startSequence - 1;

} // namespace

bool CheckAutoZModem(COMCTL& record, char byte) {
    if (!record.bAutoZModem)
        return true;
    if (record.nAutoZModemMatch > sequenceLength || byte != startSequence[record.nAutoZModemMatch]) {
        record.nAutoZModemMatch = 0; // a byte that breaks a match does not begin one
        return true;
    }
    if (++record.nAutoZModemMatch != sequenceLength || !upperRooms.startDownload)
        return true;
    const ObjectWatch watch(record);
    upperRooms.startDownload(record.hWnd, "");
    return watch.Alive();
}
