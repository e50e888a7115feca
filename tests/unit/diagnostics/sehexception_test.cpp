#include "diagnostics/exceptiontext.h"
#include "diagnostics/faultguard.h"
#include "diagnostics/SEHException.h"
#include "diagnostics/swallow.h"

#include "logtest.h"
#include "namedmodule.h"

using namespace logfiles;

namespace {

struct TextCase {
    unsigned code;
    const char* text;
};

const TextCase textCases[] = {
    {0x80000001, "A Guard Page Violation"},
    {0x80000002, "A Datatype Misaligned Exception"},
    {0x80000003, "A Breakpoint was encountered"},
    {0x80000004, "A Single-Step encountered"},
    {0xC0000005, "An Access Violation"},
    {0xC0000006, "An In-Page Error"},
    {0xC0000008, "An Invalid Handle"},
    {0xC000001D, "An Illegal Instruction"},
    {0xC0000025, "A Non-Continuable Exception"},
    {0xC0000026, "An Invalid Disposition"},
    {0xC000008C, "An Array Bounds Exceeded"},
    {0xC000008D, "A Floating-Point Denormal"},
    {0xC000008E, "A Floating-Point Divide by Zero"},
    {0xC000008F, "A Floating-Point Inexact Result"},
    {0xC0000090, "A Floating-Point Invalid Operation"},
    {0xC0000091, "A Floating-Point Overflow"},
    {0xC0000092, "A Floating-Point Stack Under/Overflow"},
    {0xC0000093, "A Floating-Point Underflow"},
    {0xC0000094, "An Integer Divide by Zero"},
    {0xC0000095, "An Integer Overflow"},
    {0xC0000096, "A Privileged Instruction Violation"},
    {0xC00000FD, "A Stack Overflow"},
    {0xC000013A, "A Control-C Exit"},
    {0xC0000000, "An Unkown Error"},
    {0, "An Unkown Error"},
    {0xFFFFFFFF, "An Unkown Error"},
};

std::string HostName() {
    const std::string path = HostPath();
    return path.substr(path.rfind('\\') + 1);
}

std::string ReportPath() {
    const std::string path = HostPath();
    return path.substr(0, path.size() - 3) + "log";
}

const std::string datePattern =
    R"(\r\n\r\n------ (Sun|Mon|Tues|Wednes|Thurs|Fri|Satur)day, )"
    R"((January|February|March|April|May|June|July|August|September|October|November|December) )"
    R"(\d{1,2}, \d{4} at \d{1,2}:\d\d:\d\d [^\r\n]* ------\r\n)";

struct MadeUpFault {
    EXCEPTION_RECORD record = {};
    CONTEXT context = {};
    EXCEPTION_POINTERS pointers = {&record, &context};

    MadeUpFault() { context.SegCs = 0x23; }
    void At(ULONG_PTR address) {
#ifdef _WIN64
        context.Rip = address;
#else
        context.Eip = address;
#endif
    }
    void Access(ULONG_PTR kind, ULONG_PTR address) {
        record.NumberParameters = 2;
        record.ExceptionInformation[0] = kind;
        record.ExceptionInformation[1] = address;
    }
};

void ReadNull() {
    volatile int* volatile nowhere = nullptr;
    static_cast<void>(*nowhere);
}

} // namespace

class ExceptionReport : public LogTest {
  protected:
    void SetUp() override {
        LogTest::SetUp();
        DeleteFileA(ReportPath().c_str());
    }
    void TearDown() override {
        DeleteFileA(ReportPath().c_str());
        LogTest::TearDown();
    }
    static std::string Reported() { return ReadWholeFile(ReportPath()); }
    static std::string ReportOf(unsigned code, MadeUpFault& fault, const char* szCatcher = "Catcher") {
        CSEHException(code, &fault.pointers).Report(szCatcher);
        return Reported();
    }
    static void ExpectMatch(const std::string& text, const std::string& pattern) {
        EXPECT_TRUE(std::regex_match(text, std::regex(pattern))) << text;
    }
};

TEST(ExceptionTexts, FollowTheTable) {
    for (const TextCase& testCase : textCases)
        EXPECT_STREQ(ExceptionText(testCase.code), testCase.text) << std::hex << testCase.code;
}

TEST_F(ExceptionReport, OfARealFaultTellsEverythingInOrder) {
    try {
        CallTranslated(ReadNull);
        FAIL() << "no fault";
    } catch (CSEHException& exception) {
        exception.Report("TestBody");
    }
    ExpectMatch(Reported(), datePattern + "An Access Violation occured in " + HostName() +
                                R"( at [0-9a-f]{4}:[0-9a-f]{8,16}\.\r\n)"
                                R"(The access violation was a read violation at 00000000\.\r\n)"
                                R"(Caught by exception handler in TestBody\.\r\n)");
}

