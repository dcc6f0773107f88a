#include "KoviKit/foundation/CanonicalJsonWriter.h"

#include <algorithm>
#include <charconv>

namespace kovi {

void CanonicalJsonWriter::beforeValue() {
  if (followsSibling_) put(',');
  followsSibling_ = true;
}

CanonicalJsonWriter& CanonicalJsonWriter::open(char bracket) {
  beforeValue();
  put(bracket);
  followsSibling_ = false;
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::close(char bracket) {
  put(bracket);
  followsSibling_ = true;
  return *this;
}

CanonicalJsonWriter& CanonicalJsonWriter::key(std::string_view name) {
  beforeValue();
  appendString(name);
  put(':');
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
  put(flag ? "true" : "false");
  return *this;
}

// No 64-bit integer needs more than 20 characters.
constexpr std::size_t kLongestInteger = 20;

template <class Integer>
CanonicalJsonWriter& CanonicalJsonWriter::digits(Integer number) {
  beforeValue();
  char* start = room(kLongestInteger);
  length_ += static_cast<std::size_t>(std::to_chars(start, start + kLongestInteger, number).ptr - start);
  return *this;
}

template CanonicalJsonWriter& CanonicalJsonWriter::digits(std::int64_t);
template CanonicalJsonWriter& CanonicalJsonWriter::digits(std::uint64_t);

void CanonicalJsonWriter::grow(std::size_t bytes) {
  buffer_.resize(std::max(buffer_.size() * 2, length_ + bytes + 64));
}

void CanonicalJsonWriter::appendString(std::string_view text) {
  static constexpr char hex[] = "0123456789abcdef";
  put('"');
  // Bytes that need no escape are copied in runs; hashed payloads are mostly such runs.
  std::size_t runStart = 0;
  for (std::size_t index = 0; index < text.size(); ++index) {
    const auto byte = static_cast<unsigned char>(text[index]);
    if (byte >= 0x20 && byte != '"' && byte != '\\') continue;
    put(text.substr(runStart, index - runStart));
    runStart = index + 1;
    switch (byte) {
      case '"': put("\\\""); break;
      case '\\': put("\\\\"); break;
      case '\b': put("\\b"); break;
      case '\f': put("\\f"); break;
      case '\n': put("\\n"); break;
      case '\r': put("\\r"); break;
      case '\t': put("\\t"); break;
      default:
        put("\\u00");
        put(hex[byte >> 4]);
        put(hex[byte & 0x0f]);
    }
  }
  put(text.substr(runStart));
  put('"');
}

}  // namespace kovi
