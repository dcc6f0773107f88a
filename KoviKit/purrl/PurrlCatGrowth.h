#pragma once

#include <optional>
#include <string>
#include <vector>

#include "KoviKit/foundation/Time.h"
#include "KoviKit/purrl/PurrlCatMood.h"
#include "KoviKit/purrl/PurrlRecordCoding.h"

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
struct PurrlRecordFields<PurrlCatGrowthTrick::Source> {
  using R = PurrlCatGrowthTrick::Source;
  static constexpr auto fields =
      std::tuple{purrlField("kind", &R::kind), purrlField("stage", &R::stage), purrlField("rule", &R::rule)};
};

template <>
struct PurrlRecordFields<PurrlCatGrowthTrick> {
  using R = PurrlCatGrowthTrick;
  static constexpr auto fields = std::tuple{purrlField("id", &R::id), purrlField("learned", &R::learned),
                                            purrlField("learnedAt", &R::learnedAt), purrlField("source", &R::source)};
};

template <>
struct PurrlRecordFields<PurrlCatGrowthReward> {
  using R = PurrlCatGrowthReward;
  static constexpr auto fields = std::tuple{purrlField("id", &R::id), purrlField("kind", &R::kind),
                                            purrlField("ref", &R::ref), purrlField("earnedAt", &R::earnedAt)};
};

template <>
struct PurrlRecordFields<PurrlCatGrowth::Next> {
  using R = PurrlCatGrowth::Next;
  static constexpr auto fields = std::tuple{purrlField("level", &R::level), purrlField("stage", &R::stage),
                                            purrlField("days", &R::days),
                                            purrlField("needsKeptKovi", &R::needsKeptKovi)};
};

template <>
struct PurrlRecordFields<PurrlCatGrowth::Cards::Gift> {
  using R = PurrlCatGrowth::Cards::Gift;
  static constexpr auto fields =
      std::tuple{purrlField("at", &R::at), purrlField("item", &R::item), purrlField("earned", &R::earned)};
};

template <>
struct PurrlRecordFields<PurrlCatGrowth::Cards> {
  using R = PurrlCatGrowth::Cards;
  static constexpr auto fields = std::tuple{purrlField("found", &R::found), purrlField("gift", &R::gift)};
};

template <>
struct PurrlRecordFields<PurrlCatGrowth> {
  using R = PurrlCatGrowth;
  static constexpr auto fields =
      std::tuple{purrlField("level", &R::level),   purrlField("stage", &R::stage),
                 purrlField("daysTogether", &R::daysTogether), purrlField("next", &R::next),
                 purrlField("tricks", &R::tricks), purrlField("rewards", &R::rewards),
                 purrlField("cards", &R::cards)};
};

template <>
struct PurrlRecordFields<PurrlCatGrowthPerson> {
  using R = PurrlCatGrowthPerson;
  static constexpr auto fields =
      std::tuple{purrlField("level", &R::level), purrlField("stage", &R::stage), purrlField("tricks", &R::tricks)};
};

template <>
struct PurrlRecordFields<PurrlCatState> {
  using R = PurrlCatState;
  static constexpr auto fields =
      std::tuple{purrlField("name", &R::name), purrlField("mood", &R::mood), purrlField("reason", &R::reason),
                 purrlField("petted", &R::petted), purrlField("growth", &R::growth)};
};

}  // namespace kovi
