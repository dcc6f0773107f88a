#pragma once

#include <string_view>

#include "KoviKit/working/WorkingCommandAcknowledgement.h"

namespace kovi {

// The command kind that resumes work after a break; its acknowledgement
// reads differently, since only newly verified work counts after it.
inline constexpr std::string_view kWorkingResumeCommandKind = "resume";

// What the phone shows once the Mac has acknowledged a command of `kind`.
// None of the texts promises work time: an acknowledgement adds none.
std::string_view workingCommandOutcomeText(const WorkingCommandAcknowledgement& acknowledgement,
                                           std::string_view kind);

}  // namespace kovi
