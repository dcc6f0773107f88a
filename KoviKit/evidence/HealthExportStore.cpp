#include "KoviKit/evidence/HealthExportStore.h"

#include <zip.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>

#include "KoviKit/evidence/HealthExportXmlParser.h"
#include "KoviKit/foundation/FileIO.h"
#include "KoviKit/foundation/Json.h"

namespace kovi {
namespace {

constexpr std::size_t kChunkBytes = 256 * 1024;
constexpr std::string_view kExportEntry = "apple_health_export/export.xml";
constexpr std::string_view kZipMagic = "PK\x03\x04";

using Samples = std::vector<HealthStepSample>;
using SamplesOrError = std::expected<Samples, std::string>;

bool overlaps(const HealthStepSample& sample, UnixMillis from, UnixMillis to) {
  if (sample.start == sample.end) return sample.start >= from && sample.start < to;
  return sample.start < to && sample.end > from;
}

// Pulls the document through the XML parser one chunk at a time; `next`
// fills the buffer and returns the bytes read, 0 at the end, or an error.
template <class Next>
SamplesOrError parseExportXml(Next next, std::uint64_t total, const HealthReadProgress& progress, UnixMillis from,
                              UnixMillis to) {
  Samples kept;
  HealthExportXmlParser parser([&](HealthStepSample&& sample) {
    if (overlaps(sample, from, to)) kept.push_back(std::move(sample));
  });
  std::vector<char> buffer(kChunkBytes);
  std::uint64_t done = 0;
  for (;;) {
    const std::expected<std::size_t, std::string> count = next(buffer);
    if (!count) return std::unexpected(count.error());
    if (*count == 0) break;
    if (auto fed = parser.feed(std::string_view(buffer.data(), *count)); !fed) {
      return std::unexpected("export.xml " + fed.error());
    }
    done += *count;
    if (progress) progress(done, total);
  }
  if (auto finished = parser.finish(); !finished) return std::unexpected("export.xml " + finished.error());
  return kept;
}

struct ZipCloser {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct ZipFileCloser {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};

// The export inside the archive: the phone's own folder first, else any
// entry named export.xml.
std::optional<zip_uint64_t> findExportEntry(zip_t* archive) {
  const zip_int64_t exact = zip_name_locate(archive, std::string(kExportEntry).c_str(), 0);
  if (exact >= 0) return static_cast<zip_uint64_t>(exact);
  const zip_int64_t count = zip_get_num_entries(archive, 0);
  for (zip_int64_t index = 0; index < count; ++index) {
    const char* name = zip_get_name(archive, static_cast<zip_uint64_t>(index), 0);
    if (name == nullptr) continue;
    const std::string_view entry(name);
    if (entry == "export.xml" || entry.ends_with("/export.xml")) return static_cast<zip_uint64_t>(index);
  }
  return std::nullopt;
}

SamplesOrError readZippedExport(const std::filesystem::path& path, const HealthReadProgress& progress, UnixMillis from,
                                UnixMillis to) {
  int openError = 0;
  std::unique_ptr<zip_t, ZipCloser> archive(zip_open(path.c_str(), ZIP_RDONLY, &openError));
  if (!archive) {
    zip_error_t error;
    zip_error_init_with_code(&error, openError);
    std::string reason = std::string("not a readable zip archive (") + zip_error_strerror(&error) + ")";
    zip_error_fini(&error);
    return std::unexpected(reason);
  }
  const auto entry = findExportEntry(archive.get());
  if (!entry) return std::unexpected(std::string("the archive holds no export.xml"));
  zip_stat_t stat;
  zip_stat_init(&stat);
  const std::uint64_t total =
      zip_stat_index(archive.get(), *entry, 0, &stat) == 0 && (stat.valid & ZIP_STAT_SIZE) ? stat.size : 0;
  std::unique_ptr<zip_file_t, ZipFileCloser> file(zip_fopen_index(archive.get(), *entry, 0));
  if (!file) return std::unexpected(std::string("cannot open export.xml in the archive: ") + zip_strerror(archive.get()));
  return parseExportXml(
      [&](std::vector<char>& buffer) -> std::expected<std::size_t, std::string> {
        const zip_int64_t count = zip_fread(file.get(), buffer.data(), buffer.size());
        if (count < 0) {
          return std::unexpected(std::string("export.xml in the archive is damaged: ") + zip_file_strerror(file.get()));
        }
        return static_cast<std::size_t>(count);
      },
      total, progress, from, to);
}

SamplesOrError readBareExport(std::ifstream& input, std::uint64_t total, const HealthReadProgress& progress,
                              UnixMillis from, UnixMillis to) {
  return parseExportXml(
      [&](std::vector<char>& buffer) -> std::expected<std::size_t, std::string> {
        input.read(buffer.data(), static_cast<std::streamsize>(buffer.size()));
        if (input.bad()) return std::unexpected(std::string("read error: ") + std::strerror(errno));
        return static_cast<std::size_t>(input.gcount());
      },
      total, progress, from, to);
}

SamplesOrError readSampleFile(const std::filesystem::path& path, UnixMillis from, UnixMillis to) {
  auto text = readFileLimited(path, HealthExportStore::kSampleFileLimit);
  if (!text) {
    if (text.error().failure == FileReadFailure::tooLarge) {
      return std::unexpected("a JSON sample file larger than " +
                             std::to_string(HealthExportStore::kSampleFileLimit) + " bytes");
    }
    return std::unexpected(text.error().detail);
  }
  auto samples = decodeJsonText<Samples>(*text);
  if (!samples) return std::unexpected(samples.error().message());
  Samples kept;
  for (std::size_t index = 0; index < samples->size(); ++index) {
    auto& sample = (*samples)[index];
    // Built by appending: GCC 12 warns (falsely) on "literal" + temporary at -O2.
    std::string where = "[";
    where.append(std::to_string(index)).append("]");
    if (!isHealthInstant(sample.start) || !isHealthInstant(sample.end)) {
      return std::unexpected(where + ": instant outside the years 1 to 9999");
    }
    if (sample.end < sample.start) return std::unexpected(where + ": end before start");
    if (!(sample.value >= 0)) return std::unexpected(where + ".value: not a step count");
    if (overlaps(sample, from, to)) kept.push_back(std::move(sample));
  }
  return kept;
}

}  // namespace

HealthExportStore::HealthExportStore(std::filesystem::path path, HealthReadProgress progress)
    : path_(std::move(path)), progress_(std::move(progress)) {}

std::expected<std::vector<HealthStepSample>, std::string> HealthExportStore::stepSamples(UnixMillis from,
                                                                                         UnixMillis to) {
  const auto named = [this](SamplesOrError read) -> SamplesOrError {
    if (!read) return std::unexpected(path_.string() + ": " + read.error());
    return read;
  };
  std::ifstream input(path_, std::ios::binary);
  if (!input) return named(std::unexpected(std::string(std::strerror(errno))));
  std::error_code sizeError;
  const auto size = std::filesystem::file_size(path_, sizeError);
  const std::uint64_t total = sizeError ? 0 : size;

  std::array<char, 4> head{};
  input.read(head.data(), head.size());
  const std::string_view start(head.data(), static_cast<std::size_t>(input.gcount()));
  if (start == kZipMagic) return named(readZippedExport(path_, progress_, from, to));
  const auto first = start.find_first_not_of(" \t\r\n");
  if (first != std::string_view::npos && start[first] == '[') return named(readSampleFile(path_, from, to));
  input.clear();
  input.seekg(0);
  return named(readBareExport(input, total, progress_, from, to));
}

}  // namespace kovi
