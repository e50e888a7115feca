#include "diagnostics/moduleversion.h"

#include "logtest.h"
#include "namedmodule.h"

using namespace logfiles;

namespace {

// The root block of a version resource, without the texts that usually follow it.
struct VersionBlock {
    WORD length = sizeof(VersionBlock);
    WORD valueLength = sizeof(VS_FIXEDFILEINFO);
    WORD type = 0; // binary
    wchar_t key[16] = L"VS_VERSION_INFO";
    WORD padding = 0;
    VS_FIXEDFILEINFO value = {};
};

void AddVersion(const std::string& path) {
    VersionBlock block;
    block.value.dwSignature = 0xFEEF04BD;
    block.value.dwStrucVersion = 0x10000;
    block.value.dwFileVersionMS = MAKELONG(2, 12);
    block.value.dwFileVersionLS = MAKELONG(65535, 3);
    const HANDLE update = BeginUpdateResourceA(path.c_str(), FALSE);
    UpdateResourceA(update, MAKEINTRESOURCEA(16), MAKEINTRESOURCEA(VS_VERSION_INFO), 0x409, &block,
                    sizeof block);
    EndUpdateResourceA(update, FALSE);
}

} // namespace

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
