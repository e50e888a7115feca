#include "logtest.h"

using namespace logfiles;

namespace {

const HWND deadHandle = reinterpret_cast<HWND>(ULONG_PTR{0xDEAD});

struct SwitchCase {
    const char* name;
    int(TARNAPI* set)(HWND, int);
    int (*read)(const COMCTL&);
};

template <auto Field>
int Read(const COMCTL& record) {
    return record.*Field;
}

const SwitchCase switchCases[] = {
    {"Input", SetWireTapInput, Read<&COMCTL::bWireTapInput>},
    {"Output", SetWireTapOutput, Read<&COMCTL::bWireTapOutput>},
    {"Transfer", SetWireTapTransfer, Read<&COMCTL::bWireTapTransfer>},
};

} // namespace

class WireTapSwitch : public testing::TestWithParam<SwitchCase> {};
using WireTapTransferLog = LogTest;
using WireTapFormatters = LogTest;

TEST_P(WireTapSwitch, StoresWhatItIsGiven) {
    LiveRecord record;
    for (const int value : {1, 0, -1, 7}) {
        EXPECT_EQ(GetParam().set(record.Handle(), value), 1);
        EXPECT_EQ(GetParam().read(*record), value);
    }
}

TEST_P(WireTapSwitch, TouchesNoOtherSwitch) {
    LiveRecord record;
    GetParam().set(record.Handle(), 1);
    EXPECT_EQ(record->bWireTapInput + record->bWireTapOutput + record->bWireTapTransfer, 1);
}

TEST_P(WireTapSwitch, RefusesABadHandle) {
    EXPECT_EQ(GetParam().set(nullptr, 1), 0);
    EXPECT_EQ(GetParam().set(deadHandle, 1), 0);
}

INSTANTIATE_TEST_SUITE_P(All, WireTapSwitch, testing::ValuesIn(switchCases),
                         [](const testing::TestParamInfo<SwitchCase>& info) { return info.param.name; });

TEST_F(WireTapTransferLog, NeedsTheSwitch) {
    LiveRecord record;
    WireTapTransfer(record.Handle(), "%s", "no");
    WireTapTransferData(record.Handle(), "no", "A", 1);
    EXPECT_FALSE(FileExists(WireTapPath()));
}

TEST_F(WireTapTransferLog, FormatsItsText) {
    LiveRecord record;
    record->bWireTapTransfer = 1;
    WireTapTransfer(record.Handle(), "%s Transfer: %s %d", "Comm1", "block", 3);
    EXPECT_EQ(Messages(), "<time> Comm1 Transfer: block 3\r\n");
}

TEST_F(WireTapTransferLog, CutsALongText) {
    LiveRecord record;
    record->bWireTapTransfer = 1;
    const std::string text(WireTapTextSize + 500, 'x');
    WireTapTransfer(record.Handle(), "%s", text.c_str());
    EXPECT_EQ(Messages(), "<time> " + std::string(WireTapTextSize - 1, 'x') + "\r\n");
}

TEST_F(WireTapTransferLog, LongestTextIsWhole) {
    LiveRecord record;
    record->bWireTapTransfer = 1;
    const std::string text(WireTapTextSize - 1, 'x');
    WireTapTransfer(record.Handle(), "%s", text.c_str());
    EXPECT_EQ(Messages(), "<time> " + text + "\r\n");
}

TEST_F(WireTapTransferLog, LogsData) {
    LiveRecord record;
    record->bWireTapTransfer = -1;
    WireTapTransferData(record.Handle(), "header ",
                        "\x18"
                        "B00",
                        4);
    EXPECT_EQ(Messages(), "<time> header Chr(24) + \"B00\"\r\n");
}

TEST_F(WireTapTransferLog, BadHandleLogsNothingAndSilencesNothing) {
    WireTapTransfer(nullptr, "%s", "no");
    WireTapTransfer(deadHandle, "%s", "no");
    WireTapTransferData(deadHandle, "no", "A", 1);
    LogText("yes");
    EXPECT_EQ(Messages(), "<time> yes\r\n");
}

TEST_F(WireTapTransferLog, NullFormatLogsNothing) {
    LiveRecord record;
    record->bWireTapTransfer = 1;
    const char* none = nullptr;
    WireTapTransfer(record.Handle(), none);
    EXPECT_FALSE(FileExists(WireTapPath()));
}

TEST_F(WireTapFormatters, DataLineNamesObjectVerbAndCount) {
    LiveRecord record;
    LogData(*record, "reads", "OK\r\n", 4);
    LogData(*record, "writes", "AT\r", 3);
    EXPECT_EQ(Messages(), "<time> Comm7 reads 4 bytes: \"OK\" + Chr(13) + Chr(10)\r\n"
                          "<time> Comm7 writes 3 bytes: \"AT\" + Chr(13)\r\n");
}

TEST_F(WireTapFormatters, ObjectNameIsNoFormatAndMayBeLong) {
    LiveRecord record;
    const std::string name = "%s%n" + std::string(NameSize - 5, 'N');
    lstrcpynA(record->szName, name.c_str(), NameSize);
    LogData(*record, "reads", "AB", 2);
    EXPECT_EQ(Messages(), "<time> " + name + " reads 2 bytes: \"A\" + _\r\n          \"B\"\r\n");
}

TEST_F(WireTapFormatters, PlainTextNeedsNoSwitchAndReachesTheDebuggerOnce) {
    const DebuggerOutput output;
    LogText("BaudRate=9600");
    EXPECT_EQ(Messages(), "<time> BaudRate=9600\r\n");
    EXPECT_EQ(Untimed(output.Text()), "<time> BaudRate=9600\r\n");
}
