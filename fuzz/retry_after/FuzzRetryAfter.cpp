// Feeds arbitrary header values to the Retry-After parser. Besides not
// crashing, surrounding white space must not change the answer, and a value
// read as a count of seconds must read back as the same count.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "KoviKit/native/NativeRetryAfter.h"

namespace {

constexpr kovi::UnixMillis kNow = 1'795'316'400'000;

void require(bool promise) {
  if (!promise) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string value(reinterpret_cast<const char*>(data), size);
  const auto wait = kovi::parseRetryAfter(value, kNow);
  require(kovi::parseRetryAfter(" \t" + value + "\t ", kNow) == wait);
  if (wait && value.find_first_of("0123456789") == value.find_first_not_of(" \t\r\n+")) {
    // A count (not a date): its own decimal form reads back the same.
    require(kovi::parseRetryAfter(std::to_string(*wait), kNow) == wait);
  }
  return 0;
}
