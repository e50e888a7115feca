// Sockets come before the platform's header.
#include "support/line.h"

#include "loggedcontrol.h"

#include <fstream>

using namespace controltest;

namespace {

std::string TemporaryFile(const std::string& name) {
    char folder[MAX_PATH] = {};
    GetTempPathA(sizeof folder, folder);
    return folder + name;
}

class File {
  public:
    File(const std::string& name, const std::string& contents) : path_(TemporaryFile(name)) {
        std::ofstream(path_, std::ios::binary) << contents;
    }
    ~File() { DeleteFileA(path_.c_str()); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    std::wstring Path() const { return WideOf(path_); }

  private:
    std::string path_;
};

// The control sends, a comm object at the other end receives.
class TransferOfControl : public host::LineTest {
  protected:
    void SetUp() override {
        LineTest::SetUp();
        ASSERT_EQ(control.Open(host::nearPort), "");
        ASSERT_EQ(receiver.Open("COM6"), "");
        control->put_XferStatusDialog(Dialog_Hidden);
        control->put_XferProtocol(Protocol_ZModem);
        SetProtocol(receiver, TARN_PROTOCOL_ZMODEM);
        SetXferPath(receiver, TemporaryFile("").c_str());
        DeleteFileA(received.c_str());
    }
    void TearDown() override {
        ::AbortTransfer(control.Object());
        ::AbortTransfer(receiver);
        host::PumpUntil([&] { return !GetTransferType(control.Object()) && !GetTransferType(receiver); });
        DeleteFileA(received.c_str());
    }

    // The receiver stores under a name of its own: both ends share the folder.
    void Receive() { ::Download(receiver, received.c_str()); }

    Control control;
    host::CommObject receiver;
    const std::string received = TemporaryFile("received.bin");
    const std::string contents = std::string(3000, 'x') + "end";
    const File file{"sent.bin", contents};
};

struct Progress {
    Control* control = nullptr;
    LONG most = 0;
    int steps = 0;
};
Progress progress;

void CALLBACK NoteProgress(HWND, int, int) {
    LONG transferred = 0;
    XferStatus status = TransferStatus_Success;
    (*progress.control)->get_XferTransferred(&transferred);
    (*progress.control)->get_XferStatus(&status);
    progress.most = std::max(progress.most, transferred);
    progress.steps += status == TransferStatus_Transfering;
}

} // namespace

using TransferRows = LoggedControl;

TEST_F(TransferRows, PlainRows) {
    const Row rows[] = {
        TARN_ROW(XferProtocol, Protocol_Kermit, GetProtocol),
        TARN_ROW(XferStatusDialog, Dialog_Modal, GetTransferDialogType),
        TARN_ROW(ResumeMethod, ResumeMethod_Always, GetResumeMethod),
        TARN_ROW_ALONE(AbortTransfer, -1),
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        CheckRow(control, row);
    }
    EXPECT_EQ(control->Properties().m_nXferProtocol, 6);
    EXPECT_EQ(control->Properties().m_nXferStatusDialog, 1);
}

TEST_F(TransferRows, DefaultsAndWhatIsReadOnly) {
    LONG count = 5;
    XferStatus status = TransferStatus_Failure;
    XferProtocol protocol = Protocol_Kermit;
    StatusDialog dialog = Dialog_Hidden;
    control->get_XferProtocol(&protocol);
    control->get_XferStatusDialog(&dialog);
    EXPECT_EQ(protocol, Protocol_ZModem);
    EXPECT_EQ(dialog, Dialog_Modeless);
    EXPECT_EQ(LogOf([&] { control->get_XferFileSize(&count); }), Line("Comm.XferFileSize returns 0"));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(LogOf([&] { control->get_XferTransferred(&count); }), Line("Comm.XferTransferred returns 0"));
    EXPECT_EQ(LogOf([&] { control->get_XferStatus(&status); }), Line("Comm.XferStatus returns 0"));
    EXPECT_EQ(status, TransferStatus_Success);
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(control.Text(&ITarnComm::get_XferSourceFilename), ""); }),
              Line("Comm.XferSourceFilename returns \"\""));
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(control.Text(&ITarnComm::get_XferDestFilename), ""); }),
              Line("Comm.XferDestFilename returns \"\""));
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(control.Text(&ITarnComm::get_XferMessage), ""); }), "");
}

