#pragma once

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "KoviKit/native/NativeServiceOrigin.h"

namespace kovi::testing {

// A real HTTP server on 127.0.0.1, on a port the system picks, serving the
// routes the test sets up on a thread of its own until the object goes away.
class LoopbackServer {
 public:
  explicit LoopbackServer(const std::function<void(httplib::Server&)>& routes);
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;
  ~LoopbackServer();

  int port() const { return port_; }
  // "http://127.0.0.1:PORT"
  std::string origin() const;
  NativeServiceOrigin serviceOrigin() const;

 private:
  httplib::Server server_;
  int port_ = -1;
  std::thread thread_;
};

// What a recording server received of one request.
struct ReceivedRequest {
  std::string method;
  std::string path;
  httplib::Headers headers;
  std::string body;
  int remotePort = 0;

  // The header's value, or "<absent>".
  std::string header(const std::string& name) const;
};

// A loopback server that answers each GET and POST with the status and JSON
// body set for its path (404 for any other) and keeps what it received.
class RecordingServer {
 public:
  RecordingServer();

  void answer(const std::string& path, int status, std::string body);
  // What was received since the last call, in order.
  std::vector<ReceivedRequest> takeReceived();
  NativeServiceOrigin serviceOrigin() const { return server_.serviceOrigin(); }

 private:
  std::mutex mutex_;
  std::map<std::string, std::pair<int, std::string>> answers_;
  std::vector<ReceivedRequest> received_;
  // Last, so that it stops before what its handlers use goes away.
  LoopbackServer server_;
};

// Holds a handler back until the test opens it (or the limit passes), so a
// test decides when a slow server finally answers.
class Gate {
 public:
  void open();
  // True when opened before `limit` ran out.
  bool waitOpen(std::chrono::milliseconds limit);

 private:
  std::mutex mutex_;
  std::condition_variable opened_;
  bool isOpen_ = false;
};

// Opens a gate when it goes out of scope, so a failed assertion does not
// leave a handler waiting.
class GateOpener {
 public:
  explicit GateOpener(Gate& gate) : gate_(gate) {}
  GateOpener(const GateOpener&) = delete;
  GateOpener& operator=(const GateOpener&) = delete;
  ~GateOpener() { gate_.open(); }

 private:
  Gate& gate_;
};

}  // namespace kovi::testing
