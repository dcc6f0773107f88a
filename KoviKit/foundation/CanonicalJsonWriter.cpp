#include "KoviKit/foundation/CanonicalJsonWriter.h"

#include <charconv>

namespace kovi {

void CanonicalJsonWriter::beforeValue() {
  if (followsSibling_) text_ += ',';
  followsSibling_ = true;
}

CanonicalJsonWriter& CanonicalJsonWriter::beginObject() {
  beforeValue();
  text_ += '{';
  followsSibling_ = false;
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::endObject() {
  text_ += '}';
  followsSibling_ = true;
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::beginArray() {
  beforeValue();
  text_ += '[';
  followsSibling_ = false;
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::endArray() {
  text_ += ']';
  followsSibling_ = true;
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::key(std::string_view name) {
  beforeValue();
  appendString(name);
  text_ += ':';
  // The value that follows belongs to this key: no comma before it.
  followsSibling_ = false;
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::value(std::string_view text) {
  beforeValue();
  appendString(text);
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::value(bool flag) {
  beforeValue();
  text_ += flag ? "true" : "false";
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::integer(std::int64_t number) {
  beforeValue();
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  text_.append(digits, end);
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::unsignedInteger(std::uint64_t number) {
  beforeValue();
  char digits[24];
  const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
  text_.append(digits, end);
  return *this;
}

void CanonicalJsonWriter::appendString(std::string_view text) {
  static constexpr char hex[] = "0123456789abcdef";
  text_ += '"';
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
      case '"': text_ += "\\\""; break;
      case '\\': text_ += "\\\\"; break;
      case '\b': text_ += "\\b"; break;
      case '\f': text_ += "\\f"; break;
      case '\n': text_ += "\\n"; break;
      case '\r': text_ += "\\r"; break;
      case '\t': text_ += "\\t"; break;
      default:
        if (byte < 0x20) {
          text_ += "\\u00";
          text_ += hex[byte >> 4];
          text_ += hex[byte & 0x0f];
        } else {
          text_ += c;
        }
    }
  }
  text_ += '"';
}

}  // namespace kovi
