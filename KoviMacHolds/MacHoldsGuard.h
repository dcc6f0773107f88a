#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>

#include "KoviMacHolds/MacFocus2EnforcementPlan.h"
#include "KoviMacHolds/MacHoldsDue.h"
#include "KoviMacHolds/MacHoldsLog.h"
#include "KoviMacHolds/platform/MacShieldPanel.h"
#include "KoviMacHolds/platform/MacWorkspace.h"

namespace kovi::holds {

// What the guard works with. The workspace outlives the guard.
struct MacHoldsGuardContext {
  MacWorkspace& workspace;
  MacShieldPanelFactory makeShieldPanel;
  MacHoldsLog log;
  MacHoldsClock clock;
  // The cat's growth stage for the shield; absent draws the grown cat.
  std::function<std::optional<std::string>()> catStage;
};

// Keeps a plan in force: whenever an application comes to the front while a
// hold is in force it decides whether that application is held, hides a held
// one (never quits it) and shows the shield that says why. Lives in a
// shared_ptr: workspace callbacks hold it weakly and do nothing once it is gone.
class MacHoldsAppGuard : public std::enable_shared_from_this<MacHoldsAppGuard> {
 public:
  explicit MacHoldsAppGuard(MacHoldsGuardContext context);
  MacHoldsAppGuard(const MacHoldsAppGuard&) = delete;
  MacHoldsAppGuard& operator=(const MacHoldsAppGuard&) = delete;
  ~MacHoldsAppGuard();

  // Installs a hold. A repeat of the plan in force changes nothing visible; a
  // new or changed plan refreshes a visible shield and checks the front
  // application at once.
  void apply(const MacHoldsDue& due, const MacFocus2EnforcementPlan& plan);
  // Removes any hold: the front-application observer, the plan and the shield.
  void stop();
  // Decides for one application that came to the front.
  void evaluateFront(const MacRunningApplication& application);
  void showShield(std::optional<std::string> appName, bool bringForward);

  const std::optional<MacFocus2EnforcementPlan>& plan() const { return plan_; }
  const MacHoldsDue& due() const { return due_; }
  bool isObservingFront() const { return observer_.has_value(); }
  bool isShieldVisible() const { return shield_ && shield_->isVisible(); }
  const std::optional<std::string>& shieldAppName() const { return shieldAppName_; }

  // Never held, and in front they hide the shield: the fixed set plus the
  // desktop's own parts.
  bool isAlwaysSpared(const std::string& bundleIdentifier) const;

 private:
  void hideShield();
  // The shield's "Open Kovi": hide the shield, then bring up the main app.
  void openKovi();

  MacHoldsGuardContext context_;
  std::set<std::string> spared_;
  std::optional<MacFocus2EnforcementPlan> plan_;
  MacHoldsDue due_;
  std::optional<MacObserverToken> observer_;
  std::unique_ptr<MacShieldPanel> shield_;
  std::optional<std::string> shieldAppName_;
};

}  // namespace kovi::holds
