#pragma once

#include <string>

namespace kovi {

// Why a scheduled-start store could not do what was asked. The message names
// the key or file and the reason, never a record's contents.
struct WorkingScheduledStoreError {
  enum class Kind {
    invalidKey,   // an owner, room or chain binding that cannot name a record
    unreadable,   // the storage exists but cannot be read
    corrupt,      // a stored record does not decode; it is kept as it is
    unwritable,   // the change could not be saved; the old record stands
  };
  Kind kind;
  std::string message;
  bool operator==(const WorkingScheduledStoreError&) const = default;
};

}  // namespace kovi
