#pragma once

#include <string>
#include <vector>

#include "KoviKit/working/WorkingRules.h"
#include "KoviKit/working/WorkingSummaryLine.h"

namespace kovi {

// The consent summary of a valid rule set, line by line: the goal and how
// progress is measured, the kovi's days and windows, the race and how the
// pool is shared, leaving, sessions, verification, breaks, blocking, manual
// entry and privacy. Each line is taken from workingsummary:: and says one
// rule of the judgement (see WorkingJudgement).
std::vector<WorkingSummaryLine> summarizeWorkingRules(const WorkingRules& rules);

// The lines rendered in one language.
std::vector<std::string> renderWorkingSummary(const std::vector<WorkingSummaryLine>& lines,
                                              WorkingSummaryLanguage language);

}  // namespace kovi
