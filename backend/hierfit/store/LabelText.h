// A text that is put together from parts of a document and never grows out of hand.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The longest text of a label, in bytes.
inline constexpr std::size_t kMaxLabelBytes = std::size_t{1} << 20;

/// Collects the parts of a label. What goes beyond the limit is dropped.
class LabelText {
 public:
  void Append(std::string_view part) {
    if (!IsFull()) text_ += part;
  }
  bool IsEmpty() const { return text_.empty(); }
  /// Whether further parts are dropped.
  bool IsFull() const { return text_.size() > kMaxLabelBytes; }
  /// The text; a longer one is cut between two characters, and an ellipsis stands at its end.
  std::string Take();

 private:
  std::string text_;
};
