#import "KoviMacHolds/platform/mac/AppKitShieldText.h"

#include <cmath>

#import "KoviMacHolds/platform/mac/AppKitConversions.h"

namespace kovi::holds::mac {

namespace {

// Comes with every Mac and is close in spirit to the handwritten faces, for
// a bundle that carries neither of them.
NSString* const kHandwrittenFallback = @"Noteworthy-Bold";

constexpr NSStringDrawingOptions kDrawingOptions =
    NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingUsesFontLeading;

NSFontWeight systemWeight(int weight) {
  if (weight >= 800) return NSFontWeightHeavy;
  if (weight >= 700) return NSFontWeightBold;
  if (weight >= 600) return NSFontWeightSemibold;
  if (weight >= 500) return NSFontWeightMedium;
  return NSFontWeightRegular;
}

NSAttributedString* attributedShieldText(const MacHoldsShieldText& text) {
  const MacHoldsShieldTextStyle& style = text.style;
  NSString* string = toNSString(text.text);
  if (style.uppercase) string = string.localizedUppercaseString;

  NSMutableParagraphStyle* paragraph = [[NSMutableParagraphStyle alloc] init];
  paragraph.lineBreakMode = style.wrapWidth ? NSLineBreakByWordWrapping : NSLineBreakByClipping;
  paragraph.alignment = style.wrapWidth ? NSTextAlignmentCenter : NSTextAlignmentLeft;

  NSMutableDictionary<NSAttributedStringKey, id>* attributes = [@{
    NSFontAttributeName : shieldFont(style.face, style.pointSize),
    NSForegroundColorAttributeName : colorFrom(style.color),
    NSParagraphStyleAttributeName : paragraph,
  } mutableCopy];
  if (style.letterSpacing > 0) attributes[NSKernAttributeName] = @(style.letterSpacing);
  return [[NSAttributedString alloc] initWithString:string attributes:attributes];
}

}  // namespace

NSFont* shieldFont(const PurrlFontFace& face, double pointSize) {
  if (face.postScriptName) {
    if (NSFont* bundled = [NSFont fontWithName:toNSString(*face.postScriptName) size:pointSize]) return bundled;
  }
  if (face.design == PurrlFontFace::Design::handwritten) {
    if (NSFont* hand = [NSFont fontWithName:kHandwrittenFallback size:pointSize]) return hand;
  }
  NSFont* system = [NSFont systemFontOfSize:pointSize weight:systemWeight(face.weight)];
  if (face.design == PurrlFontFace::Design::rounded) {
    NSFontDescriptor* rounded = [system.fontDescriptor fontDescriptorWithDesign:NSFontDescriptorSystemDesignRounded];
    if (rounded != nil) {
      if (NSFont* font = [NSFont fontWithDescriptor:rounded size:pointSize]) return font;
    }
  }
  return system;
}

MacHoldsShieldSize measureShieldText(const MacHoldsShieldText& text) {
  const CGFloat width = text.style.wrapWidth ? *text.style.wrapWidth : CGFLOAT_MAX;
  const NSRect used = [attributedShieldText(text) boundingRectWithSize:NSMakeSize(width, CGFLOAT_MAX)
                                                               options:kDrawingOptions
                                                               context:nil];
  return {std::ceil(NSWidth(used)), std::ceil(NSHeight(used))};
}

void drawShieldText(const MacHoldsShieldText& text, NSRect rect) {
  [attributedShieldText(text) drawWithRect:rect options:kDrawingOptions context:nil];
}

}  // namespace kovi::holds::mac
