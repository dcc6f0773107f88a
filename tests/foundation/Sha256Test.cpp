#include "KoviKit/foundation/Sha256.h"

#include <gtest/gtest.h>

#include <string>

namespace kovi {
namespace {

TEST(Sha256Test, MatchesKnownDigests) {
  const struct {
    std::string input;
    const char* digest;
  } vectors[] = {
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      // Longer input reaches the digest whole, never cut at a NUL or a length.
      {std::string("a\0b", 3) + std::string(1'000, 'x'),
       "ec920a80a4976108e9b4fbffd6699ac687201825325d72a0d1d97e8857bb9128"},
  };
  for (const auto& vector : vectors) {
    SCOPED_TRACE(vector.input.substr(0, 16));
    EXPECT_EQ(sha256Hex(vector.input), vector.digest);
    // Stored files are found again by this name, so it must never change.
    EXPECT_EQ(fileNameHash(vector.input), std::string(vector.digest, 32));
  }
}

TEST(Sha256Test, HexIsLowercaseTwoDigitsAByte) {
  const std::uint8_t bytes[] = {0x00, 0x0f, 0xa0, 0xff};
  EXPECT_EQ(lowercaseHex(bytes), "000fa0ff");
}

}  // namespace
}  // namespace kovi
