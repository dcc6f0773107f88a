#include "KoviKit/foundation/KeyValueStore.h"

namespace kovi {

std::optional<nlohmann::json> KeyValueStore::value(std::string_view key) const {
  auto all = values();
  if (!all) return std::nullopt;
  const auto found = all->find(key);
  if (found == all->end()) return std::nullopt;
  return std::move(*found);
}

std::expected<void, KeyValueStoreError> KeyValueStore::setValue(std::string_view key, nlohmann::json value) {
  return update([&](nlohmann::json& values) { values[std::string(key)] = std::move(value); });
}

std::expected<void, KeyValueStoreError> KeyValueStore::removeValues(std::initializer_list<std::string_view> keys) {
  return update([&](nlohmann::json& values) {
    for (const std::string_view key : keys) {
      if (const auto found = values.find(key); found != values.end()) values.erase(found);
    }
  });
}

}  // namespace kovi
