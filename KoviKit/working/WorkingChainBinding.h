#pragma once

#include <string_view>

namespace kovi {

// Whether `text` is a chain binding as the scheduled-arm store keys its
// records: a lowercase 20-byte hexadecimal registry address, a colon and a
// decimal kovi id without a leading zero, 1 to 31 digits
// ("^0x[0-9a-f]{40}:[1-9][0-9]{0,30}$").
bool isWorkingChainBinding(std::string_view text);

}  // namespace kovi
