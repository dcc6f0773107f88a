#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace kovi {

// The scheme, host and port every service client is rooted at, such as
// "https://kovi.example" (no trailing slash). Only https:// is accepted, except
// plain http:// to a loopback host (127.0.0.0/8, localhost, [::1]) for tests
// and servers on the same machine: a bearer token never crosses a network in
// the clear.
class NativeServiceOrigin {
 public:
  // Checks `text` and normalises it. The error says what is wrong with it.
  static std::expected<NativeServiceOrigin, std::string> parse(std::string_view text);

  const std::string& url() const { return url_; }

  bool operator==(const NativeServiceOrigin&) const = default;

 private:
  explicit NativeServiceOrigin(std::string url) : url_(std::move(url)) {}
  std::string url_;
};

}  // namespace kovi
