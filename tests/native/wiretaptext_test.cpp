#include "wiretap_cases.h"

using namespace wiretap_cases;

class WireTapTextNativeRendering : public testing::TestWithParam<RenderCase> {};
class WireTapTextNativeLines : public testing::TestWithParam<DataCase> {};

TEST_P(WireTapTextNativeRendering, FollowsTheTable) {
    CheckRender(GetParam());
}

TEST_P(WireTapTextNativeLines, FollowTheTable) {
    CheckDataLines(GetParam());
}

TEST(WireTapTextNative, LosesNoByteAtAnyWidth) {
    CheckNothingIsLost();
}

INSTANTIATE_TEST_SUITE_P(Bytes, WireTapTextNativeRendering, testing::ValuesIn(RenderCases()),
                         NameOf<RenderCase>);
INSTANTIATE_TEST_SUITE_P(Data, WireTapTextNativeLines, testing::ValuesIn(DataCases()), NameOf<DataCase>);
