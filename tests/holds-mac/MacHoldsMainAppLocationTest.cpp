#include <gtest/gtest.h>

#include <map>

#include "KoviMacHolds/MacHoldsIdentity.h"
#include "KoviMacHolds/MacHoldsMainAppLocation.h"

namespace kovi::holds {
namespace {

const std::string kMain(kMacHoldsMainAppBundleID);

struct LocationCase {
  std::string name;
  std::filesystem::path agentBundle;
  std::map<std::filesystem::path, std::string> bundles;  // what lives where
  std::optional<std::filesystem::path> registered;        // the system's copy of the main app
  std::optional<std::filesystem::path> expected;
};

void expectFound(const LocationCase& row) {
  SCOPED_TRACE(row.name);
  std::vector<std::string> askedFor;
  const MacHoldsBundleLookup lookup{
      .bundleIdentifierAt = [&](const std::filesystem::path& bundle) -> std::optional<std::string> {
        const auto found = row.bundles.find(bundle);
        return found == row.bundles.end() ? std::nullopt : std::optional(found->second);
      },
      .applicationWithIdentifier = [&](std::string_view identifier) {
        askedFor.emplace_back(identifier);
        return row.registered;
      },
  };
  EXPECT_EQ(locateMacHoldsMainApp(row.agentBundle, lookup), row.expected);
  for (const std::string& identifier : askedFor) EXPECT_EQ(identifier, kMain);
}

const std::filesystem::path kInstalled = "/Applications/Kovi.app";
const std::filesystem::path kAgent = "/Applications/Kovi.app/Contents/Library/LoginItems/kovi-holds.app";
const std::filesystem::path kDevelopment = "/Users/ada/Build/Kovi.app";
const std::filesystem::path kDevelopmentAgent = "/Users/ada/Build/Kovi.app/Contents/Library/LoginItems/kovi-holds.app";

TEST(MacHoldsMainAppLocationTest, FindsTheMainApp) {
  for (const LocationCase& row : {
        LocationCase{"EnclosingAppWins", kDevelopmentAgent, {{kDevelopment, kMain}}, kInstalled, kDevelopment},
        LocationCase{"BundleUrlWithTrailingSlash", kDevelopmentAgent.string() + "/", {{kDevelopment, kMain}},
                     kInstalled, kDevelopment},
        LocationCase{"EnclosingAppWithAnotherIdentifier", kDevelopmentAgent, {{kDevelopment, "com.example.other"}},
                     kInstalled, kInstalled},
        LocationCase{"NoBundleAroundTheAgent", kDevelopmentAgent, {}, kInstalled, kInstalled},
        // Three or five folders up is not where the main app keeps its agent.
        LocationCase{"OnlyFourFoldersUpCounts", "/Users/ada/Build/Kovi.app/Contents/LoginItems/kovi-holds.app",
                     {{kDevelopment, kMain}, {"/Users/ada", kMain}}, std::nullopt, std::nullopt},
        LocationCase{"AgentOutsideAnyApp", "/kovi-holds.app", {{"/", kMain}}, kInstalled, kInstalled},
        LocationCase{"AgentJustBelowTheRoot", "/Contents/Library/LoginItems/kovi-holds.app", {{"/", kMain}},
                     std::nullopt, std::nullopt},
        LocationCase{"NeitherExists", kAgent, {}, std::nullopt, std::nullopt}})
    expectFound(row);
}

}  // namespace
}  // namespace kovi::holds
