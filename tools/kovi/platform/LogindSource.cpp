#include "tools/kovi/platform/LogindSource.h"

#include <systemd/sd-bus.h>

namespace kovi::tool {
namespace {

// A poll must not stall the session's clock: logind answers in well under this.
constexpr std::uint64_t kCallTimeoutMicroseconds = 250'000;

}  // namespace

struct LogindSource::Bus {
  sd_bus* bus = nullptr;
  ~Bus() { sd_bus_flush_close_unref(bus); }
};

std::unique_ptr<LogindSource> LogindSource::connect() {
  auto bus = std::make_unique<Bus>();
  if (sd_bus_open_system(&bus->bus) < 0) return nullptr;
  sd_bus_set_method_call_timeout(bus->bus, kCallTimeoutMicroseconds);
  return std::unique_ptr<LogindSource>(new LogindSource(std::move(bus)));
}

LogindSource::LogindSource(std::unique_ptr<Bus> bus) : bus_(std::move(bus)) {}
LogindSource::~LogindSource() = default;

std::optional<bool> LogindSource::booleanProperty(const char* path, const char* interface, const char* property) {
  sd_bus_error error = SD_BUS_ERROR_NULL;
  int value = 0;
  const int result =
      sd_bus_get_property_trivial(bus_->bus, "org.freedesktop.login1", path, interface, property, &error, 'b', &value);
  sd_bus_error_free(&error);
  if (result < 0) return std::nullopt;
  return value != 0;
}

std::optional<bool> LogindSource::locked() {
  return booleanProperty("/org/freedesktop/login1/session/auto", "org.freedesktop.login1.Session", "LockedHint");
}

std::optional<bool> LogindSource::preparingForSleep() {
  return booleanProperty("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PreparingForSleep");
}

}  // namespace kovi::tool
