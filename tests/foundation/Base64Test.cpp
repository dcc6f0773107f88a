#include "KoviKit/foundation/Base64.h"

#include <gtest/gtest.h>

#include <string>

namespace kovi {
namespace {

std::vector<std::uint8_t> bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

TEST(Base64Test, EncodesAndDecodesThePublishedVectorsInBothAlphabets) {
  const struct {
    std::string_view bytes;
    std::string_view standard;
    std::string_view url;
  } vectors[] = {
      {"", "", ""}, {"f", "Zg==", "Zg"}, {"fo", "Zm8=", "Zm8"}, {"foo", "Zm9v", "Zm9v"},
      {"foob", "Zm9vYg==", "Zm9vYg"}, {"fooba", "Zm9vYmE=", "Zm9vYmE"}, {"foobar", "Zm9vYmFy", "Zm9vYmFy"},
      // The two alphabets differ only in the last two letters.
      {"\xfb\xff\xbf", "+/+/", "-_-_"},
  };
  for (const auto& vector : vectors) {
    SCOPED_TRACE(vector.standard);
    EXPECT_EQ(base64Encode(bytesOf(vector.bytes)), vector.standard);
    EXPECT_EQ(base64UrlEncode(bytesOf(vector.bytes)), vector.url);
    EXPECT_EQ(base64Decode(vector.standard), bytesOf(vector.bytes));
    EXPECT_EQ(base64UrlDecode(vector.url), bytesOf(vector.bytes));
  }
}

TEST(Base64Test, RoundTripsEveryByteValueAndLength) {
  std::vector<std::uint8_t> bytes;
  for (int length = 0; length < 260; ++length) {
    bytes.push_back(static_cast<std::uint8_t>(length * 37 + 11));
    EXPECT_EQ(base64Decode(base64Encode(bytes)), bytes);
    EXPECT_EQ(base64UrlDecode(base64UrlEncode(bytes)), bytes);
  }
}

TEST(Base64Test, RefusesEveryTextThatIsNotTheCanonicalSpelling) {
  const struct {
    std::string_view text;
    bool url;
    const char* why;
  } refused[] = {
      {"Zg", false, "padding missing"}, {"Zg=", false, "padding short"}, {"Zh==", false, "bits after the last byte"},
      {"Zm9=", false, "bits after the last two bytes"}, {"Z===", false, "one character cannot hold a byte"},
      {"Zg==Zg==", false, "padding in the middle"}, {"Zm9v\n", false, "line break"},
      {"Zm-v", false, "url letter in standard text"}, {"Zg==", true, "padding in url text"},
      {"Zh", true, "bits after the last byte"}, {"Z", true, "one character cannot hold a byte"},
      {"Zm+v", true, "standard letter in url text"}, {std::string_view("Zm\0v", 4), false, "NUL byte"},
  };
  for (const auto& c : refused) {
    SCOPED_TRACE(c.why);
    EXPECT_FALSE(c.url ? base64UrlDecode(c.text) : base64Decode(c.text));
  }
}

}  // namespace
}  // namespace kovi
