#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kovi {

// No response body is kept beyond this many bytes.
inline constexpr std::size_t kNativeResponseBodyLimit = 131'072;

struct NativeHttpHeader {
  std::string name;
  std::string value;

  bool operator==(const NativeHttpHeader&) const = default;
};

// What came back for one request, before it is judged: the status, the
// headers of the final response and the body as far as it was kept.
struct NativeHttpResponse {
  long status = 0;
  std::vector<NativeHttpHeader> headers;
  // Empty when `bodyOverLimit`: a body past the limit is dropped, not kept in part.
  std::string body;
  // The body was longer than the response limit and the transfer was cut off.
  bool bodyOverLimit = false;

  // The value of the first header named `name`, compared without regard to
  // case as HTTP header names are.
  std::optional<std::string_view> header(std::string_view name) const;
};

// `value` without the spaces, tabs, CRs and LFs around it, as header values
// are read.
std::string_view trimmedHeaderValue(std::string_view value);

}  // namespace kovi
