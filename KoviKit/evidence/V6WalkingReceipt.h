#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"

namespace kovi {

// The service's answer to a submission.
struct V6WalkingReceipt {
  struct Accepted {
    int day = 0;
    std::int64_t revision = 0;
    std::string payloadHash;
    bool operator==(const Accepted&) const = default;
  };

  std::string requestId;
  std::int64_t writerEpoch = 0;
  std::string deviceKeyId;
  std::vector<Accepted> accepted;

  bool operator==(const V6WalkingReceipt&) const = default;
};

// A wire record: unknown keys are ignored.
// Service answers: unknown keys are ignored.
template <>
struct JsonRecordFields<V6WalkingReceipt::Accepted> : LenientJsonRecord {
  using A = V6WalkingReceipt::Accepted;
  static constexpr auto fields =
      std::tuple{field("day", &A::day), field("revision", &A::revision), field("payloadHash", &A::payloadHash)};
};

template <>
struct JsonRecordFields<V6WalkingReceipt> : LenientJsonRecord {
  using R = V6WalkingReceipt;
  static constexpr auto fields = std::tuple{field("requestId", &R::requestId), field("writerEpoch", &R::writerEpoch),
                                            field("deviceKeyId", &R::deviceKeyId), field("accepted", &R::accepted)};
};

}  // namespace kovi
