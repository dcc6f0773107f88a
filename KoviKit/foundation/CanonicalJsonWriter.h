#pragma once

#include <concepts>
#include <cstring>
#include <cstddef>
#include <cstdint>
#include <expected>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

namespace kovi {

// Writes JSON text that is the same byte for byte on every run and every
// platform, for texts that are hashed or signed (rules hashes, evidence
// payloads). The caller chooses the key order; the writer fixes the rest:
//
// - no whitespace anywhere;
// - integers as bare base-10 digits with a leading "-" for negatives, never an
//   exponent, a fraction or a "+"; there is deliberately no floating-point
//   value, because its shortest round-trip text differs between libraries;
// - strings between double quotes with only the escapes JSON requires:
//   \" and \\, the short forms \b \f \n \r \t, and every other byte below 0x20
//   as \u00xx with lowercase hex digits. "/" and non-ASCII UTF-8 are copied
//   as they are (no \u escapes), so the text equals what a JavaScript
//   JSON.stringify of the same valid UTF-8 writes.
//
// The writer does not check nesting; records write themselves in a fixed shape.
class CanonicalJsonWriter {
 public:
  void reserve(std::size_t bytes) {
    if (buffer_.size() < bytes) buffer_.resize(bytes);
  }

  CanonicalJsonWriter& beginObject() { return open('{'); }
  CanonicalJsonWriter& endObject() { return close('}'); }
  CanonicalJsonWriter& beginArray() { return open('['); }
  CanonicalJsonWriter& endArray() { return close(']'); }

  // Writes `"name":`; the next call writes its value.
  CanonicalJsonWriter& key(std::string_view name);

  CanonicalJsonWriter& value(std::string_view text);
  CanonicalJsonWriter& value(const char* text) { return value(std::string_view(text)); }
  CanonicalJsonWriter& value(bool flag);
  CanonicalJsonWriter& null();
  template <std::integral T>
    requires(!std::same_as<T, bool>)
  CanonicalJsonWriter& value(T number) {
    if constexpr (std::is_signed_v<T>) return digits(static_cast<std::int64_t>(number));
    else return digits(static_cast<std::uint64_t>(number));
  }

  std::string_view text() const { return {buffer_.data(), length_}; }
  std::string take() {
    buffer_.resize(length_);
    length_ = 0;
    return std::move(buffer_);
  }

 private:
  // Hashed payloads are built from many short pieces, so the writer keeps its
  // own end: `buffer_` is sized ahead and only its first `length_` bytes are
  // text, which spares every piece the string's own bookkeeping.
  char* room(std::size_t bytes) {
    if (buffer_.size() - length_ < bytes) grow(bytes);
    return buffer_.data() + length_;
  }
  void grow(std::size_t bytes);
  void put(char c) {
    *room(1) = c;
    ++length_;
  }
  void put(std::string_view piece) {
    std::memcpy(room(piece.size()), piece.data(), piece.size());
    length_ += piece.size();
  }

  CanonicalJsonWriter& open(char bracket);
  CanonicalJsonWriter& close(char bracket);
  // Defined for std::int64_t and std::uint64_t.
  template <class Integer>
  CanonicalJsonWriter& digits(Integer number);
  void beforeValue();
  void appendString(std::string_view text);

  std::string buffer_;
  std::size_t length_ = 0;
  // Whether the next key or value follows a sibling and needs a comma.
  bool followsSibling_ = false;
};

// How deep a record handed to `writeCanonicalJson` may nest; deeper values are
// refused rather than walked, so a hostile document cannot exhaust the stack.
inline constexpr std::size_t kCanonicalJsonDepthLimit = 64;

// Appends `value` to `writer` canonically: object keys in the value's own
// (declared) order, integers bare, strings with the writer's escapes. A
// floating-point number, a binary value or nesting beyond the depth limit is
// refused with the key path where it sits ("steps.days[2]: ...", rooted at
// `name`), and nothing is promised about what was appended before the refusal.
std::expected<void, std::string> writeCanonicalJson(CanonicalJsonWriter& writer, const nlohmann::ordered_json& value,
                                                    std::string_view name = {});

}  // namespace kovi
