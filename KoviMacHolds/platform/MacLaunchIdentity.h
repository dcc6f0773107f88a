#pragma once

#include <optional>
#include <sys/types.h>

namespace kovi::holds {

// Which file an executable is: its device and inode. An updated agent is
// installed by replacing the file, which gives the path a new identity.
struct MacFileIdentity {
  dev_t device = 0;
  ino_t inode = 0;
  bool operator==(const MacFileIdentity&) const = default;
};

// Reads the identity of the agent's own executable path afresh on every call;
// absent when the path is missing or cannot be examined.
class MacLaunchIdentity {
 public:
  virtual ~MacLaunchIdentity() = default;
  virtual std::optional<MacFileIdentity> executableIdentity() = 0;
};

}  // namespace kovi::holds
