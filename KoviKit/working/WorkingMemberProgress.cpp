#include "KoviKit/working/WorkingMemberProgress.h"

#include <algorithm>
#include <functional>

#include "KoviKit/foundation/CheckedArithmetic.h"

namespace kovi {
namespace {

using Rules = WorkingRules;
using Segments = std::vector<WorkingWorkSegment>;

std::int64_t millis(std::int64_t seconds) { return checkedMul<std::int64_t>(seconds, 1000); }

std::int64_t lengthOf(const Segments& segments) {
  std::int64_t total = 0;
  for (const auto& segment : segments) total = checkedAdd(total, checkedSub(segment.end, segment.start));
  return total;
}

// Days and windows are sorted and never overlap, so the spans a segment
// touches start at the first span that ends after the segment starts.
template <class Span>
auto firstSpanEndingAfter(const std::vector<Span>& spans, std::int64_t instant) {
  return std::ranges::partition_point(spans, [&](const Span& span) { return span.end <= instant; });
}

// Calls `visit(spanIndex, from, to)` for every piece of `segment` inside a span.
template <class Span, class Visit>
void forEachOverlap(const WorkingWorkSegment& segment, const std::vector<Span>& spans, Visit visit) {
  for (auto span = firstSpanEndingAfter(spans, segment.start); span != spans.end() && span->start < segment.end;
       ++span) {
    visit(static_cast<std::size_t>(span - spans.begin()), std::max(segment.start, span->start),
          std::min(segment.end, span->end));
  }
}

// The part of a session that counts: inside the kovi and, when work outside
// the scheduled windows is excluded, inside a window (windows lie inside the
// kovi range).
Segments countedSegments(const Rules& rules, const WorkingSessionWork& session) {
  const auto& calendar = rules.calendar;
  const bool windowsOnly =
      !calendar.windows.empty() && calendar.outsideWindow == Rules::CalendarPolicy::OutsideWindow::exclude;
  const Rules::ScheduleWindow wholeKovi{"", calendar.startsAt, calendar.endsAt, 0};
  const std::vector<Rules::ScheduleWindow> kovi{wholeKovi};
  Segments counted;
  for (const auto& segment : session.segments) {
    forEachOverlap(segment, windowsOnly ? calendar.windows : kovi,
                   [&](std::size_t, std::int64_t from, std::int64_t to) { counted.push_back({from, to}); });
  }
  std::ranges::sort(counted, {}, &WorkingWorkSegment::start);
  return counted;
}

// The wall-clock span of a session, from its first segment's start to its
// last segment's end.
WorkingWorkSegment spanOf(const WorkingSessionWork& session) {
  WorkingWorkSegment span{session.segments.front().start, session.segments.front().end};
  for (const auto& segment : session.segments) {
    span.start = std::min(span.start, segment.start);
    span.end = std::max(span.end, segment.end);
  }
  return span;
}

// Keeps the parts of `segments` before `limit`.
void clipAt(Segments& segments, std::int64_t limit) {
  for (auto& segment : segments) segment.end = std::min(segment.end, limit);
  std::erase_if(segments, [](const WorkingWorkSegment& segment) { return segment.end <= segment.start; });
}

// Applies the session rules of the consent summary, sessions in start order:
// a session starting before the rest after the previous counted session has
// passed does not count; on a kovi day that already has its maximum of
// counted sessions a further one does not count; only work within the hard
// window from a session's start counts; a day's counted work stops at the
// daily cap; and a session whose remaining work is below the minimum does not
// count at all.
class SessionRules {
 public:
  explicit SessionRules(const Rules& rules)
      : rules_(rules),
        daySessions_(rules.calendar.days.size(), 0),
        dayWork_(rules.calendar.days.size(), 0) {}

  std::optional<Segments> counted(const WorkingSessionWork& session) {
    const auto& policy = rules_.session;
    const auto& days = rules_.calendar.days;
    const WorkingWorkSegment span = spanOf(session);
    if (previousEnd_ && span.start < checkedAdd(*previousEnd_, millis(policy.restSeconds))) return std::nullopt;
    const auto day = firstSpanEndingAfter(days, span.start);
    const bool startsInADay = day != days.end() && day->start <= span.start;
    const auto dayIndex = static_cast<std::size_t>(day - days.begin());
    if (policy.maximumSessionsPerDay && startsInADay && daySessions_[dayIndex] >= *policy.maximumSessionsPerDay) {
      return std::nullopt;
    }

    Segments counted = countedSegments(rules_, session);
    if (policy.hardWindowSeconds) clipAt(counted, checkedAdd(span.start, millis(*policy.hardWindowSeconds)));
    std::vector<std::int64_t> work = dayWork_;
    if (policy.dailyCapSeconds) counted = withinDailyCap(counted, millis(*policy.dailyCapSeconds), work);
    const std::int64_t length = lengthOf(counted);
    if (length == 0 || length < millis(policy.minimumSeconds)) return std::nullopt;

    dayWork_ = std::move(work);
    if (startsInADay) ++daySessions_[dayIndex];
    previousEnd_ = span.end;
    return counted;
  }

