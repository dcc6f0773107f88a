#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/purrl/PurrlCatIdentity.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

namespace identity = PurrlCatIdentity;

class PurrlCatIdentityTest : public ::testing::Test {
 protected:
  std::set<std::string> storedKeys() const {
    std::set<std::string> keys;
    const nlohmann::json values = store.values().value();
    for (const auto& [key, value] : values.items()) keys.insert(key);
    return keys;
  }

  // An owner's full cat plus a key of another feature that must survive.
  void storeCatOf(const std::string& account) {
    ASSERT_TRUE(identity::bindOwner(store, account));
    ASSERT_TRUE(identity::writeName(store, "Tarçın", PurrlCatNameOrigin::device));
    ASSERT_TRUE(identity::writeLevel(store, 1));
    ASSERT_TRUE(identity::writeMoodSnapshot(
        store, {PurrlCatMood::happy, PurrlCatMoodReason::petted, "2026-03-14", Date::fromUnixMillis(1e12)}));
    ASSERT_TRUE(store.setValue("kovi.fonts.heading", "classic"));
  }

  testing::TemporaryDirectory directory;
  FileKeyValueStore store{std::string(identity::preferencesDomain), directory.path()};
};

TEST_F(PurrlCatIdentityTest, ClampsTheLevelAndReportsOnlyRealChanges) {
  struct Step {
    int requested;
    int stored;
    bool changed;
  };
  const std::vector<Step> steps{{7, 2, true}, {2, 2, false}, {-1, 0, true}, {-1, 0, false},
                                {0, 0, false}, {1, 1, true},  {1, 1, false}, {3, 2, true}};
  for (const Step& step : steps) {
    SCOPED_TRACE(step.requested);
    const auto changed = identity::writeLevel(store, step.requested);
    ASSERT_TRUE(changed.has_value()) << changed.error().message;
    EXPECT_EQ(*changed, step.changed);
    EXPECT_EQ(identity::level(store), step.stored);
  }
}

// Another owner, or none, clears exactly the cat's keys; the same owner clears nothing.
TEST_F(PurrlCatIdentityTest, BindingAnOwnerClearsTheCatOfAnotherOne) {
  const std::set<std::string> everything{"kovi.fonts.heading", "purrl.cat.level", "purrl.cat.mood",
                                         "purrl.cat.name", "purrl.cat.name.needsSync", "purrl.cat.owner"};
  const struct {
    std::optional<std::string> owner;
    std::set<std::string> kept;
  } cases[] = {{"account-a", everything},
               {"account-b", {"kovi.fonts.heading", "purrl.cat.owner"}},
               {std::nullopt, {"kovi.fonts.heading"}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.owner.value_or("signed out"));
    storeCatOf("account-a");
    ASSERT_EQ(storedKeys(), everything);
    ASSERT_TRUE(identity::bindOwner(store, c.owner));
    EXPECT_EQ(storedKeys(), c.kept);
    EXPECT_EQ(identity::owner(store), c.owner);
  }
}

TEST_F(PurrlCatIdentityTest, ALeftoverCatIsClearedOnSignOutAndKeptByTheFirstOwner) {
  ASSERT_TRUE(identity::writeName(store, "Pamuk", PurrlCatNameOrigin::service));
  ASSERT_TRUE(identity::bindOwner(store, std::nullopt));
  EXPECT_EQ(identity::name(store), std::nullopt);
  ASSERT_TRUE(identity::writeName(store, "Pamuk", PurrlCatNameOrigin::device));
  ASSERT_TRUE(identity::bindOwner(store, "account-a"));
  EXPECT_EQ(identity::name(store), "Pamuk");
}

TEST_F(PurrlCatIdentityTest, DeviceNamesAwaitSyncAndServiceNamesDoNot) {
  ASSERT_TRUE(identity::writeName(store, "  Minnoş  ", PurrlCatNameOrigin::device));
  EXPECT_EQ(identity::name(store), "Minnoş");
  EXPECT_TRUE(identity::nameNeedsSync(store));

  ASSERT_TRUE(identity::markNameSynced(store));
  EXPECT_FALSE(identity::nameNeedsSync(store));
  // Typing the same name again changes nothing to send.
  ASSERT_TRUE(identity::writeName(store, "Minnoş", PurrlCatNameOrigin::device));
  EXPECT_FALSE(identity::nameNeedsSync(store));

  ASSERT_TRUE(identity::writeName(store, "\t\n", PurrlCatNameOrigin::device));
  EXPECT_EQ(identity::name(store), std::nullopt);
  EXPECT_TRUE(identity::nameNeedsSync(store));

  ASSERT_TRUE(identity::writeName(store, "Duman", PurrlCatNameOrigin::service));
  EXPECT_EQ(identity::name(store), "Duman");
  EXPECT_FALSE(identity::nameNeedsSync(store));
}

TEST_F(PurrlCatIdentityTest, MalformedValuesReadAsAbsent) {
  ASSERT_TRUE(store.setValue(identity::levelKey, "two"));
  ASSERT_TRUE(store.setValue(identity::nameKey, 42));
  ASSERT_TRUE(store.setValue(identity::ownerKey, nlohmann::json::array()));
  ASSERT_TRUE(store.setValue(identity::nameNeedsSyncKey, "yes"));
  EXPECT_EQ(identity::level(store), std::nullopt);
  EXPECT_EQ(identity::name(store), std::nullopt);
  EXPECT_EQ(identity::owner(store), std::nullopt);
  EXPECT_FALSE(identity::nameNeedsSync(store));

  for (const char* text : {"not json", R"({"mood":"furious","reason":"calm","day":"2026-03-14","updatedAt":1})",
                           R"({"mood":"happy","reason":"calm","day":"2026-03-14"})"}) {
    SCOPED_TRACE(text);
    ASSERT_TRUE(store.setValue(identity::moodKey, text));
    EXPECT_EQ(identity::moodSnapshot(store), std::nullopt);
  }
}

TEST_F(PurrlCatIdentityTest, MoodSnapshotBelongsToItsLocalDay) {
  const auto calendar = Calendar::inZone("Europe/Istanbul").value();
  // 2026-03-14T20:30:00Z is 23:30 in Istanbul (UTC+3): still the 14th there.
  const Date evening = Date::fromUnixMillis(static_cast<double>(parseInstant("2026-03-14T20:30:00Z").value()));
  const auto snapshot = identity::snapshotOf({PurrlCatMood::sleepy, PurrlCatMoodReason::night}, evening, calendar);
  EXPECT_EQ(snapshot.day, "2026-03-14");
  ASSERT_TRUE(identity::writeMoodSnapshot(store, snapshot));
  EXPECT_EQ(identity::moodSnapshot(store), snapshot);
  EXPECT_EQ(identity::todaysMood(store, evening.addingMillis(20 * 60'000), calendar), snapshot);
  // Half an hour later it is the 15th in Istanbul and the snapshot is stale.
  EXPECT_EQ(identity::todaysMood(store, evening.addingMillis(31 * 60'000), calendar), std::nullopt);
}

}  // namespace
}  // namespace kovi
