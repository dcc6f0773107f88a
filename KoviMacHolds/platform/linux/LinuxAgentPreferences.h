#pragma once

#include <memory>

#include "KoviKit/foundation/KeyValueStore.h"
#include "KoviMacHolds/MacHoldsApp.h"

namespace kovi::holds::desktop {

// The app group's shared preferences, which carry the font choices and the
// cat's level. When `options` names no cat stage, the agent reads it from
// these preferences at each showing.
std::shared_ptr<KeyValueStore> linuxAgentPreferences(MacHoldsAgentOptions& options);

}  // namespace kovi::holds::desktop
