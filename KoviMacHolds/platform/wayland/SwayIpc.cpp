#include "KoviMacHolds/platform/wayland/SwayIpc.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <nlohmann/json.hpp>

#include "KoviKit/foundation/Json.h"

namespace kovi::holds::wayland {

namespace {

constexpr std::string_view kMagic = "i3-ipc";
constexpr std::string_view kScratchpadWorkspace = "__i3_scratch";
// Sway nests root → output → workspace → split containers → window; a
// layout a person builds stays far below this.
constexpr std::size_t kMaximumTreeDepth = 64;

void appendNumber(std::string& out, std::uint32_t value) {
  char bytes[sizeof value];
  std::memcpy(bytes, &value, sizeof value);
  out.append(bytes, sizeof value);
}

std::uint32_t readNumber(std::string_view bytes) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

class Socket {
 public:
  explicit Socket(int fd) : fd_(fd) {}
  ~Socket() {
    if (fd_ >= 0) close(fd_);
  }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  int get() const { return fd_; }

 private:
  int fd_;
};

std::string systemError(std::string_view what) { return std::string(what) + ": " + std::strerror(errno); }

// Waits for the socket to be ready for `events` until `deadline`.
bool ready(int fd, short events, std::chrono::steady_clock::time_point deadline) {
  const auto left =
      std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now()).count();
  if (left <= 0) return false;
  pollfd entry{fd, events, 0};
  return poll(&entry, 1, static_cast<int>(left)) > 0 && (entry.revents & events);
}

std::expected<void, std::string> sendAll(int fd, std::string_view bytes, std::chrono::steady_clock::time_point deadline) {
  while (!bytes.empty()) {
    if (!ready(fd, POLLOUT, deadline)) return std::unexpected(std::string("sway did not take the request in time"));
    const ssize_t sent = send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) {
      if (errno == EINTR || errno == EAGAIN) continue;
      return std::unexpected(systemError("sending to sway"));
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
  return {};
}

std::expected<std::string, std::string> receiveExactly(int fd, std::size_t size,
                                                       std::chrono::steady_clock::time_point deadline) {
  std::string bytes(size, '\0');
  std::size_t received = 0;
  while (received < size) {
    if (!ready(fd, POLLIN, deadline)) return std::unexpected(std::string("sway did not answer in time"));
    const ssize_t count = recv(fd, bytes.data() + received, size - received, 0);
    if (count == 0) return std::unexpected(std::string("sway closed the connection mid-reply"));
    if (count < 0) {
      if (errno == EINTR || errno == EAGAIN) continue;
      return std::unexpected(systemError("reading from sway"));
    }
    received += static_cast<std::size_t>(count);
  }
  return bytes;
}

}  // namespace

std::string encodeSwayMessage(SwayMessageType type, std::string_view payload) {
  std::string message(kMagic);
  appendNumber(message, static_cast<std::uint32_t>(payload.size()));
  appendNumber(message, static_cast<std::uint32_t>(type));
  message.append(payload);
  return message;
}

std::expected<SwayReplyHeader, std::string> decodeSwayHeader(std::string_view header) {
  if (header.size() != kSwayHeaderSize || !header.starts_with(kMagic)) {
    return std::unexpected(std::string("sway's reply does not begin with \"i3-ipc\""));
  }
  const SwayReplyHeader decoded{readNumber(header.substr(6, 4)), readNumber(header.substr(10, 4))};
  if (decoded.length > kSwayMaximumReply) {
    return std::unexpected("sway's reply announces " + std::to_string(decoded.length) + " bytes, more than the " +
                           std::to_string(kSwayMaximumReply) + " the agent reads");
  }
  return decoded;
}

std::expected<std::vector<std::int64_t>, std::string> swayWindowsOf(std::string_view tree,
                                                                   const std::set<std::string>& names) {
  auto document = parseJson(tree);
  if (!document) return std::unexpected("sway's tree: " + document.error().message());
  struct Pending {
    const nlohmann::json* node;
    std::size_t depth;
    bool inScratchpad;
  };
  std::vector<std::int64_t> windows;
  std::vector<Pending> pending{{&*document, 0, false}};
  while (!pending.empty()) {
    const Pending current = pending.back();
    pending.pop_back();
    const nlohmann::json& node = *current.node;
    if (!node.is_object()) return std::unexpected(std::string("sway's tree holds a node that is not an object"));
    if (current.depth > kMaximumTreeDepth) {
      return std::unexpected("sway's tree nests deeper than " + std::to_string(kMaximumTreeDepth) + " levels");
    }
    const auto nameOf = [&](const nlohmann::json& object, const char* key) -> std::string {
      const auto found = object.find(key);
      return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
    };
    const bool inScratchpad = current.inScratchpad || (nameOf(node, "type") == "workspace" &&
                                                       nameOf(node, "name") == kScratchpadWorkspace);
    std::string className;
    if (const auto properties = node.find("window_properties"); properties != node.end() && properties->is_object()) {
      className = nameOf(*properties, "class");
    }
    const std::string appId = nameOf(node, "app_id");
    const bool named = (!appId.empty() && names.contains(appId)) || (!className.empty() && names.contains(className));
    if (named && !inScratchpad) {
      const auto id = node.find("id");
      if (id == node.end() || !id->is_number_integer()) {
        return std::unexpected("sway's tree has a window of " + (appId.empty() ? className : appId) + " without an id");
      }
      windows.push_back(id->get<std::int64_t>());
    }
    for (const char* children : {"nodes", "floating_nodes"}) {
      const auto found = node.find(children);
      if (found == node.end()) continue;
      if (!found->is_array()) return std::unexpected("sway's tree has \"" + std::string(children) + "\" that is not an array");
      for (const auto& child : *found) pending.push_back({&child, current.depth + 1, inScratchpad});
    }
  }
  return windows;
}

std::string swayScratchpadCommand(const std::vector<std::int64_t>& containers) {
  std::string command;
  for (std::int64_t container : containers) {
    if (!command.empty()) command += "; ";
    command += "[con_id=" + std::to_string(container) + "] move scratchpad";
  }
  return command;
}

std::expected<void, std::string> checkSwayCommandReply(std::string_view reply) {
  auto document = parseJson(reply);
  if (!document) return std::unexpected("sway's command reply: " + document.error().message());
  if (!document->is_array() || document->empty()) {
    return std::unexpected(std::string("sway's command reply is not a list of results"));
  }
  for (const auto& result : *document) {
    const auto success = result.is_object() ? result.find("success") : result.end();
    if (!result.is_object() || success == result.end() || !success->is_boolean()) {
      return std::unexpected(std::string("sway's command reply has a result without \"success\""));
    }
    if (!success->get<bool>()) {
      const auto error = result.find("error");
      return std::unexpected("sway refused the command: " +
                             (error != result.end() && error->is_string() ? error->get<std::string>() : "no reason given"));
    }
  }
  return {};
}

std::expected<std::string, std::string> swayRequest(const std::filesystem::path& socket, SwayMessageType type,
                                                    std::string_view payload, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string path = socket.string();
  if (path.empty() || path.size() >= sizeof address.sun_path) {
    return std::unexpected("sway's socket path is empty or too long: " + path);
  }
  std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
  Socket connection(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  if (connection.get() < 0) return std::unexpected(systemError("opening a socket for sway"));
  if (::connect(connection.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
      errno != EINPROGRESS) {
    return std::unexpected(systemError("connecting to sway at " + path));
  }
  if (auto sent = sendAll(connection.get(), encodeSwayMessage(type, payload), deadline); !sent) {
    return std::unexpected(sent.error());
  }
  auto headerBytes = receiveExactly(connection.get(), kSwayHeaderSize, deadline);
  if (!headerBytes) return std::unexpected(headerBytes.error());
  auto header = decodeSwayHeader(*headerBytes);
  if (!header) return std::unexpected(header.error());
  if (header->type != static_cast<std::uint32_t>(type)) {
    return std::unexpected("sway answered message type " + std::to_string(header->type) + " to a request of type " +
                           std::to_string(static_cast<std::uint32_t>(type)));
  }
  return receiveExactly(connection.get(), header->length, deadline);
}

std::expected<void, std::string> swayMoveToScratchpad(const std::filesystem::path& socket,
                                                      const std::set<std::string>& names) {
  constexpr std::chrono::milliseconds kTimeout{1000};
  auto tree = swayRequest(socket, SwayMessageType::getTree, "", kTimeout);
  if (!tree) return std::unexpected(tree.error());
  auto windows = swayWindowsOf(*tree, names);
  if (!windows) return std::unexpected(windows.error());
  if (windows->empty()) return std::unexpected(std::string("sway shows no window of the application"));
  auto reply = swayRequest(socket, SwayMessageType::runCommand, swayScratchpadCommand(*windows), kTimeout);
  if (!reply) return std::unexpected(reply.error());
  return checkSwayCommandReply(*reply);
}

}  // namespace kovi::holds::wayland