TEST_F(TransferRows, PathIsKeptAndNotLogged) {
    EXPECT_EQ(LogOf([&] {
                  EXPECT_EQ(control.Put(&ITarnComm::put_XferPath, L"C:\\in"), S_OK);
                  EXPECT_EQ(control.Text(&ITarnComm::get_XferPath), "C:\\in");
              }),
              "");
    EXPECT_EQ(control->put_XferPath(nullptr), S_OK);
    EXPECT_EQ(control.Text(&ITarnComm::get_XferPath), "");
}

TEST_F(TransferRows, DestinationIsTheHostsToName) {
    EXPECT_EQ(LogOf([&] { control.Put(&ITarnComm::put_XferDestFilename, L"C:\\in\\file.bin"); }),
              Line("Comm.XferDestFilename = \"C:\\in\\file.bin\""));
    EXPECT_EQ(LogOf([&] { EXPECT_EQ(control.Text(&ITarnComm::get_XferDestFilename), "C:\\in\\file.bin"); }),
              Line("Comm.XferDestFilename returns \"C:\\in\\file.bin\""));
}

TEST_F(TransferRows, UploadOfNoFileIsAnError) {
    control->put_AbortTransfer(VARIANT_TRUE);
    const std::string log = LogOf([&] {
        EXPECT_EQ(control.Put(&ITarnComm::put_Upload, L"C:\\no such file.bin"), FileNotFound);
        EXPECT_EQ(ErrorText(), "File not found.");
    });
    EXPECT_EQ(log.find("Comm.Upload"), std::string::npos);
    VARIANT_BOOL abort = VARIANT_TRUE;
    control->get_AbortTransfer(&abort);
    EXPECT_EQ(abort, VARIANT_FALSE); // cleared before
    EXPECT_EQ(control->put_Upload(nullptr), FileNotFound);
}

TEST_F(TransferRows, NullPointersAreRefused) {
    EXPECT_EQ(control->get_XferPath(nullptr), E_POINTER);
    EXPECT_EQ(control->get_XferDestFilename(nullptr), E_POINTER);
    EXPECT_EQ(control->get_XferSourceFilename(nullptr), E_POINTER);
    EXPECT_EQ(control->get_XferMessage(nullptr), E_POINTER);
    EXPECT_EQ(control->get_XferStatus(nullptr), E_POINTER);
}

TEST_F(TransferOfControl, UploadBringsTheFile) {
    Receive();
    ASSERT_EQ(control.Put(&ITarnComm::put_Upload, file.Path().c_str()), S_OK);
    VARIANT_BOOL succeeded = VARIANT_FALSE;
    EXPECT_EQ(control->WaitUntilEndOfTransfer(&succeeded), S_OK);
    EXPECT_EQ(succeeded, VARIANT_TRUE);
    host::PumpUntil([&] { return !GetTransferType(receiver); });
    EXPECT_EQ(logfiles::ReadWholeFile(received), contents);
    LONG size = 0;
    control->get_XferFileSize(&size);
    EXPECT_EQ(size, static_cast<LONG>(contents.size()));
}

TEST_F(TransferOfControl, NamesAreThoseOfTheFileUnderWay) {
    ASSERT_EQ(control.Put(&ITarnComm::put_Upload, file.Path().c_str()), S_OK);
    EXPECT_TRUE(host::PumpUntil([&] {
        return control.Text(&ITarnComm::get_XferSourceFilename) == TemporaryFile("sent.bin");
    })) << control.Text(&ITarnComm::get_XferSourceFilename);
}

