#pragma once

#include "KoviKit/native/NativeErrorTable.h"

namespace kovi {

// The account service's codes and the messages users read for them.
extern const NativeErrorTable kNativeAccountErrorTable;

}  // namespace kovi
