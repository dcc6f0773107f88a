#pragma once

#include <filesystem>

#include "KoviKit/evidence/HealthStepSample.h"

namespace kovi {

// The health store of a device without one: the Health export a phone
// produces. `path` is the `export.zip` (holding
// `apple_health_export/export.xml`), the bare `export.xml`, or a JSON sample
// file in the small format of `HealthStepSample`; the first bytes tell which.
// The XML is streamed, inflated straight out of the archive when zipped, so
// memory stays flat however large the export; only samples that overlap the
// asked interval are kept.
class HealthExportStore final : public HealthEvidenceStore {
 public:
  // A JSON sample file is read whole, so it is held to this size.
  static constexpr std::size_t kSampleFileLimit = 16 * 1024 * 1024;

  explicit HealthExportStore(std::filesystem::path path, HealthReadProgress progress = {});

  // An export says nothing about the permission prompt.
  HealthEvidenceAuthorization authorization() const override { return HealthEvidenceAuthorization::unknown; }

  // The error names the file and why it could not be read: missing, not an
  // export, a zip without `export.xml`, cut short, or a bad sample.
  std::expected<std::vector<HealthStepSample>, std::string> stepSamples(UnixMillis from, UnixMillis to) override;

 private:
  std::filesystem::path path_;
  HealthReadProgress progress_;
};

}  // namespace kovi