TEST_F(TransferOfControl, MessageIsTheTransfersText) {
    control->put_XferProtocol(Protocol_XModemChecksum);
    control.Put(&ITarnComm::put_Download, WideOf(received).c_str()); // nobody sends
    EXPECT_TRUE(host::PumpUntil([&] { return !control.Text(&ITarnComm::get_XferMessage).empty(); }));
    EXPECT_EQ(control.Text(&ITarnComm::get_XferMessage), "Receiving data...");
}

TEST_F(TransferOfControl, ProgressCanBeReadMeanwhile) {
    progress = {&control};
    SetEventHandler(control.Object(), NoteProgress);
    Receive();
    ASSERT_EQ(control.Put(&ITarnComm::put_Upload, file.Path().c_str()), S_OK);
    VARIANT_BOOL succeeded = VARIANT_FALSE;
    control->WaitUntilEndOfTransfer(&succeeded);
    SetEventHandler(control.Object(), nullptr);
    EXPECT_EQ(succeeded, VARIANT_TRUE);
    EXPECT_EQ(progress.most, static_cast<LONG>(contents.size()));
    EXPECT_GT(progress.steps, 0);
}

TEST_F(TransferOfControl, AbortEndsIt) {
    ASSERT_EQ(control.Put(&ITarnComm::put_Upload, file.Path().c_str()), S_OK); // nobody receives
    EXPECT_NE(GetTransferType(control.Object()), 0);
    control->put_AbortTransfer(VARIANT_TRUE);
    VARIANT_BOOL succeeded = VARIANT_TRUE;
    EXPECT_EQ(control->WaitUntilEndOfTransfer(&succeeded), S_OK);
    EXPECT_EQ(succeeded, VARIANT_FALSE);
}

// Its comm object goes, too.
TEST_F(TransferOfControl, ControlMayBeReleasedWhileTheEndIsAwaited) {
    ASSERT_EQ(control.Put(&ITarnComm::put_Upload, file.Path().c_str()), S_OK); // nobody receives
    CTarnCommCtl* const bare = control.Pointer().Get();
    const HWND object = control.Object();
    const auto inside = host::After(100, [&] {
        control.Container().Drop();
        control.Pointer().Reset();
        DestroyWindow(object);
    });
    VARIANT_BOOL succeeded = VARIANT_TRUE;
    EXPECT_EQ(bare->WaitUntilEndOfTransfer(&succeeded), S_OK);
    EXPECT_EQ(succeeded, VARIANT_FALSE);
    EXPECT_FALSE(control.Pointer());
}

TEST_F(TransferOfControl, FalseAbortsNothing) {
    ASSERT_EQ(control.Put(&ITarnComm::put_Upload, file.Path().c_str()), S_OK);
    control->put_AbortTransfer(VARIANT_FALSE);
    Receive();
    VARIANT_BOOL succeeded = VARIANT_FALSE;
    control->WaitUntilEndOfTransfer(&succeeded);
    EXPECT_EQ(succeeded, VARIANT_TRUE);
}

TEST_F(TransferOfControl, DownloadClearsTheAbort) {
    control->put_AbortTransfer(VARIANT_TRUE);
    EXPECT_EQ(control.Put(&ITarnComm::put_Download, WideOf(received).c_str()), S_OK);
    VARIANT_BOOL abort = VARIANT_TRUE;
    control->get_AbortTransfer(&abort);
    EXPECT_EQ(abort, VARIANT_FALSE);
    SetTransferDialogType(receiver, TARN_DIALOG_NONE);
    ASSERT_EQ(::Upload(receiver, TemporaryFile("sent.bin").c_str()), 1);
    VARIANT_BOOL succeeded = VARIANT_FALSE;
    control->WaitUntilEndOfTransfer(&succeeded);
    EXPECT_EQ(succeeded, VARIANT_TRUE);
    EXPECT_EQ(logfiles::ReadWholeFile(received), contents);
}
