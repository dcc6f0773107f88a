// Feeds arbitrary bytes to everything the agent reads from sway's socket: the
// reply header, the window tree and a command's results. None may crash,
// recurse without bound or accept a frame longer than the agent reads.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "KoviMacHolds/platform/wayland/SwayIpc.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kovi::holds::wayland;
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  if (bytes.size() >= kSwayHeaderSize) {
    const auto header = decodeSwayHeader(bytes.substr(0, kSwayHeaderSize));
    if (header && header->length > kSwayMaximumReply) std::abort();
  }
  if (const auto windows = swayWindowsOf(bytes, {"discord", "com.discordapp.Discord"})) {
    for (const auto container : *windows) (void)swayScratchpadCommand({container});
  }
  (void)checkSwayCommandReply(bytes);
  return 0;
}
