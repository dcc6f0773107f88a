#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "KoviKit/foundation/FileKeyValueStore.h"
#include "KoviKit/foundation/Sha256.h"
#include "KoviKit/working/WorkingSessionJournalStore.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

WorkingSessionJournal journal() {
  return {.version = WorkingSessionJournal::currentVersion, .ownerID = "acc_ada", .roomID = "room_51",
          .sessionID = "ses_8f2c", .label = "Tez · 3. bölüm", .intention = "Yöntem bölümünü bitirmek",
          .note = "Kaynakçayı sona bıraktım.", .completedOutput = "12 sayfa", .reflection = WorkingSessionJournal::Reflection::inProgress, .updatedAt = 1'780'003'600'000};
}

TEST(WorkingSessionJournalTest, KeysSeparateEverySplitOfTheSameCharacters) {
  const auto key = [](std::string_view owner, std::string_view room, std::string_view session) {
    return WorkingSessionJournalStore::key({owner, room, session});
  };
  const std::string ab_c = key("ab", "c", "s");
  EXPECT_NE(ab_c, key("a", "bc", "s"));
  EXPECT_NE(key("1:a", "", "x"), key("1", "a", "x"));
  // Owner, room and session each enter as "<UTF-8 byte count>:<bytes>".
  EXPECT_EQ(ab_c, "kovi.working.journal.v1." + sha256Hex("2:ab1:c1:s"));
  EXPECT_EQ(key("ş", "r", "s"), "kovi.working.journal.v1." + sha256Hex("2:ş1:r1:s"));
}

TEST(WorkingSessionJournalTest, ChecksRefuseEachBrokenField) {
  const struct { std::string reason; std::function<void(WorkingSessionJournal&)> edit; } cases[] = {
      {"version 2 is not 1", [](auto& j) { j.version = 2; }},
      {"ownerID is empty", [](auto& j) { j.ownerID.clear(); }},
      {"sessionID is empty", [](auto& j) { j.sessionID.clear(); }},
      {"sessionID is longer than 256 bytes", [](auto& j) { j.sessionID.assign(257, 's'); }},
      {"label is longer than 200 bytes", [](auto& j) { j.label.assign(201, 'l'); }},
      {"intention is longer than 2000 bytes", [](auto& j) { j.intention.assign(2001, 'i'); }},
      {"note is longer than 8000 bytes", [](auto& j) {
         j.note.clear();
         for (int i = 0; i < 4001; ++i) j.note += "ş";  // 2 bytes a letter
       }},
      {"completedOutput is longer than 4000 bytes", [](auto& j) { j.completedOutput.assign(4001, 'c'); }},
      {"updatedAt is before 1970", [](auto& j) { j.updatedAt = -1; }},
  };
  ASSERT_TRUE(validateWorkingSessionJournal(journal()).has_value());
  for (const auto& test : cases) {
    WorkingSessionJournal broken = journal();
    test.edit(broken);
    const auto result = validateWorkingSessionJournal(broken);
    ASSERT_FALSE(result.has_value()) << test.reason;
    EXPECT_EQ(result.error().kind, WorkingSessionJournalError::Kind::invalidJournal);
    EXPECT_EQ(result.error().reason, test.reason);
  }
  // Limits count bytes and admit exactly the limit.
  WorkingSessionJournal full = journal();
  full.note.assign(8000, 'n');
  EXPECT_TRUE(validateWorkingSessionJournal(full).has_value());
}

// The journal the store holds; a read error fails the test.
std::optional<WorkingSessionJournal> stored(const WorkingSessionJournalStore& store,
                                            const WorkingSessionJournalIdentity& identity) {
  auto loaded = store.load(identity);
  if (!loaded) {
    ADD_FAILURE() << loaded.error().reason;
    return std::nullopt;
  }
  return *loaded;
}

TEST(WorkingSessionJournalTest, StoreKeepsOneJournalPerSession) {
  const testing::TemporaryDirectory directory;
  FileKeyValueStore preferences("group.app.kovi.shared", directory.path());
  WorkingSessionJournalStore store(preferences);
  const WorkingSessionJournalIdentity identity{"acc_ada", "room_51", "ses_8f2c"};

  EXPECT_EQ(stored(store, identity), std::nullopt);
  ASSERT_TRUE(store.save(journal()).has_value());
  WorkingSessionJournal other = journal();
  other.sessionID = "ses_9";
  other.reflection = WorkingSessionJournal::Reflection::completed;
  ASSERT_TRUE(store.save(other).has_value());

  // A second store over the same file reads what the first wrote.
  FileKeyValueStore reopened("group.app.kovi.shared", directory.path());
  EXPECT_EQ(stored(WorkingSessionJournalStore(reopened), identity), journal());
  EXPECT_EQ(stored(store, {"acc_ada", "room_51", "ses_9"}), other);

  WorkingSessionJournal invalid = journal();
  invalid.ownerID.clear();
  EXPECT_EQ(store.save(invalid).error().kind, WorkingSessionJournalError::Kind::invalidJournal);

  ASSERT_TRUE(store.remove(identity).has_value());
  EXPECT_EQ(stored(store, identity), std::nullopt);
  EXPECT_EQ(stored(store, {"acc_ada", "room_51", "ses_9"}), other);
}

TEST(WorkingSessionJournalTest, StoredValuesThatDoNotFitAreCorrupt) {
  const testing::TemporaryDirectory directory;
  FileKeyValueStore preferences("group.app.kovi.shared", directory.path());
  WorkingSessionJournalStore store(preferences);
  const WorkingSessionJournalIdentity identity{"acc_ada", "room_51", "ses_8f2c"};
  const std::string key = WorkingSessionJournalStore::key(identity);
  WorkingSessionJournal elsewhere = journal();
  elsewhere.sessionID = "ses_other";

  std::string abandoned = encodeRecord(journal()).dump();
  abandoned.replace(abandoned.find("inProgress"), 10, "abandoned");

  const std::vector<std::pair<nlohmann::json, std::string>> values = {
      {42, "not the text of a journal"},
      {"{\"version\":1",
       "not valid JSON at line 1, column 13: syntax error while parsing object - unexpected end of input; expected '}'"},
      {encodeRecord(elsewhere).dump(), "the journal belongs to another session"},
      {abandoned, "reflection: unknown value \"abandoned\""},
  };
  for (const auto& [value, reason] : values) {
    ASSERT_TRUE(preferences.setValue(key, value).has_value());
    const auto loaded = store.load(identity);
    ASSERT_FALSE(loaded.has_value()) << reason;
    EXPECT_EQ(loaded.error().kind, WorkingSessionJournalError::Kind::corrupt);
    EXPECT_EQ(loaded.error().reason, key + ": " + reason);
  }
}

}  // namespace
}  // namespace kovi
