#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kovi {

// Standard base64 with padding (RFC 4648 §4), as keys and signatures travel
// in JSON.
std::string base64Encode(std::span<const std::uint8_t> bytes);
// Absent for text that is not canonical padded base64.
std::optional<std::vector<std::uint8_t>> base64Decode(std::string_view text);

// base64url without padding (RFC 4648 §5), as WebAuthn writes its fields.
std::string base64UrlEncode(std::span<const std::uint8_t> bytes);
std::optional<std::vector<std::uint8_t>> base64UrlDecode(std::string_view text);

}  // namespace kovi
