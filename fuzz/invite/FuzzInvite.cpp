// Pasted invite text is anything a person copies. The recogniser must answer
// without crashing, and a code it finds must be a real code: eight symbols of
// the alphabet, written in the one form, and found again in that form.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "KoviKit/wallet/V6InviteCode.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  (void)kovi::recognizeInvite(text);
  const auto code = kovi::V6InviteCode::find(text);
  if (!code) return 0;
  if (!kovi::V6InviteCode::isBody(code->body)) __builtin_trap();
  const auto written = code->written();
  if (written.size() != 14 || kovi::V6InviteCode::find(written) != code) __builtin_trap();
  return 0;
}
