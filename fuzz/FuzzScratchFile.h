#pragma once

// Fuzz targets that read files write each input to a scratch file first.
// Plain writes: the input needs no durability, and a flush to disk per input
// would slow the fuzzer a hundredfold.
#include <filesystem>
#include <fstream>
#include <string_view>

namespace kovi::fuzz {

inline bool writeScratchFile(const std::filesystem::path& path, std::string_view bytes) {
  std::error_code error;
  std::filesystem::create_directories(path.parent_path(), error);
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  return static_cast<bool>(out.flush());
}

}  // namespace kovi::fuzz