 private:
  // The parts of `segments` that fit under each day's cap, counting them into
  // `work` (the day's counted time so far).
  Segments withinDailyCap(const Segments& segments, std::int64_t cap, std::vector<std::int64_t>& work) const {
    Segments kept;
    for (const auto& segment : segments) {
      forEachOverlap(segment, rules_.calendar.days, [&](std::size_t index, std::int64_t from, std::int64_t to) {
        const std::int64_t room = std::max<std::int64_t>(0, cap - work[index]);
        const std::int64_t taken = std::min(room, to - from);
        if (taken <= 0) return;
        work[index] = checkedAdd(work[index], taken);
        kept.push_back({from, from + taken});
      });
    }
    return kept;
  }

  const Rules& rules_;
  std::optional<std::int64_t> previousEnd_;
  std::vector<std::int64_t> daySessions_;
  std::vector<std::int64_t> dayWork_;
};

// The sessions that count, each with its counted segments.
std::vector<Segments> countedSessions(const Rules& rules, const WorkingMemberWork& member) {
  std::vector<const WorkingSessionWork*> ordered;
  for (const auto& session : member.sessions) {
    if (!session.segments.empty()) ordered.push_back(&session);
  }
  std::ranges::stable_sort(ordered, {}, [](const WorkingSessionWork* session) { return spanOf(*session).start; });
  SessionRules sessionRules(rules);
  std::vector<Segments> sessions;
  for (const WorkingSessionWork* session : ordered) {
    if (auto counted = sessionRules.counted(*session)) sessions.push_back(std::move(*counted));
  }
  return sessions;
}

// Each day's or window's counted time: separate sessions add up, or with
// single sessions only the best session inside that span counts.
template <class Span>
std::vector<std::int64_t> timePerSpan(const std::vector<Segments>& sessions, const std::vector<Span>& spans,
                                      bool singleSession) {
  std::vector<std::int64_t> combined(spans.size(), 0);
  std::vector<std::int64_t> session(spans.size(), 0);
  for (const Segments& segments : sessions) {
    std::ranges::fill(session, 0);
    for (const auto& segment : segments) {
      forEachOverlap(segment, spans, [&](std::size_t index, std::int64_t from, std::int64_t to) {
        session[index] = checkedAdd(session[index], to - from);
      });
    }
    for (std::size_t index = 0; index < spans.size(); ++index) {
      combined[index] =
          singleSession ? std::max(combined[index], session[index]) : checkedAdd(combined[index], session[index]);
    }
  }
  return combined;
}

// The instant the running total of `segments` (sorted) reaches `target`.
std::optional<std::int64_t> reachInstant(const Segments& segments, std::int64_t target) {
  std::int64_t counted = 0;
  for (const auto& segment : segments) {
    const std::int64_t length = segment.end - segment.start;
    if (counted + length >= target) return segment.start + (target - counted);
    counted += length;
  }
  return std::nullopt;
}

class ProgressMeasure {
 public:
  ProgressMeasure(const Rules& rules, const WorkingMemberWork& member)
      : rules_(rules),
        singleSession_(rules.session.fragmentation == Rules::Fragmentation::singleSession),
        sessions_(countedSessions(rules, member)) {
    for (const Segments& session : sessions_) {
      const std::int64_t length = lengthOf(session);
      progress_.countedMilliseconds = checkedAdd(progress_.countedMilliseconds, length);
      bestSession_ = std::max(bestSession_, length);
    }
  }

  WorkingMemberProgress measure() && {
    const auto& goal = rules_.goal;
    switch (goal.kind) {
      case Rules::GoalKind::daily: measureDays(); break;
      case Rules::GoalKind::dailyAndTotal:
        measureDays();
        addTotalCondition();
        break;
      case Rules::GoalKind::total: measureAgainst(totalMeasure(), millis(*goal.totalTargetSeconds)); break;
      case Rules::GoalKind::singleSession: measureAgainst(bestSession_, millis(*goal.totalTargetSeconds)); break;
      case Rules::GoalKind::scheduled: measureWindows(); break;
      case Rules::GoalKind::sprint: measureSprint(); break;
    }
    if (rules_.race.targetSeconds) progress_.reachedAt = reachedAt(millis(*rules_.race.targetSeconds));
    return std::move(progress_);
  }

