#pragma once

// JSON pieces the wallet records share: raw values the wallet carries without
// interpreting (the server plan, an allocation preview) and strings that must
// match a fixed form. Wallet answers and stored operations decide what the
// passkey signs, so they are read through foundation's strict parser, which
// refuses a repeated key or an absurdly deep value; string maps (a user
// operation, a passkey assertion) decode through the record coding's maps.

#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

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

// Any JSON value, kept as the service sent it.
template <>
struct JsonDecoder<nlohmann::ordered_json> {
  static Decoded<nlohmann::ordered_json> decode(const JsonView& json);
};

}  // namespace kovi
