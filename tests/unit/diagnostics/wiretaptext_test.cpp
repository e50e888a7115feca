#include "native/wiretap_cases.h"

using namespace wiretap_cases;

class WireTapTextRendering : public testing::TestWithParam<RenderCase> {};
class WireTapTextLines : public testing::TestWithParam<DataCase> {};

TEST_P(WireTapTextRendering, FollowsTheTable) {
    CheckRender(GetParam());
}

TEST_P(WireTapTextLines, FollowTheTable) {
    CheckDataLines(GetParam());
}

TEST(WireTapText, LosesNoByteAtAnyWidth) {
    CheckNothingIsLost();
}

INSTANTIATE_TEST_SUITE_P(Bytes, WireTapTextRendering, testing::ValuesIn(RenderCases()), NameOf<RenderCase>);
INSTANTIATE_TEST_SUITE_P(Data, WireTapTextLines, testing::ValuesIn(DataCases()), NameOf<DataCase>);
