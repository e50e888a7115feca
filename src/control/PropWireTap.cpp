#include "PropWireTap.h"

#include "core/dialogitems.h"
#include "pageitems.h"

// In the order in which they are read and set.
const TarnPage::CheckRow CPropWireTap::checks[] = {
    {WireTap_Enabled, &ITarnComm::get_WireTap, &ITarnComm::put_WireTap},
    {WireTap_Input, &ITarnComm::get_WireTapInput, &ITarnComm::put_WireTapInput},
    {WireTap_Output, &ITarnComm::get_WireTapOutput, &ITarnComm::put_WireTapOutput},
    {WireTap_Events, &ITarnComm::get_WireTapEvents, &ITarnComm::put_WireTapEvents},
    {WireTap_Warnings, &ITarnComm::get_WireTapWarnings, &ITarnComm::put_WireTapWarnings},
    {WireTap_Properties, &ITarnComm::get_WireTapProperties, &ITarnComm::put_WireTapProperties},
    {WireTap_Transfer, &ITarnComm::get_WireTapTransfer, &ITarnComm::put_WireTapTransfer},
};

const PageFacts& CPropWireTap::Facts() const {
    static constexpr PageFacts facts = {WireTapTemplate, L"&WireTap", L"WireTap Properties"};
    return facts;
}

void CPropWireTap::OnControl(ITarnComm& control) {
    ShowChecks(checks, control);
    EnableSubjects();
}

void CPropWireTap::OnChanged(int item) {
    if (item == WireTap_Enabled)
        EnableSubjects();
}

void CPropWireTap::EnableSubjects() const {
    EnableItems(Dialog(),
                {WireTap_Input, WireTap_Output, WireTap_Events, WireTap_Warnings, WireTap_Properties,
                 WireTap_Transfer},
                IsChecked(WireTap_Enabled));
}

TarnPage::Setters CPropWireTap::Values() const {
    Setters setters;
    for (const CheckRow& row : checks)
        setters.push_back(SetsFlag(row.put, IsChecked(row.item)));
    return setters;
}
