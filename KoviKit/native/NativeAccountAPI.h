#pragma once

#include "KoviKit/native/NativeAccountErrorTable.h"
#include "KoviKit/native/NativeServiceClient.h"

namespace kovi {

// The account area's client, rooted at origin + "/api/native/account", and
// the reference for every other area's client: same transport, same error
// cases, its own code table.
class NativeAccountAPI : public NativeServiceClient {
 public:
  explicit NativeAccountAPI(const NativeServiceOrigin& origin, NativeClientOptions options = {})
      : NativeServiceClient(origin, kNativeAccountErrorTable, std::move(options)) {}
};

}  // namespace kovi
