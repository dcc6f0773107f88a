#include "KoviKit/wallet/V6WalletJson.h"

#include <vector>

namespace kovi {
namespace {

bool isHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

// Copies a parsed value into key-ordered form. The parse already refused deep
// nesting; the depth is checked again so the recursion is bounded whatever
// document it is handed.
Decoded<nlohmann::ordered_json> copyValue(const JsonView& json, int depth) {
  if (depth > kJsonMaximumDepth) return std::unexpected(json.error("nested too deeply"));
  const nlohmann::json& value = json.json();
  if (value.is_object()) {
    nlohmann::ordered_json object = nlohmann::ordered_json::object();
    for (const auto& [key, member] : value.items()) {
      auto copied = copyValue(json.child(key, member), depth + 1);
      if (!copied) return copied;
      object[key] = std::move(*copied);
    }
    return object;
  }
  if (value.is_array()) {
    nlohmann::ordered_json array = nlohmann::ordered_json::array();
    for (std::size_t index = 0; index < value.size(); ++index) {
      auto copied = copyValue(json.element(index, value[index]), depth + 1);
      if (!copied) return copied;
      array.push_back(std::move(*copied));
    }
    return array;
  }
  if (value.is_string()) return nlohmann::ordered_json(value.get<std::string>());
  if (value.is_boolean()) return nlohmann::ordered_json(value.get<bool>());
  if (value.is_number_unsigned()) return nlohmann::ordered_json(value.get<std::uint64_t>());
  if (value.is_number_integer()) return nlohmann::ordered_json(value.get<std::int64_t>());
  if (value.is_number_float()) return nlohmann::ordered_json(value.get<double>());
  return nlohmann::ordered_json(nullptr);
}

}  // namespace

template <std::size_t Bytes>
std::optional<std::string> V6HexForm<Bytes>::refusal(std::string_view text) {
  const std::string expected = "expected 0x and " + std::to_string(Bytes * 2) + " hex digits";
  if (!text.starts_with("0x") || text.size() != 2 + Bytes * 2) return expected;
  for (char c : text.substr(2)) {
    if (!isHexDigit(c)) return expected;
  }
  return std::nullopt;
}

template <std::size_t Bytes>
std::vector<std::uint8_t> hexBytes(const V6FormedString<V6HexForm<Bytes>>& value) {
  const auto nibble = [](char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c - 'A' + 10;
  };
  std::vector<std::uint8_t> bytes;
  bytes.reserve(Bytes);
  for (std::size_t at = 2; at + 1 < value.text.size(); at += 2) {
    bytes.push_back(static_cast<std::uint8_t>(nibble(value.text[at]) * 16 + nibble(value.text[at + 1])));
  }
  return bytes;
}

template struct V6HexForm<20>;
template struct V6HexForm<32>;
template std::vector<std::uint8_t> hexBytes(const V6FormedString<V6HexForm<20>>&);
template std::vector<std::uint8_t> hexBytes(const V6FormedString<V6HexForm<32>>&);

Decoded<nlohmann::ordered_json> JsonDecoder<nlohmann::ordered_json>::decode(const JsonView& json) {
  return copyValue(json, 0);
}

}  // namespace kovi
