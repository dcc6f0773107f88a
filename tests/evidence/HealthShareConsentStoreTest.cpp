#include <gtest/gtest.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "KoviKit/evidence/HealthShareConsentStore.h"
#include "KoviKit/foundation/FileIO.h"
#include "tests/evidence/WalkingTestSupport.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

std::string contents(const std::filesystem::path& path) { return readFileLimited(path, 1 << 20).value_or(""); }

TEST(HealthShareConsentStoreTest, KeepsEachAccountsConsentAcrossRestarts) {
  const testing::TemporaryDirectory directory;
  const auto file = HealthShareConsentStore::defaultFile(directory.path());
  {
    HealthShareConsentStore store(file);
    EXPECT_FALSE(store.loadFailed() || store.unreadable());
    ASSERT_TRUE(store.setRequestedAccess("acct-ayse", true).has_value());
    ASSERT_TRUE(store.setAutoShare("acct-ayse", true).has_value());
    ASSERT_TRUE(store.setRequestedAccess("acct-mert", true).has_value());
  }
  EXPECT_EQ(contents(file),
            R"({"version":1,"accounts":{"acct-ayse":{"requestedAccess":true,"autoShare":true},)"
            R"("acct-mert":{"requestedAccess":true,"autoShare":false}}})");
  const HealthShareConsentStore reopened(file);
  EXPECT_EQ(reopened.consent("acct-ayse"), (HealthShareConsent{true, true}));
  EXPECT_EQ(reopened.consent("acct-mert"), (HealthShareConsent{true, false}));
  EXPECT_EQ(reopened.consent("acct-new"), HealthShareConsent{});
}

TEST(HealthShareConsentStoreTest, SignedOutConsentStaysInMemory) {
  const testing::TemporaryDirectory directory;
  const auto file = directory.path() / "consent.json";
  HealthShareConsentStore store(file);
  ASSERT_TRUE(store.setAutoShare(std::nullopt, true).has_value());
  EXPECT_EQ(store.consent(std::nullopt), (HealthShareConsent{false, true}));
  EXPECT_EQ(store.consent("acct-ayse"), HealthShareConsent{});
  EXPECT_FALSE(std::filesystem::exists(file));
}

TEST(HealthShareConsentStoreTest, TheEarlierSingleAccountFormServesUntilTheFirstChange) {
  const testing::TemporaryDirectory directory;
  const auto file = directory.write("consent.json", R"({"requestedAccess": true})");
  HealthShareConsentStore store(file);
  EXPECT_EQ(store.legacy(), (HealthShareConsent{true, false}));
  EXPECT_EQ(store.consent("acct-ayse"), (HealthShareConsent{true, false}));
  EXPECT_EQ(store.consent("acct-mert"), (HealthShareConsent{true, false}));

  ASSERT_TRUE(store.setAutoShare("acct-ayse", true).has_value());
  EXPECT_EQ(store.consent("acct-ayse"), (HealthShareConsent{true, true}));
  EXPECT_EQ(store.consent("acct-mert"), HealthShareConsent{});
  EXPECT_EQ(HealthShareConsentStore(file).consent("acct-ayse"), (HealthShareConsent{true, true}));
}

TEST(HealthShareConsentStoreTest, ADocumentThatDoesNotDecodeIsNeverOverwrittenSilently) {
  // damaged-consents.json: documents that do not decode, with the reason the load gives.
  using Damaged = std::pair<std::string, std::string>;
  const auto documents = nlohmann::json::parse(testing::evidenceData("damaged-consents.json")).get<std::vector<Damaged>>();
  for (const auto& [document, reason] : documents) {
    SCOPED_TRACE(document);
    const testing::TemporaryDirectory directory;
    const auto file = directory.write("consent.json", document);
    HealthShareConsentStore store(file);
    EXPECT_TRUE(store.unreadable());
    EXPECT_FALSE(store.loadFailed());
    EXPECT_NE(store.loadError().value_or("").find(reason), std::string::npos) << store.loadError().value_or("");
    const auto refused = store.setAutoShare("acct-ayse", true);
    ASSERT_FALSE(refused.has_value());
    EXPECT_EQ(refused.error().kind, HealthShareConsentError::Kind::notLoaded);
    EXPECT_EQ(contents(file), document);

    ASSERT_TRUE(store.discardStoredDocument().has_value());
    EXPECT_EQ(contents(directory.path() / "consent.json.corrupt"), document);
    ASSERT_TRUE(store.setAutoShare("acct-ayse", true).has_value());
    EXPECT_EQ(HealthShareConsentStore(file).consent("acct-ayse"), (HealthShareConsent{false, true}));
  }
}

TEST(HealthShareConsentStoreTest, AnUnreadableFileFailsTheLoadAndAFailedWriteKeepsTheOldState) {
  const testing::TemporaryDirectory directory;
  std::filesystem::create_directory(directory.path() / "consent.json");
  HealthShareConsentStore store(directory.path() / "consent.json");
  EXPECT_TRUE(store.loadFailed());
  EXPECT_FALSE(store.setRequestedAccess("acct-ayse", true).has_value());

  // A file where the folder should be: the write fails and nothing changes.
  const auto blocker = directory.write("blocked", "");
  HealthShareConsentStore unwritable(blocker / "consent.json");
  const auto written = unwritable.setRequestedAccess("acct-ayse", true);
  ASSERT_FALSE(written.has_value());
  EXPECT_EQ(written.error().kind, HealthShareConsentError::Kind::unwritable);
  EXPECT_EQ(unwritable.consent("acct-ayse"), HealthShareConsent{});
}

}  // namespace
}  // namespace kovi
