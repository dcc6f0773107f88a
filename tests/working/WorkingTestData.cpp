#include "tests/working/WorkingTestData.h"

#include "KoviKit/working/WorkingCheckpoint.h"

#include <gtest/gtest.h>

#include "tests/support/TestData.h"

namespace kovi::testing {

std::string workingDataFile(std::string_view name) {
  std::string text = testDataFile("working", name);
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

nlohmann::json workingRulesJson(std::string_view name) { return nlohmann::json::parse(workingDataFile(name)); }

WorkingRules decodedRules(const nlohmann::json& rules) {
  auto decoded = decodeWorkingRulesDocument(rules);
  EXPECT_TRUE(decoded.has_value()) << (decoded ? "" : decoded.error().reason);
  return decoded.value_or(WorkingRules{});
}

WorkingRules workingRules(std::string_view name) { return decodedRules(workingRulesJson(name)); }

std::expected<WorkingRules, WorkingRulesDecodeError> decodeEdited(std::string_view name, const RulesEdit& edit) {
  nlohmann::json rules = workingRulesJson(name);
  edit(rules);
  return decodeWorkingRules(rules.dump());
}

RulesEdit setting(nlohmann::json values) {
  return [values = std::move(values)](nlohmann::json& rules) {
    for (const auto& [pointer, value] : values.items()) rules[nlohmann::json::json_pointer(pointer)] = value;
  };
}

WorkingRules workingRules(std::string_view name, const nlohmann::json& values) {
  nlohmann::json rules = workingRulesJson(name);
  setting(values)(rules);
  return decodedRules(rules);
}

std::int64_t istanbulTime(int day, int hour, int minute) {
  constexpr std::int64_t kFirstDayStart = 1772398800000;  // 2026-03-02 00:00 +03:00
  return kFirstDayStart + static_cast<std::int64_t>(day) * 86'400'000 + static_cast<std::int64_t>(hour) * 3'600'000 +
         static_cast<std::int64_t>(minute) * 60'000;
}

std::vector<WorkingCheckpoint> linkedChain(int count, bool endsFinal) {
  std::vector<WorkingCheckpoint> chain;
  std::string previousHash(kWorkingCheckpointGenesisHash);
  for (int sequence = 0; sequence < count; ++sequence) {
    const UnixMillis start = 1'780'000'000'000 + sequence * 60'000LL;
    WorkingCheckpoint checkpoint{"session-1", "mac-1", 2, sequence, previousHash, start + 60'000,
                                 5'000 + sequence * 60'000LL,
                                 {{start, start + 40'000, WorkingTimeSegment::Kind::active},
                                  {start + 40'000, start + 60'000, WorkingTimeSegment::Kind::idle}},
                                 endsFinal && sequence == count - 1};
    previousHash = workingCheckpointHash(checkpoint);
    chain.push_back(std::move(checkpoint));
  }
  return chain;
}

}  // namespace kovi::testing
