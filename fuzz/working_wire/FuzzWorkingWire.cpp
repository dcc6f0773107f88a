// Working service answers are outside input: any bytes, read as any record
// of the wire, must decode or give a reason, never crash or trap. The first
// byte picks the record type, the rest is the document. A record that
// decodes must encode to a document that decodes to the same encoding.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "KoviKit/working/WorkingWireRecords.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kovi;
  if (size == 0) return 0;
  const auto types = workingWireRecordTypes();
  const WorkingWireRecordType& type = types[data[0] % types.size()];
  const std::string_view text(reinterpret_cast<const char*>(data + 1), size - 1);
  const auto encoded = type.reencode(text);
  if (!encoded) {
    if (encoded.error().reason.empty()) std::abort();
    return 0;
  }
  const std::string once = encoded->dump();
  const auto again = type.reencode(once);
  if (!again || again->dump() != once) std::abort();
  return 0;
}
