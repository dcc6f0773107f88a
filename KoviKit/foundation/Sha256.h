#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kovi {

using Sha256Digest = std::array<std::uint8_t, 32>;

Sha256Digest sha256(std::span<const std::uint8_t> bytes);
Sha256Digest sha256(std::string_view bytes);

// Lowercase hexadecimal, two digits a byte.
std::string lowercaseHex(std::span<const std::uint8_t> bytes);

// Lowercase hex SHA-256 of `bytes`: the form hashes take on the wire.
std::string sha256Hex(std::string_view bytes);

// How an outside text (an account, a kovi reference) stands in a file name:
// the first 32 hex digits of its SHA-256, so none of its characters reaches a
// path and two texts never share a name.
std::string fileNameHash(std::string_view text);

}  // namespace kovi
