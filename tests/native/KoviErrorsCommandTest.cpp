// `kovi errors` as users run it: the built binary, its output and exit status.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/KoviProcess.h"

namespace kovi {
namespace {

TEST(ErrorsCommandTest, PrintsTheMessageOrRefusesTheArguments) {
  const std::string wait = "Şu an çok fazla istek var. ";
  const struct {
    std::vector<std::string> arguments;
    int exitStatus;
    std::string out;      // the whole standard output
    std::string errPart;  // a piece of standard error
  } cases[] = {
      {{"errors", "message", "invalid_origin", "--area", "account"}, 0,
       "Bu isteği doğrulayamadık. Uygulamayı kapatıp yeniden açtıktan sonra dene.\n", ""},
      {{"errors", "message", "no_such_code"}, 1, "Şu anda tamamlanamadı. Yenileyip tekrar dene.\n", ""},
      {{"errors", "message", "internal_error", "--area", "nowhere"}, 2, "", "account"},
      {{"errors", "message"}, 2, "", "CODE"},
      {{"errors", "wait", "60"}, 0, wait + "1 dakika sonra yeniden dene.\n", ""},
      // Counts are plain decimal: no octal, no hex, no clamping.
      {{"errors", "wait", "0777"}, 0, wait + "13 dakika sonra yeniden dene.\n", ""},
      {{"errors", "wait", "0x10"}, 2, "", "\"0x10\" is not a plain decimal integer"},
      {{"errors", "wait", "99999999999999999999"}, 2, "", "\"99999999999999999999\" is out of range"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments.back());
    const auto run = testing::runKovi(c.arguments);
    EXPECT_EQ(run.exitStatus, c.exitStatus) << run.err;
    EXPECT_EQ(run.out, c.out);
    EXPECT_NE(run.err.find(c.errPart), std::string::npos) << run.err;
  }
}

}  // namespace
}  // namespace kovi
