#include "KoviKit/wallet/V6WalletAPI.h"

namespace kovi {
namespace {

V6WalletRequest requestFor(std::string_view action, const std::string& requestId) {
  V6WalletRequest request;
  request.action = std::string(action);
  request.requestId = requestId;
  return request;
}

}  // namespace

V6WalletAPI::V6WalletAPI(const NativeServiceOrigin& origin, NativeClientOptions options)
    : NativeServiceClient(origin, v6WalletErrorTable(), std::move(options)) {}

V6WalletAPI::Result<V6WalletResponse> V6WalletAPI::call(const V6WalletRequest& request,
                                                        const std::optional<std::string>& token) {
  auto body = sendForBody("", encodeV6WalletRequest(request), token);
  if (!body) return std::unexpected(body.error());
  auto response = decodeJsonText<V6WalletResponse>(*body);
  if (!response) return std::unexpected(NativeAccountError::invalidResponse());
  return std::move(*response);
}

// An answer about another operation than the one asked for is as unusable
// as one that does not decode.
V6WalletAPI::Result<V6WalletOperation> V6WalletAPI::operationOf(const V6WalletRequest& request,
                                                                const std::optional<std::string>& token) {
  auto response = call(request, token);
  if (!response) return std::unexpected(response.error());
  if (!response->operation || response->operation->requestId != request.requestId) {
    return std::unexpected(NativeAccountError::invalidResponse());
  }
  return std::move(*response->operation);
}

V6WalletAPI::Result<V6WalletOperation> V6WalletAPI::prepareOperation(const std::string& requestId,
                                                                     const V6WalletIntent& intent,
                                                                     const std::optional<std::string>& token) {
  V6WalletRequest request = requestFor(v6WalletAction::prepareOperation, requestId);
  request.intent = intent;
  return operationOf(request, token);
}

V6WalletAPI::Result<V6WalletOperation> V6WalletAPI::approveOperation(const std::string& requestId,
                                                                     const V6WalletStringMap& assertion,
                                                                     const std::optional<std::string>& token) {
  V6WalletRequest request = requestFor(v6WalletAction::approveOperation, requestId);
  request.assertion = assertion;
  return operationOf(request, token);
}

V6WalletAPI::Result<V6WalletOperation> V6WalletAPI::submitOperation(const std::string& requestId,
                                                                    const std::optional<std::string>& token) {
  return operationOf(requestFor(v6WalletAction::submitOperation, requestId), token);
}

V6WalletAPI::Result<V6WalletOperation> V6WalletAPI::operation(const std::string& requestId,
                                                              const std::optional<std::string>& token) {
  return operationOf(requestFor(v6WalletAction::operation, requestId), token);
}

V6WalletAPI::Result<V6WalletOperation> V6WalletAPI::cancelOperation(const std::string& requestId,
                                                                    const std::optional<std::string>& token) {
  return operationOf(requestFor(v6WalletAction::cancelOperation, requestId), token);
}

}  // namespace kovi
