// A main() for fuzz targets built without libFuzzer: feeds every file named on
// the command line (directories are walked) to LLVMFuzzerTestOneInput once, so
// the seed corpus runs as a regression test under any compiler. A crash or a
// sanitizer report fails the run.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  int inputs = 0;
  for (int index = 1; index < argc; ++index) {
    const std::filesystem::path path(argv[index]);
    if (std::filesystem::is_directory(path)) {
      for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.is_regular_file()) inputs += replay(entry.path());
      }
    } else {
      inputs += replay(path);
    }
  }
  std::printf("replayed %d inputs\n", inputs);
  return inputs > 0 ? 0 : 1;
}
