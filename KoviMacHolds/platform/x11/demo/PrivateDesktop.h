#pragma once

#include <X11/Xlib.h>
#include <sys/types.h>

#include <chrono>
#include <expected>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "KoviMacHolds/platform/x11/X11Display.h"

// A throwaway X11 desktop (Xvfb with the openbox window manager) and the
// programs started on it, for the desktop tests and the latency benchmark.
namespace kovi::holds::x11 {

// A child process, terminated and reaped when the object goes away.
class ChildProcess {
 public:
  // Starts `arguments[0]` (searched in PATH) with `environment` added to this
  // process's environment. Its stdout goes to `output` when given, its stderr
  // to `errors` when given (both otherwise inherited).
  static std::expected<ChildProcess, std::string> start(const std::vector<std::string>& arguments,
                                                        const std::map<std::string, std::string>& environment = {},
                                                        const std::optional<std::filesystem::path>& output = {},
                                                        const std::optional<std::filesystem::path>& errors = {});
  ChildProcess(ChildProcess&& other) noexcept : pid_(other.pid_), status_(other.status_) { other.pid_ = -1; }
  ChildProcess& operator=(ChildProcess&&) = delete;
  ~ChildProcess();

  pid_t pid() const { return pid_; }
  // The exit status once the process has ended within `timeout`; -1 for a
  // process killed by a signal.
  std::optional<int> waitForExit(std::chrono::milliseconds timeout);
  bool isRunning();
  void terminate();

 private:
  friend class PrivateDesktop;  // starts Xvfb with a pipe of its own
  explicit ChildProcess(pid_t pid) : pid_(pid) {}
  pid_t pid_;
  std::optional<int> status_;
};

// Polls `condition` every few milliseconds until it holds or `timeout` passes.
bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout);

class PrivateDesktop {
 public:
  // Starts Xvfb on a display number it picks itself (so parallel desktops
  // never collide) and openbox on it, and waits until the window manager runs.
  static std::expected<PrivateDesktop, std::string> start(const std::filesystem::path& scratch);
  static bool isAvailable();  // Xvfb and openbox are installed

  PrivateDesktop(PrivateDesktop&&) = default;
  PrivateDesktop& operator=(PrivateDesktop&&) = delete;
  ~PrivateDesktop();

  const std::string& displayName() const { return displayName_; }
  X11Display& display() { return *display_; }

  // Waits like waitUntil, nudging the window manager now and then. openbox
  // can leave a request it has already read unhandled until the next event
  // wakes it (seen right after it starts); a property change on the root
  // window is such an event and changes nothing else.
  bool waitUntilSettled(const std::function<bool()>& condition, std::chrono::milliseconds timeout);

  // The top-level client windows the window manager manages with this WM_CLASS class.
  std::vector<Window> clientsOfClass(const std::string& className);
  std::optional<long> wmState(Window window);
  bool isViewable(Window window);
  // Asks the window manager to activate `window`, as a task bar click would.
  void activate(Window window);
  std::optional<Window> activeWindow();
  // The window's top left corner on the screen.
  std::pair<int, int> screenPosition(Window window);

 private:
  static std::expected<ChildProcess, std::string> startServer(int number, const std::filesystem::path& log);
  PrivateDesktop(std::string displayName, ChildProcess server, ChildProcess windowManager, X11Display display);
  std::string displayName_;
  std::optional<ChildProcess> server_;
  std::optional<ChildProcess> windowManager_;
  std::optional<X11Display> display_;
};

}  // namespace kovi::holds::x11
