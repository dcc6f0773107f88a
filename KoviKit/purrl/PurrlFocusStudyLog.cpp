#include "KoviKit/purrl/PurrlFocusStudyLog.h"

#include <algorithm>
#include <set>

namespace kovi {

std::expected<PurrlFocusStudyLog::Result, std::string> PurrlFocusStudyLog::Result::scored(
    PurrlFocusMockExam exam, const std::vector<PurrlFocusMockSection>& answers) {
  const auto sections = purrlMockSections(exam);
  const std::string paper(enumName(exam));
  Result result;
  std::set<std::string, std::less<>> taken;
  for (const PurrlFocusMockSection& answer : answers) {
    const auto section = std::ranges::find(sections, answer.id, &PurrlFocusMockExamSection::id);
    if (section == sections.end()) return std::unexpected("section " + answer.id + " is not part of " + paper);
    if (!taken.insert(answer.id).second) return std::unexpected("section " + answer.id + " is counted twice");
    if (answer.correct < 0 || answer.wrong < 0 || answer.blank < 0) {
      return std::unexpected("section " + answer.id + " has a negative count");
    }
    // Counts are small, but the sum is formed in 64 bits so no input overflows.
    const long long answered = static_cast<long long>(answer.correct) + answer.wrong + answer.blank;
    if (answered != section->questions) {
      return std::unexpected("section " + answer.id + " has " + std::to_string(section->questions) +
                             " questions, not " + std::to_string(answered));
    }
    PurrlFocusMockSection scoredSection = answer;
    scoredSection.net = purrlMockNet(exam, answer.correct, answer.wrong);
    result.net += scoredSection.net;
    result.sections.push_back(std::move(scoredSection));
  }
  return result;
}

}  // namespace kovi
