#include "tests/wallet/LoopbackWalletService.h"

#include "KoviKit/attest/P256Verification.h"
#include "KoviKit/foundation/Base64.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/wallet/V6WalletErrors.h"
#include "KoviKit/wallet/V6WalletRequest.h"

namespace kovi::testing {
namespace {

void answer(httplib::Response& response, const V6WalletOperation& operation) {
  nlohmann::ordered_json body;
  body["operation"] = encodeRecord(operation);
  response.set_content(body.dump(), "application/json");
}

}  // namespace

LoopbackWalletService::LoopbackWalletService(PasskeyCredential registered, PasskeyRelyingParty relyingParty,
                                             WalletChainScript script, std::function<double()> clock)
    : registered_(std::move(registered)),
      relyingParty_(std::move(relyingParty)),
      script_(std::move(script)),
      clock_(std::move(clock)),
      server_([this](httplib::Server& server) {
        server.Post("/api/native/v6/wallet",
                    [this](const httplib::Request& request, httplib::Response& response) { handle(request, response); });
      }) {}

WalletServiceRecord LoopbackWalletService::record() const {
  const std::lock_guard lock(mutex_);
  return record_;
}

// Empty when the assertion is one the registered passkey made for this
// operation; else the service's refusal code.
std::string LoopbackWalletService::verifyAssertion(const V6WalletOperation& operation,
                                                   const std::map<std::string, std::string>& assertion) {
  const std::string refused(walletErrorCode::invalidSignature);
  const auto bytesOf = [&](const char* name) -> std::optional<std::vector<std::uint8_t>> {
    const auto found = assertion.find(name);
    if (found == assertion.end()) return std::nullopt;
    return base64UrlDecode(found->second);
  };
  const auto found = assertion.find("credentialId");
  if (found == assertion.end() || found->second != registered_.credentialId) return refused;
  const auto authenticatorData = bytesOf("authenticatorData");
  const auto clientData = bytesOf("clientDataJSON");
  const auto signature = bytesOf("signature");
  if (!authenticatorData || !clientData || !signature || authenticatorData->size() != 37) return refused;

  const Sha256Digest relyingPartyHash = sha256(relyingParty_.id);
  if (!std::equal(relyingPartyHash.begin(), relyingPartyHash.end(), authenticatorData->begin())) return refused;

  const std::string clientText(clientData->begin(), clientData->end());
  const auto client = parseJson(clientText);
  if (!client || !client->is_object()) return refused;
  const std::string challenge = base64UrlEncode(hexBytes(*operation.userOperationHash));
  if (client->value("type", "") != "webauthn.get" || client->value("challenge", "") != challenge ||
      client->value("origin", "") != relyingParty_.origin) {
    return refused;
  }
  std::string signedText(authenticatorData->begin(), authenticatorData->end());
  const Sha256Digest clientHash = sha256(clientText);
  signedText.append(clientHash.begin(), clientHash.end());
  if (!verifyP256Signature(registered_.publicKeyDer, signedText, *signature)) return refused;
  return {};
}

void LoopbackWalletService::handle(const httplib::Request& httpRequest, httplib::Response& response) {
  const std::lock_guard lock(mutex_);
  const auto refuse = [&](int status, std::string_view code) {
    record_.lastRefusal = std::string(code);
    response.status = status;
    response.set_content(R"({"error":")" + record_.lastRefusal + "\"}", "application/json");
  };
  const auto request = decodeJsonText<V6WalletRequest>(httpRequest.body);
  if (!request || !request->requestId) return refuse(400, "invalid_request");
  record_.actions.push_back(request->action);
  const double now = clock_();
  auto found = operations_.find(*request->requestId);

  if (request->action == v6WalletAction::prepareOperation) {
    if (!request->intent) return refuse(400, "invalid_request");
    if (found == operations_.end()) {
      for (const auto& [id, entry] : operations_) {
        if (isOpen(entry.operation.status)) return refuse(409, walletErrorCode::actionBlockedByPendingOperation);
      }
      V6WalletOperation operation;
      operation.requestId = *request->requestId;
      operation.protocol = "kovi-v6";
      operation.revision = 1;
      operation.createdAt = now;
      operation.expiresAt = now + script_.lifetimeSeconds;
      operation.userOperationHash = V6WalletHash{"0x" + sha256Hex(*request->requestId + request->intent->kind)};
      operation.reviewDigest = request->intent->reviewDigest;
      operation.reference = request->intent->reference;
      found = operations_.emplace(operation.requestId, Entry{operation}).first;
    }
    return answer(response, found->second.operation);
  }
  if (found == operations_.end()) return refuse(404, walletErrorCode::operationNotFound);
  V6WalletOperation& operation = found->second.operation;

  if (request->action == v6WalletAction::approveOperation) {
    if (operation.status == V6WalletOperationStatus::replaced) return refuse(409, walletErrorCode::operationReplaced);
    if (operation.status != V6WalletOperationStatus::prepared) return refuse(409, walletErrorCode::invalidOperation);
    if (!request->assertion) return refuse(400, walletErrorCode::invalidSignature);
    if (const std::string refusal = verifyAssertion(operation, *request->assertion); !refusal.empty()) {
      return refuse(400, refusal);
    }
    ++record_.approvals;
    operation.status = V6WalletOperationStatus::approved;
    operation.isSigned = true;
    ++operation.revision;
    return answer(response, operation);
  }
  if (request->action == v6WalletAction::submitOperation) {
    if (operation.status == V6WalletOperationStatus::approved) {
      ++operation.revision;
      if (now >= operation.expiresAt) {
        operation.status = V6WalletOperationStatus::expired;
        return answer(response, operation);
      }
      operation.status = V6WalletOperationStatus::submitted;
      if (!found->second.contributed) {
        found->second.contributed = true;
        ++record_.contributions;
      }
    } else if (operation.status == V6WalletOperationStatus::prepared) {
      return refuse(409, walletErrorCode::invalidOperation);
    }
    // A resubmission of what was already sent answers with it as it stands.
    if (script_.loseSubmissionAnswer && !answerLost_) {
      answerLost_ = true;
      response.status = 503;
      response.set_content("upstream went away", "text/plain");
      return;
    }
    return answer(response, operation);
  }
  if (request->action == v6WalletAction::operation) {
    const bool sent = operation.status == V6WalletOperationStatus::submitted ||
                      operation.status == V6WalletOperationStatus::unreconciled;
    if (sent && !script_.afterSubmission.empty()) {
      const std::size_t step = std::min(found->second.reads, script_.afterSubmission.size() - 1);
      ++found->second.reads;
      if (operation.status != script_.afterSubmission[step]) {
        operation.status = script_.afterSubmission[step];
        ++operation.revision;
        if (operation.status == V6WalletOperationStatus::confirmed) {
          operation.transactionHash = V6WalletHash{"0x" + sha256Hex(operation.requestId)};
        }
      }
    }
    return answer(response, operation);
  }
  if (request->action == v6WalletAction::cancelOperation) {
    if (operation.status != V6WalletOperationStatus::prepared) return refuse(409, walletErrorCode::retryUnavailable);
    operation.status = V6WalletOperationStatus::cancelled;
    ++operation.revision;
    return answer(response, operation);
  }
  return refuse(400, walletErrorCode::invalidAction);
}

}  // namespace kovi::testing
