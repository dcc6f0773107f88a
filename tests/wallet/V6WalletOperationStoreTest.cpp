#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/wallet/V6WalletOperationStore.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

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
  // damaged-operations.json: file contents, whether they are a newer version rather than corrupt, and the detail.
  for (const auto& row : nlohmann::json::parse(testing::testDataFile("wallet", "damaged-operations.json"))) {
    const std::string contents = row[0];
    const Error::Kind kind = row[1].get<bool>() ? Error::Kind::unsupportedVersion : Error::Kind::corrupt;
    SCOPED_TRACE(contents);
    testing::TemporaryDirectory directory;
    V6WalletOperationStore store(directory.path());
    const auto path = directory.path() / "Kovi/WalletOperations/v1/m.json";
    ASSERT_TRUE(writeFileAtomically(path, contents).has_value());

    const auto loaded = store.load("m");
    ASSERT_FALSE(loaded.has_value());
    EXPECT_EQ(loaded.error(), (Error{kind, path, row[2].get<std::string>()}));
    EXPECT_NE(loaded.error().message().find(path.string()), std::string::npos);
    const auto saved = store.save("m", anOperation(V6WalletOperationStatus::prepared));
    ASSERT_FALSE(saved.has_value());
    EXPECT_EQ(saved.error().kind, kind);
    EXPECT_EQ(fileText(path), contents);
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
