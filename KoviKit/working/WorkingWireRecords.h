#pragma once

#include <expected>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// One record of the remote working wire, by the name tools and tests use
// for it ("session", "command", "finalization-response").
struct WorkingWireRecordType {
  std::string_view name;
  // Decodes a document of this record the way the client reads the service
  // (unknown keys ignored, closed enumerations refused, a repeated key
  // refused) and encodes it again in declared key order.
  std::expected<nlohmann::ordered_json, DecodeError> (*reencode)(std::string_view text);
};

// Every record type of the wire, the records first and the answers' wrappers
// after them.
std::span<const WorkingWireRecordType> workingWireRecordTypes();

// The type called `name`, if there is one.
const WorkingWireRecordType* findWorkingWireRecordType(std::string_view name);

}  // namespace kovi
