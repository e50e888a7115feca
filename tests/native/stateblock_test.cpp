// The driver's state block from the record, and its log text.
#include "caseprint.h"
#include "core/stateblock.h"

#include <cstring>

namespace {

// All bits set, so that a field that nobody writes shows.
DCB FilledBlock() {
    DCB block;
    std::memset(&block, 0xFF, sizeof block);
    return block;
}

int Field(long value) {
    return static_cast<int>(value);
}

struct FieldCase {
    const char* name;
    void (*change)(COMCTL& record);
    int (*read)(const DCB& block);
    int expected;
};

class StateBlockField : public testing::TestWithParam<FieldCase> {};

TEST_P(StateBlockField, FollowsTheTable) {
    COMCTL record;
    GetParam().change(record);
    DCB block = FilledBlock();
    FillStateBlock(block, record, true);
    EXPECT_EQ(GetParam().read(block), GetParam().expected);
}

void Nothing(COMCTL&) {}

#define SET(assignments) [](COMCTL& record) { assignments; }
#define READ(field) [](const DCB& block) { return Field(block.field); }

const FieldCase fieldCases[] = {
    {"Speed", Nothing, READ(BaudRate), 9600},
    {"SpeedOfTheRecord", SET(record.lBaud = 115200), READ(BaudRate), 115200},
    {"SpeedZeroLeavesTheDriversSpeed", SET(record.lBaud = 0), READ(BaudRate), -1},
    {"Binary", Nothing, READ(fBinary), 1},
    {"ParityCheckWithoutReplacement", Nothing, READ(fParity), 1},
    {"ParityCheckWithReplacement", SET(record.nParityReplace = '?'), READ(fParity), 1},
    {"ParityCheckOffAtNul", SET(record.nParityReplace = 0), READ(fParity), 0},
    {"DsrFlow", Nothing, READ(fOutxDsrFlow), 0},
    {"DtrOn", Nothing, READ(fDtrControl), DTR_CONTROL_ENABLE},
    {"DtrOff", SET(record.bDTR = 0), READ(fDtrControl), DTR_CONTROL_DISABLE},
    {"DsrSensitivity", Nothing, READ(fDsrSensitivity), 0},
    {"ContinueOnXoff", Nothing, READ(fTXContinueOnXoff), 0},
    {"CtsFlowOfNone", SET(record.nHandshaking = 0), READ(fOutxCtsFlow), 0},
    {"CtsFlowOfXonXoff", SET(record.nHandshaking = 1), READ(fOutxCtsFlow), 0},
    {"CtsFlowOfHardware", SET(record.nHandshaking = 2), READ(fOutxCtsFlow), 1},
    {"CtsFlowOfBoth", SET(record.nHandshaking = 3), READ(fOutxCtsFlow), 1},
    {"CtsFlowOfDefault", SET(record.nHandshaking = 4), READ(fOutxCtsFlow), 0},
    {"CtsFlowLeftAlone", SET(record.nHandshaking = -1), READ(fOutxCtsFlow), 1},
    {"InXOfNone", SET(record.nHandshaking = 0), READ(fInX), 0},
    {"InXOfXonXoff", SET(record.nHandshaking = 1), READ(fInX), 1},
    {"InXOfHardware", SET(record.nHandshaking = 2), READ(fInX), 0},
    {"InXOfBoth", SET(record.nHandshaking = 3), READ(fInX), 1},
    {"InXOfDefault", SET(record.nHandshaking = 4), READ(fInX), 0},
    {"InXInAnUpload", SET(record.nHandshaking = 1; record.nTransferType = 1), READ(fInX), 0},
    {"InXInADownload", SET(record.nHandshaking = 3; record.nTransferType = 2), READ(fInX), 0},
    {"InXLeftAlone", SET(record.nHandshaking = -1), READ(fInX), 1},
    {"InXLeftAloneInATransfer", SET(record.nHandshaking = -1; record.nTransferType = 1), READ(fInX), 1},
    {"OutXOfNone", SET(record.nHandshaking = 0), READ(fOutX), 0},
    {"OutXOfXonXoff", SET(record.nHandshaking = 1), READ(fOutX), 1},
    {"OutXOfHardware", SET(record.nHandshaking = 2), READ(fOutX), 0},
    {"OutXOfBoth", SET(record.nHandshaking = 3), READ(fOutX), 1},
    {"OutXInATransfer", SET(record.nHandshaking = 3; record.nTransferType = 1), READ(fOutX), 0},
    {"CtsFlowInATransfer", SET(record.nHandshaking = 3; record.nTransferType = 1), READ(fOutxCtsFlow), 1},
    {"RtsOn", Nothing, READ(fRtsControl), RTS_CONTROL_ENABLE},
    {"RtsOff", SET(record.bRTS = 0), READ(fRtsControl), RTS_CONTROL_DISABLE},
    {"RtsOfXonXoff", SET(record.nHandshaking = 1), READ(fRtsControl), RTS_CONTROL_ENABLE},
    {"RtsOfHardware", SET(record.nHandshaking = 2), READ(fRtsControl), RTS_CONTROL_HANDSHAKE},
    {"RtsOfBoth", SET(record.nHandshaking = 3), READ(fRtsControl), RTS_CONTROL_HANDSHAKE},
    {"RtsOffWithHardware", SET(record.nHandshaking = 2; record.bRTS = 0), READ(fRtsControl),
     RTS_CONTROL_DISABLE},
    {"RtsLeftAlone", SET(record.nHandshaking = -1; record.bRTS = 0), READ(fRtsControl), 3},
    {"NoErrorChar", Nothing, READ(fErrorChar), 0},
    {"ErrorCharOfReplacement", SET(record.nParityReplace = '?'), READ(fErrorChar), 1},
    {"ErrorCharAtNul", SET(record.nParityReplace = 0), READ(fErrorChar), 1},
    {"NullsKept", Nothing, READ(fNull), 0},
    {"NullsDropped", SET(record.bNullDiscard = -1), READ(fNull), 1},
    {"NullsDroppedByAnyValue", SET(record.bNullDiscard = 2), READ(fNull), 1},
    // Kept so: of what a transfer wants, XOn and XOff alone are spared.
    {"ErrorCharInATransfer", SET(record.nParityReplace = '?'; record.nTransferType = 1), READ(fErrorChar), 1},
    {"NullsDroppedInATransfer", SET(record.bNullDiscard = 1; record.nTransferType = 1), READ(fNull), 1},
    {"ByteSizeInATransfer", SET(record.nDataBits = 7; record.nTransferType = 2), READ(ByteSize), 7},
    {"ParityInATransfer", SET(record.nParity = 2; record.nTransferType = 2), READ(Parity), EVENPARITY},
    {"AbortOnError", Nothing, READ(fAbortOnError), 0},
    {"Dummy", Nothing, READ(fDummy2), 0},
    {"Reserved", Nothing, READ(wReserved), 0},
    {"ReservedAtTheEndLeftAlone", Nothing, READ(wReserved1), 0xFFFF},
    {"XonLimit", Nothing, READ(XonLim), 512},
    {"XoffLimit", Nothing, READ(XoffLim), 512},
    {"LimitsAtTheirLargest", SET(record.cbInBuffer = 4 * 8192), READ(XonLim), 8192},
    {"LimitsJustUnderTheirLargest", SET(record.cbInBuffer = 4 * 8192 - 1), READ(XonLim), 8191},
    {"LimitsOfALargeQueue", SET(record.cbInBuffer = 1 << 20), READ(XoffLim), 8192},
    {"LimitsOfASmallQueue", SET(record.cbInBuffer = 3), READ(XonLim), 0},
    {"LimitsOfANegativeQueue", SET(record.cbInBuffer = -100), READ(XoffLim), 0},
    {"ByteSize", SET(record.nDataBits = 7), READ(ByteSize), 7},
    {"ByteSizeAbsent", SET(record.nDataBits = -1), READ(ByteSize), 8},
    {"Parity", SET(record.nParity = 2), READ(Parity), EVENPARITY},
    {"ParityAbsent", SET(record.nParity = -1), READ(Parity), NOPARITY},
    {"StopBits", SET(record.nStopBits = 2), READ(StopBits), TWOSTOPBITS},
    {"StopBitsAbsent", SET(record.nStopBits = -1), READ(StopBits), ONESTOPBIT},
    {"XonChar", Nothing, READ(XonChar), 17},
    {"XoffChar", Nothing, READ(XoffChar), 19},
    {"ErrorCharValueAbsent", Nothing, READ(ErrorChar), 0},
    {"ErrorCharValue", SET(record.nParityReplace = '?'), READ(ErrorChar), '?'},
    {"ErrorCharValueOfAHighByte", SET(record.nParityReplace = 200), READ(ErrorChar), -56},
    {"EofCharLeftAlone", Nothing, READ(EofChar), -1},
    {"EvtCharLeftAlone", Nothing, READ(EvtChar), -1},
};

#undef SET
#undef READ

RUN_TABLE(StateBlockField, fieldCases);

TEST(StateBlockSpeed, IsLeftAloneWhenItIsNotToBeApplied) {
    COMCTL record;
    DCB block = {};
    block.BaudRate = 1200;
    FillStateBlock(block, record, false);
    EXPECT_EQ(block.BaudRate, 1200u);
    EXPECT_EQ(block.ByteSize, 8) << "all else is filled in";
}

TEST(StateBlockLog, EmptyBlock) {
    EXPECT_EQ(StateBlockText(DCB{}),
              "BaudRate=0\r\nByteSize=0\r\nEofChar=0\r\nErrorChar=0\r\nEvtChar=0\r\n"
              "fAbortOnError=False\r\nfBinary=False\r\nfDsrSensitivity=False\r\n"
              "fDtrControl=False\r\nfDtrControl=False\r\nfDummy2=False\r\nfErrorChar=False\r\n"
              "fInX=False\r\nfNull=False\r\nfOutX=False\r\nfOutxCtsFlow=False\r\nfOutxDsrFlow=False\r\n"
              "fParity=False\r\nfRtsControl=False\r\nfTXContinueOnXoff=False\r\n"
              "Parity=0\r\nStopBits=0\r\nwReserved=0\r\nwReserved1=0\r\n"
              "XoffChar=0\r\nXoffLim=0\r\nXonChar=0\r\nXonLim=0\r\n");
}

// Bytes are signed where the platform's characters are, the speed prints as a signed number.
TEST(StateBlockLog, BlockOfOnes) {
    EXPECT_EQ(StateBlockText(FilledBlock()),
              "BaudRate=-1\r\nByteSize=255\r\nEofChar=-1\r\nErrorChar=-1\r\nEvtChar=-1\r\n"
              "fAbortOnError=True\r\nfBinary=True\r\nfDsrSensitivity=True\r\n"
              "fDtrControl=True\r\nfDtrControl=True\r\nfDummy2=True\r\nfErrorChar=True\r\n"
              "fInX=True\r\nfNull=True\r\nfOutX=True\r\nfOutxCtsFlow=True\r\nfOutxDsrFlow=True\r\n"
              "fParity=True\r\nfRtsControl=True\r\nfTXContinueOnXoff=True\r\n"
              "Parity=255\r\nStopBits=255\r\nwReserved=65535\r\nwReserved1=65535\r\n"
              "XoffChar=-1\r\nXoffLim=65535\r\nXonChar=-1\r\nXonLim=65535\r\n");
}

TEST(StateBlockLog, DefaultRecord) {
    COMCTL record;
    DCB block = {};
    FillStateBlock(block, record, true);
    EXPECT_EQ(StateBlockText(block),
              "BaudRate=9600\r\nByteSize=8\r\nEofChar=0\r\nErrorChar=0\r\nEvtChar=0\r\n"
              "fAbortOnError=False\r\nfBinary=True\r\nfDsrSensitivity=False\r\n"
              "fDtrControl=True\r\nfDtrControl=True\r\nfDummy2=False\r\nfErrorChar=False\r\n"
              "fInX=False\r\nfNull=False\r\nfOutX=False\r\nfOutxCtsFlow=False\r\nfOutxDsrFlow=False\r\n"
              "fParity=True\r\nfRtsControl=True\r\nfTXContinueOnXoff=False\r\n"
              "Parity=0\r\nStopBits=0\r\nwReserved=0\r\nwReserved1=0\r\n"
              "XoffChar=19\r\nXoffLim=512\r\nXonChar=17\r\nXonLim=512\r\n");
}

} // namespace
