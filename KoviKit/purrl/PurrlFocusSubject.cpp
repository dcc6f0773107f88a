#include "KoviKit/purrl/PurrlFocusSubject.h"

namespace kovi {

std::optional<PurrlFocusExamGroup> purrlExamGroup(std::string_view subjectRawValue) {
  static constexpr std::array prefixes{
      std::pair{std::string_view("tyt_"), PurrlFocusExamGroup::tyt},
      std::pair{std::string_view("ayt_"), PurrlFocusExamGroup::ayt},
      std::pair{std::string_view("ydt_"), PurrlFocusExamGroup::ydt},
      std::pair{std::string_view("lgs_"), PurrlFocusExamGroup::lgs},
  };
  for (const auto& [prefix, group] : prefixes) {
    if (subjectRawValue.starts_with(prefix)) return group;
  }
  return std::nullopt;
}

std::optional<PurrlFocusExamGroup> purrlExamGroup(PurrlFocusSubject subject) {
  return purrlExamGroup(enumName(subject));
}

}  // namespace kovi
