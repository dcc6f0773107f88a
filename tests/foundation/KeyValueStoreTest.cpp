#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/FileKeyValueStore.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

constexpr const char* kDomain = "group.test.shared";

// Runs `body` in a child process and returns its exit status. The child
// builds its own store objects, as a second program would.
pid_t spawn(const std::function<int()>& body) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(body());
  return child;
}

int exitStatusOf(pid_t child) {
  int status = 0;
  if (::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return -1;
  return WEXITSTATUS(status);
}

class FileKeyValueStoreTest : public ::testing::Test {
 protected:
  FileKeyValueStore makeStore() const { return FileKeyValueStore(kDomain, directory.path()); }
  std::filesystem::path documentPath() const { return makeStore().documentPath(); }

  testing::TemporaryDirectory directory;
};

TEST_F(FileKeyValueStoreTest, KeepsOneVersionedDocumentPerDomainThatEveryStoreObjectSees) {
  auto store = makeStore();
  // An unchanged update writes nothing.
  ASSERT_TRUE(store.update([](nlohmann::json&) {}));
  ASSERT_TRUE(store.removeValues({"absent"}));
  EXPECT_FALSE(std::filesystem::exists(documentPath()));
  EXPECT_EQ(store.values().value(), nlohmann::json::object());
  EXPECT_EQ(store.value("missing"), std::nullopt);
  ASSERT_TRUE(store.setValue("name", "Tarçın"));
  ASSERT_TRUE(store.setValue("level", 2));

  EXPECT_EQ(documentPath(), directory.path() / "Kovi/Preferences/v1/group.test.shared.json");
  EXPECT_EQ(nlohmann::json::parse(readFileLimited(documentPath(), 4096).value()),
            nlohmann::json::parse(R"({"version":1,"values":{"level":2,"name":"Tarçın"}})"));
  FileKeyValueStore otherDomain("group.other", directory.path());
  EXPECT_EQ(otherDomain.value("name"), std::nullopt);

  // Another store object over the same document sees each change.
  auto reader = makeStore();
  EXPECT_EQ(reader.value("level"), 2);
  ASSERT_TRUE(store.setValue("level", 3));
  EXPECT_EQ(reader.value("level"), 3);
  ASSERT_TRUE(store.removeValues({"level", "never-there"}));
  EXPECT_EQ(reader.value("level"), std::nullopt);
}

TEST_F(FileKeyValueStoreTest, UnreadableDocumentsAreReportedAndNeverSilentlyLost) {
  struct Case {
    std::string text;
    KeyValueStoreError::Kind kind;
    std::string reason;
  };
  const std::vector<Case> cases{
      {"{not json", KeyValueStoreError::Kind::corrupt,
       "not valid JSON at line 1, column 3: syntax error while parsing object key - invalid literal; last read: "
       "'{no'; expected string literal"},
      {R"({"values":{}})", KeyValueStoreError::Kind::corrupt, "version: missing key"},
      {R"({"version":1,"values":[]})", KeyValueStoreError::Kind::corrupt,
       "values: expected an object, found an array"},
      {R"({"version":0,"values":{}})", KeyValueStoreError::Kind::corrupt, "unknown version 0"},
      {R"({"version":2,"values":{"a":1}})", KeyValueStoreError::Kind::unsupported,
       "version 2 is newer than this program"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    std::filesystem::remove(documentPath().string() + ".corrupt");
    ASSERT_TRUE(writeFileAtomically(documentPath(), c.text));
    auto store = makeStore();
    const auto values = store.values();
    ASSERT_FALSE(values.has_value());
    EXPECT_EQ(values.error().kind, c.kind);
    EXPECT_EQ(values.error().message, documentPath().string() + ": " + c.reason);
    EXPECT_EQ(store.value("a"), std::nullopt);

    const auto written = store.setValue("a", 5);
    if (c.kind == KeyValueStoreError::Kind::unsupported) {
      // A newer program's document is left exactly as it is.
      EXPECT_FALSE(written.has_value());
      EXPECT_EQ(readFileLimited(documentPath(), 4096).value(), c.text);
    } else {
      // A corrupt one is moved aside with its bytes, and the domain starts afresh.
      EXPECT_TRUE(written.has_value());
      EXPECT_EQ(readFileLimited(documentPath().string() + ".corrupt", 4096).value(), c.text);
      EXPECT_EQ(store.values().value(), nlohmann::json::parse(R"({"a":5})"));
    }
  }
}

TEST_F(FileKeyValueStoreTest, ASecondProcessReadsOnlyWholeChangesWhileAnotherWrites) {
  constexpr int kWrites = 300;
  // Each change writes a counter and a payload derived from it; a torn or
  // half-applied change would show a payload that does not match.
  const auto payloadFor = [](int counter) { return std::string(static_cast<std::size_t>(counter % 97) * 40, 'k'); };
  const pid_t reader = spawn([&] {
    auto store = makeStore();
    int last = -1;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (last < kWrites) {
      if (std::chrono::steady_clock::now() > deadline) return 3;
      auto values = store.values();
      if (!values) return 4;
      if (!values->contains("counter")) continue;
      const int counter = (*values)["counter"].get<int>();
      if ((*values)["payload"] != payloadFor(counter)) return 5;
      if (counter < last) return 6;
      last = counter;
    }
    return 0;
  });
  auto writer = makeStore();
  for (int counter = 1; counter <= kWrites; ++counter) {
    ASSERT_TRUE(writer.update([&](nlohmann::json& values) {
      values["counter"] = counter;
      values["payload"] = payloadFor(counter);
    }));
  }
  EXPECT_EQ(exitStatusOf(reader), 0);
}

TEST_F(FileKeyValueStoreTest, WritersInTwoProcessesLoseNoChange) {
  constexpr int kIncrements = 150;
  const auto incrementer = [&] {
    auto store = makeStore();
    for (int round = 0; round < kIncrements; ++round) {
      const auto done = store.update([](nlohmann::json& values) {
        values["count"] = values.value("count", 0) + 1;
      });
      if (!done) return 1;
    }
    return 0;
  };
  const pid_t first = spawn(incrementer);
  const pid_t second = spawn(incrementer);
  EXPECT_EQ(exitStatusOf(first), 0);
  EXPECT_EQ(exitStatusOf(second), 0);
  EXPECT_EQ(makeStore().value("count"), 2 * kIncrements);
}

}  // namespace
}  // namespace kovi
