#include "tests/support/KoviProcess.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tests/support/TemporaryDirectory.h"

extern char** environ;

namespace kovi::testing {
namespace {

std::string contents(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

pid_t spawnKovi(const std::vector<std::string>& arguments, const std::string& outPath, const std::string& errPath) {
  std::vector<std::string> argv{KOVI_TOOL_PATH};
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  std::vector<char*> pointers;
  for (std::string& argument : argv) pointers.push_back(argument.data());
  pointers.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
  pid_t child = 0;
  const int spawned = posix_spawn(&child, pointers.front(), &actions, nullptr, pointers.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) throw std::runtime_error("cannot start " + argv.front());
  return child;
}

}  // namespace

int startKovi(const std::vector<std::string>& arguments) { return spawnKovi(arguments, "/dev/null", "/dev/null"); }

KoviRun runKovi(const std::vector<std::string>& arguments) {
  // Output goes to files rather than pipes, so a chatty child can never block
  // on a pipe nobody reads yet.
  const TemporaryDirectory directory;
  const std::string outPath = (directory.path() / "out").string();
  const std::string errPath = (directory.path() / "err").string();
  const pid_t child = spawnKovi(arguments, outPath, errPath);

  int status = 0;
  if (waitpid(child, &status, 0) != child) throw std::runtime_error("lost the kovi process");
  KoviRun run;
  run.exitStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.out = contents(outPath);
  run.err = contents(errPath);
  return run;
}

}  // namespace kovi::testing
