#pragma once

// Kovi's values in and out of Foundation and AppKit: UTF-8 strings, paths,
// sRGB colours and the shield's y-down rectangles (the shield's views are
// flipped, so a rectangle keeps its numbers).
#import <AppKit/AppKit.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "KoviMacHolds/MacHoldsShieldLayout.h"
#include "KoviMacHolds/MacPurrlCat.h"

namespace kovi::holds::mac {

// Kovi's texts are UTF-8; text Foundation cannot read comes back empty, never nil.
inline NSString* toNSString(std::string_view text) {
  NSString* string = [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
  return string != nil ? string : @"";
}

inline std::string toStdString(NSString* string) {
  const char* utf8 = string.UTF8String;
  return utf8 != nullptr ? std::string(utf8) : std::string();
}

inline NSURL* fileURL(const std::filesystem::path& path, bool isDirectory) {
  return [NSURL fileURLWithFileSystemRepresentation:path.c_str() isDirectory:isDirectory relativeToURL:nil];
}

inline NSColor* colorFrom(const MacPurrlColor& color) {
  return [NSColor colorWithSRGBRed:color.red green:color.green blue:color.blue alpha:color.alpha];
}

inline NSRect rectFrom(const MacHoldsShieldRect& rect) { return NSMakeRect(rect.x, rect.y, rect.width, rect.height); }

}  // namespace kovi::holds::mac
