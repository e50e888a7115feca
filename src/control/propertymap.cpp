#include "propertymap.h"

#include <algorithm>

namespace {

constexpr DISPID raw = DISPID_UNKNOWN;

constexpr PropertyRow rows[] = {
    {L"_cx", raw, StoredAs::Width},
    {L"_cy", raw, StoredAs::Height},
    {L"Enabled", -514},
    {L"Settings", 1},
    {L"BackColor", 2},
    {L"Columns", 21, StoredAs::Value, Page::Terminal}, // stands twice; stored forms count on it
    {L"AutoProcess", 5},
    {L"AutoScrollColumn", 8},
    {L"AutoScrollKeyboard", 9},
    {L"AutoScrollRow", 10},
    {L"AutoSize", 12},
    {L"BackSpace", 13},
    {L"CaptureFilename", 16},
    {L"CaptureMode", 17},
    {L"CDTimeOut", 19},
    {L"ColorFilter", 20},
    {L"Columns", 21, StoredAs::Value, Page::Terminal},
    {L"CommEcho", 24},
    {L"CommPort", 28, StoredAs::Value, Page::Communications},
    {L"WireTap", 29, StoredAs::Value, Page::WireTap},
    {L"WireTapInput", 31, StoredAs::Value, Page::WireTap},
    {L"WireTapOutput", 32, StoredAs::Value, Page::WireTap},
    {L"WireTapProperties", 33, StoredAs::Value, Page::WireTap},
    {L"WireTapWarnings", 34, StoredAs::Value, Page::WireTap},
    {L"WireTapEvents", 30, StoredAs::Value, Page::WireTap},
    {L"CTSTimeOut", 37},
    {L"DialMode", 41},
    {L"DialTimeOut", 42},
    {L"DSRTimeOut", 47},
    {L"Echo", 49, StoredAs::Value, Page::Terminal},
    {L"Emulation", 50},
    {L"EndOfLineMode", 51},
    {L"ForeColor", 54},
    {L"Handshaking", 55},
    {L"IgnoreOnComm", 57, StoredAs::Value, Page::Communications},
    {L"InBufferSize", 59},
    {L"InputEcho", 62, StoredAs::Value, Page::Terminal},
    {L"InputLen", 63},
    {L"InTimeOut", 65},
    {L"OutTimeOut", 111},
    {L"LookUpSeparator", 69},
    {L"LookUpText", 70},
    {L"LookUpTimeOut", 71},
    {L"NullDiscard", 80},
    {L"OutBufferSize", 82},
    {L"ParityReplace", 86},
    {L"Rows", 89, StoredAs::Value, Page::Terminal},
    {L"RThreshold", 90, StoredAs::Value, Page::Communications},
    {L"RTSEnable", 91},
    {L"ScrollRows", 93, StoredAs::Value, Page::Terminal},
    {L"SThreshold", 98},
    {L"XferProtocol", 103},
    {L"XferStatusDialog", 106},
    {L"Font", -512, StoredAs::Object, Page::Font},
    {L"StatusbarVisible", 113},
    {L"ToolbarVisible", 112},
    {L"StatusDialog", 117}, // the key of DialStatusDialog
    {L"UseTAPI", 118},
    {L"BorderStyle", 119},
    {L"PhoneNumber", 114},
    {L"ProjectFilename", 115},
    {L"WireTapTransfer", 132, StoredAs::Value, Page::WireTap},
    {L"AutoZModem", 135},
    {L"ResumeMethod", 145},
};

constexpr Page pageWithoutProperty = Page::About;

} // namespace

std::span<const PropertyRow> StoredProperties() {
    return rows;
}

std::vector<Page> NamedPages() {
    std::vector<Page> pages;
    for (const PropertyRow& row : rows)
        if (row.page != Page::None && std::ranges::find(pages, row.page) == pages.end())
            pages.push_back(row.page);
    pages.push_back(pageWithoutProperty);
    return pages;
}
