#include "KoviKit/working/WorkingResumeAuthorizationFence.h"

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {

WorkingResumeAuthorizationFence::Token WorkingResumeAuthorizationFence::authorize(std::string_view session) {
  generation = checkedAdd<std::int64_t>(generation, 1);
  sessionID = std::string(session);
  return Token{generation, *sessionID};
}

void WorkingResumeAuthorizationFence::revoke() {
  generation = checkedAdd<std::int64_t>(generation, 1);
  sessionID.reset();
}

bool WorkingResumeAuthorizationFence::honours(const Token& token) const {
  return token.generation == generation && sessionID && *sessionID == token.sessionID;
}

bool WorkingResumeAuthorizationFence::consume(const Token& token) {
  if (!honours(token)) return false;
  generation = checkedAdd<std::int64_t>(generation, 1);
  return true;
}

}  // namespace kovi
