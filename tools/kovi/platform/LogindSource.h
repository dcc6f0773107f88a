#pragma once

#include <memory>
#include <optional>

namespace kovi::tool {

// Screen lock and system sleep as logind reports them on the system bus
// ($DBUS_SYSTEM_BUS_ADDRESS when set): the session's LockedHint and the
// manager's PreparingForSleep. Each question waits at most a moment.
class LogindSource {
 public:
  // Nothing when the system bus cannot be reached.
  static std::unique_ptr<LogindSource> connect();
  ~LogindSource();
  LogindSource(const LogindSource&) = delete;
  LogindSource& operator=(const LogindSource&) = delete;

  // Absent when logind does not answer.
  std::optional<bool> locked();
  std::optional<bool> preparingForSleep();

 private:
  struct Bus;
  explicit LogindSource(std::unique_ptr<Bus> bus);
  std::optional<bool> booleanProperty(const char* path, const char* interface, const char* property);
  std::unique_ptr<Bus> bus_;
};

}  // namespace kovi::tool
