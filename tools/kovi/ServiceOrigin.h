#pragma once

#include <CLI/CLI.hpp>
#include <expected>
#include <optional>
#include <string>

#include "KoviKit/native/NativeServiceOrigin.h"

namespace kovi::tool {

// The service origin from $KOVI_SERVICE_ORIGIN; the error says what to set.
std::expected<NativeServiceOrigin, std::string> configuredOrigin();

// Adds --token to `command`, read from $KOVI_TOKEN when not given: the session
// token every command that talks to the service sends as
// "Authorization: Bearer TOKEN". Left empty, no Authorization header is sent.
CLI::Option* addTokenOption(CLI::App* command, std::optional<std::string>& token);

}  // namespace kovi::tool
