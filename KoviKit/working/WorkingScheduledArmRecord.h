#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/working/WorkingRemoteRoom.h"
#include "KoviKit/working/WorkingRemoteSession.h"

namespace kovi {

// What the Mac keeps for one armed scheduled start: the room and the session
// as the service last answered them, and whether the arm is closed. A record
// belongs to the room's chain binding, so a room without a valid one cannot
// be stored.
struct WorkingScheduledArmRecord {
  WorkingRemoteRoom room;
  WorkingRemoteSession session;
  bool closed = false;

  // "<registryAddress>:<koviId>" of the room, absent for a room without a
  // chain binding or one that is not "^0x[0-9a-f]{40}:[1-9][0-9]{0,30}$".
  std::optional<std::string> chainBinding() const;

  bool operator==(const WorkingScheduledArmRecord&) const = default;
};

// One arm file: {"version": 1, "chainBinding": "0x…:42", "record": {…}}. The
// file names its binding beside the record, and it must be the record room's
// binding, so a file copied or renamed onto another binding is caught. The
// version is checked before anything else (see decodeWorkingScheduledArmFile).
struct WorkingScheduledArmFile {
  static constexpr std::int64_t kVersion = 1;
  std::int64_t version = kVersion;
  std::string chainBinding;
  WorkingScheduledArmRecord record;
  bool operator==(const WorkingScheduledArmFile&) const = default;
};

template <>
struct JsonRecordFields<WorkingScheduledArmRecord> : StrictJsonRecord {
  using R = WorkingScheduledArmRecord;
  static constexpr auto fields =
      std::tuple{field("room", &R::room), field("session", &R::session), field("closed", &R::closed)};
  static Decoded<void> validate(const WorkingScheduledArmRecord& record, const JsonView& json);
};

template <>
struct JsonRecordFields<WorkingScheduledArmFile> : StrictJsonRecord {
  using F = WorkingScheduledArmFile;
  static constexpr auto fields = std::tuple{field("version", &F::version), field("chainBinding", &F::chainBinding),
                                            field("record", &F::record)};
  static Decoded<void> validate(const WorkingScheduledArmFile& file, const JsonView& json);
};

}  // namespace kovi
