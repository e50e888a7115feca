#include "kermitmessage.h"

#include "guarded.h"
#include "kermitpacket.h"
#include "services.h"

#include <algorithm>

namespace {

constexpr size_t longestMessage = 255; // characters; more is cut

} // namespace

void ShowMessage(KermitState& kermit, const std::string& text) {
    Guarded("Kermit: ShowMessage", [&] {
        const std::string shown = text.substr(0, longestMessage);
        DebugText(shown.c_str());
        xfSetMessage(kermit.transfer, shown.c_str());
    });
}

void ShowErrorPacket(KermitState& kermit, const char* szText) {
    Guarded("Kermit: ShowErrorPacket",
            [&] { ShowMessage(kermit, std::string("Aborting:\n") + szText + "\n"); });
}

void Error(KermitState& kermit, const std::string& text) {
    Guarded("Kermit: Error", [&] {
        if (!kermit.bSendErrors) {
            ShowMessage(kermit, text);
            return;
        }
        const int length = std::min(static_cast<int>(text.size()), kermit::mostText);
        SendPacket(kermit, kermit::ErrorPacket, kermit.nSequence, length, text.data());
    });
}
