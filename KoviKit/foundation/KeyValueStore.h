#pragma once

#include <expected>
#include <functional>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace kovi {

// Why a key-value domain could not be read or changed. The message names the
// file and the reason ("…/group.kovi.json: not valid JSON").
struct KeyValueStoreError {
  enum class Kind {
    unreadable,   // the domain exists but cannot be read
    corrupt,      // the domain's document does not decode
    unsupported,  // the document was written by a newer version
    unwritable,   // the change could not be saved
  };
  Kind kind;
  std::string message;
  bool operator==(const KeyValueStoreError&) const = default;
};

// A preferences domain: named values (strings, booleans, numbers, nested JSON)
// shared between the processes of one user, such as the app that writes the
// cat's name and the agent and widgets that read it. Reads see the last
// complete change made by any process; `update` is atomic against changes made
// by other processes at the same time.
class KeyValueStore {
 public:
  virtual ~KeyValueStore() = default;

  // Every value of the domain as one JSON object; a domain nobody has written
  // yet reads as an empty object.
  virtual std::expected<nlohmann::json, KeyValueStoreError> values() const = 0;

  // Reads the current values, lets `change` edit them in place and saves the
  // result, all under one lock, so no other writer's change in between is
  // lost. Nothing is written when `change` leaves the values as they were.
  virtual std::expected<void, KeyValueStoreError> update(const std::function<void(nlohmann::json& values)>& change) = 0;

  // The value stored under `key`; absent when the key is missing or the
  // domain cannot be read (readers of preferences treat both alike).
  std::optional<nlohmann::json> value(std::string_view key) const;

  std::expected<void, KeyValueStoreError> setValue(std::string_view key, nlohmann::json value);
  std::expected<void, KeyValueStoreError> removeValues(std::initializer_list<std::string_view> keys);
};

}  // namespace kovi
