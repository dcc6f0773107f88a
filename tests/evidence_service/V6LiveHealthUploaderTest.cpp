#include "KoviKit/evidence/V6LiveHealthUploader.h"

#include <gtest/gtest.h>

#include "tests/evidence_service/EvidenceFixture.h"
#include "tests/evidence_service/LoopbackEvidenceService.h"

namespace kovi {
namespace {

using testing::EvidenceFixture;
using testing::kApp;
using testing::kOwner;
using Uploader = V6LiveHealthUploader;

class V6LiveHealthUploaderTest : public ::testing::Test {
 protected:
  // Reads every requested day in full and remembers which windows were asked for.
  std::vector<HealthEvidenceDayRead> read(const std::vector<HealthEvidenceDayWindow>& windows) {
    std::vector<int> days;
    for (const auto& window : windows) days.push_back(window.day);
    readDays.push_back(days);
    return EvidenceFixture::reads(days, steps);
  }

  Uploader uploader() {
    return Uploader({device.api, submitter, [this](const auto& windows, UnixMillis) { return read(windows); },
                     [this] { return scope; }, [this] { return now; }, newV6RequestId});
  }

  testing::LoopbackEvidenceService service{EvidenceFixture::kReference, EvidenceFixture::rules(),
                                           EvidenceFixture::kStart};
  testing::Device device{NativeServiceOrigin::parse(service.origin()).value()};
  UnixMillis now = EvidenceFixture::kCutoff + 60'000;
  V6WalkingEvidenceSubmitter submitter{{device.api, device.keys, device.pending, [this] { return now; }, newV6RequestId},
                                       kApp, AppAttestEnvironment::development};
  V6LiveHealthUploadScope scope{kOwner, 1, 1, 1};
  std::vector<std::vector<int>> readDays;
  double steps = 300;
  AppAttestDeviceKey key = device.registerKey();
};

TEST_F(V6LiveHealthUploaderTest, PostsTheListedKoviOnceAndThrottlesItUntilTheNextBucket) {
  auto live = uploader();
  const auto first = live.runPass(key);
  ASSERT_TRUE(first.has_value()) << first.error().code << ": " << first.error().detail;
  ASSERT_EQ(first->posted.size(), 1u);
  EXPECT_EQ(first->posted[0].reference, EvidenceFixture::kReference);
  ASSERT_TRUE(first->posted[0].outcome.receipt.has_value());
  EXPECT_EQ(first->posted[0].outcome.receipt->accepted.size(), 3u);
  EXPECT_EQ(readDays, (std::vector<std::vector<int>>{{0, 1, 2}}));
  EXPECT_EQ(service.state().acceptedSubmissions, 1);
  EXPECT_EQ(service.contextRequests(), 1) << "the submission is built on the context the pass fetched";
  EXPECT_EQ(live.state().postedAt.at(EvidenceFixture::kReference), now);
  EXPECT_TRUE(live.state().wanted.empty());
  EXPECT_FALSE(live.state().requestID.has_value()) << "no pass is under way after one ended";

  // One minute later: the list is not fetched again and the kovi is not posted again.
  const int listRequests = service.koviListRequests();
  now += 60'000;
  const auto second = live.runPass(key);
  ASSERT_TRUE(second.has_value());
  EXPECT_TRUE(second->posted.empty());
  EXPECT_EQ(service.koviListRequests(), listRequests);

  // After the rescan interval the list comes again, but the post interval still holds the kovi back.
  now += Uploader::kRescanInterval;
  const auto third = live.runPass(key);
  ASSERT_TRUE(third.has_value());
  EXPECT_GT(service.koviListRequests(), listRequests);
  EXPECT_EQ(third->throttled, (std::vector<std::string>{EvidenceFixture::kReference}));

  // One post interval after the post, it goes again.
  now += Uploader::kPostInterval - Uploader::kRescanInterval - 60'000;
  const auto fourth = live.runPass(key);
  ASSERT_TRUE(fourth.has_value());
  EXPECT_EQ(fourth->posted.size(), 1u);
}

TEST_F(V6LiveHealthUploaderTest, ACursorTheServiceRepeatsEndsTheList) {
  service.loopKoviCursors();
  auto live = uploader();
  const auto pass = live.runPass(key);
  ASSERT_TRUE(pass.has_value()) << pass.error().code;
  EXPECT_TRUE(pass->cursorLoop);
  // The first page, then its cursor, "a", "b", and "a" again is seen as a loop.
  EXPECT_EQ(service.koviListRequests(), 4);
  EXPECT_EQ(live.state().visitedCursors, (std::set<std::string>{"after-kovi-walk-1", "a", "b"}));
  EXPECT_EQ(pass->posted.size(), 1u) << "the kovis listed before the loop are still uploaded";
}

TEST_F(V6LiveHealthUploaderTest, AScopeChangeDropsEverythingLearntUnderTheOldOne) {
  auto live = uploader();
  ASSERT_TRUE(live.runPass(key).has_value());
  ASSERT_FALSE(live.state().postedAt.empty());
  ASSERT_TRUE(live.state().scanFinishedAt.has_value());

  // Each scope differs from the one before in one field only.
  const std::vector<V6LiveHealthUploadScope> scopes{{kOwner, 1, 1, 1}, {kOwner, 1, 2, 1}, {kOwner, 2, 2, 1},
                                                    {kOwner, 2, 2, 2}, {"actor-2", 2, 2, 2}};
  for (std::size_t index = 1; index < scopes.size(); ++index) {
    SCOPED_TRACE(index);
    scope = scopes[index];
    const auto pass = live.runPass(key);
    ASSERT_TRUE(pass.has_value());
    EXPECT_EQ(live.state().scope, scopes[index]);
    // Nothing from the old scope throttles the new one: the kovi is posted afresh.
    EXPECT_TRUE(pass->throttled.empty());
    EXPECT_EQ(pass->posted.size(), 1u);
  }

  // The consent generation moves while the pass reads new data: the pass stops there.
  steps = 400;
  Uploader interrupted({device.api, submitter,
                        [this](const auto& windows, UnixMillis) {
                          scope.consentGeneration += 1;
                          return read(windows);
                        },
                        [this] { return scope; }, [this] { return now; }, newV6RequestId});
  const int accepted = service.state().acceptedSubmissions;
  const auto pass = interrupted.runPass(key);
  ASSERT_TRUE(pass.has_value());
  EXPECT_TRUE(pass->scopeChanged);
  EXPECT_TRUE(pass->posted.empty());
  EXPECT_EQ(service.state().acceptedSubmissions, accepted) << "nothing read under the old scope is sent";
  Uploader::State fresh;
  fresh.scope = scope;
  EXPECT_EQ(interrupted.state(), fresh);
}

}  // namespace
}  // namespace kovi
