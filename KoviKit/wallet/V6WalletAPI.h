#pragma once

#include <expected>
#include <optional>
#include <string>

#include "KoviKit/native/NativeServiceClient.h"
#include "KoviKit/wallet/V6WalletErrors.h"
#include "KoviKit/wallet/V6WalletRequest.h"
#include "KoviKit/wallet/V6WalletResponse.h"

namespace kovi {

// The wallet area's client, rooted at origin + "/api/native/v6/wallet": every
// action is one POST of a `V6WalletRequest` to the endpoint itself, answered
// with a `V6WalletResponse`. An answer with a repeated key, or one that does
// not decode, is `invalidResponse`; failures are worded from the wallet table.
class V6WalletAPI : public NativeServiceClient {
 public:
  template <class T>
  using Result = std::expected<T, NativeAccountError>;

  explicit V6WalletAPI(const NativeServiceOrigin& origin, NativeClientOptions options = {});

  Result<V6WalletResponse> call(const V6WalletRequest& request, const std::optional<std::string>& token);

  // The ceremony's actions; each answers with the operation as it now stands.
  Result<V6WalletOperation> prepareOperation(const std::string& requestId, const V6WalletIntent& intent,
                                             const std::optional<std::string>& token);
  Result<V6WalletOperation> approveOperation(const std::string& requestId, const V6WalletStringMap& assertion,
                                             const std::optional<std::string>& token);
  Result<V6WalletOperation> submitOperation(const std::string& requestId, const std::optional<std::string>& token);
  Result<V6WalletOperation> operation(const std::string& requestId, const std::optional<std::string>& token);
  Result<V6WalletOperation> cancelOperation(const std::string& requestId, const std::optional<std::string>& token);

 private:
  Result<V6WalletOperation> operationOf(const V6WalletRequest& request, const std::optional<std::string>& token);
};

}  // namespace kovi
