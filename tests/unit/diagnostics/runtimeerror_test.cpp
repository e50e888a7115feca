#include "diagnostics/runtimeerror.h"

#include "logtest.h"

using namespace logfiles;

using RuntimeErrorLog = LogTest;

TEST_F(RuntimeErrorLog, CarriesTheSystemsTextAndLogsIt) {
    const RuntimeError error(ERROR_ACCESS_DENIED);
    EXPECT_STREQ(error.what(), "CComm runtime error");
    EXPECT_EQ(error.Code(), DWORD{ERROR_ACCESS_DENIED});
    EXPECT_NE(std::string(error.Text()), "");
    EXPECT_EQ(Messages(), "<time> " + std::string(error.Text()) + "\r\n");
}

TEST_F(RuntimeErrorLog, InsertsOfTheTextAreLeftAlone) {
    const RuntimeError error(ERROR_BAD_EXE_FORMAT);
    EXPECT_NE(std::string(error.Text()).find("%1"), std::string::npos) << error.Text();
}

TEST_F(RuntimeErrorLog, CodeWithoutATextLogsNothing) {
    const RuntimeError error(0x2FFFFFFF);
    EXPECT_STREQ(error.Text(), "");
    EXPECT_FALSE(FileExists(WireTapPath()));
}

TEST_F(RuntimeErrorLog, IsCaughtAsTheLibrarysRunTimeError) {
    EXPECT_THROW(throw RuntimeError(ERROR_SUCCESS), std::runtime_error);
}
