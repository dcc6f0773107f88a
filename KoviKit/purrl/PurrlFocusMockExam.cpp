#include "KoviKit/purrl/PurrlFocusMockExam.h"

namespace kovi {
namespace {

constexpr std::array<PurrlFocusMockExamSection, 4> kTyt{{{"turkce", 40}, {"sosyal", 20}, {"temel_mat", 40}, {"fen", 20}}};
constexpr std::array<PurrlFocusMockExamSection, 4> kAyt{
    {{"edebiyat_sosyal1", 40}, {"sosyal2", 40}, {"mat", 40}, {"fen", 40}}};
constexpr std::array<PurrlFocusMockExamSection, 1> kYdt{{{"dil", 80}}};
constexpr std::array<PurrlFocusMockExamSection, 4> kLgsSozel{
    {{"turkce", 20}, {"inkilap", 10}, {"din", 10}, {"ingilizce", 10}}};
constexpr std::array<PurrlFocusMockExamSection, 2> kLgsSayisal{{{"mat", 20}, {"fen", 20}}};

}  // namespace

std::span<const PurrlFocusMockExamSection> purrlMockSections(PurrlFocusMockExam exam) {
  switch (exam) {
    case PurrlFocusMockExam::tyt: return kTyt;
    case PurrlFocusMockExam::ayt: return kAyt;
    case PurrlFocusMockExam::ydt: return kYdt;
    case PurrlFocusMockExam::lgsSozel: return kLgsSozel;
    case PurrlFocusMockExam::lgsSayisal: return kLgsSayisal;
  }
  return {};
}

PurrlFocusExamGroup purrlExamGroup(PurrlFocusMockExam exam) {
  switch (exam) {
    case PurrlFocusMockExam::tyt: return PurrlFocusExamGroup::tyt;
    case PurrlFocusMockExam::ayt: return PurrlFocusExamGroup::ayt;
    case PurrlFocusMockExam::ydt: return PurrlFocusExamGroup::ydt;
    case PurrlFocusMockExam::lgsSozel:
    case PurrlFocusMockExam::lgsSayisal: return PurrlFocusExamGroup::lgs;
  }
  return PurrlFocusExamGroup::lgs;
}

int purrlWrongAnswersPerPenalty(PurrlFocusMockExam exam) {
  return purrlExamGroup(exam) == PurrlFocusExamGroup::lgs ? 3 : 4;
}

double purrlMockNet(PurrlFocusMockExam exam, int correct, int wrong) {
  return correct - static_cast<double>(wrong) / purrlWrongAnswersPerPenalty(exam);
}

}  // namespace kovi
