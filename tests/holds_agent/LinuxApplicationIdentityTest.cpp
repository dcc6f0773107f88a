#include <gtest/gtest.h>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/purrl/PurrlFocusMode.h"
#include "KoviMacHolds/platform/x11/X11ApplicationIdentity.h"
#include "tests/support/TestData.h"

namespace kovi::holds::x11 {
namespace {

using desktop::LinuxWindowSystem;

const nlohmann::json& rowsFor(const char* system, std::size_t count) {
  static const nlohmann::json rows =
      parseJson(kovi::testing::testDataFile("holds_agent", "application-identities.json")).value();
  EXPECT_EQ(rows.at(system).size(), count) << system;
  return rows.at(system);
}

const std::string& text(const nlohmann::json& row, const char* key) { return row.at(key).get_ref<const std::string&>(); }

nlohmann::json described(const desktop::LinuxApplicationIdentity& identity, LinuxWindowSystem system) {
  return {{"bundle", identity.bundleIdentifier}, {"display", identity.displayName},
          {"desktopPart", desktop::linuxDesktopIdentifiers(system).contains(identity.bundleIdentifier)}};
}

// Mac apps are known by instance, by class, or by a variant of the class (that
// every row of the table names a preset's identifier is the next test); the
// desktop's own parts by class in lower case; everything else keeps its class
// as given, and no class at all is no application.
TEST(X11ApplicationIdentity, LinuxBuildsOfMacAppsCarryTheirMacIdentifiers) {
  for (const nlohmann::json& row : rowsFor("x11", 12)) {
    const auto identity = x11ApplicationIdentity({text(row, "instance"), text(row, "class")});
    EXPECT_EQ(described(identity, LinuxWindowSystem::x11), row.at("identity")) << row.dump();
  }
}

TEST(X11ApplicationIdentity, EveryMacIdentifierItUsesIsOneThePresetsName) {
  std::set<std::string> presetIdentifiers{"app.kovi.app.mac"};
  for (const auto& row : purrlFocusModeTable()) presetIdentifiers.insert(row.macBundleIDs.begin(), row.macBundleIDs.end());
  for (const nlohmann::json& instance : rowsFor("presetInstances", 14)) {
    EXPECT_TRUE(presetIdentifiers.contains(x11ApplicationIdentity({instance.get<std::string>(), ""}).bundleIdentifier))
        << instance;
  }
}

// A Wayland toplevel names its application by app_id alone: the native name
// or, for Flatpak builds, a reverse-DNS one; both reach the same Mac identifier.
// The desktop's own parts go by app_id in lower case, everything else keeps
// its app_id under the Wayland prefix, and none names no application.
TEST(WaylandApplicationIdentity, AppIdsOfNativeAndFlatpakBuildsShareTheTable) {
  for (const nlohmann::json& row : rowsFor("wayland", 8)) {
    const std::string& appId = text(row, "appId");
    const auto identity = desktop::linuxApplicationIdentity(LinuxWindowSystem::wayland, {appId}, appId);
    EXPECT_EQ(described(identity, LinuxWindowSystem::wayland), row.at("identity")) << row.dump();
  }
}

}  // namespace
}  // namespace kovi::holds::x11
