#include "diagnostics/runtime.h"

#include "logtest.h"

using namespace logfiles;

class RunTimeReports : public LogTest {
  protected:
    void SetUp() override {
        LogTest::SetUp();
        StopRunTimeReports();
        DeleteFileA(Path().c_str());
        StartRunTimeReports();
    }
    void TearDown() override {
        StopRunTimeReports();
        LogTest::TearDown();
    }
    static std::string Path() { return WindowsFolderFile("wiretap2.txt"); }
    static std::string Reports() { return ReadWholeFile(Path()); }
};

TEST_F(RunTimeReports, StartMakesAnEmptyFile) {
    EXPECT_TRUE(FileExists(Path()));
    EXPECT_EQ(Reports(), "");
}

TEST_F(RunTimeReports, EachStartMakesTheFileAnew) {
    Report(ReportKind::Warning, "old");
    StopRunTimeReports();
    StartRunTimeReports();
    EXPECT_EQ(Reports(), "");
}

TEST_F(RunTimeReports, WarningReachesFileAndLog) {
    Report(ReportKind::Warning, "line is noisy");
    EXPECT_EQ(Reports(), "Warning: line is noisy\r\n");
    EXPECT_EQ(Messages(), "<time> Warning: line is noisy\r\n");
}

TEST_F(RunTimeReports, AssertionReachesFileAndLog) {
    Report(ReportKind::Assertion, "a == b");
    EXPECT_EQ(Reports(), "Assertion failed: a == b\r\n");
    EXPECT_EQ(Messages(), "<time> Assertion failed: a == b\r\n");
}

TEST_F(RunTimeReports, TextIsNoFormat) {
    Report(ReportKind::Warning, "%s %n 100%");
    EXPECT_EQ(Reports(), "Warning: %s %n 100%\r\n");
}

TEST_F(RunTimeReports, NullTextIsEmpty) {
    Report(ReportKind::Warning, nullptr);
    EXPECT_EQ(Reports(), "Warning: \r\n");
}

TEST_F(RunTimeReports, LongTextIsCut) {
    Report(ReportKind::Warning, std::string(5000, 'x').c_str());
    EXPECT_EQ(Reports(), ("Warning: " + std::string(5000, 'x')).substr(0, 1023) + "\r\n");
}

TEST_F(RunTimeReports, WithoutAFileStillReachTheLog) {
    StopRunTimeReports();
    Report(ReportKind::Warning, "late");
    EXPECT_EQ(Messages(), "<time> Warning: late\r\n");
}

TEST_F(RunTimeReports, ReportFromInsideAReportIsHarmless) {
    const DebuggerOutput output([] { Report(ReportKind::Warning, "inner"); });
    Report(ReportKind::Warning, "outer");
    EXPECT_EQ(Reports(), "Warning: outer\r\nWarning: inner\r\n");
    EXPECT_EQ(Messages(), "<time> Warning: outer\r\n");
}

TEST_F(RunTimeReports, EnsureReturnsWhatHoldsAndSaysNothing) {
    EXPECT_TRUE(Ensure(true, "fine"));
    EXPECT_EQ(Reports(), "");
}

TEST_F(RunTimeReports, EnsureReportsWhatDoesNotHoldWithItsPlace) {
    const unsigned line = __LINE__ + 1;
    EXPECT_FALSE(Ensure(false, "count == 0"));
    EXPECT_EQ(Reports(),
              "Assertion failed: count == 0, file runtime_test.cpp, line " + std::to_string(line) + "\r\n");
}
