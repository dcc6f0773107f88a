#include "KoviKit/foundation/SignedJsonDocument.h"

#include <optional>
#include <set>
#include <string>
#include <vector>

namespace kovi {
namespace {

// Walks the document once without building it and stops at the first
// repeated key or the first level past the depth bound.
class DuplicateKeyCheck final : public nlohmann::json_sax<nlohmann::json> {
 public:
  std::optional<DecodeError> failure;

  bool null() override { return scalar(); }
  bool boolean(bool) override { return scalar(); }
  bool number_integer(number_integer_t) override { return scalar(); }
  bool number_unsigned(number_unsigned_t) override { return scalar(); }
  bool number_float(number_float_t, const string_t&) override { return scalar(); }
  bool string(string_t&) override { return scalar(); }
  bool binary(binary_t&) override { return scalar(); }

  bool start_object(std::size_t) override { return open(false); }
  bool end_object() override { return close(); }
  bool start_array(std::size_t) override { return open(true); }
  bool end_array() override { return close(); }

  bool key(string_t& name) override {
    Frame& frame = frames_.back();
    if (!frame.keys.insert(name).second) {
      failure = DecodeError{path(), "duplicate key \"" + name + "\""};
      return false;
    }
    frame.currentKey = name;
    return true;
  }

  bool parse_error(std::size_t position, const std::string&, const nlohmann::detail::exception&) override {
    // The parser counts the bytes it has read, the offending one included.
    const std::size_t offset = position == 0 ? 0 : position - 1;
    failure = DecodeError{"", "not valid JSON (at byte " + std::to_string(offset) + ")"};
    return false;
  }

 private:
  struct Frame {
    bool isArray = false;
    std::size_t index = 0;
    std::string currentKey;
    std::set<std::string> keys;
  };

  // The path of the innermost open container, as decode errors write it.
  std::string path() const {
    std::string text;
    for (std::size_t level = 0; level + 1 < frames_.size(); ++level) {
      const Frame& frame = frames_[level];
      if (frame.isArray) {
        text += "[" + std::to_string(frame.index) + "]";
      } else {
        if (!text.empty()) text += '.';
        text += frame.currentKey;
      }
    }
    return text;
  }

  bool scalar() {
    finishElement();
    return true;
  }

  bool open(bool isArray) {
    if (frames_.size() >= kSignedJsonMaximumDepth) {
      failure = DecodeError{path(), "nested deeper than " + std::to_string(kSignedJsonMaximumDepth) + " levels"};
      return false;
    }
    frames_.push_back(Frame{isArray, 0, {}, {}});
    return true;
  }

  bool close() {
    frames_.pop_back();
    finishElement();
    return true;
  }

  // An array's index moves on once one of its elements is complete.
  void finishElement() {
    if (!frames_.empty() && frames_.back().isArray) ++frames_.back().index;
  }

  std::vector<Frame> frames_;
};

}  // namespace

Decoded<nlohmann::json> parseSignedJsonDocument(std::string_view text) {
  DuplicateKeyCheck check;
  const bool wellFormed = nlohmann::json::sax_parse(text, &check, nlohmann::json::input_format_t::json,
                                                    /*strict=*/true, /*ignore_comments=*/false);
  if (!wellFormed) {
    if (check.failure) return std::unexpected(*check.failure);
    return std::unexpected(DecodeError{"", "not valid JSON"});
  }
  return parseJson(text);
}

}  // namespace kovi
