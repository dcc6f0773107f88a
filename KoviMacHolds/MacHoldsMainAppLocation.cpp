#include "KoviMacHolds/MacHoldsMainAppLocation.h"

#include "KoviMacHolds/MacHoldsIdentity.h"

namespace kovi::holds {

namespace {

// agent.app → LoginItems → Library → Contents → main app.
constexpr int kFoldersUpToMainApp = 4;

// `agentBundle` with its last four components removed; absent when the path
// is too short to have a main app around it.
std::optional<std::filesystem::path> enclosingMainApp(const std::filesystem::path& agentBundle) {
  // A bundle path may end in a separator ("…/Kovi Holds.app/"); its last
  // component is still the bundle.
  std::filesystem::path path = agentBundle.lexically_normal();
  if (!path.has_filename()) path = path.parent_path();
  for (int step = 0; step < kFoldersUpToMainApp; ++step) {
    if (!path.has_relative_path()) return std::nullopt;
    path = path.parent_path();
  }
  if (!path.has_relative_path()) return std::nullopt;
  return path;
}

}  // namespace

std::optional<std::filesystem::path> locateMacHoldsMainApp(const std::filesystem::path& agentBundle,
                                                           const MacHoldsBundleLookup& lookup) {
  if (auto candidate = enclosingMainApp(agentBundle)) {
    if (lookup.bundleIdentifierAt(*candidate) == kMacHoldsMainAppBundleID) return candidate;
  }
  return lookup.applicationWithIdentifier(kMacHoldsMainAppBundleID);
}

}  // namespace kovi::holds
