#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <X11/Xatom.h>

#include <cstdlib>
#include <random>
#include <cstring>
#include <thread>

extern char** environ;

namespace kovi::holds::x11 {

namespace {

bool onPath(const char* program) {
  const char* path = std::getenv("PATH");
  if (path == nullptr) return false;
  std::string_view rest(path);
  while (true) {
    const auto colon = rest.find(':');
    const auto candidate = std::filesystem::path(std::string(rest.substr(0, colon))) / program;
    if (access(candidate.c_str(), X_OK) == 0) return true;
    if (colon == std::string_view::npos) return false;
    rest.remove_prefix(colon + 1);
  }
}

std::vector<std::string> mergedEnvironment(const std::map<std::string, std::string>& overrides) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text(*entry);
    const auto name = std::string(text.substr(0, text.find('=')));
    if (!overrides.contains(name)) result.emplace_back(text);
  }
  for (const auto& [name, value] : overrides) result.push_back(name + "=" + value);
  return result;
}

std::vector<char*> pointers(std::vector<std::string>& strings) {
  std::vector<char*> result;
  for (auto& text : strings) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

bool hasProperty(const X11Display& display, Atom property) {
  Atom type = None;
  int format = 0;
  unsigned long count = 0;
  unsigned long remaining = 0;
  unsigned char* data = nullptr;
  XGetWindowProperty(display.get(), display.root(), property, 0, 0, False, AnyPropertyType, &type, &format, &count,
                     &remaining, &data);
  if (data != nullptr) XFree(data);
  return type != None;
}

}  // namespace

std::expected<ChildProcess, std::string> ChildProcess::start(const std::vector<std::string>& arguments,
                                                             const std::map<std::string, std::string>& environment,
                                                             const std::optional<std::filesystem::path>& output,
                                                             const std::optional<std::filesystem::path>& errors) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (output) posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output->c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (errors) posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors->c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  std::vector<std::string> argumentCopy = arguments;
  std::vector<std::string> environmentCopy = mergedEnvironment(environment);
  auto argv = pointers(argumentCopy);
  auto envp = pointers(environmentCopy);
  pid_t pid = -1;
  const int failure = posix_spawnp(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (failure != 0) return std::unexpected(arguments[0] + ": " + std::strerror(failure));
  return ChildProcess(pid);
}

ChildProcess::~ChildProcess() { terminate(); }

void ChildProcess::terminate() {
  if (pid_ <= 0 || status_) return;
  kill(pid_, SIGTERM);
  if (!waitForExit(std::chrono::milliseconds(2000))) {
    kill(pid_, SIGKILL);
    waitForExit(std::chrono::milliseconds(2000));
  }
}

std::optional<int> ChildProcess::waitForExit(std::chrono::milliseconds timeout) {
  if (status_ || pid_ <= 0) return status_;
  waitUntil(
      [this] {
        int status = 0;
        if (waitpid(pid_, &status, WNOHANG) != pid_) return false;
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return true;
      },
      timeout);
  return status_;
}

bool ChildProcess::isRunning() { return !waitForExit(std::chrono::milliseconds(0)); }

