#pragma once

#include <string>

namespace kovi {

// A fresh request identifier: 128 random bits as 32 lowercase hex digits, so
// the service can tell a repeat of one request from a new one.
std::string newV6RequestId();

}  // namespace kovi
