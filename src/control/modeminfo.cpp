#include "modeminfo.h"

#include "TarnComm.h"

#include <cstdio>
#include <string_view>

namespace {

constexpr char separator = '\t';

// Without a comm object, the control's own copy.
std::string OptionsOf(CTarnCommCtl& control) {
    char options[TARN_MODEM_OPTIONS_SIZE];
    const int length = GetModemOptions(control.CommObject(), options);
    return length > 0 ? std::string(options, static_cast<size_t>(length))
                      : control.Properties().m_szModemOptions;
}

} // namespace

CModemInfo::CModemInfo(CTarnCommCtl& control) : control_(control) {
    const std::string options = OptionsOf(control);
    std::string_view rest = options;
    for (std::string& field : fields_) {
        const size_t end = rest.find(separator);
        field = rest.substr(0, end);
        rest.remove_prefix(end == rest.npos ? rest.size() : end + 1);
    }
}

CModemInfo::~CModemInfo() {
    const auto text = [this](ModemField field) { return (*this)[field].c_str(); };
    char(&options)[ControlModemOptionsSize] = control_.Properties().m_szModemOptions;
    std::snprintf(options, sizeof options, "%s\t%s\t%s\t%s\t%s\t%s", text(ModemField::Title),
                  text(ModemField::Init), text(ModemField::DialTone), text(ModemField::DialPulse),
                  text(ModemField::Answer), text(ModemField::HangUp));
    SetModemOptions(control_.CommObject(), options);
}
