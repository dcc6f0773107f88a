#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace kovi::holds::wayland {

// Sway's IPC: the means the agent falls back to for hiding an application,
// since sway ignores minimise requests. A message is the magic "i3-ipc", the
// payload's length and the message type (both 32-bit, in the machine's byte
// order), then the payload; a reply has the same frame.
enum class SwayMessageType : std::uint32_t { runCommand = 0, getTree = 4 };

inline constexpr std::size_t kSwayHeaderSize = 14;
// The largest reply the agent reads: a tree of a few hundred windows is well
// under a megabyte.
inline constexpr std::uint32_t kSwayMaximumReply = 8u << 20;

std::string encodeSwayMessage(SwayMessageType type, std::string_view payload);

struct SwayReplyHeader {
  std::uint32_t length = 0;
  std::uint32_t type = 0;
};
// Refuses a frame without the magic or announcing more than kSwayMaximumReply.
std::expected<SwayReplyHeader, std::string> decodeSwayHeader(std::string_view header);

// The container ids of the windows in a get_tree reply that belong to an
// application named by `names` (a Wayland app_id, or the class of an X11
// window), leaving out those already in the scratchpad. Refuses a reply that
// is not JSON or nests deeper than any real tree.
std::expected<std::vector<std::int64_t>, std::string> swayWindowsOf(std::string_view tree,
                                                                   const std::set<std::string>& names);

// "[con_id=4] move scratchpad; [con_id=9] move scratchpad"
std::string swayScratchpadCommand(const std::vector<std::int64_t>& containers);

// A run_command reply: an array with one {"success": …} object per command;
// fails with the first error sway gives.
std::expected<void, std::string> checkSwayCommandReply(std::string_view reply);

// One request and its reply over a fresh connection to `socket`, within `timeout`.
std::expected<std::string, std::string> swayRequest(const std::filesystem::path& socket, SwayMessageType type,
                                                    std::string_view payload, std::chrono::milliseconds timeout);

// Moves every window of the application named by `names` to sway's
// scratchpad, which hides it until the person shows it again. Nothing to move
// counts as failure: the application has no window sway knows of.
std::expected<void, std::string> swayMoveToScratchpad(const std::filesystem::path& socket,
                                                      const std::set<std::string>& names);

}  // namespace kovi::holds::wayland
