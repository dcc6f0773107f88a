#import "KoviMacHolds/platform/mac/BundleLaunchIdentity.h"

#import <Foundation/Foundation.h>
#include <sys/stat.h>

namespace kovi::holds::mac {

BundleLaunchIdentity::BundleLaunchIdentity() {
  if (NSString* path = NSBundle.mainBundle.executablePath) executablePath_ = path.fileSystemRepresentation;
}

std::optional<MacFileIdentity> BundleLaunchIdentity::executableIdentity() {
  struct stat status {};
  if (executablePath_.empty() || ::stat(executablePath_.c_str(), &status) != 0) return std::nullopt;
  return MacFileIdentity{status.st_dev, status.st_ino};
}

}  // namespace kovi::holds::mac
