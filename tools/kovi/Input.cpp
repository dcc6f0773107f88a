#include "tools/kovi/Input.h"

#include <iostream>
#include <iterator>

#include "KoviKit/foundation/FileIO.h"
#include "tools/kovi/Commands.h"

namespace kovi::tool {
namespace {

constexpr std::size_t kInputLimit = 16 * 1024 * 1024;

}  // namespace

std::expected<std::string, std::string> readInput(const std::string& pathOrDash) {
  if (pathOrDash == "-") {
    std::string contents((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
    if (contents.size() > kInputLimit) return std::unexpected("standard input: larger than 16 MiB");
    return contents;
  }
  auto contents = readFileLimited(pathOrDash, kInputLimit);
  if (contents) return std::move(*contents);
  switch (contents.error().failure) {
    case FileReadFailure::missing: return std::unexpected(pathOrDash + ": no such file");
    case FileReadFailure::tooLarge: return std::unexpected(pathOrDash + ": larger than 16 MiB");
    case FileReadFailure::unreadable: break;
  }
  return std::unexpected(pathOrDash + ": " + contents.error().detail);
}

void refuseInput(const std::string& reason) {
  std::cerr << "kovi: " << reason << '\n';
  exitStatus() = 2;
}

}  // namespace kovi::tool
