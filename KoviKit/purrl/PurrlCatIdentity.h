#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

#include "KoviKit/foundation/Calendar.h"
#include "KoviKit/foundation/KeyValueStore.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlCatMood.h"

namespace kovi {

// Who changed the cat's name: a name typed on this device still has to reach
// the service; a name that came from the service is already there.
enum class PurrlCatNameOrigin { device, service };

// The cat's name, owner, level and last mood on the preferences domain that
// the app, its widgets and the Mac agent share. Reads tolerate missing and
// malformed values (they read as absent); writes report why they failed.
namespace PurrlCatIdentity {

// The preferences domain of the app group, for `FileKeyValueStore`.
inline constexpr std::string_view preferencesDomain = "group.app.kovi.shared";

inline constexpr std::string_view ownerKey = "purrl.cat.owner";
inline constexpr std::string_view nameKey = "purrl.cat.name";
inline constexpr std::string_view nameNeedsSyncKey = "purrl.cat.name.needsSync";
inline constexpr std::string_view moodKey = "purrl.cat.mood";
inline constexpr std::string_view levelKey = "purrl.cat.level";

using Result = std::expected<void, KeyValueStoreError>;

std::optional<std::string> owner(const KeyValueStore& store);
// Makes the stored cat belong to `account` (nullopt on sign-out). A different
// account, or none, first loses the previous person's name, sync mark, mood
// and level, so nobody ever sees another person's cat.
Result bindOwner(KeyValueStore& store, const std::optional<std::string>& account);

std::optional<std::string> name(const KeyValueStore& store);
// Stores the name after normalising it (see `normalizedPurrlCatName`); a name
// that normalises to nothing removes the key. A change made on the device
// marks the name as still to be sent; a name from the service clears the mark.
Result writeName(KeyValueStore& store, std::string_view typed, PurrlCatNameOrigin origin);
bool nameNeedsSync(const KeyValueStore& store);
// Clears the mark once the service has the name.
Result markNameSynced(KeyValueStore& store);

std::optional<int> level(const KeyValueStore& store);
// Stores the growth level clamped to 0…2, only when it differs from what is
// stored; the result says whether anything changed.
std::expected<bool, KeyValueStoreError> writeLevel(KeyValueStore& store, int level);

// The last stored mood; absent when missing or when it does not decode.
std::optional<PurrlCatMoodSnapshot> moodSnapshot(const KeyValueStore& store);
Result writeMoodSnapshot(KeyValueStore& store, const PurrlCatMoodSnapshot& snapshot);
// The snapshot of `mood` computed at `now`, dated with the local day of `calendar`.
PurrlCatMoodSnapshot snapshotOf(PurrlCatMoodResult mood, Date now, const Calendar& calendar);
// The stored mood when it belongs to the local day of `now`; a snapshot from
// an earlier (or later) day is stale and reads as absent.
std::optional<PurrlCatMoodSnapshot> todaysMood(const KeyValueStore& store, Date now, const Calendar& calendar);

}  // namespace PurrlCatIdentity
}  // namespace kovi
