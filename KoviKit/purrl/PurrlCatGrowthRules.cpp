#include "KoviKit/purrl/PurrlCatGrowthRules.h"

#include <algorithm>

namespace kovi::PurrlCatGrowthRules {
namespace {

template <std::size_t N>
std::optional<int> positionIn(const std::array<std::string_view, N>& list, std::string_view name) {
  const auto found = std::ranges::find(list, name);
  if (found == list.end()) return std::nullopt;
  return static_cast<int>(found - list.begin());
}

// The mood before petting, by the first rule that applies.
PurrlCatMoodResult unpettedMood(const PurrlCatMoodInputs& in) {
  using enum PurrlCatMood;
  using Reason = PurrlCatMoodReason;
  if (in.missedRecently && in.things == 0) return {sulky, Reason::missedKovi};
  if (in.things == 0 && !in.keptRecently && !in.missedRecently) {
    if (in.awayDays > 1) return {bored, Reason::away};
    if (in.hour > 16) return {bored, Reason::quietDay};
    return {content, Reason::calm};
  }
  if (in.keptRecently) return {in.things == 0 ? happy : glowing, Reason::keptKovi};
  if (in.things > 2) return {glowing, Reason::busyDay};
  if (in.things != 0) return {happy, Reason::busyDay};
  return {content, Reason::calm};
}

// Petting moves the mood one step towards `glowing`.
PurrlCatMoodResult petted(PurrlCatMoodResult before) {
  using enum PurrlCatMood;
  switch (before.mood) {
    case glowing:
    case happy: return {glowing, before.reason};
    case content: return {happy, PurrlCatMoodReason::petted};
    case bored:
      // A cat bored because its person was away still says so.
      return {content, before.reason == PurrlCatMoodReason::away ? PurrlCatMoodReason::away : PurrlCatMoodReason::petted};
    case sulky: return {content, PurrlCatMoodReason::petted};
    case sleepy: return before;
  }
  return before;
}

}  // namespace

PurrlCatMoodResult mood(const PurrlCatMoodInputs& inputs) {
  // Waking hours are 6 to 22 inclusive; a sleeping cat is not woken by petting.
  if (inputs.hour < 6 || inputs.hour > 22) return {PurrlCatMood::sleepy, PurrlCatMoodReason::night};
  const PurrlCatMoodResult before = unpettedMood(inputs);
  return inputs.petted ? petted(before) : before;
}

bool isShowable(const PurrlCatGrowthReward& reward) {
  if (reward.kind == "stage") return reward.ref == "young" || reward.ref == "grown";
  if (reward.kind == "trick") return positionIn(tricks, reward.ref).has_value();
  if (reward.kind == "item") return positionIn(items, reward.ref).has_value();
  return false;
}

int trickPosition(std::string_view trick) {
  return positionIn(tricks, trick).value_or(static_cast<int>(tricks.size()));
}

std::optional<int> stagePosition(std::string_view stage) { return positionIn(stages, stage); }

int itemPosition(std::string_view item) { return positionIn(items, item).value_or(static_cast<int>(items.size())); }

}  // namespace kovi::PurrlCatGrowthRules
