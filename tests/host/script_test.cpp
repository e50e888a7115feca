// Scripts in a program of their own, which use the registered control; this program is the far end.
#include "registered.h"
#include "support/line.h"

#include <cstdio>
#include <fstream>
#include <iterator>

using namespace host;

namespace {

std::string Temporary(const std::string& name) {
    char folder[MAX_PATH] = {};
    GetTempPathA(sizeof folder, folder);
    return folder + name;
}

class TemporaryFile {
  public:
    TemporaryFile(const std::string& name, const std::string& contents) : path(Temporary(name)) {
        std::ofstream(path, std::ios::binary) << contents;
    }
    ~TemporaryFile() { DeleteFileA(path.c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::string path;
};

std::string ReadFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A computer that lets a guest in and sends one file.
class FarComputer {
  public:
    explicit FarComputer(std::string file = {}) : file_(std::move(file)) {
        SetAutoProcess(line_, 0);
        problem = line_.Open("COM6");
        SetProtocol(line_, TARN_PROTOCOL_ZMODEM);
        SetTransferDialogType(line_, TARN_DIALOG_NONE);
        line_.OnEventDo([this](int code) {
            if (code == TARN_EVENT_RECEIVE)
                Hear();
            else if (code == TARN_EVENT_TRANSFER && GetTransferStatus(line_) <= 0)
                Say(prompt);
        });
        SetRThreshold(line_, 1);
    }

    std::string problem;
    std::vector<std::string> heard;

    static constexpr const char* prompt = "far$ ";

  private:
    struct Answer {
        const char* heard;
        const char* said;
    };
    static constexpr Answer answers[] = {
        {"", "\r\nlogin: "}, {"guest", "\r\nPassword: "}, {"tarn", "\r\nfar$ "}, {"echo", "\r\nan echo\r"}};

    void Hear() {
        char piece[256];
        for (int count; (count = GetInput(line_, piece, sizeof piece)) > 0;)
            input_.append(piece, static_cast<size_t>(count));
        for (size_t end; (end = input_.find('\r')) != std::string::npos;) {
            const std::string said = input_.substr(0, end);
            input_.erase(0, end + 1);
            heard.push_back(said);
            Reply(said);
        }
    }
    void Reply(const std::string& words) {
        for (const Answer& each : answers) {
            if (words == each.heard)
                Say(each.said);
        }
        if (words == "send")
            Upload(line_, file_.c_str());
    }
    void Say(const std::string& text) { Output(line_, text.data(), static_cast<int>(text.size())); }

    std::string file_;
    CommObject line_;
    std::string input_;
};

class ScriptTest : public LineTest {
  protected:
    // Runs it; prints what it says.
    static Ended RunScript(const std::string& command) {
        const Ended ended = host::Run("cscript //nologo " + command);
        EXPECT_TRUE(ended.inTime);
        std::printf("%s", ended.output.c_str());
        return ended;
    }
};

const char visualBasic[] = R"(
Dim comm, script, unread
Set comm = CreateObject("TarnLink.TarnComm")
comm.Rows = 30
comm.XferProtocol = 3
comm.LookUpSeparator = "/"
comm.Font.Size = 12
WScript.Echo comm.Rows & " " & comm.XferProtocol & " " & comm.LookUpSeparator & " " & comm.Font.Size & " " & comm.WireTap
On Error Resume Next
unread = comm.Input
WScript.Echo Hex(Err.Number) & " " & Err.Description
On Error Goto 0
comm.AutoReceive = False
comm.CommPort = 5
comm.Settings = "115200,n,8,1"
Set script = comm.ScriptExtension
script.WaitForTimeOut = 10000
comm.PortOpen = True
script.Send vbCr
WScript.Echo script.WaitFor("CONNECT", "login:")
script.Send "guest" & vbCr
comm.LookUpText = "nothing/Password:"
WScript.Echo comm.LookUp
comm.OutputLine = "tarn"
WScript.Echo script.WaitFor("far$")
WScript.Echo script.HangUp & " " & comm.PortOpen
)";

const char java[] = R"(
var comm = new ActiveXObject("TarnLink.TarnComm");
comm.Columns = 132;
comm.AutoReceive = false;
comm.CommPort = "COM5";
comm.Settings = "115200,n,8,1";
comm.PortOpen = true;
WScript.Echo(comm.Columns + " " + comm.PortOpen + " " + comm.PortStatus);
comm.Output = "echo\r";
comm.InputLen = 10;
comm.InTimeOut = 10000;
WScript.Echo(comm.Input.replace(/[\r\n]/g, ""));
comm.PortOpen = false;
try {
    comm.Upload = "C:\\no such file";
} catch (error) {
    WScript.Echo(error.message);
}
WScript.Echo(typeof comm.NoSuchThing);
)";

} // namespace

TEST_F(ScriptTest, VisualBasicSetsPropertiesAndLogsIn) {
    const FarComputer far_;
    ASSERT_EQ(far_.problem, "");
    const TemporaryFile script("login.vbs", visualBasic);
    const Ended ended = RunScript("\"" + script.path + "\"");
    EXPECT_EQ(ended.output, "30 3 / 12 False\r\n"
                            "5 Cannot access the Input property while AutoReceive is True.\r\n"
                            "login:\r\n1\r\nfar$\r\nTrue False\r\n");
    EXPECT_EQ(far_.heard, (std::vector<std::string>{"", "guest", "tarn"}));
}

TEST_F(ScriptTest, JavaScriptTalks) {
    const FarComputer far_;
    ASSERT_EQ(far_.problem, "");
    const TemporaryFile script("talk.js", java);
    const Ended ended = RunScript("\"" + script.path + "\"");
    EXPECT_EQ(ended.output, "132 true Connected\r\nan echo\r\nFile not found.\r\nundefined\r\n");
}

TEST_F(ScriptTest, TheSampleLogsInAndReceivesAFile) {
    std::string contents;
    for (int number = 0; number < 20000; ++number)
        contents += static_cast<char>(number * 7 + number / 256);
    const TemporaryFile sent("sent.bin", contents);
    const TemporaryFile received("received.bin", "");
    DeleteFileA(received.path.c_str());
    const FarComputer far_(sent.path);
    ASSERT_EQ(far_.problem, "");
    const Ended ended =
        RunScript("\"" SAMPLE_FOLDER "\\download.vbs\" COM5 115200,n,8,1 guest tarn far$ send \"" +
                  received.path + "\"");
    EXPECT_EQ(ended.code, 0u);
    EXPECT_EQ(ended.output, "COM5 is open, 115200,n,8,1.\r\nLogged in as guest.\r\n" + received.path +
                                ": 20000 bytes.\r\n");
    EXPECT_TRUE(ReadFile(received.path) == contents);
}

TEST_F(ScriptTest, TheSampleSaysWhyAPortDoesNotOpen) {
    const Ended ended =
        RunScript("\"" SAMPLE_FOLDER "\\download.vbs\" COM9 115200,n,8,1 guest tarn far$ send nowhere");
    EXPECT_EQ(ended.code, 1u);
    EXPECT_EQ(ended.output.rfind("COM9 does not open: ", 0), 0u) << ended.output;
}
