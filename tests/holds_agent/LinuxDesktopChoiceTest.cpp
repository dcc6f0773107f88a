#include <gtest/gtest.h>

#include <map>

#include "KoviKit/foundation/Json.h"
#include "KoviMacHolds/platform/linux/LinuxDesktopChoice.h"
#include "tests/support/TestData.h"

namespace kovi::holds::desktop {
namespace {

// Each row is a session as probed, the backend chosen for it and a text the
// notice must mention (empty: no notice).
TEST(LinuxDesktopChoice, WaylandOnlyWhereTheCompositorOffersWindowsAndLayers) {
  const std::map<std::string, LinuxDesktopBackend> backends{{"wlroots", LinuxDesktopBackend::wlroots},
                                                           {"plasma", LinuxDesktopBackend::plasma},
                                                           {"x11", LinuxDesktopBackend::x11}};
  const auto rows = parseJson(kovi::testing::testDataFile("holds_agent", "desktop-choices.json"));
  ASSERT_TRUE(rows.has_value() && rows->size() == 12) << "desktop-choices.json";
  for (const nlohmann::json& entry : *rows) {
    SCOPED_TRACE(entry.at("name").get<std::string>());
    const auto choice = chooseLinuxDesktop(
        {entry.at("waylandDisplaySet").get<bool>(), entry.at("waylandConnected").get<bool>(),
         entry.at("waylandGlobals").get<std::set<std::string>>(), entry.at("currentDesktop").get<std::string>()});
    EXPECT_EQ(choice.backend, backends.at(entry.at("backend").get<std::string>()));
    const auto mentions = entry.at("noticeMentions").get<std::string>();
    if (mentions.empty()) {
      EXPECT_FALSE(choice.notice.has_value()) << *choice.notice;
    } else {
      ASSERT_TRUE(choice.notice.has_value());
      EXPECT_NE(choice.notice->find(mentions), std::string::npos) << *choice.notice;
      EXPECT_NE(choice.notice->find("XWayland"), std::string::npos) << *choice.notice;
    }
  }
}

}  // namespace
}  // namespace kovi::holds::desktop
