#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kovi::testing {

// The whole text of a file a test reads (a fixture, a process's log); empty
// when there is none, so a failure message can always print it.
std::string readTestFile(const std::filesystem::path& file);

// Where a fixture kept under tests/<area>/data/ in the source tree is.
std::filesystem::path testDataPath(std::string_view area, std::string_view name);

// A fixture's whole text; fails the running test when it cannot be read.
std::string testDataFile(std::string_view area, std::string_view name);

}  // namespace kovi::testing
