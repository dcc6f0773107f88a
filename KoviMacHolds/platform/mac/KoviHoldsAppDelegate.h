#pragma once

#import <AppKit/AppKit.h>

#include "KoviMacHolds/MacHoldsApp.h"

// The application delegate AppKit talks to. Once the application has
// finished launching it hands over to the agent's own delegate, which builds
// the guard and the engine and starts them.
@interface KoviHoldsAppDelegate : NSObject <NSApplicationDelegate>

// `agent` outlives the application's run.
- (instancetype)initWithAgent:(kovi::holds::MacHoldsAppDelegate*)agent NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;

@end
