#pragma once

// JSON pieces the wallet records share: strict parsing of the service's
// answers and of stored operations (they decide what the passkey signs, so a
// repeated key or an absurdly deep value is refused, never resolved), raw
// values the wallet carries without interpreting (the server plan, an
// allocation preview), string maps (a user operation, a passkey assertion)
// and strings that must match a fixed form.

#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// How deep objects and arrays may nest in a wallet document.
inline constexpr int kV6WalletJsonDepthLimit = 64;

// Parses a wallet document: a syntax error, a key repeated inside one object
// or nesting deeper than `kV6WalletJsonDepthLimit` is a DecodeError.
Decoded<nlohmann::json> parseV6WalletJson(std::string_view text);

// Parses and decodes a wallet document in one step.
template <class T>
Decoded<T> decodeV6WalletJson(std::string_view text) {
  auto document = parseV6WalletJson(text);
  if (!document) return std::unexpected(document.error());
  return JsonView(*document).as<T>();
}

// A string that must match a fixed form. `Form` names it:
//   static std::optional<std::string> refusal(std::string_view text);
// (absent when the text has the form, else the reason) and is used for
// decoding, so a value of this type always has its form.
template <class Form>
struct V6FormedString {
  std::string text;

  bool operator==(const V6FormedString&) const = default;

  static Decoded<V6FormedString> from(std::string_view text, const JsonView& at) {
    if (auto reason = Form::refusal(text)) return std::unexpected(at.error(*reason));
    return V6FormedString{std::string(text)};
  }
};

template <class Form>
void to_json(nlohmann::ordered_json& json, const V6FormedString<Form>& value) {
  json = value.text;
}

template <class Form>
struct JsonDecoder<V6FormedString<Form>> {
  static Decoded<V6FormedString<Form>> decode(const JsonView& json) {
    auto text = json.as<std::string>();
    if (!text) return std::unexpected(text.error());
    return V6FormedString<Form>::from(*text, json);
  }
};

// Hex with "0x" and exactly `Bytes` bytes (either case of digit).
template <std::size_t Bytes>
struct V6HexForm {
  static std::optional<std::string> refusal(std::string_view text);
};

// A 32-byte hash (user operation, transaction, terms) as the chain writes it.
using V6WalletHash = V6FormedString<V6HexForm<32>>;
// A 20-byte contract or account address.
using V6WalletAddress = V6FormedString<V6HexForm<20>>;

// The bytes a well-formed hex value stands for.
template <std::size_t Bytes>
std::vector<std::uint8_t> hexBytes(const V6FormedString<V6HexForm<Bytes>>& value);

extern template struct V6HexForm<20>;
extern template struct V6HexForm<32>;

using V6WalletStringMap = std::map<std::string, std::string>;

template <>
struct JsonDecoder<V6WalletStringMap> {
  static Decoded<V6WalletStringMap> decode(const JsonView& json);
};

// Any JSON value, kept as the service sent it.
template <>
struct JsonDecoder<nlohmann::ordered_json> {
  static Decoded<nlohmann::ordered_json> decode(const JsonView& json);
};

}  // namespace kovi
