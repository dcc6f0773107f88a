#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/wallet/V6WalletOperationStore.h"
#include "tests/support/TemporaryDirectory.h"

namespace kovi {
namespace {

using Error = V6WalletOperationStoreError;

V6WalletOperation anOperation(V6WalletOperationStatus status) {
  V6WalletOperation operation;
  operation.requestId = "9b2f1c3e-0000-4000-8000-000000000001";
  operation.protocol = "kovi-v6";
  operation.revision = 2;
  operation.status = status;
  operation.createdAt = 1700000000.5;
  operation.expiresAt = 1700000900.25;
  operation.userOperationHash = V6WalletHash{"0x" + std::string(64, 'a')};
  return operation;
}

std::string fileText(const std::filesystem::path& path) { return readFileLimited(path, 1 << 20).value_or(""); }

TEST(V6WalletOperationStoreTest, KeepsEachMembersLastOperationInItsOwnFile) {
  testing::TemporaryDirectory directory;
  V6WalletOperationStore store(directory.path());
  ASSERT_TRUE(store.load("member-1").has_value());
  EXPECT_FALSE(store.load("member-1")->has_value());

  ASSERT_TRUE(store.save("member-1", anOperation(V6WalletOperationStatus::approved)).has_value());
  ASSERT_TRUE(store.save("member-2", anOperation(V6WalletOperationStatus::confirmed)).has_value());
  EXPECT_EQ(store.load("member-1")->value().status, V6WalletOperationStatus::approved);
  EXPECT_EQ(store.load("member-2")->value(), anOperation(V6WalletOperationStatus::confirmed));
  // A second store over the same folder (the next run) reads what the first wrote.
  EXPECT_EQ(V6WalletOperationStore(directory.path()).load("member-1")->value(),
            anOperation(V6WalletOperationStatus::approved));
  EXPECT_TRUE(std::filesystem::exists(directory.path() / "Kovi/WalletOperations/v1/member-2.json"));
}

// A damaged or newer file is reported with its path and never overwritten.
TEST(V6WalletOperationStoreTest, ReportsADamagedFileAndNeverOverwritesIt) {
  const struct {
    std::string contents;
    Error::Kind kind;
    std::string detail;
  } cases[] = {
      {R"({"version":1,"operation":{"requestId")", Error::Kind::corrupt,
       "not valid JSON at line 1, column 38: syntax error while parsing object separator - unexpected end of input; "
       "expected ':'"},
      {R"({"version":1})", Error::Kind::corrupt, "operation: missing key"},
      {R"({"version":1,"operation":{},"extra":1})", Error::Kind::corrupt, "extra: unknown key"},
      {R"({"version":1,"version":1,"operation":{}})", Error::Kind::corrupt, "version: duplicate key"},
      {R"({"version":2,"operation":{"shape":"new"}})", Error::Kind::unsupportedVersion, "version 2"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.contents);
    testing::TemporaryDirectory directory;
    V6WalletOperationStore store(directory.path());
    const auto path = directory.path() / "Kovi/WalletOperations/v1/m.json";
    ASSERT_TRUE(writeFileAtomically(path, c.contents).has_value());

    const auto loaded = store.load("m");
    ASSERT_FALSE(loaded.has_value());
    EXPECT_EQ(loaded.error(), (Error{c.kind, path, c.detail}));
    EXPECT_NE(loaded.error().message().find(path.string()), std::string::npos);
    const auto saved = store.save("m", anOperation(V6WalletOperationStatus::prepared));
    ASSERT_FALSE(saved.has_value());
    EXPECT_EQ(saved.error().kind, c.kind);
    EXPECT_EQ(fileText(path), c.contents);
  }
}

TEST(V6WalletOperationStoreTest, RefusesMemberIdsThatCannotNameAFile) {
  testing::TemporaryDirectory directory;
  V6WalletOperationStore store(directory.path());
  for (const std::string& member :
       std::vector<std::string>{"", "../escape", ".hidden", "a/b", std::string(129, 'x'), std::string("nul\0x", 5)}) {
    const auto saved = store.save(member, anOperation(V6WalletOperationStatus::prepared));
    ASSERT_FALSE(saved.has_value()) << member;
    EXPECT_EQ(saved.error().kind, Error::Kind::invalidMember);
  }
  EXPECT_FALSE(std::filesystem::exists(directory.path() / "Kovi"));
}

}  // namespace
}  // namespace kovi
