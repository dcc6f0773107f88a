#import "KoviMacHolds/platform/mac/AppKitRunningApplication.h"

#import "KoviMacHolds/platform/mac/AppKitConversions.h"

namespace kovi::holds::mac {

namespace {

MacActivationPolicy activationPolicyFrom(NSApplicationActivationPolicy policy) {
  switch (policy) {
    case NSApplicationActivationPolicyRegular:
      return MacActivationPolicy::regular;
    case NSApplicationActivationPolicyAccessory:
      return MacActivationPolicy::accessory;
    case NSApplicationActivationPolicyProhibited:
      return MacActivationPolicy::prohibited;
  }
  // A policy this code does not know is not a regular application, and only
  // regular applications are ever held.
  return MacActivationPolicy::prohibited;
}

// The name people know the application by; its bundle's file name when it
// has no localized name.
std::string displayName(NSRunningApplication* application) {
  if (NSString* name = application.localizedName) return toStdString(name);
  if (NSURL* bundle = application.bundleURL) return toStdString(bundle.URLByDeletingPathExtension.lastPathComponent);
  return toStdString(application.executableURL.lastPathComponent);
}

}  // namespace

MacRunningApplication runningApplicationFrom(NSRunningApplication* application) {
  NSString* identifier = application.bundleIdentifier;
  return {
      .processIdentifier = application.processIdentifier,
      .bundleIdentifier = identifier != nil ? std::optional(toStdString(identifier)) : std::nullopt,
      .localizedName = displayName(application),
      .activationPolicy = activationPolicyFrom(application.activationPolicy),
      .isTerminated = application.terminated == YES,
  };
}

}  // namespace kovi::holds::mac
