#include "KoviKit/native/NativeServiceOrigin.h"

#include <arpa/inet.h>
#include <curl/curl.h>
#include <netinet/in.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <optional>

namespace kovi {
namespace {

struct UrlCloser {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using Url = std::unique_ptr<CURLU, UrlCloser>;

struct CurlTextFree {
  void operator()(char* text) const { curl_free(text); }
};

std::optional<std::string> urlPart(const Url& url, CURLUPart part) {
  char* raw = nullptr;
  if (curl_url_get(url.get(), part, &raw, 0) != CURLUE_OK || raw == nullptr) return std::nullopt;
  std::unique_ptr<char, CurlTextFree> owned(raw);
  return std::string(raw);
}

std::string lowercased(std::string text) {
  std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

bool isLoopbackHost(const std::string& host) {
  if (host == "localhost") return true;
  in_addr v4{};
  if (inet_pton(AF_INET, host.c_str(), &v4) == 1) return (ntohl(v4.s_addr) >> 24) == 127;
  if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
    in6_addr v6{};
    const std::string inner = host.substr(1, host.size() - 2);
    return inet_pton(AF_INET6, inner.c_str(), &v6) == 1 && IN6_IS_ADDR_LOOPBACK(&v6);
  }
  return false;
}

}  // namespace

std::expected<NativeServiceOrigin, std::string> NativeServiceOrigin::parse(std::string_view text) {
  std::string quoted;
  quoted += '"';
  quoted += text;
  quoted += '"';
  Url url(curl_url());
  if (!url) return std::unexpected("out of memory while reading the service origin");
  // No default scheme: the origin must say https:// itself. Unknown schemes
  // parse so that the error can name the scheme as the problem.
  if (curl_url_set(url.get(), CURLUPART_URL, std::string(text).c_str(), CURLU_NON_SUPPORT_SCHEME) != CURLUE_OK) {
    return std::unexpected(quoted + " is not a URL such as https://kovi.example");
  }
  const std::string scheme = lowercased(urlPart(url, CURLUPART_SCHEME).value_or(""));
  const std::string host = lowercased(urlPart(url, CURLUPART_HOST).value_or(""));
  if (scheme != "https" && scheme != "http") {
    return std::unexpected(quoted + " must use https://");
  }
  if (scheme == "http" && !isLoopbackHost(host)) {
    return std::unexpected(quoted + " must use https://; plain http:// is allowed only to 127.0.0.0/8, localhost and [::1]");
  }
  if (urlPart(url, CURLUPART_USER) || urlPart(url, CURLUPART_PASSWORD)) {
    return std::unexpected(quoted + " must not carry a user name or password");
  }
  if (const auto path = urlPart(url, CURLUPART_PATH); path && *path != "/") {
    return std::unexpected(quoted + " must be an origin only, without a path (the clients add /api/native/…)");
  }
  if (urlPart(url, CURLUPART_QUERY) || urlPart(url, CURLUPART_FRAGMENT)) {
    return std::unexpected(quoted + " must be an origin only, without a query or fragment");
  }
  std::string origin = scheme + "://" + host;
  if (const auto port = urlPart(url, CURLUPART_PORT)) origin += ":" + *port;
  return NativeServiceOrigin(std::move(origin));
}

}  // namespace kovi
