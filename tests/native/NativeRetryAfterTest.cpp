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

struct RetryAfterCase {
  std::string header;
  std::optional<std::int64_t> wait;
};

void PrintTo(const RetryAfterCase& example, std::ostream* out) { *out << '"' << example.header << '"'; }

class RetryAfterTest : public ::testing::TestWithParam<RetryAfterCase> {};

TEST_P(RetryAfterTest, ReadsTheWait) {
  EXPECT_EQ(parseRetryAfter(GetParam().header, kNow), GetParam().wait);
}

INSTANTIATE_TEST_SUITE_P(
    Seconds, RetryAfterTest,
    ::testing::Values(RetryAfterCase{"120", 120}, RetryAfterCase{"+120", 120}, RetryAfterCase{" \t7\t ", 7},
                      RetryAfterCase{"0", 0}, RetryAfterCase{"9223372036854775807", INT64_MAX},
                      RetryAfterCase{"9223372036854775808", std::nullopt}, RetryAfterCase{"-5", std::nullopt},
                      RetryAfterCase{"+-5", std::nullopt}, RetryAfterCase{"+", std::nullopt},
                      RetryAfterCase{"1.5", std::nullopt}, RetryAfterCase{"1e3", std::nullopt},
                      RetryAfterCase{"12 0", std::nullopt}, RetryAfterCase{"", std::nullopt},
                      RetryAfterCase{"soon", std::nullopt}));

INSTANTIATE_TEST_SUITE_P(
    HttpDates, RetryAfterTest,
    ::testing::Values(RetryAfterCase{"Sun, 22 Nov 2026 03:05:00 GMT", 300},
                      RetryAfterCase{"  Sun, 22 Nov 2026 03:05:00 GMT\t", 300},
                      RetryAfterCase{"Sun, 22 Nov 2026 02:59:00 GMT", -60},
                      RetryAfterCase{"Mon, 23 Nov 2026 03:00:00 GMT", 86'400},
                      RetryAfterCase{"Sun, 22 Nov 2026 03:05:00 GMT later", std::nullopt},
                      RetryAfterCase{"Sunday, 22-Nov-26 03:05:00 GMT", std::nullopt},
                      RetryAfterCase{"2026-11-22T03:05:00Z", std::nullopt},
                      RetryAfterCase{"Sun, 22 Nov 2026 25:05:00 GMT", std::nullopt},
                      RetryAfterCase{"Sun, 31 Nov 2026 03:05:00 GMT", std::nullopt}));

}  // namespace
}  // namespace kovi
