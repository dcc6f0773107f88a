#pragma once

#include <expected>
#include <string>

namespace kovi::tool {

// The contents of FILE arguments: a path, or "-" for standard input. Files
// larger than 16 MiB are refused. The error names the file and the reason.
std::expected<std::string, std::string> readInput(const std::string& pathOrDash);

// Reports input that cannot be read or decoded ("kovi: <reason>" on standard
// error) and ends the command with status 2, a usage problem.
void refuseInput(const std::string& reason);

}  // namespace kovi::tool
