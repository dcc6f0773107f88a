#include "KoviMacHolds/platform/linux/LinuxWorkspaceObservers.h"

#include <vector>

namespace kovi::holds::desktop {

MacObserverToken LinuxWorkspaceObservers::add(MacWorkspaceEvent event,
                                              std::function<void(const MacWorkspaceNotification&)> handler) {
  const MacObserverToken token = nextToken_++;
  observers_.emplace(token, Observer{event, std::move(handler)});
  return token;
}

void LinuxWorkspaceObservers::remove(MacObserverToken token) { observers_.erase(token); }

void LinuxWorkspaceObservers::notify(MacWorkspaceEvent event, std::optional<pid_t> processIdentifier) {
  std::vector<MacObserverToken> tokens;
  for (const auto& [token, observer] : observers_) {
    if (observer.event == event) tokens.push_back(token);
  }
  const MacWorkspaceNotification note{event, processIdentifier};
  for (MacObserverToken token : tokens) {
    auto observer = observers_.find(token);
    if (observer == observers_.end()) continue;
    auto handler = observer->second.handler;  // the handler may remove itself
    handler(note);
  }
}

}  // namespace kovi::holds::desktop
