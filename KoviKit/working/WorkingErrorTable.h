#pragma once

#include "KoviKit/native/NativeErrorTable.h"

namespace kovi {

// The working service's codes and the messages users read for them.
extern const NativeErrorTable kWorkingErrorTable;

}  // namespace kovi
