#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/working/WorkingRules.h"
#include "KoviKit/working/WorkingWireJson.h"

namespace kovi {

// A working kovi room as the service keeps it: its consented rules, its
// members and, for a funded kovi, its on-chain binding.
struct WorkingRemoteRoom {
  // The escrow registry and the kovi's id in it.
  struct ChainBinding {
    std::string registryAddress;  // 20-byte hexadecimal address
    std::string koviId;
    bool operator==(const ChainBinding&) const = default;
  };

  // What a member lets the others see of them, within what the rules allow.
  struct Visibility {
    WorkingRules::Privacy::Presence presence = WorkingRules::Privacy::Presence::activeStatus;
    bool exactDuration = false;
    bool operator==(const Visibility&) const = default;
  };

  struct Member {
    std::string accountID;
    std::optional<std::string> approvedHash;  // the rules hash the member consented to
    UnixMillis joinedAt = 0;
    std::optional<UnixMillis> leftAt;
    std::optional<Visibility> visibility;
    bool operator==(const Member&) const = default;
  };

  std::string id;
  std::string title;
  std::string creatorID;
  std::int64_t capacity = 0;
  WorkingRules rules{};
  std::string rulesHash;
  std::string status;
  std::vector<Member> members;
  std::optional<WorkingOpaqueJson> coordinators;
  std::optional<ChainBinding> chain;
  std::optional<std::string> protocol;
  std::optional<std::string> v6ReviewDigest;
  std::optional<UnixMillis> joinDeadline;

  bool operator==(const WorkingRemoteRoom&) const = default;
};

template <>
struct JsonRecordFields<WorkingRemoteRoom::ChainBinding> : LenientJsonRecord {
  using R = WorkingRemoteRoom::ChainBinding;
  static constexpr auto fields = std::tuple{field("registryAddress", &R::registryAddress), field("koviId", &R::koviId)};
};

template <>
struct JsonRecordFields<WorkingRemoteRoom::Visibility> : LenientJsonRecord {
  using R = WorkingRemoteRoom::Visibility;
  static constexpr auto fields = std::tuple{field("presence", &R::presence), field("exactDuration", &R::exactDuration)};
};

template <>
struct JsonRecordFields<WorkingRemoteRoom::Member> : LenientJsonRecord {
  using R = WorkingRemoteRoom::Member;
  static constexpr auto fields =
      std::tuple{field("accountID", &R::accountID), field("approvedHash", &R::approvedHash),
                 field("joinedAt", &R::joinedAt), field("leftAt", &R::leftAt), field("visibility", &R::visibility)};
};

template <>
struct JsonRecordFields<WorkingRemoteRoom> : LenientJsonRecord {
  using R = WorkingRemoteRoom;
  static constexpr auto fields = std::tuple{
      field("id", &R::id),
      field("title", &R::title),
      field("creatorID", &R::creatorID),
      field("capacity", &R::capacity),
      field("rules", &R::rules),
      field("rulesHash", &R::rulesHash),
      field("status", &R::status),
      field("members", &R::members),
      field("coordinators", &R::coordinators),
      field("chain", &R::chain),
      field("protocol", &R::protocol),
      field("v6ReviewDigest", &R::v6ReviewDigest),
      field("joinDeadline", &R::joinDeadline)};
};

}  // namespace kovi
