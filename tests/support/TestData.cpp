#include "tests/support/TestData.h"

#include <fstream>
#include <iterator>

namespace kovi::testing {

std::string readTestFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::string testDataFile(std::string_view area, std::string_view name) {
  return readTestFile(std::filesystem::path(KOVI_SOURCE_DIR) / "tests" / area / "data" / name);
}

}  // namespace kovi::testing
