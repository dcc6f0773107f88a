#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <thread>

#include "KoviMacHolds/platform/wayland/SwayIpc.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

namespace kovi::holds::wayland {
namespace {

std::string header(std::string_view magic, std::uint32_t length, std::uint32_t type) {
  std::string bytes(magic);
  bytes.append(reinterpret_cast<const char*>(&length), sizeof length);
  bytes.append(reinterpret_cast<const char*>(&type), sizeof type);
  return bytes;
}

TEST(SwayIpc, MessagesCarryMagicLengthAndTypeBeforeThePayload) {
  EXPECT_EQ(encodeSwayMessage(SwayMessageType::runCommand, "move scratchpad"),
            header("i3-ipc", 15, 0) + "move scratchpad");
  EXPECT_EQ(encodeSwayMessage(SwayMessageType::getTree, ""), header("i3-ipc", 0, 4));
}

TEST(SwayIpc, ReplyHeadersAreCheckedBeforeAnythingIsRead) {
  struct Case {
    std::string bytes;
    bool accepted;
  };
  const Case cases[] = {
      {header("i3-ipc", 2, 4), true}, {header("i3-ipc", kSwayMaximumReply, 0), true},
      {header("i3-ipc", kSwayMaximumReply + 1, 0), false},  // would have the agent allocate without bound
      {header("i3-ipX", 2, 4), false}, {header("i3-ipc", 2, 4).substr(0, 13), false},
  };
  for (const auto& entry : cases) {
    const auto decoded = decodeSwayHeader(entry.bytes);
    EXPECT_EQ(decoded.has_value(), entry.accepted) << (decoded ? "" : decoded.error());
  }
  EXPECT_EQ(decodeSwayHeader(header("i3-ipc", 77, 4))->length, 77u);
}

const std::string kTree = kovi::testing::testDataFile("holds_agent", "sway-tree.json");

TEST(SwayIpc, FindsTheApplicationsWindowsOutsideTheScratchpad) {
  struct Case {
    std::set<std::string> names;
    std::vector<std::int64_t> windows;
  };
  const Case cases[] = {
      {{"discord"}, {11, 15, 16}},  // tiled, X11 by class, floating; 10 is hidden already
      {{"discord", "com.discordapp.Discord"}, {11, 13, 15, 16}}, {{"firefox"}, {14}}, {{"spotify"}, {}},
  };
  for (const auto& entry : cases) {
    auto windows = swayWindowsOf(kTree, entry.names);
    ASSERT_TRUE(windows.has_value()) << windows.error();
    std::ranges::sort(*windows);
    EXPECT_EQ(*windows, entry.windows);
  }
}

TEST(SwayIpc, RefusesTreesItCannotTrust) {
  std::string deep;
  for (int level = 0; level < 100; ++level) deep += R"({"id": 1, "nodes": [)";
  deep += "{}";
  for (int level = 0; level < 100; ++level) deep += "]}";
  const std::pair<std::string, const char*> cases[] = {
      {"{", "not valid JSON"}, {deep, "deeper than"}, {R"({"nodes": {"id": 2}})", "not an array"},
      {R"({"nodes": [3]})", "not an object"},
      {R"({"nodes": [{"app_id": "discord", "id": "eleven"}]})", "without an id"},
  };
  for (const auto& [tree, reason] : cases) {
    const auto windows = swayWindowsOf(tree, {"discord"});
    ASSERT_FALSE(windows.has_value()) << tree;
    EXPECT_NE(windows.error().find(reason), std::string::npos) << windows.error();
  }
}

TEST(SwayIpc, CommandRepliesSucceedOnlyWhenEveryCommandDid) {
  EXPECT_EQ(swayScratchpadCommand({11, 16}), "[con_id=11] move scratchpad; [con_id=16] move scratchpad");
  EXPECT_TRUE(checkSwayCommandReply(R"([{"success": true}, {"success": true}])").has_value());
  const std::pair<const char*, const char*> failures[] = {
      {R"([{"success": true}, {"success": false, "error": "No matching node"}])", "No matching node"},
      {R"([{"success": false}])", "no reason given"}, {R"([])", "not a list of results"},
      {R"({"success": true})", "not a list of results"}, {R"([{"succes": true}])", "without \"success\""},
  };
  for (const auto& [reply, reason] : failures) {
    const auto checked = checkSwayCommandReply(reply);
    ASSERT_FALSE(checked.has_value()) << reply;
    EXPECT_NE(checked.error().find(reason), std::string::npos) << checked.error();
  }
}

// A stand-in for sway's socket: answers each request with the next reply and
// records what it was asked.
class FakeSway {
 public:
  FakeSway(const std::filesystem::path& path, std::vector<std::string> replies) : path_(path) {
    listener_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    EXPECT_EQ(bind(listener_, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(listener_, 4), 0);
    server_ = std::thread([this, replies = std::move(replies)] {
      for (const auto& reply : replies) {
        const int client = accept(listener_, nullptr, nullptr);
        if (client < 0) return;
        char head[kSwayHeaderSize];
        if (recv(client, head, sizeof head, MSG_WAITALL) == sizeof head) {
          std::uint32_t length = 0;
          std::memcpy(&length, head + 6, sizeof length);
          std::string payload(length, '\0');
          if (length > 0) recv(client, payload.data(), length, MSG_WAITALL);
          requests_.push_back(payload);
          send(client, reply.data(), reply.size(), MSG_NOSIGNAL);
        }
        close(client);
      }
    });
  }
  ~FakeSway() {
    shutdown(listener_, SHUT_RDWR);
    server_.join();
    close(listener_);
    std::filesystem::remove(path_);
  }
  const std::vector<std::string>& requests() const { return requests_; }

 private:
  std::filesystem::path path_;
  int listener_ = -1;
  std::thread server_;
  std::vector<std::string> requests_;
};

std::string reply(SwayMessageType type, std::string_view payload) { return encodeSwayMessage(type, payload); }

TEST(SwayIpc, MovesTheApplicationsWindowsToTheScratchpadOverTheSocket) {
  kovi::testing::TemporaryDirectory scratch;
  const auto socket = scratch.path() / "sway.sock";
  std::vector<std::string> requests;
  {
    FakeSway sway(socket, {reply(SwayMessageType::getTree, kTree),
                           reply(SwayMessageType::runCommand, R"([{"success": true}, {"success": true}, {"success": true}])")});
    const auto moved = swayMoveToScratchpad(socket, {"discord"});
    EXPECT_TRUE(moved.has_value()) << moved.error();
    requests = sway.requests();
  }
  ASSERT_EQ(requests.size(), 2u);
  EXPECT_EQ(requests[0], "");
  for (const char* container : {"[con_id=11]", "[con_id=15]", "[con_id=16]"}) {
    EXPECT_NE(requests[1].find(container), std::string::npos) << requests[1];
  }
  EXPECT_EQ(requests[1].find("[con_id=10]"), std::string::npos) << "already hidden: " << requests[1];
}

TEST(SwayIpc, ReportsWhatWentWrongOnTheSocket) {
  kovi::testing::TemporaryDirectory scratch;
  const auto socket = scratch.path() / "sway.sock";
  EXPECT_NE(swayMoveToScratchpad(socket, {"discord"}).error().find("connecting to sway"), std::string::npos);
  {
    FakeSway sway(socket, {reply(SwayMessageType::getTree, kTree)});
    EXPECT_NE(swayMoveToScratchpad(socket, {"spotify"}).error().find("no window"), std::string::npos);
  }
  {
    FakeSway sway(socket, {reply(SwayMessageType::runCommand, "[]")});
    EXPECT_NE(swayMoveToScratchpad(socket, {"discord"}).error().find("message type 0"), std::string::npos);
  }
  {
    FakeSway sway(socket, {header("i3-ipc", 100, 4) + "short"});
    EXPECT_NE(swayMoveToScratchpad(socket, {"discord"}).error().find("closed the connection"), std::string::npos);
  }
}

}  // namespace
}  // namespace kovi::holds::wayland
