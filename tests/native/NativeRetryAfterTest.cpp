#include "KoviKit/native/NativeRetryAfter.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>

namespace kovi {
namespace {

// 2026-11-22T03:00:00.250Z, a Sunday; the quarter second checks that waits
// until a date round up.
constexpr UnixMillis kNow = 1'795'316'400'000 + 250;

TEST(RetryAfterTest, ReadsDelaySecondsOrAnHttpDate) {
  const struct {
    std::string header;
    std::optional<std::int64_t> wait;
  } cases[] = {
      {"120", 120}, {"+120", 120}, {" \t7\t ", 7}, {"0", 0}, {"9223372036854775807", INT64_MAX},
      {"9223372036854775808", std::nullopt}, {"-5", std::nullopt}, {"+", std::nullopt}, {"1.5", std::nullopt},
      {"12 0", std::nullopt}, {"", std::nullopt},
      {"Sun, 22 Nov 2026 03:05:00 GMT", 300}, {"  Sun, 22 Nov 2026 03:05:00 GMT\t", 300},
      {"Sun, 22 Nov 2026 02:59:00 GMT", -60}, {"Mon, 23 Nov 2026 03:00:00 GMT", 86'400},
      {"Sun, 22 Nov 2026 03:05:00 GMT later", std::nullopt}, {"Sunday, 22-Nov-26 03:05:00 GMT", std::nullopt},
      {"2026-11-22T03:05:00Z", std::nullopt}, {"Sun, 22 Nov 2026 25:05:00 GMT", std::nullopt},
      {"Sun, 31 Nov 2026 03:05:00 GMT", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE('"' + c.header + '"');
    EXPECT_EQ(parseRetryAfter(c.header, kNow), c.wait);
  }
}

}  // namespace
}  // namespace kovi
