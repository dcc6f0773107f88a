#include "KoviMacHolds/MacHoldsShield.h"

#include <unicode/udat.h>
#include <unicode/uloc.h>

#include <memory>

#include "KoviKit/foundation/IcuText.h"
#include "KoviKit/foundation/Localization.h"
#include "KoviMacHolds/MacHoldsLog.h"

namespace kovi::holds {

std::string MacHoldsShieldView::title() { return localized("Kovi focus"); }

bool MacHoldsShieldView::isExamWeek() const {
  return due.kind == MacHoldsDue::Kind::social || due.kind == MacHoldsDue::Kind::socialOpen;
}

MacPurrlCat MacHoldsShieldView::cat() const { return {MacPurrlCatPose::sleepy, catStage, false}; }

std::string MacHoldsShieldView::caption() const { return localized("it can wait."); }

std::string MacHoldsShieldView::holdLabel() const {
  if (isExamWeek()) return localized("Exam week");
  if (due.kind == MacHoldsDue::Kind::sleep) return localized("Sleep wind-down");
  return localized("Study");
}

std::string MacHoldsShieldView::headline() const {
  if (isExamWeek()) {
    return appName ? *appName + localized(" is resting during exam week")
                   : localized("This app is resting during exam week");
  }
  return (appName ? *appName + localized(" is resting during ") : localized("This app is resting during ")) +
         holdLabel();
}

std::string MacHoldsShieldView::timeLine(const Calendar& calendar) const {
  if (!due.until) return {};
  return localized("Held until ") + formatMacHoldsTime(*due.until, calendar);
}

std::string MacHoldsShieldView::footnote() const {
  if (isExamWeek()) {
    return localized(
        "Kovi is closed, so this Mac follows your last synced exam week. To use your Social allowance, open Kovi. "
        "Nothing was closed.");
  }
  return localized("Kovi is closed, so this Mac follows your last synced schedule. Nothing was closed.");
}

std::array<MacHoldsShieldButton, 2> MacHoldsShieldView::buttons() const {
  return {
      MacHoldsShieldButton{localized("Open Kovi"), "arrow.up.forward.app", {.primary = false}, openKovi, false},
      MacHoldsShieldButton{localized("Back to focus"), std::nullopt, {.primary = true}, back, true},
  };
}

std::string formatMacHoldsTime(Date date, const Calendar& calendar) {
  const std::u16string zone = toUtf16(calendar.zoneID());
  UErrorCode status = U_ZERO_ERROR;
  std::unique_ptr<UDateFormat, decltype(&udat_close)> format(
      udat_open(UDAT_SHORT, UDAT_NONE, uloc_getDefault(), zone.data(), static_cast<int32_t>(zone.size()), nullptr,
                0, &status),
      &udat_close);
  if (U_FAILURE(status)) {
    // Without a formatter the wall clock still reads right as 24-hour time.
    return wallClockTime(date, calendar);
  }
  std::u16string buffer(32, u'\0');
  status = U_ZERO_ERROR;
  const int32_t length =
      udat_format(format.get(), date.unixMillisExact(), buffer.data(), static_cast<int32_t>(buffer.size()), nullptr,
                  &status);
  buffer.resize(U_SUCCESS(status) ? static_cast<std::size_t>(length) : 0);
  return toUtf8(buffer);
}

}  // namespace kovi::holds
