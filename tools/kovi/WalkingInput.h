#pragma once

// What the walking and evidence commands read from their arguments: rules
// and reads files, instants, and the kovi's day windows.
#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

#include "KoviKit/evidence/HealthEvidenceDayRead.h"
#include "KoviKit/evidence/WalkingKoviRules.h"
#include "KoviKit/foundation/Json.h"
#include "tools/kovi/Commands.h"
#include "tools/kovi/Input.h"

namespace kovi::tool {

// FILE decoded as T; nullopt after reporting why not (status 2).
template <class T>
std::optional<T> decodeFile(const std::string& path) {
  const auto text = readInput(path);
  if (!text) {
    refuseInput(text.error());
    return std::nullopt;
  }
  auto decoded = decodeJsonText<T>(*text);
  if (!decoded) {
    refuseInput(path + ": " + decoded.error().message());
    return std::nullopt;
  }
  return std::move(*decoded);
}

// A TIME option: ISO 8601 with an offset, kept as Unix milliseconds.
CLI::Option* addInstantOption(CLI::App* command, const std::string& name, std::optional<UnixMillis>& target,
                              const std::string& description);

// The Health export the evidence commands read steps from.
struct HealthExportOptions {
  std::string exportPath;
  std::string sourcePriority;  // comma-separated source names; empty: watches, phones, others
};

// `--export` (required) and `--source-priority`.
void addHealthExportOptions(CLI::App* command, HealthExportOptions& options);

// The kovi's windows: the rules' own `dayWindows` when they verify, else the
// derived ones. Prints the issues and ends with status 1 when they cannot.
std::optional<std::vector<HealthEvidenceDayWindow>> windowsOf(const WalkingKoviRules& rules, UnixMillis start);

}  // namespace kovi::tool
