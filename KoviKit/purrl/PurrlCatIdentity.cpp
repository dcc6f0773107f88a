#include "KoviKit/purrl/PurrlCatIdentity.h"

#include <algorithm>

#include "KoviKit/purrl/PurrlCatName.h"

namespace kovi::PurrlCatIdentity {
namespace {

std::optional<std::string> storedString(const KeyValueStore& store, std::string_view key) {
  const auto value = store.value(key);
  if (!value || !value->is_string()) return std::nullopt;
  return value->get<std::string>();
}

void erase(nlohmann::json& values, std::string_view key) {
  if (const auto found = values.find(key); found != values.end()) values.erase(found);
}

}  // namespace

std::optional<std::string> owner(const KeyValueStore& store) { return storedString(store, ownerKey); }

Result bindOwner(KeyValueStore& store, const std::optional<std::string>& account) {
  return store.update([&](nlohmann::json& values) {
    const auto stored = values.find(ownerKey);
    const bool someoneElse = stored != values.end() && (!account || *stored != *account);
    if (someoneElse || !account) {
      for (const std::string_view key : {nameKey, nameNeedsSyncKey, moodKey, levelKey}) erase(values, key);
    }
    if (account) {
      values[std::string(ownerKey)] = *account;
    } else {
      erase(values, ownerKey);
    }
  });
}

std::optional<std::string> name(const KeyValueStore& store) { return storedString(store, nameKey); }

Result writeName(KeyValueStore& store, std::string_view typed, PurrlCatNameOrigin origin) {
  const std::optional<std::string> normalized = normalizedPurrlCatName(typed);
  return store.update([&](nlohmann::json& values) {
    const auto stored = values.find(nameKey);
    const bool changed = normalized ? stored == values.end() || *stored != *normalized : stored != values.end();
    if (normalized) {
      values[std::string(nameKey)] = *normalized;
    } else {
      erase(values, nameKey);
    }
    if (origin == PurrlCatNameOrigin::service) {
      erase(values, nameNeedsSyncKey);
    } else if (changed) {
      values[std::string(nameNeedsSyncKey)] = true;
    }
  });
}

bool nameNeedsSync(const KeyValueStore& store) {
  const auto value = store.value(nameNeedsSyncKey);
  return value && value->is_boolean() && value->get<bool>();
}

Result markNameSynced(KeyValueStore& store) { return store.removeValues({nameNeedsSyncKey}); }

std::optional<int> level(const KeyValueStore& store) {
  const auto value = store.value(levelKey);
  if (!value) return std::nullopt;
  auto decoded = JsonView(*value).as<int>();
  if (!decoded) return std::nullopt;
  return *decoded;
}

std::expected<bool, KeyValueStoreError> writeLevel(KeyValueStore& store, int requested) {
  const int clamped = std::clamp(requested, 0, 2);
  bool changed = false;
  auto written = store.update([&](nlohmann::json& values) {
    const auto stored = values.find(levelKey);
    changed = stored == values.end() || *stored != clamped;
    if (changed) values[std::string(levelKey)] = clamped;
  });
  if (!written) return std::unexpected(written.error());
  return changed;
}

std::optional<PurrlCatMoodSnapshot> moodSnapshot(const KeyValueStore& store) {
  // The snapshot is kept as the bytes of its JSON document, like any data value.
  const auto text = storedString(store, moodKey);
  if (!text) return std::nullopt;
  auto snapshot = decodeJsonText<PurrlCatMoodSnapshot>(*text);
  if (!snapshot) return std::nullopt;
  return *snapshot;
}

Result writeMoodSnapshot(KeyValueStore& store, const PurrlCatMoodSnapshot& snapshot) {
  return store.setValue(moodKey, encodeRecord(snapshot).dump());
}

PurrlCatMoodSnapshot snapshotOf(PurrlCatMoodResult mood, Date now, const Calendar& calendar) {
  return PurrlCatMoodSnapshot{mood.mood, mood.reason, calendar.dayString(now), now};
}

std::optional<PurrlCatMoodSnapshot> todaysMood(const KeyValueStore& store, Date now, const Calendar& calendar) {
  auto snapshot = moodSnapshot(store);
  if (!snapshot || snapshot->day != calendar.dayString(now)) return std::nullopt;
  return snapshot;
}

}  // namespace kovi::PurrlCatIdentity
