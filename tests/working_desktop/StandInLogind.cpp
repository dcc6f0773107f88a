// A stand-in for logind on a private bus, for the desktop tests: it owns
// org.freedesktop.login1 and answers the two properties the session watcher
// reads. The session counts as locked while the file named by argv[1]
// exists; the manager never prepares for sleep. Writes "ready" to stdout once
// the name is owned.
#include <systemd/sd-bus.h>

#include <cstdio>
#include <filesystem>

namespace {

const char* lockFlagPath = nullptr;

int lockedHint(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
  return sd_bus_message_append(reply, "b", static_cast<int>(std::filesystem::exists(lockFlagPath)));
}

int preparingForSleep(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*, sd_bus_error*) {
  return sd_bus_message_append(reply, "b", 0);
}

const sd_bus_vtable sessionTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("LockedHint", "b", lockedHint, 0, 0),
    SD_BUS_VTABLE_END,
};

const sd_bus_vtable managerTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("PreparingForSleep", "b", preparingForSleep, 0, 0),
    SD_BUS_VTABLE_END,
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  lockFlagPath = argv[1];
  sd_bus* bus = nullptr;
  if (sd_bus_open_system(&bus) < 0) return 1;
  if (sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/login1/session/auto", "org.freedesktop.login1.Session",
                               sessionTable, nullptr) < 0 ||
      sd_bus_add_object_vtable(bus, nullptr, "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                               managerTable, nullptr) < 0 ||
      sd_bus_request_name(bus, "org.freedesktop.login1", 0) < 0) {
    return 1;
  }
  std::puts("ready");
  std::fflush(stdout);
  while (true) {
    const int processed = sd_bus_process(bus, nullptr);
    if (processed < 0) return 1;
    if (processed == 0 && sd_bus_wait(bus, UINT64_MAX) < 0) return 1;
  }
}
