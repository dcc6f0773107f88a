#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "KoviKit/working/WorkingSummaryText.h"

namespace kovi {

// The values inside summary lines, written the way each language writes them
// (ICU, with the language's locale).

// A whole count with the language's grouping: "8.784", "8,784", "8 784".
std::string formatWorkingCount(std::int64_t count, WorkingSummaryLanguage language);

// Basis points as a percentage with up to two decimals: "%25", "25%", "25 %".
std::string formatWorkingPercent(std::int64_t basisPoints, WorkingSummaryLanguage language);

// Whole seconds as hours, minutes and seconds, leaving out zero parts:
// "2 saat 30 dakika", "2 h 30 min", "45 s". Hours do not roll over into days,
// so a daily target reads "24 saat". Zero is "0 dakika" / "0 min".
std::string formatWorkingDuration(std::int64_t seconds, WorkingSummaryLanguage language);

// An instant as a medium date and short time in the IANA zone `zoneID`:
// "29 Mar 2026 00:00", "Mar 29, 2026, 12:00 AM", "29 mars 2026, 00:00".
std::string formatWorkingInstant(std::int64_t unixMillis, std::string_view zoneID, WorkingSummaryLanguage language);

}  // namespace kovi