TEST_F(ExceptionReport, OfAWriteSaysSo) {
    MadeUpFault fault;
    fault.Access(1, 0x1234ABCD);
    ExpectMatch(ReportOf(0xC0000005, fault),
                datePattern + R"(An Access Violation occured in unknown at 0023:00000000\.\r\n)"
                              R"(The access violation was a write violation at 0x1234abcd\.\r\n)"
                              R"(Caught by exception handler in Catcher\.\r\n)");
}

TEST_F(ExceptionReport, CallsEveryOtherAccessAWrite) {
    MadeUpFault fault;
    fault.Access(8, 0x10);
    EXPECT_NE(ReportOf(0xC0000005, fault).find("was a write violation at 0x000010."), std::string::npos);
}

TEST_F(ExceptionReport, OfAnAccessWithOneParameterHasNoAccessLine) {
    MadeUpFault fault;
    fault.Access(1, 2);
    fault.record.NumberParameters = 1;
    EXPECT_EQ(ReportOf(0xC0000005, fault).find("The access violation"), std::string::npos);
}

TEST_F(ExceptionReport, OfAnotherCodeHasNoAccessLine) {
    MadeUpFault fault;
    fault.Access(1, 2);
    ExpectMatch(ReportOf(0x12345678, fault),
                datePattern + R"(An Unkown Error occured in unknown at 0023:00000000\.\r\n)"
                              R"(Caught by exception handler in Catcher\.\r\n)");
}

TEST_F(ExceptionReport, ModuleNameIsNoFormat) {
    const std::string name = "%s%n%d100%.dll";
    const NamedModule module(name);
    ASSERT_NE(module.Address(), 0u);
    MadeUpFault fault;
    fault.At(module.Address() + 0x1000);
    EXPECT_NE(ReportOf(0xC0000094, fault).find("An Integer Divide by Zero occured in " + name + " at 0023:"),
              std::string::npos)
        << Reported();
}

TEST_F(ExceptionReport, CatcherIsNoFormatAndMayBeNull) {
    MadeUpFault fault;
    EXPECT_TRUE(ReportOf(0, fault, "%s%n").ends_with("Caught by exception handler in %s%n.\r\n"));
    EXPECT_TRUE(ReportOf(0, fault, nullptr).ends_with("Caught by exception handler in .\r\n"));
}

TEST_F(ExceptionReport, WithoutPointersKnowsNoPlace) {
    CSEHException(0xC0000005, nullptr).Report("Catcher");
    ExpectMatch(Reported(), datePattern + R"(An Access Violation occured in unknown at 0000:00000000\.\r\n)"
                                          R"(Caught by exception handler in Catcher\.\r\n)");
}

TEST_F(ExceptionReport, IsAppendedToTheOneBefore) {
    MadeUpFault fault;
    const std::string first = ReportOf(0, fault, "First");
    const std::string both = ReportOf(0, fault, "Second");
    EXPECT_TRUE(both.starts_with(first));
    ExpectMatch(both.substr(first.size()), datePattern + "[^]*Second\\.\\r\\n");
}

TEST_F(ExceptionReport, SecondOfOneObjectStopsAtTheAssertion) {
    MadeUpFault fault;
    CSEHException exception(0, &fault.pointers);
    exception.Report("First");
    const std::string first = Messages();
    EXPECT_EQ(first, "");
    {
        const DebuggerOutput output;
        exception.Report("Second");
        EXPECT_NE(output.Text().find("m_hFile == INVALID_HANDLE_VALUE, file SEHException.cpp, line "),
                  std::string::npos)
            << output.Text();
    }
    EXPECT_EQ(Reported().find("Second"), std::string::npos);
}

TEST_F(ExceptionReport, FileIsNotSharedWhileTheObjectLives) {
    MadeUpFault fault;
    {
        CSEHException exception(0, &fault.pointers);
        exception.Report("First");
        EXPECT_EQ(ReportOf(0, fault, "Lost"), "");
    }
    EXPECT_EQ(Reported().find("Lost"), std::string::npos);
    EXPECT_NE(ReportOf(0, fault, "Later").find("Later"), std::string::npos);
}

TEST_F(ExceptionReport, CopyReportsForItself) {
    MadeUpFault fault;
    CSEHException original(0, &fault.pointers);
    original.Report("Original");
    {
        CSEHException copy(original);
        copy.Report("Copy"); // the original holds the file
    }
    EXPECT_EQ(Messages(), "");
    EXPECT_EQ(original.GetExcPointers(), CSEHException(original).GetExcPointers());
}

TEST_F(ExceptionReport, FailureInsideEndsItAndClosesTheFile) {
    MadeUpFault fault;
    CSEHException exception(0, &fault.pointers);
    const char* volatile bad = reinterpret_cast<const char*>(ULONG_PTR{1});
    exception.Report(bad);
    EXPECT_EQ(Reported().find("Caught by"), std::string::npos);
    exception.Report("Again");
    const std::string kept = Messages();
    EXPECT_EQ(kept, "") << "the file was not closed";
}

