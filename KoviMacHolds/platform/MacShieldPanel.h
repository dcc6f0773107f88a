#pragma once

#include <functional>
#include <memory>

#include "KoviMacHolds/MacHoldsShield.h"

namespace kovi::holds {

// The floating panel that shows the shield over a held application: above
// other windows, centred, kept out of the task bar and the Dock, sized to its
// content (at least 480 × 220), with the paper colour behind it.
class MacShieldPanel {
 public:
  virtual ~MacShieldPanel() = default;

  // Replaces what the panel shows and sizes the panel to fit it; does not
  // change whether or where it is shown.
  virtual void setContent(MacHoldsShieldView view) = 0;
  // Centres the panel when it is not visible yet, orders it in front of every
  // other window and gives it the keyboard.
  virtual void bringForward() = 0;
  virtual void orderOut() = 0;
  virtual bool isVisible() const = 0;
};

// Creates the panel on first use; the guard keeps and reuses it.
using MacShieldPanelFactory = std::function<std::unique_ptr<MacShieldPanel>()>;

}  // namespace kovi::holds
