#pragma once

#include <chrono>
#include <expected>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/native/NativeAccountError.h"
#include "KoviKit/native/NativeErrorTable.h"
#include "KoviKit/native/NativeHttpSession.h"
#include "KoviKit/native/NativeServiceOrigin.h"

namespace kovi {

struct NativeClientOptions {
  std::chrono::milliseconds timeout = kNativeRequestTimeout;
  // Added to every request of the client.
  std::vector<NativeHttpHeader> extraHeaders;
  // Told why a request got no response at all (refused connection, TLS,
  // time-out) before the call fails as `unavailable`; for logs.
  std::function<void(const NativeTransportFailure&)> transportFailureObserver;
};

// The client of one service area, rooted at origin + "/api/native/" + area
// ("https://kovi.example/api/native/working"). Every call sends one request
// through the client's own keep-alive connection and either decodes a
// successful answer or fails with a `NativeAccountError`, whose message the
// client words from its area's code table. Safe to share between threads;
// calls are served one at a time.
class NativeServiceClient {
 public:
  // The area is the table's (`errors.area`, such as "v6/evidence"); the
  // table must outlive the client, as the areas' static tables do.
  NativeServiceClient(const NativeServiceOrigin& origin, const NativeErrorTable& errors,
                      NativeClientOptions options = {});

  const std::string& endpoint() const { return endpoint_; }
  const NativeErrorTable& errorTable() const { return errors_; }

  // Calls the operation at `path` (relative to the endpoint, such as
  // "/session" or "devices?limit=5"): POST `body` when there is one, GET
  // otherwise, with the bearer `token` when given. Decodes the answer as T;
  // an answer that does not decode is `invalidResponse`.
  template <class T>
  std::expected<T, NativeAccountError> send(std::string_view path, std::optional<std::string> body = std::nullopt,
                                            std::optional<std::string> token = std::nullopt) {
    auto text = sendForBody(path, std::move(body), std::move(token));
    if (!text) return std::unexpected(text.error());
    auto decoded = decodeJsonText<T>(*text);
    if (!decoded) return std::unexpected(NativeAccountError::invalidResponse());
    return std::move(*decoded);
  }

  // The same call with the answer as a JSON document in the service's key
  // order, for tools that show it as it came.
  std::expected<nlohmann::ordered_json, NativeAccountError> sendJson(std::string_view path,
                                                                     std::optional<std::string> body = std::nullopt,
                                                                     std::optional<std::string> token = std::nullopt);

  // The user's text for an error of this client.
  std::string message(const NativeAccountError& error) const { return error.message(errors_); }

  // The same call with the successful answer's body as it came, for areas
  // that decode it more strictly than `send` (the wallet refuses repeated keys).
  std::expected<std::string, NativeAccountError> sendForBody(std::string_view path, std::optional<std::string> body,
                                                             std::optional<std::string> token);

 private:

  std::string endpoint_;
  const NativeErrorTable& errors_;
  std::vector<NativeHttpHeader> extraHeaders_;
  std::function<void(const NativeTransportFailure&)> transportFailureObserver_;
  std::unique_ptr<NativeHttpSession> session_;
};

}  // namespace kovi
