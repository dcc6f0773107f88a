#include "tools/kovi/ServiceOrigin.h"

#include <cstdlib>

namespace kovi::tool {
namespace {

constexpr const char* kOriginVariable = "KOVI_SERVICE_ORIGIN";

}  // namespace

std::expected<NativeServiceOrigin, std::string> configuredOrigin() {
  const char* value = std::getenv(kOriginVariable);
  if (value == nullptr || *value == '\0') {
    return std::unexpected(std::string(kOriginVariable) +
                           " is not set; set it to the service origin, such as https://kovi.example");
  }
  auto origin = NativeServiceOrigin::parse(value);
  if (!origin) return std::unexpected(std::string(kOriginVariable) + ": " + origin.error());
  return origin;
}

CLI::Option* addTokenOption(CLI::App* command, std::optional<std::string>& token) {
  return command->add_option("--token", token, "Session token for the service (never printed)")->envname("KOVI_TOKEN");
}

}  // namespace kovi::tool
