// A file from one control to another, through a call: one dials, the other answers.
#include "telephonycontrol.h"

#include <fstream>

namespace {

using namespace telephony;

constexpr DWORD limit = 150000; // ms; generous, since a slow machine has both ends of the line on one thread

std::string TemporaryFile(const std::string& name) {
    char folder[MAX_PATH] = {};
    GetTempPathA(sizeof folder, folder);
    return folder + name;
}

// Every byte value, and no two blocks alike.
std::string Contents(size_t count) {
    std::string bytes(count, '\0');
    unsigned state = 1;
    for (char& byte : bytes) {
        state = state * 1664525 + 1013904223;
        byte = static_cast<char>(state >> 24);
    }
    return bytes;
}

class ControlFile : public TelephonyTest {
  protected:
    void SetUp() override {
        TelephonyTest::SetUp();
        std::ofstream(sent, std::ios::binary) << contents;
        DeleteFileA(received.c_str());
    }
    void TearDown() override {
        answering.reset();
        TelephonyTest::TearDown();
        DeleteFileA(sent.c_str());
        DeleteFileA(received.c_str());
    }

    void Connect() {
        StartAtAlpha();
        answering = std::make_unique<PhoneHost>();
        answering->UseLine(beta);
        answering->Answer(true);
        ASSERT_EQ(phone->Dial(betaNumber), S_OK);
        ASSERT_EQ(phone->Status(), "Connected");
        ASSERT_TRUE(answering->Hears("CarrierChanged"));
        for (PhoneHost* end : {phone.get(), answering.get()}) {
            (*end)->put_XferStatusDialog(Dialog_Hidden);
            (*end)->put_XferProtocol(Protocol_ZModem);
            (*end)->put_InBufferSize(16384);
            (*end)->put_OutBufferSize(16384);
        }
    }
    // True: both ends have come to the end of it.
    bool Bring(PhoneHost& sender, PhoneHost& receiver) {
        const auto isBusy = [](PhoneHost& end) { return GetTransferType(end.Object()) != 0; };
        EXPECT_EQ(receiver->put_Download(_bstr_t(WideOf(received).c_str())), S_OK);
        EXPECT_EQ(sender->put_Upload(_bstr_t(WideOf(sent).c_str())), S_OK);
        return host::PumpUntil([&] { return !isBusy(sender) && !isBusy(receiver); }, limit);
    }

    const std::string sent = TemporaryFile("telephony.bin");
    const std::string received = TemporaryFile("telephony received.bin");
    const std::string contents = Contents(100 * 1024 + 37);
    std::unique_ptr<PhoneHost> answering;
};

void ExpectSuccess(PhoneHost& end) {
    EXPECT_EQ(end.Get(&ITarnComm::get_XferStatus), TransferStatus_Success);
    EXPECT_GT(end.ear.Count("TransferBlock"), 1);
    EXPECT_EQ(end.ear.Count("FinishFile"), 1);
    EXPECT_EQ(end.ear.Count("FinishFileTransfer"), 1);
    EXPECT_EQ(end.ear.Count("AbortFileTransfer"), 0);
}

TEST_F(ControlFile, GoesFromTheCallerToTheCalled) {
    Connect();
    ASSERT_TRUE(Bring(*phone, *answering));
    EXPECT_TRUE(logfiles::ReadWholeFile(received) == contents);
    ExpectSuccess(*phone);
    ExpectSuccess(*answering);
    EXPECT_EQ(phone->Status(), "Connected") << "the call goes on";
    EXPECT_TRUE(phone->IsOpen() && answering->IsOpen());
}

TEST_F(ControlFile, GoesFromTheCalledToTheCaller) {
    Connect();
    ASSERT_TRUE(Bring(*answering, *phone));
    EXPECT_TRUE(logfiles::ReadWholeFile(received) == contents);
    ExpectSuccess(*phone);
    ExpectSuccess(*answering);
}

TEST_F(ControlFile, AHangUpEndsTheTransfer) {
    Connect();
    const auto hangUp = host::When([&] { return phone->ear.Count("TransferBlock") >= 5; },
                                   [&] { answering->Is(&ITarnComm::get_HangUp); });
    EXPECT_TRUE(Bring(*phone, *answering));
    EXPECT_NE(phone->Get(&ITarnComm::get_XferStatus), TransferStatus_Success);
    EXPECT_NE(answering->Get(&ITarnComm::get_XferStatus), TransferStatus_Success);
    EXPECT_TRUE(host::PumpUntil([&] { return phone->Status() == "Disconnected"; }));
    EXPECT_FALSE(phone->IsOpen());
}

} // namespace
