#include "KoviKit/evidence/EvidenceReadScope.h"

#include "KoviKit/foundation/Sha256.h"

namespace kovi {

std::optional<std::string> EvidenceReadScope::invalidReason() const {
  for (const auto& [name, value] : {std::pair{"ownerID", &ownerID}, std::pair{"subjectID", &subjectID},
                                    std::pair{"bindingID", &bindingID}, std::pair{"writerDeviceID", &writerDeviceID}}) {
    if (value->empty()) return std::string(name) + " is empty";
    if (value->size() > kMaxIdentifierBytes) {
      return std::string(name) + " is longer than " + std::to_string(kMaxIdentifierBytes) + " bytes";
    }
  }
  if (writerEpoch < 0) return "writerEpoch is negative";
  return std::nullopt;
}

std::string EvidenceReadScope::digest() const {
  std::string input;
  const auto enter = [&input](std::string_view value) {
    const auto size = static_cast<std::uint64_t>(value.size());
    for (int shift = 56; shift >= 0; shift -= 8) input.push_back(static_cast<char>((size >> shift) & 0xff));
    input.append(value);
  };
  enter(enumName(kind));
  enter(ownerID);
  enter(subjectID);
  enter(bindingID);
  enter(std::to_string(writerEpoch));
  enter(writerDeviceID);
  return sha256Hex(input);
}

}  // namespace kovi
