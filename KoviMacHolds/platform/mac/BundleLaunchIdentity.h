#pragma once

#include <string>

#include "KoviMacHolds/platform/MacLaunchIdentity.h"

namespace kovi::holds::mac {

// The identity of the main bundle's executable, by a fresh stat of its path
// each time. Installing a new agent replaces that file, and the new file has
// a new inode.
class BundleLaunchIdentity final : public MacLaunchIdentity {
 public:
  BundleLaunchIdentity();
  std::optional<MacFileIdentity> executableIdentity() override;

 private:
  std::string executablePath_;  // empty when the bundle names no executable
};

}  // namespace kovi::holds::mac
