#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KoviKit/foundation/JsonRecordCoding.h"
#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlCatMood.h"

namespace kovi {

// A trick the cat knows or can learn, and what teaches it.
struct PurrlCatGrowthTrick {
  struct Source {
    std::string kind;
    std::optional<std::string> stage;  // the stage that teaches it
    std::optional<std::string> rule;   // the rule that teaches it
    bool operator==(const Source&) const = default;
  };

  std::string id;
  bool learned = false;
  std::optional<Date> learnedAt;
  Source source;
  bool operator==(const PurrlCatGrowthTrick&) const = default;
};

// Something the cat earned: a stage reached, a trick learned or an item.
struct PurrlCatGrowthReward {
  std::string id;
  std::string kind;  // "stage", "trick" or "item"
  std::string ref;   // the stage name, trick identifier or item identifier
  Date earnedAt;
  bool operator==(const PurrlCatGrowthReward&) const = default;
};

// The cat's growth as the service computes it; the client never computes a level.
struct PurrlCatGrowth {
  // The next step of growth.
  struct Next {
    int level = 0;
    std::string stage;
    int days = 0;  // days together the step needs
    bool needsKeptKovi = false;
    bool operator==(const Next&) const = default;
  };

  struct Cards {
    struct Gift {
      int at = 0;  // the card count at which the gift is given
      std::string item;
      bool earned = false;
      bool operator==(const Gift&) const = default;
    };

    int found = 0;
    std::optional<Gift> gift;
    bool operator==(const Cards&) const = default;
  };

  int level = 0;
  std::string stage;
  int daysTogether = 0;
  std::optional<Next> next;
  std::vector<PurrlCatGrowthTrick> tricks;
  std::vector<PurrlCatGrowthReward> rewards;
  Cards cards;
  bool operator==(const PurrlCatGrowth&) const = default;
};

// Another person's cat, as shown beside a friend or partner.
struct PurrlCatGrowthPerson {
  int level = 0;
  std::string stage;
  int tricks = 0;  // tricks learned
  bool operator==(const PurrlCatGrowthPerson&) const = default;
};

// The cat as the service returns it and screens show it.
struct PurrlCatState {
  std::optional<std::string> name;
  PurrlCatMood mood = PurrlCatMood::content;
  PurrlCatMoodReason reason = PurrlCatMoodReason::calm;
  bool petted = false;
  std::optional<PurrlCatGrowth> growth;
  bool operator==(const PurrlCatState&) const = default;
};

template <>
struct JsonRecordFields<PurrlCatGrowthTrick::Source> : LenientJsonRecord {
  using R = PurrlCatGrowthTrick::Source;
  static constexpr auto fields =
      std::tuple{field("kind", &R::kind), field("stage", &R::stage), field("rule", &R::rule)};
};

template <>
struct JsonRecordFields<PurrlCatGrowthTrick> : LenientJsonRecord {
  using R = PurrlCatGrowthTrick;
  static constexpr auto fields = std::tuple{field("id", &R::id), field("learned", &R::learned),
                                            field("learnedAt", &R::learnedAt), field("source", &R::source)};
};

template <>
struct JsonRecordFields<PurrlCatGrowthReward> : LenientJsonRecord {
  using R = PurrlCatGrowthReward;
  static constexpr auto fields = std::tuple{field("id", &R::id), field("kind", &R::kind),
                                            field("ref", &R::ref), field("earnedAt", &R::earnedAt)};
};

template <>
struct JsonRecordFields<PurrlCatGrowth::Next> : LenientJsonRecord {
  using R = PurrlCatGrowth::Next;
  static constexpr auto fields = std::tuple{field("level", &R::level), field("stage", &R::stage),
                                            field("days", &R::days),
                                            field("needsKeptKovi", &R::needsKeptKovi)};
};

template <>
struct JsonRecordFields<PurrlCatGrowth::Cards::Gift> : LenientJsonRecord {
  using R = PurrlCatGrowth::Cards::Gift;
  static constexpr auto fields =
      std::tuple{field("at", &R::at), field("item", &R::item), field("earned", &R::earned)};
};

template <>
struct JsonRecordFields<PurrlCatGrowth::Cards> : LenientJsonRecord {
  using R = PurrlCatGrowth::Cards;
  static constexpr auto fields = std::tuple{field("found", &R::found), field("gift", &R::gift)};
};

template <>
struct JsonRecordFields<PurrlCatGrowth> : LenientJsonRecord {
  using R = PurrlCatGrowth;
  static constexpr auto fields =
      std::tuple{field("level", &R::level),   field("stage", &R::stage),
                 field("daysTogether", &R::daysTogether), field("next", &R::next),
                 field("tricks", &R::tricks), field("rewards", &R::rewards),
                 field("cards", &R::cards)};
};

template <>
struct JsonRecordFields<PurrlCatGrowthPerson> : LenientJsonRecord {
  using R = PurrlCatGrowthPerson;
  static constexpr auto fields =
      std::tuple{field("level", &R::level), field("stage", &R::stage), field("tricks", &R::tricks)};
};

template <>
struct JsonRecordFields<PurrlCatState> : LenientJsonRecord {
  using R = PurrlCatState;
  static constexpr auto fields =
      std::tuple{field("name", &R::name), field("mood", &R::mood), field("reason", &R::reason),
                 field("petted", &R::petted), field("growth", &R::growth)};
};

}  // namespace kovi
