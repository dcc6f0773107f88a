#include "KoviKit/foundation/Base64.h"

#include <array>

namespace kovi {
namespace {

constexpr std::string_view kStandardAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::string_view kUrlAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";

constexpr std::uint8_t kNotInAlphabet = 0xff;

// The value of each byte in `alphabet`, kNotInAlphabet for every other byte.
constexpr std::array<std::uint8_t, 256> reverseTable(std::string_view alphabet) {
  std::array<std::uint8_t, 256> table{};
  table.fill(kNotInAlphabet);
  for (std::size_t index = 0; index < alphabet.size(); ++index) {
    table[static_cast<unsigned char>(alphabet[index])] = static_cast<std::uint8_t>(index);
  }
  return table;
}

constexpr auto kStandardValues = reverseTable(kStandardAlphabet);
constexpr auto kUrlValues = reverseTable(kUrlAlphabet);

std::string encode(std::span<const std::uint8_t> bytes, std::string_view alphabet, bool padded) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  std::size_t index = 0;
  for (; index + 3 <= bytes.size(); index += 3) {
    const std::uint32_t group = (std::uint32_t{bytes[index]} << 16) | (std::uint32_t{bytes[index + 1]} << 8) |
                                std::uint32_t{bytes[index + 2]};
    text += alphabet[(group >> 18) & 0x3f];
    text += alphabet[(group >> 12) & 0x3f];
    text += alphabet[(group >> 6) & 0x3f];
    text += alphabet[group & 0x3f];
  }
  const std::size_t rest = bytes.size() - index;
  if (rest == 0) return text;
  std::uint32_t group = std::uint32_t{bytes[index]} << 16;
  if (rest == 2) group |= std::uint32_t{bytes[index + 1]} << 8;
  text += alphabet[(group >> 18) & 0x3f];
  text += alphabet[(group >> 12) & 0x3f];
  if (rest == 2) text += alphabet[(group >> 6) & 0x3f];
  if (padded) text.append(3 - rest, '=');
  return text;
}

// Decodes only the one text that `encode` writes for the bytes: a wrong
// length, a character outside the alphabet, misplaced padding or non-zero
// bits after the last byte all make the text non-canonical. Signatures and
// keys are compared byte for byte after decoding, so two spellings of the same
// bytes must not both be accepted.
std::optional<std::vector<std::uint8_t>> decode(std::string_view text, const std::array<std::uint8_t, 256>& values,
                                                bool padded) {
  std::size_t unpadded = text.size();
  if (padded) {
    if (text.size() % 4 != 0) return std::nullopt;
    if (unpadded > 0 && text[unpadded - 1] == '=') --unpadded;
    if (unpadded > 0 && text[unpadded - 1] == '=') --unpadded;
  }
  // One character alone holds only six bits, never a whole byte.
  if (unpadded % 4 == 1) return std::nullopt;

  std::vector<std::uint8_t> bytes;
  bytes.reserve(unpadded / 4 * 3 + 2);
  std::uint32_t group = 0;
  std::size_t collected = 0;
  for (std::size_t index = 0; index < unpadded; ++index) {
    const std::uint8_t value = values[static_cast<unsigned char>(text[index])];
    if (value == kNotInAlphabet) return std::nullopt;
    group = (group << 6) | value;
    if (++collected == 4) {
      bytes.push_back(static_cast<std::uint8_t>(group >> 16));
      bytes.push_back(static_cast<std::uint8_t>(group >> 8));
      bytes.push_back(static_cast<std::uint8_t>(group));
      group = 0;
      collected = 0;
    }
  }
  if (collected == 2) {
    if ((group & 0x0f) != 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(group >> 4));
  } else if (collected == 3) {
    if ((group & 0x03) != 0) return std::nullopt;
    bytes.push_back(static_cast<std::uint8_t>(group >> 10));
    bytes.push_back(static_cast<std::uint8_t>(group >> 2));
  }
  return bytes;
}

}  // namespace

std::string base64Encode(std::span<const std::uint8_t> bytes) { return encode(bytes, kStandardAlphabet, true); }

std::optional<std::vector<std::uint8_t>> base64Decode(std::string_view text) {
  return decode(text, kStandardValues, true);
}

std::string base64UrlEncode(std::span<const std::uint8_t> bytes) { return encode(bytes, kUrlAlphabet, false); }

std::optional<std::vector<std::uint8_t>> base64UrlDecode(std::string_view text) {
  return decode(text, kUrlValues, false);
}

}  // namespace kovi
