#include "KoviMacHolds/MacHoldsGuard.h"

#include "KoviMacHolds/MacHoldsIdentity.h"

namespace kovi::holds {

MacHoldsAppGuard::MacHoldsAppGuard(MacHoldsGuardContext context) : context_(std::move(context)) {
  spared_ = context_.workspace.desktopIdentifiers();
  for (std::string_view id :
       {kMacHoldsFinderBundleID, kMacHoldsSystemSettingsBundleID, kMacHoldsMainAppBundleID, kMacHoldsAgentBundleID}) {
    spared_.emplace(id);
  }
}

MacHoldsAppGuard::~MacHoldsAppGuard() {
  if (observer_) context_.workspace.removeObserver(*observer_);
}

bool MacHoldsAppGuard::isAlwaysSpared(const std::string& bundleIdentifier) const {
  return spared_.contains(bundleIdentifier);
}

void MacHoldsAppGuard::apply(const MacHoldsDue& due, const MacFocus2EnforcementPlan& plan) {
  const bool changed = !plan_ || *plan_ != plan;
  plan_ = plan;
  due_ = due;

  if (!observer_) {
    std::weak_ptr<MacHoldsAppGuard> weakSelf = weak_from_this();
    MacWorkspace& workspace = context_.workspace;
    observer_ = workspace.addObserver(
        MacWorkspaceEvent::didActivateApplication, [weakSelf, &workspace](const MacWorkspaceNotification& note) {
          auto self = weakSelf.lock();
          if (!self || !note.processIdentifier) return;
          if (auto application = workspace.runningApplication(*note.processIdentifier)) {
            self->evaluateFront(*application);
          }
        });
  }

  // The engine repeats the plan every few seconds; only a new one may disturb.
  if (!changed) return;
  if (isShieldVisible()) showShield(shieldAppName_, false);
  if (auto front = context_.workspace.frontmostApplication()) evaluateFront(*front);
}

void MacHoldsAppGuard::stop() {
  if (observer_) {
    context_.workspace.removeObserver(*observer_);
    observer_.reset();
  }
  plan_.reset();
  due_ = MacHoldsDue::none();
  hideShield();
}

void MacHoldsAppGuard::evaluateFront(const MacRunningApplication& application) {
  if (!plan_ || !application.bundleIdentifier) return;
  const std::string& id = *application.bundleIdentifier;
  if (id == kMacHoldsAgentBundleID || application.activationPolicy != MacActivationPolicy::regular) return;
  if (isAlwaysSpared(id)) {
    hideShield();
    return;
  }

  const bool listed = plan_->bundleIDs.contains(id);
  const bool held = plan_->allowlist ? !listed : listed;
  if (!held) {
    hideShield();
    return;
  }

  const std::string head = holdLogLine(due_, context_.clock.calendar());
  if (context_.workspace.hide(application)) {
    context_.log(head + " — hid " + application.localizedName);
    showShield(application.localizedName, true);
  } else {
    // An application that does not hide is left alone, and no shield claims otherwise.
    context_.log(head + " — " + application.localizedName + " did not hide; left alone");
  }
}

void MacHoldsAppGuard::showShield(std::optional<std::string> appName, bool bringForward) {
  shieldAppName_ = std::move(appName);
  std::weak_ptr<MacHoldsAppGuard> weakSelf = weak_from_this();
  MacHoldsShieldView view{
      .due = due_,
      .appName = shieldAppName_,
      .openKovi =
          [weakSelf] {
            if (auto self = weakSelf.lock()) self->openKovi();
          },
      .back =
          [weakSelf] {
            if (auto self = weakSelf.lock()) self->hideShield();
          },
      .catStage = context_.catStage ? context_.catStage() : std::nullopt,
  };
  if (!shield_) shield_ = context_.makeShieldPanel();
  shield_->setContent(std::move(view));
  if (bringForward) shield_->bringForward();
}

void MacHoldsAppGuard::hideShield() {
  if (shield_ && shield_->isVisible()) shield_->orderOut();
}

void MacHoldsAppGuard::openKovi() {
  hideShield();
  context_.workspace.openMainApp();
}

}  // namespace kovi::holds
