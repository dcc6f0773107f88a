#include "tools/kovi/WalkingInput.h"

#include <iostream>

#include "KoviKit/evidence/WalkingDayWindowVerifier.h"

namespace kovi::tool {

CLI::Option* addInstantOption(CLI::App* command, const std::string& name, std::optional<UnixMillis>& target,
                              const std::string& description) {
  return command
      ->add_option_function<std::string>(
          name,
          [&target](const std::string& text) {
            target = parseInstant(text);
            if (!target) throw CLI::ValidationError("\"" + text + "\" is not an ISO 8601 instant with an offset");
          },
          description + " (ISO 8601 with an offset, e.g. 2026-05-04T14:37:00+03:00)")
      ->type_name("TIME");
}

std::optional<std::vector<HealthEvidenceDayWindow>> windowsOf(const WalkingKoviRules& rules, UnixMillis start) {
  const auto review = WalkingDayWindowVerifier::review(rules, start, WalkingDayWindowVerifier::serverWindows(rules));
  auto windows = review.windowsForEvidence();
  if (windows) return std::move(*windows);
  std::cerr << "kovi: the rules yield no usable day windows (" << enumName(review.verdict) << ")\n";
  for (const std::string& issue : review.issues) std::cerr << "  " << issue << '\n';
  exitStatus() = 1;
  return std::nullopt;
}

void addHealthExportOptions(CLI::App* command, HealthExportOptions& options) {
  command->add_option("--export", options.exportPath, "export.zip, export.xml or a JSON sample file")->required();
  command->add_option("--source-priority", options.sourcePriority,
                      "Sources that count first where samples overlap, comma-separated (default: watches,\n"
                      "then phones, then others, each by name)");
}

}  // namespace kovi::tool
