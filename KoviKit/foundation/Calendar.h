#pragma once

#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/foundation/Time.h"

namespace kovi {

// Local wall-clock fields of an instant in a calendar.
struct LocalFields {
  int year = 0;
  int month = 0;  // 1-12
  int day = 0;    // 1-31
  int hour = 0;
  int minute = 0;
  int second = 0;
  bool operator==(const LocalFields&) const = default;
};

// The user's calendar and time zone over ICU. Wall times that do not exist (a
// daylight-saving gap) resolve to the next existing time; wall times that occur
// twice resolve to their first occurrence. Copying clones the ICU calendar, so
// a Calendar is cheap to hand around and never shares mutable state.
class Calendar {
 public:
  // ICU's default calendar for the process locale in the `TZ` time zone. The
  // prototype is opened once per process and cloned on every call.
  static Calendar current();

  // The process locale's calendar in an IANA zone ("Europe/Berlin"). Fails
  // with a reason when ICU does not know the zone.
  static std::expected<Calendar, std::string> inZone(std::string_view zoneID);

  // Whether ICU knows `zoneID` as a time zone.
  static bool isKnownZone(std::string_view zoneID);

  Calendar(const Calendar& other);
  Calendar& operator=(const Calendar& other);
  Calendar(Calendar&&) noexcept;
  Calendar& operator=(Calendar&&) noexcept;
  ~Calendar();

  std::string zoneID() const;

  // The local day of `date` as "%04d-%02d-%02d".
  std::string dayString(Date date) const;
  // The start of the day written as "YYYY-MM-DD"; nullopt when the text is not
  // exactly that shape or names no day of this calendar.
  std::optional<Date> parseDay(std::string_view day) const;
  // The day string `days` calendar days after (or before) `day`.
  std::optional<std::string> shiftDay(int days, std::string_view day) const;
  // `minute` minutes into `day` on the wall clock (minute 0 is local midnight;
  // minute 1440 and above count into the following days).
  std::optional<Date> dateAt(std::string_view day, int minute) const;

  LocalFields fieldsAt(Date date) const;
  // The first instant of the local day that contains `date`.
  Date startOfDay(Date date) const;
  // The same wall-clock time `days` days later; nullopt when ICU cannot add.
  std::optional<Date> addingDays(Date date, int days) const;
  // Offset from UTC in effect at `date`, in milliseconds (zone plus daylight saving).
  std::int64_t utcOffsetMillis(Date date) const;

 private:
  // ICU's UCalendar is an opaque void*; keeping it as one keeps ICU out of this header.
  struct Closer {
    void operator()(void* calendar) const;
  };
  explicit Calendar(void* calendar);
  std::unique_ptr<void, Closer> calendar_;
};

}  // namespace kovi
