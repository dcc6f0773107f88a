#include "KoviKit/working/WorkingProtectionSessionFence.h"

namespace kovi {

bool WorkingProtectionSessionFence::prepare(std::string_view session, UnixMillis at) {
  if (isClosed && sessionID && *sessionID == session) return false;
  sessionID = std::string(session);
  preparedAt = at;
  isClosed = false;
  return true;
}

}  // namespace kovi
