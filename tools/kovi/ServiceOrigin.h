#pragma once

#include <expected>
#include <string>

#include "KoviKit/native/NativeServiceOrigin.h"

namespace kovi::tool {

// The service every command that calls it talks to: $KOVI_SERVICE_ORIGIN,
// checked. The error says what to set or what is wrong.
std::expected<NativeServiceOrigin, std::string> configuredServiceOrigin();

}  // namespace kovi::tool
