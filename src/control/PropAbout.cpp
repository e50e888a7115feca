#include "PropAbout.h"

#include "diagnostics/moduleversion.h"
#include "pageitems.h"

const PageFacts& CPropAbout::Facts() const {
    static constexpr PageFacts facts = {AboutPageTemplate, L"&About", L"About Tarn Link Objects"};
    return facts;
}

void CPropAbout::OnPrepare() {
    ShowText(About_Version, VersionLine());
}
