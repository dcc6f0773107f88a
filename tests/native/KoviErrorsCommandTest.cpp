// `kovi errors` as users run it: the built binary, its output and exit status.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/KoviProcess.h"

namespace kovi {
namespace {

using testing::runKovi;

struct CommandCase {
  std::vector<std::string> arguments;
  int exitStatus;
  std::string out;     // the whole standard output
  std::string errPart;  // a piece of standard error
};

void PrintTo(const CommandCase& example, std::ostream* out) {
  for (const auto& argument : example.arguments) *out << argument << ' ';
}

class ErrorsCommandTest : public ::testing::TestWithParam<CommandCase> {};

TEST_P(ErrorsCommandTest, PrintsTheMessage) {
  const CommandCase& example = GetParam();
  const auto run = runKovi(example.arguments);
  EXPECT_EQ(run.exitStatus, example.exitStatus) << run.err;
  EXPECT_EQ(run.out, example.out);
  EXPECT_NE(run.err.find(example.errPart), std::string::npos) << run.err;
}

INSTANTIATE_TEST_SUITE_P(
    Commands, ErrorsCommandTest,
    ::testing::Values(
        CommandCase{{"errors", "message", "invalid_origin", "--area", "account"},
                    0,
                    "Bu isteği doğrulayamadık. Uygulamayı kapatıp yeniden açtıktan sonra dene.\n",
                    ""},
        CommandCase{{"errors", "message", "no_such_code"}, 1, "Şu anda tamamlanamadı. Yenileyip tekrar dene.\n", ""},
        CommandCase{{"errors", "message", "internal_error", "--area", "nowhere"}, 2, "", "account"},
        CommandCase{{"errors", "message"}, 2, "", "CODE"},
        CommandCase{{"errors"}, 2, "", "subcommand"},
        CommandCase{{"errors", "wait", "60"}, 0, "Şu an çok fazla istek var. 1 dakika sonra yeniden dene.\n", ""},
        CommandCase{{"errors", "wait", "-30"}, 0, "Şu an çok fazla istek var. 1 saniye sonra yeniden dene.\n", ""},
        CommandCase{{"errors", "wait", "soon"}, 2, "", "SECONDS"},
        // Counts are plain decimal: no octal, no hex, no clamping.
        CommandCase{{"errors", "wait", "0777"}, 0, "Şu an çok fazla istek var. 13 dakika sonra yeniden dene.\n", ""},
        CommandCase{{"errors", "wait", "0x10"}, 2, "", "\"0x10\" is not a plain decimal integer"},
        CommandCase{{"errors", "wait", "99999999999999999999"}, 2, "", "\"99999999999999999999\" is out of range"}));

}  // namespace
}  // namespace kovi
