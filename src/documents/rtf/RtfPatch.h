#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace tme::rtf {

/// Rich-text bytes with replacements, which come in their order. A blank comes between a control word and what would
/// run into it.
class Patch {
 public:
  explicit Patch(std::string_view bytes) : bytes_(bytes) { result_.reserve(bytes.size() + bytes.size() / 16); }

  void Replace(std::uint32_t begin, std::uint32_t end, std::string_view text) {
    Append(bytes_.substr(taken_, begin - taken_));
    taken_ = end;
    Append(text);
  }
  std::string Result() {
    Append(bytes_.substr(taken_));
    taken_ = static_cast<std::uint32_t>(bytes_.size());
    return std::move(result_);
  }

 private:
  void Append(std::string_view text);
  bool EndsWithWord() const;

  std::string_view bytes_;
  std::uint32_t taken_ = 0;
  std::string result_;
};

}  // namespace tme::rtf
