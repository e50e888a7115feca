// ZModem headers on their way in: the search for one among whatever else is on the line, and the kinds of it.
#include "zmodemframing.h"
#include "zmodemsum.h"

#include "core/ascii.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr int fixedLength = 4; // data bytes of a header without a length byte
constexpr int cancelLimit = 5; // CAN in a row
constexpr int XON = ascii::DC1;
constexpr int XONWithParity = XON | 0x80;

constexpr bool IsByte(int c) {
    return c >= 0 && c <= 0xFF;
}

constexpr bool IsLost(int c) {
    return c == ReadTimeout || c == NoCarrier;
}

} // namespace

// How a frame is read, and what is logged where it breaks off: before, the value, after, the number of the
// step.
struct ZModemFraming::HeaderForm {
    int (ZModemFraming::*read)();
    const char* before;
    const char* after;
    int typeStep;
    int dataStep;
    std::array<int, ZSum32::Bytes> sumSteps;
    const char* mismatch;
    bool logsType;
};

template <class Sum>
int ZModemFraming::ReceiveHeader(const HeaderForm& form) {
    const auto brokenOff = [&](int value, int step) {
        line_.Log("%s %d%s (%d)", form.before, value, form.after, step);
        return value;
    };

    Sum sum;
    int c = (this->*form.read)();
    if (!IsByte(c))
        return brokenOff(c, form.typeStep);
    Rxtype = c;
    sum.Add(c);
    if (form.logsType)
        line_.Log("Receive header: type=%X  crc=%lX", static_cast<unsigned>(c), sum.Value());

    for (size_t i = 0; i < static_cast<size_t>(Rxhlen); ++i) {
        c = (this->*form.read)();
        if (!IsByte(c))
            return brokenOff(c, form.dataStep);
        sum.Add(c);
        Rxhdr[i] = static_cast<unsigned char>(c);
    }

    for (size_t i = 0; i < Sum::Bytes; ++i) {
        c = (this->*form.read)();
        if (!IsByte(c))
            return brokenOff(c, form.sumSteps[i]);
        sum.Add(c);
    }
    if (sum.Matches())
        return Rxtype;
    line_.ShowStatus("Line noise detected");
    line_.Log("%s", form.mismatch);
    return ReadError;
}

int ZModemFraming::ReceiveBinaryHeader() {
    static constexpr HeaderForm form = {&ZModemFraming::ReadEscaped,
                                        "Read binary header returned",
                                        "",
                                        1,
                                        2,
                                        {3, 4},
                                        "Read binary failed because of CRC error",
                                        false};
    const int type = ReceiveHeader<ZSum16>(form);
    if (!IsByte(type))
        return type;
    Protocol = 5;
    bZModem = true;
    line_.Log("Read binary header returned %d (5)", type);
    return type;
}

int ZModemFraming::ReceiveBinaryHeader32() {
    static constexpr HeaderForm form = {&ZModemFraming::ReadEscaped,
                                        "Receive header returns",
                                        " prematurely",
                                        1,
                                        2,
                                        {4, 4, 4, 4},
                                        "Receive binary header returns -1 prematurely (5)",
                                        true};
    const int type = ReceiveHeader<ZSum32>(form);
    if (!IsByte(type))
        return type;
    bZModem = true;
    line_.Log("   Receive header returns %d", type);
    return type;
}

int ZModemFraming::ReceiveHexHeader() {
    static constexpr HeaderForm form = {&ZModemFraming::ReadHex,
                                        "Read hex header returned",
                                        "",
                                        0,
                                        1,
                                        {2, 3},
                                        "Read hex header returned error because of CRC mismatch",
                                        false};
    const int type = ReceiveHeader<ZSum16>(form);
    if (!IsByte(type))
        return type;

    const int firstEnd = line_.ReadLine(Rxtimeout);
    if (firstEnd < 0) {
        line_.Log("Read hex header returned %d (4)", firstEnd);
        return firstEnd;
    }
    const int secondEnd = line_.ReadLine(Rxtimeout);
    Protocol = 5;
    bZModem = true;
    if (secondEnd < 0) {
        line_.Log("Read hex header returned %d (5)", secondEnd);
        return secondEnd;
    }
    return type;
}

// One search: a step is a function that gives the next one.
struct ZModemFraming::HeaderSearch {
    enum class Step { Pad, Zdle, Kind, Cancel, Junk, End };

    struct FrameKind {
        ZFrameCharacter character;
        int crc32;
        int (ZModemFraming::*readLength)(); // null: four bytes
        int (ZModemFraming::*readHeader)();
    };

    ZModemFraming& framing;
    LONG junkLeft;
    int cancelsLeft = cancelLimit;
    int result = 0;

    int Run() {
        Step step = Step::Pad;
        while (step != Step::End)
            step = After(step);
        return result;
    }

    Step After(Step step) {
        switch (step) {
        case Step::Pad:
            return AwaitPad();
        case Step::Zdle:
            return AwaitZdle();
        case Step::Kind:
            return TakeKind();
        case Step::Cancel:
            return TakeCancel();
        case Step::Junk:
            return TakeJunk();
        case Step::End:
            break;
        }
        return Step::End;
    }