TEST_F(ExceptionReport, WithoutAFileIsLostInSilence) {
    ASSERT_TRUE(CreateDirectoryA(ReportPath().c_str(), nullptr));
    MadeUpFault fault;
    CSEHException exception(0, &fault.pointers);
    exception.Report("Lost");
    ASSERT_TRUE(RemoveDirectoryA(ReportPath().c_str()));
    EXPECT_EQ(Messages(), "");
    exception.Report("Now");
    EXPECT_EQ(Messages(), "");
}

TEST_F(ExceptionReport, LongPieceIsCut) {
    MadeUpFault fault;
    const std::string report = ReportOf(0, fault, std::string(3000, 'x').c_str());
    const std::string lead = "Caught by exception handler in ";
    const size_t start = report.find(lead);
    ASSERT_NE(start, std::string::npos);
    EXPECT_EQ(report.substr(start), lead + std::string(1023 - lead.size(), 'x'));
}

// Runs one of these tests in a copy of this program under another name.
class RenamedHost {
  public:
    explicit RenamedHost(const std::string& name) {
        GetTempPathA(MAX_PATH, folder_);
        path_ = folder_ + name;
        EXPECT_TRUE(CopyFileA(HostPath().c_str(), path_.c_str(), FALSE)) << path_;
    }
    ~RenamedHost() { DeleteFileA(path_.c_str()); }
    RenamedHost(const RenamedHost&) = delete;
    RenamedHost& operator=(const RenamedHost&) = delete;

    std::string Sibling(const char* name) const { return folder_ + std::string(name); }
    bool Passes(const char* test) const {
        std::string command = "host --gtest_brief=1 --gtest_filter=" + std::string(test);
        STARTUPINFOA start = {};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES; // none: a failure that is wanted is not to be read
        PROCESS_INFORMATION process = {};
        if (!CreateProcessA(path_.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                            &start, &process)) {
            ADD_FAILURE() << "no process of " << path_ << ": " << GetLastError();
            return false;
        }
        constexpr DWORD limit = 60000;
        EXPECT_EQ(WaitForSingleObject(process.hProcess, limit), WAIT_OBJECT_0);
        DWORD result = 1;
        GetExitCodeProcess(process.hProcess, &result);
        TerminateProcess(process.hProcess, 1); // if it never ended
        CloseHandle(process.hThread);
        CloseHandle(process.hProcess);
        return result == 0;
    }

  private:
    char folder_[MAX_PATH] = {};
    std::string path_;
};

struct NameRow {
    const char* host;
    const char* report;
};

// A folder in the report's place tells where the report is looked for.
TEST_F(ExceptionReport, ReplacesTheLastThreeCharactersOfAnyName) {
    const NameRow rows[] = {{"tarnhost.bin", "tarnhost.log"},
                            {"tarnhost", "tarnhlog"},
                            {"tarnhost.x", "tarnhoslog"},
                            {"tarnhost.tool", "tarnhost.tlog"}};
    for (const NameRow& row : rows) {
        SCOPED_TRACE(row.host);
        const RenamedHost host(row.host);
        const std::string report = host.Sibling(row.report);
        DeleteFileA(report.c_str()); // a run that failed may have left either
        RemoveDirectoryA(report.c_str());
        ASSERT_TRUE(CreateDirectoryA(report.c_str(), nullptr));
        EXPECT_FALSE(host.Passes("ExceptionReport.OfAWriteSaysSo"));
        ASSERT_TRUE(RemoveDirectoryA(report.c_str()));
        EXPECT_TRUE(host.Passes("ExceptionReport.OfAWriteSaysSo"));
    }
}

TEST(SeTranslatorThrow, CarriesCodeAndState) {
    MadeUpFault fault;
    fault.record.ExceptionCode = 0xC0000095;
    try {
        SeTranslator(0xC0000095, &fault.pointers);
    } catch (const CSEHException& exception) {
        EXPECT_EQ(exception.GetSeCode(), 0xC0000095u);
        EXPECT_NE(exception.GetExcPointers(), &fault.pointers);
        EXPECT_EQ(exception.GetExcPointers()->ExceptionRecord->ExceptionCode, 0xC0000095u);
        EXPECT_EQ(exception.GetExcPointers()->ContextRecord->SegCs, 0x23u);
    }
}

TEST_F(ExceptionReport, SwallowedExceptionLeavesNoTrace) {
    const DebuggerOutput output;
    SwallowException("Place");
    SwallowException(nullptr);
    SwallowException(std::string(5000, 'x').c_str());
    EXPECT_EQ(output.Text(), "");
    EXPECT_FALSE(FileExists(WireTapPath()));
    EXPECT_FALSE(FileExists(ReportPath()));
}
