#include "KoviKit/attest/AppAttestAssertion.h"

#include "KoviKit/foundation/Base64.h"

namespace kovi {

std::string compactAssertion(const AppAttestAssertion& assertion) {
  std::vector<std::uint8_t> joined;
  joined.reserve(assertion.authenticatorData.size() + assertion.signature.size());
  joined.insert(joined.end(), assertion.authenticatorData.begin(), assertion.authenticatorData.end());
  joined.insert(joined.end(), assertion.signature.begin(), assertion.signature.end());
  return base64Encode(joined);
}

}  // namespace kovi
