#include "KoviKit/native/NativeServiceClient.h"

#include "KoviKit/foundation/Time.h"
#include "KoviKit/native/NativeResponseClassifier.h"

namespace kovi {

NativeServiceClient::NativeServiceClient(const NativeServiceOrigin& origin, const NativeErrorTable& errors,
                                         NativeClientOptions options)
    : endpoint_(origin.url() + "/api/native/" + std::string(errors.area)),
      errors_(errors),
      extraHeaders_(std::move(options.extraHeaders)),
      transportFailureObserver_(std::move(options.transportFailureObserver)),
      session_(std::make_unique<NativeHttpSession>(options.timeout)) {}

std::expected<std::string, NativeAccountError> NativeServiceClient::sendForBody(std::string_view path,
                                                                                std::optional<std::string> body,
                                                                                std::optional<std::string> token) {
  NativeHttpRequest request;
  request.url = endpoint_;
  if (!path.empty() && !path.starts_with('/')) request.url += '/';
  request.url += path;
  request.body = std::move(body);
  request.bearerToken = std::move(token);
  request.extraHeaders = extraHeaders_;

  auto response = session_->perform(request);
  if (!response) {
    if (transportFailureObserver_) transportFailureObserver_(response.error());
    return std::unexpected(NativeAccountError::unavailable());
  }
  auto accepted = acceptNativeResponse(*response, Date::now().unixMillis());
  if (!accepted) return std::unexpected(accepted.error());
  // The accepted body is the response's own; take it rather than copy it.
  return std::move(response->body);
}

std::expected<nlohmann::ordered_json, NativeAccountError> NativeServiceClient::sendJson(
    std::string_view path, std::optional<std::string> body, std::optional<std::string> token) {
  auto text = sendForBody(path, std::move(body), std::move(token));
  if (!text) return std::unexpected(text.error());
  auto document = parseOrderedJson(*text);
  if (!document) return std::unexpected(NativeAccountError::invalidResponse());
  return std::move(*document);
}

}  // namespace kovi
