#include "diagnostics/moduleversion.h"

#include "logtest.h"
#include "namedmodule.h"
#include "support/versionblock.h"

using namespace logfiles;

using WireTapVersion = LogTest;

TEST_F(WireTapVersion, StandsInTheBannerOfTheModulesOwnLog) {
    const NamedModule module("Lantry.ocx", AddVersion);
    ASSERT_NE(module.Address(), 0u);
    LogText("one");
    LogText("two");
    EXPECT_EQ(Untimed(ReadWholeFile(WireTapPath())),
              "<time> Tarn Link Objects 12.2.3.65535 WireTap Log Started\r\n<time> one\r\n<time> two\r\n");
}

TEST_F(WireTapVersion, ThatCannotBeReadLeavesTheTimeAlone) {
    const NamedModule module("Lantry.ocx");
    ASSERT_NE(module.Address(), 0u);
    LogText("one");
    EXPECT_EQ(Untimed(ReadWholeFile(WireTapPath())), "<time> <time> one\r\n");
}

TEST(ModuleVersion, OfAModuleThatIsNotLoadedIsNothing) {
    EXPECT_EQ(VersionBanner(), "");
}

TEST(ModuleVersion, OfAFileIsItsFourParts) {
    const NamedModule versioned("versioned.dll", AddVersion);
    EXPECT_EQ(VersionOfFile(versioned.Path().c_str()), (FileVersion{12, 2, 3, 65535}));
    EXPECT_EQ(VersionOfFile(HostPath().c_str()), std::nullopt) << "a program without one";
    EXPECT_EQ(VersionOfFile("no such file"), std::nullopt);
}

TEST(ModuleVersion, LineHasMajorMinorAndBuild) {
    EXPECT_EQ(VersionLine(FileVersion{12, 2, 3, 65535}), "Version 12.2 Build 65535");
    EXPECT_EQ(VersionLine(FileVersion{0, 0, 7, 0}), "Version 0.0 Build 0");
    EXPECT_EQ(VersionLine(std::nullopt), "");
}

TEST(ModuleVersion, LineIsOfThisModuleWhateverOthersAreThere) {
    const NamedModule module("Lantry.ocx", AddVersion);
    ASSERT_NE(module.Address(), 0u);
    EXPECT_EQ(VersionLine(), "") << "this program has no version";
}
