// A line's configuration as text: each byte is two letters, "A" to "P", the high half first. "HF" is 0x75.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

std::string DeviceTextOf(std::span<const std::byte> bytes);

// The last letter of an odd number is left out. Letters are not tested: others than "A" to "P" give what the
// arithmetic makes of them.
std::vector<std::byte> BytesOfDeviceText(std::string_view text);
