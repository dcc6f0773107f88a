#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/foundation/Time.h"

namespace kovi::holds {

// Today's Social allowance use as the main app last recorded it. The agent
// reads it and never writes it back.
struct MacFocus4Allowance {
  std::string day;                    // the day string the record belongs to
  std::int64_t usedMS = 0;            // Social milliseconds used that day, closed spans only
  std::optional<std::int64_t> since;  // Unix ms at which the open Social span began

  bool operator==(const MacFocus4Allowance&) const = default;
};

// The schedule of holds that the main app writes to holds.json.
struct MacHoldsSnapshot {
  struct ExamWeek {
    std::string startDay;  // first day, day string
    std::string endDay;    // last day, inclusive
    int days = 0;          // carried, not used
    int firstMinute = 0;   // start of the first study block, minutes after local midnight
    int secondMinute = 0;  // start of the second study block
    int blockMinutes = 0;
    std::optional<int> sleepStart;  // exam-week night, minutes after midnight
    std::optional<int> sleepEnd;    // earlier than (or equal to) sleepStart: ends the next day
    int socialMinutes = 0;          // daily Social allowance
    std::string strictness;         // carried, not interpreted

    bool operator==(const ExamWeek&) const = default;
  };

  struct Sleep {
    int startMinute = 0;
    int endMinute = 0;
    std::string strictness;

    bool operator==(const Sleep&) const = default;
  };

  int version = 1;
  bool stopped = false;
  std::optional<std::string> accountScope;
  Date syncedAt;
  std::optional<ExamWeek> examWeek;
  std::optional<Sleep> sleep;
  bool keepCommunication = false;
  std::optional<MacFocus4Allowance> allowance;

  bool operator==(const MacHoldsSnapshot&) const = default;
};

// The largest snapshot file the agent reads, and the only format version it accepts.
inline constexpr std::size_t kMacHoldsSnapshotByteLimit = 65'536;
inline constexpr int kMacHoldsSnapshotVersion = 1;

// Why a snapshot file counts as no snapshot.
struct MacHoldsSnapshotFailure {
  enum class Kind { missing, unreadable, tooLarge, undecodable, unsupportedVersion };
  Kind kind = Kind::missing;
  std::string reason;  // short English text: which file, which key, why

  bool operator==(const MacHoldsSnapshotFailure&) const = default;
};

// A snapshot, or why there is none.
using MacHoldsSnapshotLoad = std::expected<MacHoldsSnapshot, MacHoldsSnapshotFailure>;

// Decodes the bytes of a snapshot file: undecodable (with the key path and
// reason) or unsupportedVersion when they are not a version-1 snapshot. A
// document whose `version` is an integer other than 1 is unsupportedVersion
// even when the rest of it would not decode, since a newer main app may have
// changed the shape.
MacHoldsSnapshotLoad decodeMacHoldsSnapshot(std::string_view bytes);

// Reads and decodes the snapshot at `path`, at most kMacHoldsSnapshotByteLimit bytes.
MacHoldsSnapshotLoad loadMacHoldsSnapshot(const std::filesystem::path& path);

// Where the main app writes the snapshot: Kovi/Holds/holds.json under the
// user's Application Support directory ($XDG_DATA_HOME on Linux).
std::filesystem::path defaultMacHoldsSnapshotPath();

}  // namespace kovi::holds

namespace kovi {

template <>
struct EnumNames<holds::MacHoldsSnapshotFailure::Kind> {
  using Kind = holds::MacHoldsSnapshotFailure::Kind;
  static constexpr std::array table{
      std::pair{Kind::missing, std::string_view("missing")},
      std::pair{Kind::unreadable, std::string_view("unreadable")},
      std::pair{Kind::tooLarge, std::string_view("tooLarge")},
      std::pair{Kind::undecodable, std::string_view("undecodable")},
      std::pair{Kind::unsupportedVersion, std::string_view("unsupportedVersion")},
  };
};

template <>
struct JsonDecoder<holds::MacFocus4Allowance> {
  static Decoded<holds::MacFocus4Allowance> decode(const JsonView& json);
};
template <>
struct JsonDecoder<holds::MacHoldsSnapshot::ExamWeek> {
  static Decoded<holds::MacHoldsSnapshot::ExamWeek> decode(const JsonView& json);
};
template <>
struct JsonDecoder<holds::MacHoldsSnapshot::Sleep> {
  static Decoded<holds::MacHoldsSnapshot::Sleep> decode(const JsonView& json);
};
template <>
struct JsonDecoder<holds::MacHoldsSnapshot> {
  static Decoded<holds::MacHoldsSnapshot> decode(const JsonView& json);
};

}  // namespace kovi
