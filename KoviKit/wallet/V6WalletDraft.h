#pragma once

#include <array>
#include <cstdint>
#include <expected>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/wallet/V6WalletJson.h"
#include "KoviKit/wallet/V6WalletStake.h"

namespace kovi {

// What kind of evidence judges a kovi.
enum class V6WalletDomain { walking, working };

template <>
struct EnumNames<V6WalletDomain> {
  static constexpr std::array table{
      std::pair{V6WalletDomain::walking, std::string_view("walking")},
      std::pair{V6WalletDomain::working, std::string_view("working")},
  };
};

// What a creator fills in before a staked kovi goes on chain.
struct V6WalletDraft {
  // How and when the kovi starts.
  struct Start {
    std::string mode;  // such as "walkingFixedStart"
    std::optional<std::int64_t> startsAt;
    std::optional<std::int64_t> activationDeadline;
    bool operator==(const Start&) const = default;
  };

  V6WalletDomain domain = V6WalletDomain::walking;
  std::string title;
  // Random per draft, so two equal drafts are distinct on chain.
  std::string salt;
  std::vector<std::string> invitees;
  V6StakeAmount stakeAmount;
  std::int64_t capacity = 0;
  // Seconds since 1970.
  std::int64_t joinDeadline = 0;
  // The domain's rule record, as the creator wrote it; `checkV6WalletDraft`
  // decodes it with the domain's own rules.
  nlohmann::ordered_json rules;
  std::optional<std::string> roomId;
  std::optional<std::int64_t> evidenceGraceSeconds;
  std::optional<Start> start;

  bool operator==(const V6WalletDraft&) const = default;
};

template <>
struct JsonRecordFields<V6WalletDraft::Start> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("mode", &V6WalletDraft::Start::mode),
      field("startsAt", &V6WalletDraft::Start::startsAt),
      field("activationDeadline", &V6WalletDraft::Start::activationDeadline),
  };
};

template <>
struct JsonRecordFields<V6WalletDraft> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{
      field("domain", &V6WalletDraft::domain),
      field("title", &V6WalletDraft::title),
      field("salt", &V6WalletDraft::salt),
      field("invitees", &V6WalletDraft::invitees),
      field("stakeAmount", &V6WalletDraft::stakeAmount),
      field("capacity", &V6WalletDraft::capacity),
      field("joinDeadline", &V6WalletDraft::joinDeadline),
      field("rules", &V6WalletDraft::rules),
      field("roomId", &V6WalletDraft::roomId),
      field("evidenceGraceSeconds", &V6WalletDraft::evidenceGraceSeconds),
      field("start", &V6WalletDraft::start),
  };
};

// What the record's types cannot say: the rules are a valid rule set of the
// draft's domain, and the counts are not negative. The error names the key
// path ("rules.durationDays: missing key").
std::expected<void, DecodeError> checkV6WalletDraft(const V6WalletDraft& draft);

}  // namespace kovi
