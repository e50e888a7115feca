#include "stateblock.h"

#include "ascii.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr int xonXoffBit = 1;
constexpr int hardwareBit = 2;
constexpr int leaveHandshaking = -1;
constexpr int noReplacement = -1;
constexpr int largestXonLimit = 8192; // bytes

void FillHandshaking(DCB& block, const COMCTL& record) {
    if (record.nHandshaking == leaveHandshaking)
        return;
    const bool hardware = record.nHandshaking & hardwareBit;
    // In a transfer XOn and XOff are data.
    const bool software = (record.nHandshaking & xonXoffBit) && !record.nTransferType;
    block.fOutxCtsFlow = hardware;
    block.fInX = software;
    block.fOutX = software;
    if (!record.bRTS)
        block.fRtsControl = RTS_CONTROL_DISABLE;
    else
        block.fRtsControl = hardware ? RTS_CONTROL_HANDSHAKE : RTS_CONTROL_ENABLE;
}

template <class Field>
Field ValueOr(int value, int whenAbsent) {
    return static_cast<Field>(value == -1 ? whenAbsent : value);
}

struct TextRow {
    const char* name;
    bool isFlag;
    int (*read)(const DCB&);
};

#define READ(Field) [](const DCB& block) { return static_cast<int>(block.Field); }
#define NUMBER(Field)                                                                                        \
    { #Field, false, READ(Field) }
#define FLAG(Field)                                                                                          \
    { #Field, true, READ(Field) }

// fDtrControl stands twice, as it always did.
constexpr TextRow textRows[] = {
    NUMBER(BaudRate),   NUMBER(ByteSize),    NUMBER(EofChar),   NUMBER(ErrorChar),
    NUMBER(EvtChar),    FLAG(fAbortOnError), FLAG(fBinary),     FLAG(fDsrSensitivity),
    FLAG(fDtrControl),  FLAG(fDtrControl),   FLAG(fDummy2),     FLAG(fErrorChar),
    FLAG(fInX),         FLAG(fNull),         FLAG(fOutX),       FLAG(fOutxCtsFlow),
    FLAG(fOutxDsrFlow), FLAG(fParity),       FLAG(fRtsControl), FLAG(fTXContinueOnXoff),
    NUMBER(Parity),     NUMBER(StopBits),    NUMBER(wReserved), NUMBER(wReserved1),
    NUMBER(XoffChar),   NUMBER(XoffLim),     NUMBER(XonChar),   NUMBER(XonLim),
};

#undef READ
#undef NUMBER
#undef FLAG

} // namespace

void FillStateBlock(DCB& block, const COMCTL& record, bool applySpeed) {
    if (record.lBaud && applySpeed)
        block.BaudRate = static_cast<DWORD>(record.lBaud);
    block.fBinary = 1;
    block.fParity = record.nParityReplace != 0; // with "none" (-1) too
    block.fOutxDsrFlow = 0;
    block.fDtrControl = record.bDTR ? DTR_CONTROL_ENABLE : DTR_CONTROL_DISABLE;
    block.fDsrSensitivity = 0;
    block.fTXContinueOnXoff = 0;
    FillHandshaking(block, record);
    // These and the data bits and parity below follow the record in a transfer too; kept so, see the tests.
    block.fErrorChar = record.nParityReplace != noReplacement;
    block.fNull = record.bNullDiscard != 0;
    block.fAbortOnError = 0;
    block.fDummy2 = 0;
    block.wReserved = 0;
    const auto limit = static_cast<WORD>(std::clamp(record.cbInBuffer / 4, 0, largestXonLimit));
    block.XonLim = limit;
    block.XoffLim = limit;
    block.ByteSize = ValueOr<BYTE>(record.nDataBits, 8);
    block.Parity = ValueOr<BYTE>(record.nParity, NOPARITY);
    block.StopBits = ValueOr<BYTE>(record.nStopBits, ONESTOPBIT);
    block.XonChar = ascii::DC1;
    block.XoffChar = ascii::DC3;
    block.ErrorChar = ValueOr<char>(record.nParityReplace, 0);
}

std::string StateBlockText(const DCB& block) {
    std::string text;
    for (const TextRow& row : textRows) {
        const int value = row.read(block);
        text += row.name;
        text += '=';
        text += !row.isFlag ? std::to_string(value) : value ? "True" : "False";
        text += "\r\n";
    }
    return text;
}
