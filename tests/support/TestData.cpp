#include "tests/support/TestData.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace kovi::testing {

std::string readTestFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::filesystem::path testDataPath(std::string_view area, std::string_view name) {
  return std::filesystem::path(KOVI_SOURCE_DIR) / "tests" / area / "data" / name;
}

std::string testDataFile(std::string_view area, std::string_view name) {
  const std::filesystem::path path = testDataPath(area, name);
  std::ifstream in(path, std::ios::binary);
  if (!in) ADD_FAILURE() << "missing test data " << path;
  return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace kovi::testing
