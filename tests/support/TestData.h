#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace kovi::testing {

// The whole text of a file a test reads (a fixture, a process's log); empty
// when there is none, so a failure message can always print it.
std::string readTestFile(const std::filesystem::path& file);

// A fixture kept under tests/<area>/data/ in the source tree.
std::string testDataFile(std::string_view area, std::string_view name);

}  // namespace kovi::testing
