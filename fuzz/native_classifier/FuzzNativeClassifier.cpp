// Feeds arbitrary responses to the response classifier. Input layout: three
// ASCII digits of status, then header lines "Name: value" up to an empty line,
// then the body. The classifier must never crash and must keep its promises:
// only 429 is a rate limit, codes it reports are valid, and only a 200 JSON
// answer within the limit succeeds.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "KoviKit/native/NativeResponseClassifier.h"

namespace {

constexpr kovi::UnixMillis kNow = 1'795'316'400'000;

kovi::NativeHttpResponse responseFrom(std::string_view input) {
  kovi::NativeHttpResponse response;
  long status = 0;
  for (std::size_t index = 0; index < 3 && index < input.size(); ++index) {
    status = status * 10 + static_cast<unsigned char>(input[index]) % 10;
  }
  response.status = status;
  input.remove_prefix(std::min<std::size_t>(3, input.size()));
  while (!input.empty()) {
    const auto end = input.find('\n');
    const std::string_view line = input.substr(0, end);
    input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
    if (line.empty()) break;
    const auto colon = line.find(':');
    if (colon == std::string_view::npos) continue;
    response.headers.push_back({std::string(line.substr(0, colon)), std::string(line.substr(colon + 1))});
  }
  response.body = std::string(input);
  return response;
}

void require(bool promise) {
  if (!promise) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto response = responseFrom(std::string_view(reinterpret_cast<const char*>(data), size));
  const auto outcome = kovi::acceptNativeResponse(response, kNow);
  if (outcome) {
    require(response.status == 200 && response.body.size() <= kovi::kNativeResponseBodyLimit);
    return 0;
  }
  const kovi::NativeAccountError& error = outcome.error();
  require((error.kind() == kovi::NativeAccountError::Case::rateLimited) == (response.status == 429));
  if (const auto code = error.code()) require(kovi::isNativeErrorCode(*code) && *code != "sign_in_required");
  if (error.kind() == kovi::NativeAccountError::Case::invalidResponse) require(response.status == 200);
  (void)error.message(kovi::NativeErrorTable{"fuzz", {}});
  return 0;
}
