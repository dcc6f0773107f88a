#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "KoviKit/foundation/Json.h"

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
template <>
struct JsonDecoder<V6WalkingReceipt::Accepted> {
  static Decoded<V6WalkingReceipt::Accepted> decode(const JsonView& json);
};

template <>
struct JsonDecoder<V6WalkingReceipt> {
  static Decoded<V6WalkingReceipt> decode(const JsonView& json);
};

}  // namespace kovi
