#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kovi::holds {

// What the agent may ask the system about application bundles.
struct MacHoldsBundleLookup {
  // The bundle identifier of the application bundle at `bundle`; absent when
  // there is no bundle there or it has no identifier.
  std::function<std::optional<std::string>(const std::filesystem::path& bundle)> bundleIdentifierAt;
  // Where the system would launch the application with `identifier` from;
  // absent when it knows none.
  std::function<std::optional<std::filesystem::path>(std::string_view identifier)> applicationWithIdentifier;
};

// Where the main Kovi app is, seen from the agent's own bundle. The agent
// ships inside the main app as Kovi.app/Contents/Library/LoginItems/<agent>.app,
// so the main app is four folders up; that copy is used when it really is the
// main app (its identifier says so), which keeps a side-by-side development
// build paired with its own agent. Otherwise the system's copy of the main
// app's identifier is used; absent when neither exists.
std::optional<std::filesystem::path> locateMacHoldsMainApp(const std::filesystem::path& agentBundle,
                                                           const MacHoldsBundleLookup& lookup);

}  // namespace kovi::holds