bool waitUntil(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (true) {
    if (condition()) return true;
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
}

bool PrivateDesktop::isAvailable() { return onPath("Xvfb") && onPath("openbox"); }

std::expected<ChildProcess, std::string> PrivateDesktop::startServer(int number, const std::filesystem::path& log) {
  // Xvfb writes the display number to the -displayfd pipe once it accepts
  // connections, and exits at once when the number is taken.
  int pipeFds[2];
  if (pipe(pipeFds) != 0) return std::unexpected(std::string("pipe: ") + std::strerror(errno));
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  std::vector<std::string> arguments{"Xvfb", ":" + std::to_string(number), "-displayfd", std::to_string(pipeFds[1]),
                                     "-screen", "0", "1280x800x24", "-nolisten", "tcp"};
  auto argv = pointers(arguments);
  pid_t pid = -1;
  const int failure = posix_spawnp(&pid, "Xvfb", &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(pipeFds[1]);
  if (failure != 0) {
    close(pipeFds[0]);
    return std::unexpected(std::string("Xvfb: ") + std::strerror(failure));
  }
  ChildProcess server(pid);
  std::string reported;
  pollfd fd{pipeFds[0], POLLIN, 0};
  char digit = 0;
  while (poll(&fd, 1, 5000) > 0 && read(pipeFds[0], &digit, 1) == 1 && digit != '\n') reported += digit;
  close(pipeFds[0]);
  if (reported != std::to_string(number)) return std::unexpected("Xvfb could not take display :" + std::to_string(number));
  return server;
}

std::expected<PrivateDesktop, std::string> PrivateDesktop::start(const std::filesystem::path& scratch) {
  // Display numbers are drawn at random from a range desktops rarely use, so
  // a desktop started while another one shuts down never lands on the number
  // whose server is still going away.
  std::mt19937 random(std::random_device{}());
  std::uniform_int_distribution<int> numbers(100, 999);
  std::optional<ChildProcess> server;
  int number = 0;
  for (int attempt = 0; attempt < 10 && !server; ++attempt) {
    number = numbers(random);
    if (std::filesystem::exists("/tmp/.X" + std::to_string(number) + "-lock")) continue;
    if (auto started = startServer(number, scratch / "xvfb.log")) server.emplace(std::move(*started));
  }
  if (!server) return std::unexpected("Xvfb did not start (see " + (scratch / "xvfb.log").string() + ")");
  const std::string displayName = ":" + std::to_string(number);

  auto display = X11Display::open(displayName.c_str());
  if (!display) return std::unexpected(display.error());
  auto windowManager = ChildProcess::start({"openbox", "--sm-disable"}, {{"DISPLAY", displayName}}, std::nullopt,
                                           scratch / "openbox.log");
  if (!windowManager) return std::unexpected(windowManager.error());
  // openbox names its theme on the root window once it has loaded its
  // configuration and fonts; before that it does not manage windows yet.
  const Atom theme = XInternAtom(display->get(), "_OB_THEME", False);
  if (!waitUntil([&] { return hasProperty(*display, theme); }, std::chrono::milliseconds(15000))) {
    return std::unexpected("openbox did not start (see " + (scratch / "openbox.log").string() + ")");
  }
  return PrivateDesktop(displayName, std::move(*server), std::move(*windowManager), std::move(*display));
}

PrivateDesktop::PrivateDesktop(std::string displayName, ChildProcess server, ChildProcess windowManager,
                               X11Display display)
    : displayName_(std::move(displayName)) {
  server_.emplace(std::move(server));
  windowManager_.emplace(std::move(windowManager));
  display_.emplace(std::move(display));
}

PrivateDesktop::~PrivateDesktop() {
  display_.reset();
  windowManager_.reset();
  server_.reset();
}

bool PrivateDesktop::waitUntilSettled(const std::function<bool()>& condition, std::chrono::milliseconds timeout) {
  constexpr std::chrono::milliseconds nudgeInterval{200};
  const Atom nudge = XInternAtom(display_->get(), "_KOVI_NUDGE", False);
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (true) {
    if (waitUntil(condition, nudgeInterval)) return true;
    if (std::chrono::steady_clock::now() >= deadline) return false;
    const long value = 0;
    XChangeProperty(display_->get(), display_->root(), nudge, XA_CARDINAL, 32, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(&value), 1);
    XFlush(display_->get());
  }
}

std::vector<Window> PrivateDesktop::clientsOfClass(const std::string& className) {
  std::vector<Window> result;
  XSync(display_->get(), False);
  for (Window window : display_->windowListProperty(display_->root(), display_->atoms().netClientList)) {
    const auto windowClass = display_->windowClass(window);
    if (windowClass && windowClass->className == className) result.push_back(window);
  }
  return result;
}

std::optional<long> PrivateDesktop::wmState(Window window) { return display_->wmState(window); }

bool PrivateDesktop::isViewable(Window window) {
  XWindowAttributes attributes{};
  return XGetWindowAttributes(display_->get(), window, &attributes) != 0 && attributes.map_state == IsViewable;
}

void PrivateDesktop::activate(Window window) {
  display_->sendRootMessage(window, display_->atoms().netActiveWindow, 2, CurrentTime);
  XFlush(display_->get());
}

std::optional<Window> PrivateDesktop::activeWindow() {
  return display_->windowProperty(display_->root(), display_->atoms().netActiveWindow);
}

std::pair<int, int> PrivateDesktop::screenPosition(Window window) {
  int x = 0;
  int y = 0;
  Window child = None;
  XTranslateCoordinates(display_->get(), window, display_->root(), 0, 0, &x, &y, &child);
  return {x, y};
}

}  // namespace kovi::holds::x11
