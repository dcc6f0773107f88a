#pragma once

#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "KoviKit/foundation/Json.h"
#include "KoviKit/purrl/PurrlFocusSubject.h"

namespace kovi {

// A mock-exam paper.
enum class PurrlFocusMockExam { tyt, ayt, ydt, lgsSozel, lgsSayisal };

template <>
struct EnumNames<PurrlFocusMockExam> {
  static constexpr std::array table{
      std::pair{PurrlFocusMockExam::tyt, std::string_view("tyt")},
      std::pair{PurrlFocusMockExam::ayt, std::string_view("ayt")},
      std::pair{PurrlFocusMockExam::ydt, std::string_view("ydt")},
      std::pair{PurrlFocusMockExam::lgsSozel, std::string_view("lgs_sozel")},
      std::pair{PurrlFocusMockExam::lgsSayisal, std::string_view("lgs_sayisal")},
  };
};

// One section of a paper and how many questions it has.
struct PurrlFocusMockExamSection {
  std::string_view id;
  int questions = 0;
  bool operator==(const PurrlFocusMockExamSection&) const = default;
};

// The sections of a paper as the real exam has them: TYT Türkçe 40, social
// sciences 20, basic mathematics 40, science 20; AYT literature and social
// sciences 1 40, social sciences 2 40, mathematics 40, science 40; YDT one
// language section of 80; LGS verbal Türkçe 20, revolution history 10,
// religion 10, English 10; LGS numerical mathematics 20, science 20.
std::span<const PurrlFocusMockExamSection> purrlMockSections(PurrlFocusMockExam exam);

// The exam group a paper belongs to (both LGS papers are LGS).
PurrlFocusExamGroup purrlExamGroup(PurrlFocusMockExam exam);

// How many wrong answers cancel one correct one: 4 in the YKS papers (TYT,
// AYT, YDT), 3 in LGS.
int purrlWrongAnswersPerPenalty(PurrlFocusMockExam exam);

// A section's net: correct answers less the penalty for the wrong ones.
double purrlMockNet(PurrlFocusMockExam exam, int correct, int wrong);

}  // namespace kovi
