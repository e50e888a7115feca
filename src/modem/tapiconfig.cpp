// A line's configuration as text, for programs that keep it and give it back.
#include "core/wall.h"
#include "devicetext.h"
#include "TapiApp.h"
#include "tapiblock.h"

namespace {

constexpr const char* configClass = "COMM";

} // namespace

std::string CTapiApp::GetDeviceConfig(DWORD device) const {
    return BehindWall("GetDeviceConfig", [&]() -> std::string {
        if (bDisabled)
            return "";
        TapiBlock<VARSTRING> config;
        if (config.Fill([&](VARSTRING* block) {
                return pService->lineGetDevConfigA(device, block, configClass);
            }) != 0)
            return "";
        const std::byte* bytes = config.At(config->dwStringOffset, config->dwStringSize);
        return bytes ? DeviceTextOf({bytes, config->dwStringSize}) : "";
    });
}

void CTapiApp::SetDeviceConfig(DWORD device, const char* szText) {
    BehindWall("SetDeviceConfig", [&] {
        if (bDisabled || !szText)
            return;
        std::vector<std::byte> bytes = BytesOfDeviceText(szText);
        std::byte none = {}; // a vector without elements may have no address
        pService->lineSetDevConfigA(device, bytes.empty() ? &none : bytes.data(),
                                    static_cast<DWORD>(bytes.size()), configClass);
    });
}
