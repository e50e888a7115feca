// What stands on the troubleshooter's pages, as rows of text.
#pragma once

#include "core/portprobe.h"
#include "loadedlibrary.h"
#include "troubleshoothost.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

// Two digits and the text: the first is 1 for a heading, the second is always 0.
using TroubleShootRows = std::vector<std::string>;

struct TroubleShootRow {
    bool heading;
    std::string text; // empty: nothing is drawn
};
TroubleShootRow RowOf(const std::string& fields);

// Text with a link in it: "before|target|words|after". The target is not shown.
struct LinkMarkup {
    std::string before;
    std::string target;
    std::string words;
    std::string after;
};
// Nothing: a heading, or a row that has fewer than three bars.
std::optional<LinkMarkup> LinkOf(const TroubleShootRow& row);

using PortLookUp = std::function<PortProbe(const char* szPort)>;
using LibraryLookUp = std::function<std::optional<LoadedLibrary>(const char* szName)>;

TroubleShootRows WelcomeRows();
TroubleShootRows PortRows(const PortLookUp& probe);
TroubleShootRows ModemRows(const std::vector<TroubleShootModem>& modems);
TroubleShootRows LibraryRows(const LibraryLookUp& find);
