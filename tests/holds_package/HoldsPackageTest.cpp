#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <regex>

#include "KoviMacHolds/platform/x11/demo/PrivateDesktop.h"
#include "tests/support/TemporaryDirectory.h"
#include "tests/support/TestData.h"

namespace kovi::holds {
namespace {

using x11::ChildProcess;

constexpr std::chrono::milliseconds kToolTime{180000};

using kovi::testing::readTestFile;

bool installed(const char* program) {
  for (const char* directory : {"/usr/bin", "/bin"}) {
    if (std::filesystem::exists(std::filesystem::path(directory) / program)) return true;
  }
  return false;
}

// Runs a tool to its end; its exit status, with its output in `output`.
std::optional<int> run(const std::vector<std::string>& arguments, const std::filesystem::path& output) {
  auto process = ChildProcess::start(arguments, {}, output, output.string() + ".err");
  if (!process) return std::nullopt;
  return process->waitForExit(kToolTime);
}

// Built once for every test of the suite: building and unpacking the package
// takes a while.
class HoldsPackageTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    if (!installed("cpack") || !installed("dpkg-deb") || !installed("dpkg-shlibdeps")) return;
    scratch_.emplace();
    const auto out = scratch_->path() / "cpack";
    if (run({"cpack", "--config", KOVI_CPACK_CONFIG, "-G", "DEB", "-B", out.string()}, scratch_->path() / "cpack.log") != 0) return;
    for (const auto& entry : std::filesystem::directory_iterator(out)) {
      if (entry.path().extension() == ".deb") package_ = entry.path();
    }
    if (!package_) return;
    const auto root = scratch_->path() / "root";
    if (run({"dpkg-deb", "-x", package_->string(), root.string()}, scratch_->path() / "unpack.log") != 0) package_.reset();
  }
  static void TearDownTestSuite() {
    package_.reset();
    scratch_.reset();
  }
  void SetUp() override {
    if (!scratch_) GTEST_SKIP() << "cpack, dpkg-deb and dpkg-shlibdeps (dpkg-dev) are needed to build the package";
    ASSERT_TRUE(package_) << readTestFile(scratch_->path() / "cpack.log") << readTestFile(scratch_->path() / "cpack.log.err");
  }
  static std::filesystem::path root() { return scratch_->path() / "root"; }

  static inline std::optional<kovi::testing::TemporaryDirectory> scratch_;
  static inline std::optional<std::filesystem::path> package_;
};

TEST_F(HoldsPackageTest, IsNamedForDebianWithDependsFromTheSharedLibraries) {
  EXPECT_TRUE(std::regex_match(package_->filename().string(), std::regex(R"(kovi-holds_\d+\.\d+\.\d+_amd64\.deb)")))
      << package_->filename();
  const auto control = scratch_->path() / "control";
  ASSERT_EQ(run({"dpkg-deb", "-f", package_->string(), "Package", "Depends"}, control), 0);
  const std::string fields = readTestFile(control);
  EXPECT_NE(fields.find("Package: kovi-holds"), std::string::npos) << fields;
  for (const char* library : {"libc6", "libcairo2", "libpango-1.0-0", "libwayland-client0", "libx11-6"}) {
    EXPECT_NE(fields.find(library), std::string::npos) << library << " missing from " << fields;
  }
}

TEST_F(HoldsPackageTest, InstallsTheUserUnitThatRestartsOnlyAfterAnUpdate) {
  const std::string unit = readTestFile(root() / "usr/lib/systemd/user/kovi-holds.service");
  ASSERT_FALSE(unit.empty()) << "no unit in /usr/lib/systemd/user";
  for (const char* line : {"\nExecStart=/usr/bin/kovi-holds run\n", "\nRestart=no\n", "\nRestartForceExitStatus=75\n",
                           "\nWantedBy=graphical-session.target\n"}) {
    EXPECT_NE(unit.find(line), std::string::npos) << line;
  }
}

TEST_F(HoldsPackageTest, DesktopFileAsksKWinForTheWindowListAndNamesTheInstalledBinary) {
  const std::string entry = readTestFile(root() / "usr/share/applications/kovi-holds.desktop");
  ASSERT_FALSE(entry.empty()) << "no .desktop file in /usr/share/applications";
  EXPECT_NE(entry.find("\nX-KDE-Wayland-Interfaces=org_kde_plasma_window_management\n"), std::string::npos);
  std::smatch exec;
  ASSERT_TRUE(std::regex_search(entry, exec, std::regex(R"(\nExec=(/\S+))")));
  EXPECT_TRUE(std::filesystem::exists(root() / exec[1].str().substr(1))) << exec[1] << " is not in the package";
  EXPECT_TRUE(std::filesystem::exists(root() / "usr/share/doc/kovi-holds/FONTS-LICENSES.txt"));
}

TEST_F(HoldsPackageTest, InstalledBinaryRunsStatusOnTheDemoSchedule) {
  const auto output = scratch_->path() / "status.out";
  ASSERT_EQ(run({(root() / "usr/bin/kovi-holds").string(), "status", "--demo"}, output), 0)
      << readTestFile(output.string() + ".err");
  EXPECT_NE(readTestFile(output).find("hold"), std::string::npos) << readTestFile(output);
}

}  // namespace
}  // namespace kovi::holds
