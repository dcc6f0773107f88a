#pragma once

#include "KoviKit/native/NativeErrorTable.h"

namespace kovi {

// The purrl service's codes (the cat and the study side of focus runs) and
// the messages users read for them. "purrl_unavailable" is the service's
// answer while the cat cannot be reached at all.
extern const NativeErrorTable kPurrlErrorTable;

}  // namespace kovi
