#include "KoviKit/attest/PasskeyService.h"

#include "KoviKit/foundation/Base64.h"

namespace kovi {

std::map<std::string, std::string> PasskeyAssertion::fields() const {
  return {
      {"credentialId", credentialId},
      {"authenticatorData", base64UrlEncode(authenticatorData)},
      {"clientDataJSON", base64UrlEncode(clientDataJSON)},
      {"signature", base64UrlEncode(signature)},
      {"userHandle", base64UrlEncode(userHandle)},
  };
}

}  // namespace kovi
