#include "KoviKit/evidence/V6WalkingReceipt.h"

#include "KoviKit/foundation/JsonFields.h"

namespace kovi {

Decoded<V6WalkingReceipt::Accepted> JsonDecoder<V6WalkingReceipt::Accepted>::decode(const JsonView& json) {
  V6WalkingReceipt::Accepted accepted;
  auto read = readFields(json, field("day", accepted.day), field("revision", accepted.revision),
                         field("payloadHash", accepted.payloadHash));
  if (!read) return std::unexpected(read.error());
  return accepted;
}

Decoded<V6WalkingReceipt> JsonDecoder<V6WalkingReceipt>::decode(const JsonView& json) {
  V6WalkingReceipt receipt;
  auto read = readFields(json, field("requestId", receipt.requestId), field("writerEpoch", receipt.writerEpoch),
                         field("deviceKeyId", receipt.deviceKeyId), field("accepted", receipt.accepted));
  if (!read) return std::unexpected(read.error());
  return receipt;
}

}  // namespace kovi