 private:
  // Separate sessions are not merged toward a target under single sessions.
  std::int64_t totalMeasure() const { return singleSession_ ? bestSession_ : progress_.countedMilliseconds; }

  void measureAgainst(std::int64_t measure, std::int64_t target) {
    progress_.progressMilliseconds = measure;
    progress_.targetMilliseconds = target;
    progress_.successful = measure >= target;
  }

  // The required number of best days, each capped at the daily target.
  void measureDays() {
    const auto& days = rules_.calendar.days;
    const std::int64_t dailyTarget = millis(*rules_.goal.dailyTargetSeconds);
    const auto required = static_cast<std::size_t>(*rules_.goal.requiredSuccessfulDays);
    const std::vector<std::int64_t> time = timePerSpan(sessions_, days, singleSession_);
    std::vector<std::int64_t> capped;
    capped.reserve(days.size());
    std::int64_t streak = 0;
    for (std::size_t index = 0; index < days.size(); ++index) {
      const bool met = time[index] >= dailyTarget;
      progress_.days.push_back({days[index].id, time[index], met});
      capped.push_back(std::min(time[index], dailyTarget));
      streak = met ? streak + 1 : 0;
      progress_.successfulDays += met ? 1 : 0;
      progress_.bestStreak = std::max(progress_.bestStreak, streak);
    }
    std::ranges::partial_sort(capped, capped.begin() + static_cast<std::ptrdiff_t>(required), std::greater<>());
    std::int64_t best = 0;
    for (std::size_t index = 0; index < required; ++index) best = checkedAdd(best, capped[index]);
    progress_.progressMilliseconds = best;
    progress_.targetMilliseconds = checkedMul(static_cast<std::int64_t>(required), dailyTarget);
    progress_.successful = progress_.successfulDays >= static_cast<std::int64_t>(required);
  }

  // Both conditions: the days as above plus the total, capped at its target.
  void addTotalCondition() {
    const std::int64_t totalTarget = millis(*rules_.goal.totalTargetSeconds);
    progress_.progressMilliseconds = checkedAdd(progress_.progressMilliseconds, std::min(totalMeasure(), totalTarget));
    progress_.targetMilliseconds = checkedAdd(progress_.targetMilliseconds, totalTarget);
    progress_.successful = progress_.successful && totalMeasure() >= totalTarget;
  }

  // Every window's time capped at its own target; all must be met.
  void measureWindows() {
    const auto& windows = rules_.calendar.windows;
    const std::vector<std::int64_t> time = timePerSpan(sessions_, windows, singleSession_);
    progress_.successful = true;
    for (std::size_t index = 0; index < windows.size(); ++index) {
      const std::int64_t target = millis(windows[index].targetSeconds);
      const bool met = time[index] >= target;
      progress_.windows.push_back({windows[index].id, time[index], met});
      progress_.progressMilliseconds = checkedAdd(progress_.progressMilliseconds, std::min(time[index], target));
      progress_.targetMilliseconds = checkedAdd(progress_.targetMilliseconds, target);
      progress_.successful = progress_.successful && met;
    }
  }

  // The total target counted inside the one window, which must also meet its
  // own target.
  void measureSprint() {
    const auto& window = rules_.calendar.windows.front();
    const std::int64_t time = timePerSpan(sessions_, rules_.calendar.windows, singleSession_).front();
    const bool windowMet = time >= millis(window.targetSeconds);
    progress_.windows.push_back({window.id, time, windowMet});
    measureAgainst(time, millis(*rules_.goal.totalTargetSeconds));
    progress_.successful = progress_.successful && windowMet;
  }

  std::optional<std::int64_t> reachedAt(std::int64_t target) const {
    if (singleSession_) {
      std::optional<std::int64_t> earliest;
      for (const Segments& session : sessions_) {
        const auto reached = reachInstant(session, target);
        if (reached && (!earliest || *reached < *earliest)) earliest = reached;
      }
      return earliest;
    }
    Segments all;
    for (const Segments& session : sessions_) all.insert(all.end(), session.begin(), session.end());
    std::ranges::sort(all, {}, &WorkingWorkSegment::start);
    return reachInstant(all, target);
  }

  const Rules& rules_;
  bool singleSession_;
  std::vector<Segments> sessions_;
  std::int64_t bestSession_ = 0;
  WorkingMemberProgress progress_;
};

}  // namespace

WorkingMemberProgress measureWorkingProgress(const WorkingRules& rules, const WorkingMemberWork& member) {
  return ProgressMeasure(rules, member).measure();
}

}  // namespace kovi
