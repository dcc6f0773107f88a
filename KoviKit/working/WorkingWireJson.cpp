#include "KoviKit/working/WorkingWireJson.h"

#include <utility>
#include <vector>

namespace kovi {

Decoded<WorkingOpaqueJson> JsonDecoder<WorkingOpaqueJson>::decode(const JsonView& json) {
  // Walked with an explicit stack, so a hostile nesting cannot exhaust the
  // real one before the limit refuses it.
  std::vector<std::pair<const nlohmann::json*, std::size_t>> pending{{&json.json(), 1}};
  while (!pending.empty()) {
    const auto [value, depth] = pending.back();
    pending.pop_back();
    if (!value->is_structured()) continue;
    if (depth >= kWorkingOpaqueJsonDepthLimit) {
      return std::unexpected(json.error("nested deeper than " + std::to_string(kWorkingOpaqueJsonDepthLimit)));
    }
    for (const nlohmann::json& child : *value) pending.emplace_back(&child, depth + 1);
  }
  return WorkingOpaqueJson(json.json());
}

}  // namespace kovi
