#include "KoviKit/foundation/Sha256.h"

#include <gtest/gtest.h>

#include <string>

namespace kovi {
namespace {

TEST(Sha256Test, MatchesPublishedVectors) {
  const struct {
    std::string input;
    const char* digest;
  } vectors[] = {
      {"", "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"},
      {"abc", "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq",
       "248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1"},
      {std::string(1'000'000, 'a'), "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0"},
  };
  for (const auto& vector : vectors) {
    SCOPED_TRACE(vector.input.substr(0, 16));
    EXPECT_EQ(sha256Hex(vector.input), vector.digest);
  }
}

TEST(Sha256Test, HexIsLowercaseTwoDigitsAByte) {
  const std::uint8_t bytes[] = {0x00, 0x0f, 0xa0, 0xff};
  EXPECT_EQ(lowercaseHex(bytes), "000fa0ff");
}

}  // namespace
}  // namespace kovi
