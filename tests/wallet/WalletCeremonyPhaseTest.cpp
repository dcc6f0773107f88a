#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>

#include "KoviKit/wallet/V6OperationPresentation.h"
#include "KoviKit/wallet/WalletCeremonyPhase.h"
#include "tests/support/TestData.h"

namespace kovi {
namespace {

using Kind = WalletCeremonyPhase::Kind;
using Status = V6WalletOperationStatus;

// ceremony-phases.json: each phase's title and message; each operation
// status with its phase, its state in a list, and whether it is still open.
const nlohmann::json kPhases = nlohmann::json::parse(testing::testDataFile("wallet", "ceremony-phases.json"));

TEST(WalletCeremonyPhaseTest, ShowsThePhasesTexts) {
  for (const auto& [name, texts] : kPhases["texts"].items()) {
    SCOPED_TRACE(name);
    const auto kind = enumFromName<Kind>(name);
    ASSERT_TRUE(kind.has_value());
    const WalletCeremonyPhase phase{*kind, {}};
    EXPECT_EQ(phase.title(), texts[0].get<std::string>());
    EXPECT_EQ(phase.message(), texts[1].get<std::string>());
  }
  // A failure carries its own message.
  const auto failed = WalletCeremonyPhase::failed(std::string(walletCeremonyText::preparationFailed));
  EXPECT_EQ(failed.name(), "failed");
  EXPECT_EQ(failed.message(), "İşlem hazırlanamadı, bu yüzden hiçbir şey gönderilmedi. Yeniden dene.");
}

TEST(V6WalletOperationStatusTest, MapsToPhaseAndListState) {
  for (const auto& row : kPhases["statuses"]) {
    SCOPED_TRACE(row.dump());
    V6WalletOperation operation;
    ASSERT_TRUE(enumFromName<Status>(row[0].get<std::string>()).has_value());
    operation.status = *enumFromName<Status>(row[0].get<std::string>());
    EXPECT_EQ(enumName(walletCeremonyPhase(operation.status).kind), row[1].get<std::string>());
    EXPECT_EQ(enumName(V6OperationPresentation::state(operation)), row[2].get<std::string>());
    EXPECT_EQ(isOpen(operation.status), row[3].get<bool>());
  }
  EXPECT_EQ(V6OperationPresentation::state(std::nullopt), V6OperationPresentation::State::unknown);
}

}  // namespace
}  // namespace kovi
