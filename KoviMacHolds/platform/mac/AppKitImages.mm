#import "KoviMacHolds/platform/mac/AppKitImages.h"

#include <algorithm>

#import "KoviMacHolds/platform/mac/AppKitConversions.h"

namespace kovi::holds::mac {

namespace {

NSString* const kKittenFolder = @"Kitten";
NSString* const kArtworkType = @"webp";

// The largest rectangle of `content`'s proportions centred in `frame`.
NSRect aspectFitted(NSSize content, NSRect frame) {
  if (content.width <= 0 || content.height <= 0) return frame;
  const CGFloat scale = std::min(NSWidth(frame) / content.width, NSHeight(frame) / content.height);
  const NSSize size = NSMakeSize(content.width * scale, content.height * scale);
  return NSMakeRect(NSMidX(frame) - size.width / 2, NSMidY(frame) - size.height / 2, size.width, size.height);
}

void drawFitted(NSImage* image, NSRect frame) {
  [image drawInRect:aspectFitted(image.size, frame)
           fromRect:NSZeroRect
          operation:NSCompositingOperationSourceOver
           fraction:1
     respectFlipped:YES
              hints:nil];
}

}  // namespace

NSImage* catArtwork(const MacPurrlCat& cat) {
  NSBundle* bundle = NSBundle.mainBundle;
  NSString* name = toNSString(cat.stillImageName());
  NSURL* url = cat.isKitten() ? [bundle URLForResource:name withExtension:kArtworkType subdirectory:kKittenFolder] : nil;
  if (url == nil) url = [bundle URLForResource:name withExtension:kArtworkType];
  return url != nil ? [[NSImage alloc] initWithContentsOfURL:url] : nil;
}

void drawCat(NSImage* artwork, NSRect frame) {
  if (artwork != nil) {
    drawFitted(artwork, frame);
    return;
  }
  drawSystemSymbol(@"cat.fill", frame, colorFrom(MacPurrlColors::ink));
}

void drawSystemSymbol(NSString* name, NSRect frame, NSColor* color) {
  NSImage* symbol = [NSImage imageWithSystemSymbolName:name accessibilityDescription:nil];
  if (symbol == nil) return;
  // Symbols are template images: paint the colour through the symbol's shape.
  NSImage* tinted = [NSImage imageWithSize:symbol.size
                                   flipped:NO
                            drawingHandler:^BOOL(NSRect bounds) {
                              [symbol drawInRect:bounds];
                              [color set];
                              NSRectFillUsingOperation(bounds, NSCompositingOperationSourceAtop);
                              return YES;
                            }];
  drawFitted(tinted, frame);
}

}  // namespace kovi::holds::mac
