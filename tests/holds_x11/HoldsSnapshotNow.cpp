#include "tests/holds_x11/HoldsSnapshotNow.h"

#include <algorithm>
#include <ctime>

namespace kovi::holds::testing {

namespace {

std::string utcDay(std::time_t when) {
  char text[16];
  std::tm parts{};
  gmtime_r(&when, &parts);
  std::strftime(text, sizeof text, "%Y-%m-%d", &parts);
  return text;
}

}  // namespace

std::string snapshotHoldingNow(HoldNow hold) {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  gmtime_r(&now, &parts);
  const int minute = parts.tm_hour * 60 + parts.tm_min;
  const std::string head = R"({"version": 1, "stopped": false, "syncedAt": 785307600, "keepCommunication": false, )";
  if (hold == HoldNow::sleep) {
    // An everyday night from an hour ago to two hours ahead (wrapping midnight as nights do).
    return head + R"("sleep": {"startMinute": )" + std::to_string((minute + 1380) % 1440) +
           R"(, "endMinute": )" + std::to_string((minute + 120) % 1440) + R"(, "strictness": "committed"}})";
  }
  // Both study blocks of an exam week around today cover the next hour.
  const int start = std::max(0, minute - 30);
  return head + R"("examWeek": {"startDay": ")" + utcDay(now - 86400) + R"(", "endDay": ")" + utcDay(now + 86400) +
         R"(", "days": 3, "firstMinute": )" + std::to_string(start) + R"(, "secondMinute": )" + std::to_string(start) +
         R"(, "blockMinutes": 120, "socialMinutes": 0, "strictness": "committed"}})";
}

}  // namespace kovi::holds::testing
