#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "KoviKit/working/WorkingSessionEngine.h"
#include "tests/working/WorkingSessionTestSupport.h"

namespace kovi {
namespace {

using namespace kovi::testing;
using Kind = WorkingTimeSegment::Kind;
using Type = WorkingSessionEvent::Type;

// Spans during which a required readiness was false, as the engine itself
// reported its readiness after each accepted event.
struct BlockedSpan { UnixMillis start; UnixMillis end; };

WorkingSessionEvent randomEvent(std::mt19937_64& random, UnixMillis& clock) {
  std::uniform_int_distribution<int> typeIndex(0, static_cast<int>(EnumNames<Type>::table.size()) - 1);
  std::uniform_int_distribution<int> percent(0, 99);
  std::uniform_int_distribution<UnixMillis> step(0, 40'000);
  // Now and then the clock runs backwards; the engine must refuse it.
  clock += percent(random) < 3 ? -step(random) : step(random);
  WorkingSessionEvent event = sessionEvent(clock, EnumNames<Type>::table[typeIndex(random)].first);
  // Mostly ready, so sessions start and run long enough to matter.
  const auto flag = [&] { return percent(random) < 85; };
  event.readiness = {flag(), flag(), flag(), flag(), flag(), flag(), flag()};
  event.passive = {percent(random) < 50, percent(random) < 70 ? "same" : "other"};
  event.transport = EnumNames<WorkingTransportState>::table[percent(random) % 5].first;
  return event;
}

void expectTimelineInvariants(const WorkingSessionEngine& engine, const std::vector<BlockedSpan>& blocked) {
  const WorkingSessionSnapshot snapshot = engine.snapshot();
  const auto& segments = snapshot.segments;
  if (!engine.startedAtMS()) {
    EXPECT_TRUE(segments.empty());
    return;
  }
  std::int64_t sums[6] = {};
  for (std::size_t index = 0; index < segments.size(); ++index) {
    const WorkingTimeSegment& segment = segments[index];
    ASSERT_LT(segment.startMS, segment.endMS);
    if (index > 0) {
      ASSERT_EQ(segments[index - 1].endMS, segment.startMS) << "segments are contiguous";
      ASSERT_NE(segments[index - 1].kind, segment.kind) << "neighbours of one kind are merged";
    }
    sums[static_cast<int>(segment.kind)] += segment.endMS - segment.startMS;
    if (segment.kind != Kind::active && segment.kind != Kind::provisional) continue;
    for (const BlockedSpan& span : blocked) {
      ASSERT_FALSE(segment.startMS < span.end && span.start < segment.endMS)
          << "counted [" << segment.startMS << ", " << segment.endMS << ") while blocked [" << span.start << ", "
          << span.end << ")";
    }
    if (engine.policy().hardWindowMS) {
      ASSERT_LE(segment.endMS, *engine.startedAtMS() + *engine.policy().hardWindowMS) << "counted past the hard window";
    }
  }
  if (!segments.empty()) {
    EXPECT_EQ(segments.front().startMS, *engine.startedAtMS());
    EXPECT_EQ(segments.back().endMS, *engine.lastObservedAtMS());
  }
  EXPECT_EQ(snapshot.elapsedMS, *engine.lastObservedAtMS() - *engine.startedAtMS());
  EXPECT_EQ(snapshot.candidateActiveMS, sums[static_cast<int>(Kind::active)] + sums[static_cast<int>(Kind::provisional)]);
  EXPECT_EQ(snapshot.provisionalMS, sums[static_cast<int>(Kind::provisional)]);
  EXPECT_EQ(snapshot.idleMS, sums[static_cast<int>(Kind::idle)]);
  EXPECT_EQ(snapshot.breakMS, sums[static_cast<int>(Kind::break_)]);
  EXPECT_EQ(snapshot.unverifiedMS, sums[static_cast<int>(Kind::unverified)]);
  EXPECT_EQ(snapshot.violationMS, sums[static_cast<int>(Kind::violation)]);
}

TEST(WorkingSessionPropertyTest, RandomEventSequencesKeepTheTimelineHonest) {
  std::mt19937_64 random(20261122);
  for (int sequence = 0; sequence < 1500; ++sequence) {
    SCOPED_TRACE("sequence " + std::to_string(sequence));
    WorkingSessionPolicy policy = sessionTestPolicy();
    policy.requiresWebsiteBlocking = sequence % 2 == 0;
    policy.requiresServerLease = sequence % 3 == 0;
    if (sequence % 4 == 0) policy.hardWindowMS = 300'000;
    if (sequence % 5 == 0) policy.pomodoro = {{60'000, 60'000}};
    if (sequence % 6 == 0) policy.passiveIdleThresholdMS = 200'000;
    WorkingSessionEngine engine = sessionEngine(policy);
    std::vector<BlockedSpan> blocked;
    std::optional<UnixMillis> blockedSince;
    UnixMillis clock = 1'000'000;
    for (int step = 0; step < 80; ++step) {
      const WorkingSessionEvent event = randomEvent(random, clock);
      const WorkingSessionEngine before = engine;
      const auto outcome = engine.observe(event);
      if (!outcome && outcome.error().kind != WorkingSessionError::Kind::cannotResume) {
        ASSERT_EQ(engine, before) << "a refused " << enumName(event.type) << " changed the engine";
      }
      if (before.lastObservedAtMS() && event.at < *before.lastObservedAtMS()) {
        ASSERT_FALSE(outcome.has_value()) << "a clock running backwards was accepted";
      }
      if (!engine.startedAtMS() || !outcome) continue;
      const bool blocking = !workingBlockingReasons(policy, engine.readiness()).empty();
      if (blocking && !blockedSince) blockedSince = event.at;
      if (!blocking && blockedSince) {
        blocked.push_back({*blockedSince, event.at});
        blockedSince.reset();
      }
      if (blockedSince) blocked.push_back({*blockedSince, *engine.lastObservedAtMS()});
      expectTimelineInvariants(engine, blocked);
      if (blockedSince) blocked.pop_back();
      if (::testing::Test::HasFatalFailure()) return;
    }
  }
}

}  // namespace
}  // namespace kovi
