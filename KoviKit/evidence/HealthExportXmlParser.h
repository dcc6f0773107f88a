#pragma once

#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/evidence/HealthStepSample.h"

namespace kovi {

// Reads the step samples out of a Health export's `export.xml` as its bytes
// arrive, so an export of any size is read in flat memory. Step samples are
// the `Record` elements of type "HKQuantityTypeIdentifierStepCount" with
// `startDate` and `endDate` ("2026-03-02 09:41:07 +0300"), `value` and
// `sourceName`; every other element is skipped. The document must be a
// `HealthData` element, nested no deeper than `kMaxDepth`.
class HealthExportXmlParser {
 public:
  static constexpr int kMaxDepth = 32;
  using SampleSink = std::function<void(HealthStepSample&& sample)>;

  explicit HealthExportXmlParser(SampleSink sink);
  ~HealthExportXmlParser();
  HealthExportXmlParser(const HealthExportXmlParser&) = delete;
  HealthExportXmlParser& operator=(const HealthExportXmlParser&) = delete;

  // The next piece of the document. The error names the line and the reason
  // ("line 12: startDate \"x\" is not a date"); after one, nothing more is read.
  std::expected<void, std::string> feed(std::string_view bytes);
  // The end of the document: a document cut short fails here.
  std::expected<void, std::string> finish();

 private:
  struct State;
  std::expected<void, std::string> parse(std::string_view bytes, bool last);
  std::unique_ptr<State> state_;
};

// "2026-03-02 09:41:07 +0300" as Unix milliseconds; nullopt for anything else.
std::optional<UnixMillis> parseHealthExportDate(std::string_view text);

}  // namespace kovi
