#include "TapiApp.h"

std::string CTapiApp::StartUpError() const {
    return m_bDisabled ? "Unable to access the Windows Telephony API: Operation failed." : "";
}

int CTapiApp::FindModem(const char*) const {
    return noLine;
}

bool CTapiApp::FindNextDataModem(DWORD&) const {
    return false;
}

std::string CTapiApp::GetModemName(DWORD) const {
    return "";
}

bool CTapiApp::Dial(DWORD, const char*, LONG) {
    return false;
}

// The owner gives its handle up whatever the service says.
bool CTapiApp::HangUp() {
    m_Owner.OnDisconnected();
    return false;
}

HANDLE CTapiApp::GetCommHandle() const {
    return INVALID_HANDLE_VALUE;
}

bool CTapiApp::SetAnswer(bool, DWORD) {
    return false;
}

std::vector<std::string> CTapiApp::Locations() const {
    return {};
}

std::string CTapiApp::GetCurrentLocationName() const {
    return "";
}

bool CTapiApp::SetCurrentLocation(const char*) {
    return false;
}

std::string CTapiApp::TranslatePhoneNumber(DWORD, const char*) const {
    return "";
}

std::string CTapiApp::GetDeviceConfig(DWORD) const {
    return "";
}

void CTapiApp::SetDeviceConfig(DWORD, const char*) {}
