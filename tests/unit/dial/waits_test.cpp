// How long each wait of the modem's functions takes, beside what it should; and a file over two dialled
// modems.
#include "telephone.h"

#include "../transfer/transferpair.h"

namespace {

class TelephoneWaits : public host::Telephone {
  protected:
    struct Row {
        const char* what;
        DWORD milliseconds; // what it should take at least
        DWORD slack;        // ms that the modem, the exchange and a busy machine may add
    };

    template <class Work>
    static void Time(const Row& row, Work&& work) {
        const DWORD start = GetTickCount();
        work();
        const DWORD took = GetTickCount() - start;
        std::printf("%-60s %6lu ms, of %lu\n", row.what, took, row.milliseconds);
        EXPECT_GE(took + 15, row.milliseconds) << row.what << ": a tick of the clock is allowed";
        EXPECT_LE(took, row.milliseconds + row.slack) << row.what;
    }
};

TEST_F(TelephoneWaits, TakeWhatTheyShould) {
    const HWND object = caller.object;
    SetModemOptions(object, "Deaf\tATX4E1V1S7=60&C1&D0^M\tATDT\tATDP\tATS0=2^M\t~~+++~~ATH0^M");
    Time({"OutputModem, the rest before the first byte", 200, 3000}, [&] { OutputModem(object, "^M"); });
    Time({"OutputModem, with a pause of a second", 1200, 3000}, [&] { OutputModem(object, "~^M"); });
    Time({"CheckModem, a modem that answers at once", 200, 3000}, [&] { EXPECT_EQ(CheckModem(object), 1); });
    Time({"InitModem without a call", 200, 3000}, [&] { EXPECT_EQ(InitModem(object), 1); });
    Time({"InitModemForAnswer", 400, 3000}, [&] { EXPECT_EQ(InitModemForAnswer(object), 1); });
    Time({"HangUp without a carrier", 0, 3000}, [&] { EXPECT_EQ(HangUp(object), 1); });
    Time({"Dial, a busy number: the rest, 7 tones of 100 ms", 900, 3000},
         [&] { EXPECT_EQ(Dial(object, host::busyNumber), TARN_DIAL_BUSY); });
    SetDialTimeOut(object, 3000);
    Time({"Dial, nobody answers: the rest and the limit of 3 s", 3200, 3000},
         [&] { EXPECT_EQ(Dial(object, host::unansweredNumber), TARN_DIAL_TIMED_OUT); });
    host::Pump(100);
    Connect();
    Time({"HangUp: DTR 200, rest 200, four pauses of a second", 4400, 3000},
         [&] { EXPECT_EQ(HangUp(object), 1); });
    caller.modem.Do("silent on");
    ClearInputBuffer(object); // the answer to the command; HangUp took that to the escape
    Time({"WaitForOk, a silent modem", 8000, 3000}, [&] { EXPECT_EQ(WaitForOk(object), 0); });
}

TEST_F(TelephoneWaits, HangUpByDtr) {
    Connect();
    Time({"HangUp: DTR for 200 ms", 200, 3000}, [&] { EXPECT_EQ(HangUp(caller.object), 1); });
    callee.ReadUntil("NO CARRIER");
    Connect();
    Time({"Disconnect: DTR for 200 ms", 200, 3000}, [&] { EXPECT_EQ(Disconnect(caller.object), 1); });
}

class TelephoneFile : public host::Telephone {};

TEST_F(TelephoneFile, GoesByZModemThroughTwoDialledModems) {
    const host::Folder out, in;
    const std::string contents = host::Contents(200000);
    const std::string name = out.Write("call.bin", contents);
    Connect();
    host::StatusList sent(caller.object), received(callee.object);
    SetXferPath(callee.object, in.Path().c_str());
    SetAutoProcess(callee.object, TARN_PROCESS_SERIAL); // the receiver starts by what it hears
    for (const HWND object : {caller.object.Handle(), callee.object.Handle()})
        SetProtocol(object, TARN_PROTOCOL_ZMODEM);
    ASSERT_EQ(Upload(caller.object, name.c_str()), 1);
    const DWORD start = GetTickCount();
    ASSERT_TRUE(host::PumpUntil([&] { return sent.Ended() && received.Ended(); }, 60000));
    std::printf("%zu bytes in %lu ms\n", contents.size(), GetTickCount() - start);
    EXPECT_EQ(sent.Last(), TransferStatus_Success);
    EXPECT_EQ(received.Last(), TransferStatus_Success);
    EXPECT_TRUE(in.Read("call.bin") == contents);
    EXPECT_TRUE(GetCarrier(caller.object));
    EXPECT_EQ(HangUp(caller.object), 1);
    EXPECT_TRUE(host::PumpUntil([&] { return !GetCarrier(callee.object); }));
}

} // namespace
