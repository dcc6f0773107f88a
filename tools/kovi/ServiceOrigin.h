#pragma once

#include <expected>
#include <string>

#include "KoviKit/native/NativeServiceOrigin.h"

namespace kovi::tool {

// The service origin from $KOVI_SERVICE_ORIGIN; the error says what to set.
std::expected<NativeServiceOrigin, std::string> configuredOrigin();

}  // namespace kovi::tool
