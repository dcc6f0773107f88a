#include "KoviKit/foundation/CanonicalJsonWriter.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>

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

CanonicalJsonWriter& CanonicalJsonWriter::null() {
  beforeValue();
  put("null");
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

namespace kovi {
namespace {

std::expected<void, std::string> writeValue(CanonicalJsonWriter& writer, const nlohmann::ordered_json& value,
                                            const std::string& path, std::size_t depth) {
  const auto refuse = [&](std::string_view why) {
    return std::unexpected((path.empty() ? std::string() : path + ": ") + std::string(why));
  };
  switch (value.type()) {
    case nlohmann::ordered_json::value_t::null:
      writer.null();
      return {};
    case nlohmann::ordered_json::value_t::boolean:
      writer.value(value.get<bool>());
      return {};
    case nlohmann::ordered_json::value_t::number_integer:
      writer.value(value.get<std::int64_t>());
      return {};
    case nlohmann::ordered_json::value_t::number_unsigned:
      writer.value(value.get<std::uint64_t>());
      return {};
    case nlohmann::ordered_json::value_t::string:
      writer.value(value.get_ref<const std::string&>());
      return {};
    case nlohmann::ordered_json::value_t::number_float:
      return refuse("a non-integral number has no canonical form");
    case nlohmann::ordered_json::value_t::binary:
    case nlohmann::ordered_json::value_t::discarded:
      return refuse("not a JSON value");
    case nlohmann::ordered_json::value_t::object:
    case nlohmann::ordered_json::value_t::array:
      break;
  }
  if (depth >= kCanonicalJsonDepthLimit) {
    return refuse("nested deeper than " + std::to_string(kCanonicalJsonDepthLimit) + " levels");
  }
  if (value.is_object()) {
    writer.beginObject();
    for (const auto& [key, member] : value.items()) {
      writer.key(key);
      if (auto written = writeValue(writer, member, path.empty() ? key : path + "." + key, depth + 1); !written) {
        return written;
      }
    }
    writer.endObject();
    return {};
  }
  writer.beginArray();
  std::size_t index = 0;
  for (const auto& element : value) {
    if (auto written = writeValue(writer, element, path + "[" + std::to_string(index++) + "]", depth + 1); !written) {
      return written;
    }
  }
  writer.endArray();
  return {};
}

}  // namespace

std::expected<void, std::string> writeCanonicalJson(CanonicalJsonWriter& writer, const nlohmann::ordered_json& value,
                                                    std::string_view name) {
  return writeValue(writer, value, std::string(name), 0);
}

}  // namespace kovi