    int Read() { return framing.line_.ReadLine(framing.Rxtimeout); }

    Step End(int value) {
        result = value;
        return Step::End;
    }

    // After a byte that counts as nothing.
    Step Again(Step step) { return framing.line_.Aborted() ? End(ReadTimeout) : step; }

    Step AwaitPad() {
        const int c = Read();
        switch (c) {
        case ReadTimeout:
        case NoCarrier:
            return End(c);
        case XON:
        case XONWithParity:
            return Again(Step::Pad);
        case ascii::CAN:
            return Step::Cancel;
        case ZPAD:
            return Step::Zdle;
        default:
            return Step::Junk;
        }
    }

    Step AwaitZdle() {
        const int c = framing.Read7Bit();
        if (IsLost(c))
            return End(c);
        if (c == ZPAD)
            return Again(Step::Zdle);
        return c == ZDLE ? Step::Kind : Step::Junk;
    }

    Step TakeKind() {
        static constexpr FrameKind kinds[] = {
            {ZBIN, 0, nullptr, &ZModemFraming::ReceiveBinaryHeader},
            {ZHEX, 0, nullptr, &ZModemFraming::ReceiveHexHeader},
            {ZBIN32, 1, nullptr, &ZModemFraming::ReceiveBinaryHeader32},
            {ZBINR32, 2, nullptr, &ZModemFraming::ReceiveBinaryHeader32},
            {ZVBIN, 0, &ZModemFraming::ReadEscaped, &ZModemFraming::ReceiveBinaryHeader},
            {ZVHEX, 0, &ZModemFraming::ReadHex, &ZModemFraming::ReceiveHexHeader},
            {ZVBIN32, 1, &ZModemFraming::ReadEscaped, &ZModemFraming::ReceiveBinaryHeader32},
            {ZVBINR32, 2, &ZModemFraming::ReadEscaped, &ZModemFraming::ReceiveBinaryHeader32},
        };
        framing.Rxhlen = fixedLength;
        const int c = framing.Read7Bit();
        framing.Rxframeind = c;
        if (c < 0)
            return End(c);
        if (c == ascii::CAN) {
            cancelsLeft = cancelLimit;
            return Step::Cancel;
        }
        const auto* kind =
            std::ranges::find(kinds, c, [](const FrameKind& row) { return int{row.character}; });
        return kind == std::end(kinds) ? Step::Junk : TakeHeader(*kind);
    }

    Step TakeHeader(const FrameKind& kind) {
        framing.Crc32 = kind.crc32;
        if (kind.readLength) {
            const int length = (framing.*kind.readLength)();
            if (length < 0)
                return End(length);
            if (length > static_cast<int>(framing.Rxhdr.size()))
                return Step::Junk;
            framing.Rxhlen = length;
        }
        const int type = (framing.*kind.readHeader)();
        // Kept so: the byte just after the header's own stays. Test: ZModemHeader.TheByteAfterTheHeaderStays
        const auto from = std::min(framing.Rxhdr.size(), static_cast<size_t>(framing.Rxhlen) + 1);
        std::fill(framing.Rxhdr.begin() + static_cast<std::ptrdiff_t>(from), framing.Rxhdr.end(), '\0');
        framing.Rxpos = ReadPosition(framing.Rxhdr.data());
        return End(type);
    }

    bool LastCancel() { return --cancelsLeft < 1; }

    Step TakeCancel() {
        if (LastCancel())
            return End(ZCAN);
        const int c = Read();
        switch (c) {
        case NoCarrier:
            return End(c);
        case ReadTimeout:
            return Step::Pad;
        case ascii::CAN:
            return LastCancel() ? End(ZCAN) : Step::Pad;
        case ZCRCW:
            return TakeCancelledEnd();
        default:
            return Step::Junk;
        }
    }

    // The end of a sub-packet that nobody was waiting for, and the first byte behind it.
    Step TakeCancelledEnd() {
        const int c = Read();
        if (c == NoCarrier)
            return End(c);
        return c == ReadTimeout ? End(ReadError) : Step::Junk;
    }

    Step TakeJunk() {
        cancelsLeft = cancelLimit;
        return --junkLeft <= 0 ? End(JunkLimit) : Step::Pad;
    }
};

int ZModemFraming::GetHeader() {
    Rxframeind = 0;
    Rxtype = 0;
    line_.Log("Receiving header:");
    HeaderSearch search{*this, Zrwindow + Baudrate};
    int result = search.Run();
    if (line_.Aborted()) {
        line_.Log("Canceled while reading header");
        return ReadTimeout;
    }
    if (result == GotCancel)
        result = ZCAN;

    const char frame = IsByte(Rxframeind) && std::isprint(Rxframeind) ? static_cast<char>(Rxframeind) : ' ';
    if (result >= FirstNamedFrame && result <= LastNamedFrame)
        line_.Log("Get header:: FrameIndex=%c Length=%d Type=%s Position=%ld", frame, Rxhlen,
                  FrameName(result), static_cast<long>(Rxpos));
    else
        line_.Log("Get header: FrameIndex=%c Type=%d Position=%ld", frame, result, static_cast<long>(Rxpos));
    line_.Log("Read header returned %d", result);
    return result;
}
