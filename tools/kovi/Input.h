#pragma once

#include <expected>
#include <string>

namespace kovi::tool {

// The contents of FILE arguments: a path, or "-" for standard input. Files
// larger than 16 MiB are refused. The error names the file and the reason.
std::expected<std::string, std::string> readInput(const std::string& pathOrDash);

}  // namespace kovi::tool
