#include "KoviKit/purrl/PurrlAPI.h"

namespace kovi {
namespace purrl_api {

// The body of the countdown endpoint: an object, so the service can add to it.
struct CountdownList {
  std::vector<PurrlFocusExamCountdown> countdowns;
};

struct DailySetTargets {
  std::vector<PurrlFocusDailySetTarget> items;
};

}  // namespace purrl_api

template <>
struct JsonRecordFields<purrl_api::CountdownList> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("countdowns", &purrl_api::CountdownList::countdowns)};
};

template <>
struct JsonRecordFields<purrl_api::DailySetTargets> : LenientJsonRecord {
  static constexpr auto fields = std::tuple{field("items", &purrl_api::DailySetTargets::items)};
};

namespace {

NativeClientOptions withFeatures(NativeClientOptions options) {
  options.extraHeaders.push_back({std::string(kPurrlFeaturesHeader), std::string(kPurrlFeatures)});
  return options;
}

}  // namespace

PurrlAPI::PurrlAPI(const NativeServiceOrigin& origin, NativeClientOptions options)
    : NativeServiceClient(origin, kPurrlErrorTable, withFeatures(std::move(options))) {}

PurrlAPI::Result<PurrlCatState> PurrlAPI::cat(std::optional<std::string> token) {
  return send<PurrlCatState>("cat", std::nullopt, std::move(token));
}

PurrlAPI::Result<PurrlFocusStudyStats> PurrlAPI::studyStats(std::optional<std::string> token) {
  return send<PurrlFocusStudyStats>("focus/stats", std::nullopt, std::move(token));
}

PurrlAPI::Result<PurrlFocusDailySets> PurrlAPI::dailySets(std::optional<std::string> token) {
  return send<PurrlFocusDailySets>("focus/daily-sets", std::nullopt, std::move(token));
}

PurrlAPI::Result<PurrlFocusDailySets> PurrlAPI::setDailySets(const std::vector<PurrlFocusDailySetTarget>& targets,
                                                             std::optional<std::string> token) {
  const std::string body = encodeRecord(purrl_api::DailySetTargets{targets}).dump();
  return send<PurrlFocusDailySets>("focus/daily-sets", body, std::move(token));
}

PurrlAPI::Result<std::vector<PurrlFocusExamCountdown>> PurrlAPI::countdowns(std::optional<std::string> token) {
  auto list = send<purrl_api::CountdownList>("focus/countdowns", std::nullopt, std::move(token));
  if (!list) return std::unexpected(list.error());
  return std::move(list->countdowns);
}

PurrlAPI::Result<PurrlFocusMockCalendar> PurrlAPI::mockCalendar(std::optional<std::string> token) {
  return send<PurrlFocusMockCalendar>("focus/mocks", std::nullopt, std::move(token));
}

}  // namespace kovi
