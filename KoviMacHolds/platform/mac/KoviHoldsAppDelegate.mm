#import "KoviMacHolds/platform/mac/KoviHoldsAppDelegate.h"

@implementation KoviHoldsAppDelegate {
  kovi::holds::MacHoldsAppDelegate* _agent;
}

- (instancetype)initWithAgent:(kovi::holds::MacHoldsAppDelegate*)agent {
  self = [super init];
  if (self != nil) _agent = agent;
  return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)__unused notification {
  _agent->applicationDidFinishLaunching();
}

// The agent restores no windows; saying so keeps AppKit from warning about
// insecure restorable state.
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)__unused application {
  return YES;
}

@end
