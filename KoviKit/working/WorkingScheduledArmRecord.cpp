#include "KoviKit/working/WorkingScheduledArmRecord.h"

#include "KoviKit/working/WorkingChainBinding.h"

namespace kovi {
namespace {

// The key path of `key` inside the object at `json`.
std::string pathOf(const JsonView& json, std::string_view key) {
  return json.path().empty() ? std::string(key) : json.path() + "." + std::string(key);
}

}  // namespace

std::optional<std::string> WorkingScheduledArmRecord::chainBinding() const {
  if (!room.chain) return std::nullopt;
  std::string binding = room.chain->registryAddress + ":" + room.chain->koviId;
  if (!isWorkingChainBinding(binding)) return std::nullopt;
  return binding;
}

Decoded<void> JsonRecordFields<WorkingScheduledArmRecord>::validate(const WorkingScheduledArmRecord& record,
                                                                    const JsonView& json) {
  if (record.chainBinding()) return {};
  return std::unexpected(DecodeError{pathOf(json, "room.chain"), "a scheduled arm needs the room's chain binding, "
                                                                 "0x<40 lowercase hex>:<kovi id without leading zero>"});
}

Decoded<void> JsonRecordFields<WorkingScheduledArmFile>::validate(const WorkingScheduledArmFile& file,
                                                                  const JsonView& json) {
  if (file.record.chainBinding() != file.chainBinding) {
    return std::unexpected(DecodeError{pathOf(json, "chainBinding"), "not the binding of the record's room"});
  }
  return {};
}

}  // namespace kovi
