#pragma once

#include <chrono>
#include <expected>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/native/NativeHttpResponse.h"

typedef void CURL;
struct curl_slist;

namespace kovi {

// How long one request may take from start to the last byte.
inline constexpr std::chrono::milliseconds kNativeRequestTimeout = std::chrono::seconds(60);

struct NativeHttpRequest {
  std::string url;
  // JSON text. With a body the request is a POST with Content-Type
  // "application/json"; without one it is a GET.
  std::optional<std::string> body;
  // Sent as "Authorization: Bearer <token>".
  std::optional<std::string> bearerToken;
  // Headers an area adds to all its requests (feature flags, device identity).
  std::vector<NativeHttpHeader> extraHeaders;
};

// Why no response came back: the connection, TLS, the time-out or the
// protocol failed. The reason is libcurl's, for logs and the `kovi` tool.
struct NativeTransportFailure {
  std::string reason;
};

// One connection's worth of HTTP: a libcurl handle whose connections stay
// open between requests, so a client's calls reuse one keep-alive connection.
// Requests are served one at a time; concurrent callers wait their turn.
// Every request asks for JSON, bypasses caches, does not follow redirects,
// verifies TLS and stops after the time-out. Response bodies are limited to
// `kNativeResponseBodyLimit` bytes while they arrive: a longer body, with or
// without Content-Length, ends the transfer and comes back as `bodyOverLimit`.
class NativeHttpSession {
 public:
  explicit NativeHttpSession(std::chrono::milliseconds timeout = kNativeRequestTimeout);
  ~NativeHttpSession();
  NativeHttpSession(const NativeHttpSession&) = delete;
  NativeHttpSession& operator=(const NativeHttpSession&) = delete;

  std::expected<NativeHttpResponse, NativeTransportFailure> perform(const NativeHttpRequest& request);

 private:
  // The header lines of the last request, reused while a client keeps
  // sending the same token and kind of request.
  struct HeaderKey {
    bool hasBody = false;
    std::optional<std::string> bearerToken;
    std::vector<NativeHttpHeader> extraHeaders;
    bool operator==(const HeaderKey&) const = default;
  };
  curl_slist* headersFor(const NativeHttpRequest& request);

  std::mutex mutex_;
  CURL* handle_;
  std::optional<HeaderKey> headerKey_;
  curl_slist* headers_ = nullptr;
};

}  // namespace kovi
