#include "plant.h"

#include "exchange.h"
#include "record.h"
#include "service.h"

#include <algorithm>

Plant& ThePlant() {
    static auto* plant = new Plant;
    return *plant;
}

PlantLine* FindDevice(DWORD device) {
    auto& lines = ThePlant().lines;
    return device < lines.size() ? &lines[device] : nullptr;
}

const Country* FindCountry(DWORD id) {
    const auto& countries = ThePlant().countries;
    const auto found =
        std::find_if(countries.begin(), countries.end(), [id](const Country& row) { return row.id == id; });
    return found == countries.end() ? nullptr : &*found;
}

std::string DigitsOf(const std::string& text) {
    std::string digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
                 [](char letter) { return letter >= '0' && letter <= '9'; });
    return digits;
}

bool SameNumber(const std::string& one, const std::string& other) {
    return one == other || (!DigitsOf(one).empty() && DigitsOf(one) == DigitsOf(other));
}

DWORD WINAPI ExchangeAddLine(const char* szName, const char* szProvider, DWORD mediaModes,
                             const char* szNumber, const char* szPort) {
    const std::lock_guard guard(ExchangeLock());
    auto& lines = ThePlant().lines;
    lines.push_back({TextOf(szName), TextOf(szProvider), mediaModes, TextOf(szNumber), TextOf(szPort), {}});
    return static_cast<DWORD>(lines.size() - 1);
}

void WINAPI ExchangeAddLocation(const char* szName, const char* szAreaCode, DWORD countryId,
                                DWORD permanentId) {
    const std::lock_guard guard(ExchangeLock());
    ThePlant().locations.push_back({TextOf(szName), TextOf(szAreaCode), countryId, permanentId});
}

void WINAPI ExchangeSetCurrentLocation(DWORD permanentId) {
    const std::lock_guard guard(ExchangeLock());
    ThePlant().currentLocation = permanentId;
}

void WINAPI ExchangeAddCountry(const char* szName, DWORD countryId, DWORD countryCode) {
    const std::lock_guard guard(ExchangeLock());
    ThePlant().countries.push_back({TextOf(szName), countryId, countryCode});
}

void WINAPI ExchangeSetDeviceConfig(DWORD device, const void* bytes, DWORD count) {
    const std::lock_guard guard(ExchangeLock());
    const auto* first = static_cast<const std::byte*>(bytes);
    if (PlantLine* line = FindDevice(device))
        line->config.assign(first, first + count);
}

void WINAPI ExchangeAddTranslation(const char* szFrom, const char* szTo) {
    const std::lock_guard guard(ExchangeLock());
    ThePlant().translations.push_back({TextOf(szFrom), TextOf(szTo)});
}

void WINAPI ExchangeAddRule(const char* szNumber, int outcome, DWORD argument) {
    const std::lock_guard guard(ExchangeLock());
    ThePlant().rules.push_back({TextOf(szNumber), outcome, argument});
}

void WINAPI ExchangeSetPace(DWORD milliseconds) {
    const std::lock_guard guard(ExchangeLock());
    ThePlant().pace = milliseconds;
}
