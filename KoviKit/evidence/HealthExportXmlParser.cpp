#include "KoviKit/evidence/HealthExportXmlParser.h"

#include <expat.h>

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstring>

namespace kovi {
namespace {

constexpr std::string_view kStepCountType = "HKQuantityTypeIdentifierStepCount";

std::optional<int> digits(std::string_view text, std::size_t offset, std::size_t count) {
  int value = 0;
  for (std::size_t i = offset; i < offset + count; ++i) {
    if (text[i] < '0' || text[i] > '9') return std::nullopt;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

}  // namespace

std::optional<UnixMillis> parseHealthExportDate(std::string_view text) {
  // "YYYY-MM-DD HH:MM:SS +HHMM": fixed width, as every export writes it.
  if (text.size() != 25 || text[4] != '-' || text[7] != '-' || text[10] != ' ' || text[13] != ':' ||
      text[16] != ':' || text[19] != ' ' || (text[20] != '+' && text[20] != '-')) {
    return std::nullopt;
  }
  const auto year = digits(text, 0, 4), month = digits(text, 5, 2), day = digits(text, 8, 2);
  const auto hour = digits(text, 11, 2), minute = digits(text, 14, 2), second = digits(text, 17, 2);
  const auto offsetHours = digits(text, 21, 2), offsetMinutes = digits(text, 23, 2);
  if (!year || !month || !day || !hour || !minute || !second || !offsetHours || !offsetMinutes) return std::nullopt;
  if (*hour > 23 || *minute > 59 || *second > 59 || *offsetHours > 23 || *offsetMinutes > 59 || *year < 1) {
    return std::nullopt;
  }
  const std::chrono::year_month_day date{std::chrono::year(*year), std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day))};
  if (!date.ok()) return std::nullopt;
  using std::chrono::hours, std::chrono::minutes, std::chrono::seconds;
  const auto offset = minutes(*offsetHours * 60 + *offsetMinutes) * (text[20] == '-' ? -1 : 1);
  const auto local = std::chrono::sys_days(date) + hours(*hour) + minutes(*minute) + seconds(*second);
  const auto instant = std::chrono::duration_cast<std::chrono::milliseconds>((local - offset).time_since_epoch());
  return static_cast<UnixMillis>(instant.count());
}

struct HealthExportXmlParser::State {
  XML_Parser parser = nullptr;
  SampleSink sink;
  int depth = 0;
  bool sawRoot = false;
  std::optional<std::string> failure;

  void fail(std::string reason) {
    if (failure) return;
    failure = "line " + std::to_string(XML_GetCurrentLineNumber(parser)) + ": " + std::move(reason);
    XML_StopParser(parser, XML_FALSE);
  }

  void onRecord(const XML_Char** attributes) {
    std::string_view type, start, end, value, source;
    for (const XML_Char** pair = attributes; pair[0] != nullptr; pair += 2) {
      const std::string_view name = pair[0];
      if (name == "type") {
        type = pair[1];
        if (type != kStepCountType) return;
      } else if (name == "startDate") {
        start = pair[1];
      } else if (name == "endDate") {
        end = pair[1];
      } else if (name == "value") {
        value = pair[1];
      } else if (name == "sourceName") {
        source = pair[1];
      }
    }
    if (type != kStepCountType) return;
    HealthStepSample sample;
    const auto startInstant = parseHealthExportDate(start);
    if (!startInstant) return fail("startDate \"" + std::string(start) + "\" is not a date");
    const auto endInstant = parseHealthExportDate(end);
    if (!endInstant) return fail("endDate \"" + std::string(end) + "\" is not a date");
    if (*endInstant < *startInstant) return fail("a step sample ends before it starts");
    const auto parsed = std::from_chars(value.data(), value.data() + value.size(), sample.value);
    if (value.empty() || parsed.ec != std::errc() || parsed.ptr != value.data() + value.size() ||
        !std::isfinite(sample.value) || sample.value < 0) {
      return fail("value \"" + std::string(value) + "\" is not a step count");
    }
    sample.start = *startInstant;
    sample.end = *endInstant;
    sample.source = source;
    sink(std::move(sample));
  }

  static void XMLCALL start(void* data, const XML_Char* name, const XML_Char** attributes) {
    auto& state = *static_cast<State*>(data);
    if (++state.depth > kMaxDepth) return state.fail("elements nested deeper than " + std::to_string(kMaxDepth));
    if (state.depth == 1) {
      if (std::strcmp(name, "HealthData") != 0) {
        return state.fail("the document is <" + std::string(name) + ">, not a Health export's <HealthData>");
      }
      state.sawRoot = true;
    } else if (state.depth == 2 && std::strcmp(name, "Record") == 0) {
      state.onRecord(attributes);
    }
  }

  static void XMLCALL end(void* data, const XML_Char*) { --static_cast<State*>(data)->depth; }
};

HealthExportXmlParser::HealthExportXmlParser(SampleSink sink) : state_(std::make_unique<State>()) {
  state_->sink = std::move(sink);
  state_->parser = XML_ParserCreate("UTF-8");
  if (state_->parser == nullptr) {
    state_->failure = "out of memory for the XML parser";
    return;
  }
  XML_SetUserData(state_->parser, state_.get());
  XML_SetElementHandler(state_->parser, &State::start, &State::end);
}

HealthExportXmlParser::~HealthExportXmlParser() {
  if (state_->parser != nullptr) XML_ParserFree(state_->parser);
}

std::expected<void, std::string> HealthExportXmlParser::parse(std::string_view bytes, bool last) {
  if (state_->failure) return std::unexpected(*state_->failure);
  // Expat takes an int length; feed large pieces in slices it can take.
  constexpr std::size_t kSlice = 1 << 30;
  do {
    const std::size_t size = std::min(bytes.size(), kSlice);
    const bool final = last && size == bytes.size();
    if (XML_Parse(state_->parser, bytes.data(), static_cast<int>(size), final ? XML_TRUE : XML_FALSE) !=
        XML_STATUS_OK) {
      if (!state_->failure) {
        state_->failure = "line " + std::to_string(XML_GetCurrentLineNumber(state_->parser)) + ": " +
                          XML_ErrorString(XML_GetErrorCode(state_->parser));
      }
      return std::unexpected(*state_->failure);
    }
    bytes.remove_prefix(size);
  } while (!bytes.empty());
  if (last && !state_->sawRoot) return std::unexpected(std::string("the document has no <HealthData> element"));
  return {};
}

std::expected<void, std::string> HealthExportXmlParser::feed(std::string_view bytes) { return parse(bytes, false); }

std::expected<void, std::string> HealthExportXmlParser::finish() { return parse({}, true); }

}  // namespace kovi
