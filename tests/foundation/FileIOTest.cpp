#include "KoviKit/foundation/FileIO.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using testing::TemporaryDirectory;

TEST(FileIOTest, ReadsUpToTheLimitAndRefusesOneByteMore) {
  const TemporaryDirectory directory;
  const struct {
    std::size_t size;
    bool readable;
  } cases[] = {{0, true}, {65'535, true}, {65'536, true}, {65'537, false}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.size);
    const auto path = directory.write("file-" + std::to_string(c.size), std::string(c.size, 'x'));
    const auto contents = readFileLimited(path, 65'536);
    if (c.readable) {
      ASSERT_TRUE(contents.has_value());
      EXPECT_EQ(contents->size(), c.size);
    } else {
      ASSERT_FALSE(contents.has_value());
      EXPECT_EQ(contents.error().failure, FileReadFailure::tooLarge);
    }
  }
}

TEST(FileIOTest, TellsMissingFromUnreadable) {
  const TemporaryDirectory directory;
  EXPECT_EQ(readFileLimited(directory.path() / "absent.json", 10).error().failure, FileReadFailure::missing);
  EXPECT_EQ(readFileLimited(directory.path() / "absent" / "deeper.json", 10).error().failure,
            FileReadFailure::missing);
  // A directory opens but cannot be read as a file.
  EXPECT_EQ(readFileLimited(directory.path(), 10).error().failure, FileReadFailure::unreadable);
}

// A replacement is a new file, so it must be created with the requested
// permissions too.
TEST(FileIOTest, AtomicWriteReplacesCreatesParentsWithPermissionsAndLeavesNoTemporaryFiles) {
  const TemporaryDirectory directory;
  namespace fs = std::filesystem;
  const auto path = directory.path() / "Kovi" / "Holds" / "secret.pem";
  const auto ownerOnly = fs::perms::owner_read | fs::perms::owner_write;
  ASSERT_TRUE(writeFileAtomically(path, "first", ownerOnly).has_value());
  ASSERT_TRUE(writeFileAtomically(path, "second, longer", ownerOnly).has_value());
  EXPECT_EQ(*readFileLimited(path, 100), "second, longer");
  EXPECT_EQ(fs::status(path).permissions() & fs::perms::mask, ownerOnly);
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : fs::directory_iterator(path.parent_path())) ++entries;
  EXPECT_EQ(entries, 1u);
}

TEST(FileIOTest, FailedAtomicWriteNamesThePathAndLeavesNothingBehind) {
  const TemporaryDirectory directory;
  // A non-empty directory where the file should go: the final rename fails.
  const auto path = directory.path() / "store.json";
  directory.write("store.json/keep", "kept");
  const auto written = writeFileAtomically(path, "new");
  ASSERT_FALSE(written.has_value());
  EXPECT_NE(written.error().find("store.json"), std::string::npos) << written.error();
  EXPECT_EQ(*readFileLimited(path / "keep", 100), "kept");
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(directory.path())) ++entries;
  EXPECT_EQ(entries, 1u) << "the temporary file must be removed";
}

// A kept snapshot answers for the file at its path, whatever happened to it.
TEST(FileIOTest, SnapshotIsCurrentUntilTheFileIsReplacedRemovedOrRewritten) {
  const struct {
    const char* change;
    void (*apply)(const std::filesystem::path& path);
    bool current;
  } cases[] = {
      {"untouched", [](const std::filesystem::path&) {}, true},
      {"read again", [](const std::filesystem::path& path) { ASSERT_TRUE(readFileLimited(path, 100)); }, true},
      {"replaced by the same bytes",
       [](const std::filesystem::path& path) { ASSERT_TRUE(writeFileAtomically(path, R"({"counter":7})")); }, false},
      {"removed", [](const std::filesystem::path& path) { std::filesystem::remove(path); }, false},
      {"removed and made again",
       [](const std::filesystem::path& path) {
         std::filesystem::remove(path);
         ASSERT_TRUE(writeFileAtomically(path, R"({"counter":7})"));
       },
       false},
      {"rewritten in place",
       [](const std::filesystem::path& path) {
         std::FILE* file = std::fopen(path.c_str(), "w");
         ASSERT_NE(file, nullptr);
         std::fputs(R"({"counter":1024})", file);
         std::fclose(file);
       },
       false},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(row.change);
    const TemporaryDirectory directory;
    const auto path = directory.path() / "mark.json";
    ASSERT_TRUE(writeFileAtomically(path, R"({"counter":7})"));
    const auto snapshot = FileSnapshot::read(path, 100);
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->contents(), R"({"counter":7})");
    row.apply(path);
    EXPECT_EQ(snapshot->isCurrent(), row.current);
  }
  const TemporaryDirectory directory;
  EXPECT_EQ(FileSnapshot::read(directory.path() / "absent", 10).error().failure, FileReadFailure::missing);
  directory.write("large", std::string(11, 'x'));
  EXPECT_EQ(FileSnapshot::read(directory.path() / "large", 10).error().failure, FileReadFailure::tooLarge);
}

}  // namespace
}  // namespace kovi
