#include "tests/support/LoopbackServer.h"

#include <stdexcept>

namespace kovi::testing {

LoopbackServer::LoopbackServer(const std::function<void(httplib::Server&)>& routes) {
  routes(server_);
  server_.set_keep_alive_max_count(1'000'000);
  // Without it, a keep-alive response written in two parts waits for the
  // client's delayed acknowledgement (about 40 ms) between them.
  server_.set_tcp_nodelay(true);
  port_ = server_.bind_to_any_port("127.0.0.1");
  if (port_ <= 0) throw std::runtime_error("could not bind a loopback port");
  thread_ = std::thread([this] { server_.listen_after_bind(); });
  // stop() does nothing to a server that has not started running yet, and
  // the destructor would then wait forever for the thread.
  while (!server_.is_running()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

LoopbackServer::~LoopbackServer() {
  server_.stop();
  thread_.join();
}

std::string LoopbackServer::origin() const { return "http://127.0.0.1:" + std::to_string(port_); }

NativeServiceOrigin LoopbackServer::serviceOrigin() const {
  auto origin = NativeServiceOrigin::parse(this->origin());
  if (!origin) throw std::runtime_error(origin.error());
  return *origin;
}

std::string ReceivedRequest::header(const std::string& name) const {
  const auto found = headers.find(name);
  return found != headers.end() ? found->second : "<absent>";
}

RecordingServer::RecordingServer()
    : server_([this](httplib::Server& http) {
        const auto handle = [this](const httplib::Request& request, httplib::Response& response) {
          const std::lock_guard lock(mutex_);
          received_.push_back({request.method, request.path, request.headers, request.body, request.remote_port});
          const auto found = answers_.find(request.path);
          if (found == answers_.end()) {
            response.status = 404;
            return;
          }
          response.status = found->second.first;
          response.set_content(found->second.second, "application/json");
        };
        http.Get(".*", handle);
        http.Post(".*", handle);
      }) {}

void RecordingServer::answer(const std::string& path, int status, std::string body) {
  const std::lock_guard lock(mutex_);
  answers_[path] = {status, std::move(body)};
}

std::vector<ReceivedRequest> RecordingServer::takeReceived() {
  const std::lock_guard lock(mutex_);
  return std::exchange(received_, {});
}

void Gate::open() {
  {
    std::lock_guard lock(mutex_);
    isOpen_ = true;
  }
  opened_.notify_all();
}

bool Gate::waitOpen(std::chrono::milliseconds limit) {
  std::unique_lock lock(mutex_);
  return opened_.wait_for(lock, limit, [this] { return isOpen_; });
}

}  // namespace kovi::testing
