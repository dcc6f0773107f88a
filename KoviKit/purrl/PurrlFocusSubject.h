#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"

namespace kovi {

// What a person studies in a focus run.
enum class PurrlFocusSubject {
  tytTurkce, tytMat, tytGeometri, tytFizik, tytKimya, tytBiyoloji, tytTarih, tytCografya, tytFelsefe, tytDin,
  aytMat, aytGeometri, aytFizik, aytKimya, aytBiyoloji, aytEdebiyat, aytTarih, aytCografya, aytFelsefe,
  ydtDil,
  lgsTurkce, lgsMat, lgsFen, lgsInkilap, lgsDin, lgsIngilizce,
  paragraf, problem, custom,
};

template <>
struct EnumNames<PurrlFocusSubject> {
  using S = PurrlFocusSubject;
  static constexpr std::array table{
      std::pair{S::tytTurkce, std::string_view("tyt_turkce")},     std::pair{S::tytMat, std::string_view("tyt_mat")},
      std::pair{S::tytGeometri, std::string_view("tyt_geometri")}, std::pair{S::tytFizik, std::string_view("tyt_fizik")},
      std::pair{S::tytKimya, std::string_view("tyt_kimya")},       std::pair{S::tytBiyoloji, std::string_view("tyt_biyoloji")},
      std::pair{S::tytTarih, std::string_view("tyt_tarih")},       std::pair{S::tytCografya, std::string_view("tyt_cografya")},
      std::pair{S::tytFelsefe, std::string_view("tyt_felsefe")},   std::pair{S::tytDin, std::string_view("tyt_din")},
      std::pair{S::aytMat, std::string_view("ayt_mat")},           std::pair{S::aytGeometri, std::string_view("ayt_geometri")},
      std::pair{S::aytFizik, std::string_view("ayt_fizik")},       std::pair{S::aytKimya, std::string_view("ayt_kimya")},
      std::pair{S::aytBiyoloji, std::string_view("ayt_biyoloji")}, std::pair{S::aytEdebiyat, std::string_view("ayt_edebiyat")},
      std::pair{S::aytTarih, std::string_view("ayt_tarih")},       std::pair{S::aytCografya, std::string_view("ayt_cografya")},
      std::pair{S::aytFelsefe, std::string_view("ayt_felsefe")},   std::pair{S::ydtDil, std::string_view("ydt_dil")},
      std::pair{S::lgsTurkce, std::string_view("lgs_turkce")},     std::pair{S::lgsMat, std::string_view("lgs_mat")},
      std::pair{S::lgsFen, std::string_view("lgs_fen")},           std::pair{S::lgsInkilap, std::string_view("lgs_inkilap")},
      std::pair{S::lgsDin, std::string_view("lgs_din")},           std::pair{S::lgsIngilizce, std::string_view("lgs_ingilizce")},
      std::pair{S::paragraf, std::string_view("paragraf")},        std::pair{S::problem, std::string_view("problem")},
      std::pair{S::custom, std::string_view("custom")},
  };
};

// The exam a subject is studied for, from the prefix of its raw value.
enum class PurrlFocusExamGroup { tyt, ayt, ydt, lgs };

template <>
struct EnumNames<PurrlFocusExamGroup> {
  static constexpr std::array table{
      std::pair{PurrlFocusExamGroup::tyt, std::string_view("tyt")},
      std::pair{PurrlFocusExamGroup::ayt, std::string_view("ayt")},
      std::pair{PurrlFocusExamGroup::ydt, std::string_view("ydt")},
      std::pair{PurrlFocusExamGroup::lgs, std::string_view("lgs")},
  };
};

// The exam group of a subject raw value: "tyt_", "ayt_", "ydt_" and "lgs_"
// prefixes, tested in that order; anything else ("paragraf", "problem",
// "custom", a subject this client does not know) belongs to no exam.
std::optional<PurrlFocusExamGroup> purrlExamGroup(std::string_view subjectRawValue);
std::optional<PurrlFocusExamGroup> purrlExamGroup(PurrlFocusSubject subject);

// The exam a person prepares for.
enum class PurrlFocusExamKind { yks, lgs, other };

template <>
struct EnumNames<PurrlFocusExamKind> {
  static constexpr std::array table{
      std::pair{PurrlFocusExamKind::yks, std::string_view("yks")},
      std::pair{PurrlFocusExamKind::lgs, std::string_view("lgs")},
      std::pair{PurrlFocusExamKind::other, std::string_view("other")},
  };
};

}  // namespace kovi
