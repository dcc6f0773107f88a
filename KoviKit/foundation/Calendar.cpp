#include "KoviKit/foundation/Calendar.h"

#include <unicode/ucal.h>

#include <charconv>
#include <cstdio>

#include "KoviKit/foundation/IcuText.h"
#include "KoviKit/foundation/Trap.h"

namespace kovi {
namespace {

struct DayFields {
  int year;
  int month;
  int day;
};

// Reads exactly "YYYY-MM-DD" with digits only. Whether the day exists is
// left to the calendar.
std::optional<DayFields> readDayFields(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  auto number = [&](std::size_t offset, std::size_t length) -> std::optional<int> {
    int value = 0;
    const char* first = text.data() + offset;
    const char* last = first + length;
    for (const char* c = first; c != last; ++c) {
      if (*c < '0' || *c > '9') return std::nullopt;
    }
    std::from_chars(first, last, value);
    return value;
  };
  const auto year = number(0, 4), month = number(5, 2), day = number(8, 2);
  if (!year || !month || !day || *year < 1 || *month < 1 || *month > 12 || *day < 1) return std::nullopt;
  return DayFields{*year, *month, *day};
}

UCalendar* native(void* calendar) { return static_cast<UCalendar*>(calendar); }

void configure(UCalendar* calendar) {
  ucal_setAttribute(calendar, UCAL_LENIENT, 1);
  ucal_setAttribute(calendar, UCAL_SKIPPED_WALL_TIME, UCAL_WALLTIME_NEXT_VALID);
  ucal_setAttribute(calendar, UCAL_REPEATED_WALL_TIME, UCAL_WALLTIME_FIRST);
}

UCalendar* openCalendar(const UChar* zone, int32_t zoneLength) {
  UErrorCode status = U_ZERO_ERROR;
  UCalendar* calendar = ucal_open(zone, zoneLength, nullptr, UCAL_DEFAULT, &status);
  if (U_FAILURE(status) || calendar == nullptr) trap("ICU could not open a calendar");
  configure(calendar);
  return calendar;
}

int field(UCalendar* calendar, UCalendarDateFields which) {
  UErrorCode status = U_ZERO_ERROR;
  const int value = ucal_get(calendar, which, &status);
  return U_FAILURE(status) ? 0 : value;
}

void setMillis(UCalendar* calendar, Date date) {
  UErrorCode status = U_ZERO_ERROR;
  ucal_setMillis(calendar, date.unixMillisExact(), &status);
}

UDate computeMillis(UCalendar* calendar, const DayFields& day, int hour, int minute, UErrorCode* status) {
  ucal_clear(calendar);
  ucal_setDateTime(calendar, day.year, day.month - 1, day.day, hour, minute, 0, status);
  return ucal_getMillis(calendar, status);
}

bool landsOn(UCalendar* calendar, const DayFields& day) {
  return field(calendar, UCAL_DATE) == day.day && field(calendar, UCAL_MONTH) == day.month - 1 &&
         field(calendar, UCAL_YEAR) == day.year;
}

// The instant of a wall-clock time, or nullopt when ICU cannot compute it or
// the day does not exist (lenient ICU would roll February 30th into March).
std::optional<Date> wallTime(UCalendar* calendar, const DayFields& day, int hour, int minute) {
  UErrorCode status = U_ZERO_ERROR;
  const UDate millis = computeMillis(calendar, day, hour, minute, &status);
  if (U_FAILURE(status)) return std::nullopt;
  // After getMillis the calendar's fields are recomputed from the instant. A
  // late wall time inside a daylight-saving gap may legitimately move into the
  // next day, so a mismatch is settled by the start of the requested day.
  if (!landsOn(calendar, day)) {
    computeMillis(calendar, day, 0, 0, &status);
    if (U_FAILURE(status) || !landsOn(calendar, day)) return std::nullopt;
  }
  return Date::fromUnixMillis(millis);
}

}  // namespace

void Calendar::Closer::operator()(void* calendar) const { ucal_close(static_cast<UCalendar*>(calendar)); }

Calendar::Calendar(void* calendar) : calendar_(calendar) {}

Calendar Calendar::current() {
  static const std::unique_ptr<void, Closer> prototype(openCalendar(nullptr, 0));
  UErrorCode status = U_ZERO_ERROR;
  UCalendar* clone = ucal_clone(native(prototype.get()), &status);
  if (U_FAILURE(status)) trap("ICU could not clone the current calendar");
  return Calendar(clone);
}

bool Calendar::isKnownZone(std::string_view zoneID) {
  const std::u16string zone = toUtf16(zoneID);
  if (zone.empty()) return false;
  UChar canonical[128];
  UBool isSystemID = false;
  UErrorCode status = U_ZERO_ERROR;
  ucal_getCanonicalTimeZoneID(reinterpret_cast<const UChar*>(zone.data()), static_cast<int32_t>(zone.size()),
                              canonical, 128, &isSystemID, &status);
  return U_SUCCESS(status) && isSystemID;
}

std::expected<Calendar, std::string> Calendar::inZone(std::string_view zoneID) {
  if (!isKnownZone(zoneID)) return std::unexpected("unknown time zone \"" + std::string(zoneID) + "\"");
  const std::u16string zone = toUtf16(zoneID);
  return Calendar(openCalendar(reinterpret_cast<const UChar*>(zone.data()), static_cast<int32_t>(zone.size())));
}

Calendar::Calendar(const Calendar& other) {
  UErrorCode status = U_ZERO_ERROR;
  calendar_.reset(ucal_clone(native(other.calendar_.get()), &status));
  if (U_FAILURE(status)) trap("ICU could not clone a calendar");
}

Calendar& Calendar::operator=(const Calendar& other) {
  if (this != &other) *this = Calendar(other);
  return *this;
}

Calendar::Calendar(Calendar&&) noexcept = default;
Calendar& Calendar::operator=(Calendar&&) noexcept = default;
Calendar::~Calendar() = default;

std::string Calendar::zoneID() const {
  UChar zone[128];
  UErrorCode status = U_ZERO_ERROR;
  const int32_t length = ucal_getTimeZoneID(native(calendar_.get()), zone, 128, &status);
  if (U_FAILURE(status)) return {};
  return toUtf8(std::u16string_view(reinterpret_cast<const char16_t*>(zone), static_cast<std::size_t>(length)));
}

std::string Calendar::dayString(Date date) const {
  const LocalFields local = fieldsAt(date);
  char text[32];
  std::snprintf(text, sizeof text, "%04d-%02d-%02d", local.year, local.month, local.day);
  return text;
}

std::optional<Date> Calendar::parseDay(std::string_view day) const {
  const auto fields = readDayFields(day);
  if (!fields) return std::nullopt;
  return wallTime(native(calendar_.get()), *fields, 0, 0);
}

std::optional<std::string> Calendar::shiftDay(int days, std::string_view day) const {
  const auto start = parseDay(day);
  if (!start) return std::nullopt;
  const auto shifted = addingDays(*start, days);
  if (!shifted) return std::nullopt;
  return dayString(*shifted);
}

std::optional<Date> Calendar::dateAt(std::string_view day, int minute) const {
  if (minute < 0) return std::nullopt;
  if (minute >= 1440) {
    const auto nextDay = shiftDay(minute / 1440, day);
    if (!nextDay) return std::nullopt;
    return dateAt(*nextDay, minute % 1440);
  }
  const auto fields = readDayFields(day);
  if (!fields) return std::nullopt;
  return wallTime(native(calendar_.get()), *fields, minute / 60, minute % 60);
}

LocalFields Calendar::fieldsAt(Date date) const {
  UCalendar* calendar = native(calendar_.get());
  setMillis(calendar, date);
  return LocalFields{
      .year = field(calendar, UCAL_YEAR),
      .month = field(calendar, UCAL_MONTH) + 1,
      .day = field(calendar, UCAL_DATE),
      .hour = field(calendar, UCAL_HOUR_OF_DAY),
      .minute = field(calendar, UCAL_MINUTE),
      .second = field(calendar, UCAL_SECOND),
  };
}

Date Calendar::startOfDay(Date date) const {
  const LocalFields local = fieldsAt(date);
  const auto start = wallTime(native(calendar_.get()), DayFields{local.year, local.month, local.day}, 0, 0);
  if (!start) trap("ICU could not compute the start of a day");
  return *start;
}

std::optional<Date> Calendar::addingDays(Date date, int days) const {
  UCalendar* calendar = native(calendar_.get());
  UErrorCode status = U_ZERO_ERROR;
  ucal_setMillis(calendar, date.unixMillisExact(), &status);
  ucal_add(calendar, UCAL_DATE, days, &status);
  const UDate millis = ucal_getMillis(calendar, &status);
  if (U_FAILURE(status)) return std::nullopt;
  return Date::fromUnixMillis(millis);
}

std::int64_t Calendar::utcOffsetMillis(Date date) const {
  UCalendar* calendar = native(calendar_.get());
  setMillis(calendar, date);
  return static_cast<std::int64_t>(field(calendar, UCAL_ZONE_OFFSET)) + field(calendar, UCAL_DST_OFFSET);
}

}  // namespace kovi
