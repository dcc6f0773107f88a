#pragma once

#include <expected>
#include <span>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace kovi {

// The strict key check every rule document passes before it is decoded: the
// key set of every object in a rule set is fixed, so a key the typed decoder
// would ignore, or an optional omitted instead of written as null, is refused
// here. The check reads the parsed document type-free: it looks only at which
// values are objects and arrays and which keys the objects carry.
//
// Paths start at "rules", append ".<key>" for an object member and "[]" for an
// array element ("rules.calendar.days[]").
class WorkingRuleShape {
 public:
  struct Entry {
    std::string_view path;
    std::string_view keys;  // the required key set, separated by single spaces
  };

  // Every known object path with its required key set.
  static std::span<const Entry> table();

  // Nothing when every object sits at a known path with exactly its key set;
  // otherwise "Unknown policy object at <path>" or "Unknown or missing policy
  // field at <path>" for the first offending object (parents before children,
  // members in declared order).
  static std::expected<void, std::string> check(const nlohmann::json& rules);
};

}  // namespace kovi
