#include "documents/rtf/RtfBuilder.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace tme::rtf {
namespace {

constexpr std::size_t kMaxFormats = 65'536;
constexpr std::size_t kMaxExtraBytes = 512;
constexpr std::size_t kExtraOverhead = 64;
constexpr std::size_t kTransitions = 4096;

/// Puts `word` in the place of the control word `name`; false when there is none.
bool ReplaceWord(std::string& words, std::string_view name, std::string_view word) {
  for (std::size_t at = 0; at < words.size();) {
    const std::size_t end = std::min(words.find('\\', at + 1), words.size());
    const std::string_view old = std::string_view(words).substr(at + 1, end - at - 1);
    if (old.starts_with(name) && old.find_first_not_of("-0123456789", name.size()) == std::string_view::npos) {
      words.replace(at, end - at, word);
      return true;
    }
    at = end;
  }
  return false;
}

}  // namespace

/// The default for what is one too many.
std::uint32_t Builder::WithinLimit(std::uint32_t index) {
  if (index != InternTable::kNone) return index;
  ++document_.losses.limits;
  return 0;
}

std::uint32_t Builder::Intern(const CharFormat& format) {
  return WithinLimit(char_formats_.Intern(document_.char_formats, format, kMaxFormats));
}

std::uint32_t Builder::Intern(const ParagraphFormat& format) {
  const std::size_t before = document_.paragraph_formats.size();
  if (!format.tabs.empty() && tab_bytes_ > input_bytes_ + kSmallInput) {
    ++document_.losses.limits;
    ParagraphFormat without = format;
    without.tabs.clear();
    return Intern(without);
  }
  // Paragraphs mostly look like the one before.
  if (last_paragraph_format_ < before && document_.paragraph_formats[last_paragraph_format_] == format)
    return last_paragraph_format_;
  const std::uint32_t index = WithinLimit(paragraph_formats_.Intern(document_.paragraph_formats, format, kMaxFormats));
  if (document_.paragraph_formats.size() > before) tab_bytes_ += format.tabs.size() * sizeof(TabStop);
  last_paragraph_format_ = index;
  return index;
}

/// kind: of what is made of the same words.
template <typename Join>
std::uint32_t Builder::AddKnown(std::uint32_t old, std::string_view word, std::uint8_t kind, Join join) {
  if (transitions_.empty()) transitions_.resize(kTransitions);
  Transition& known = transitions_[MixHash(std::hash<std::string_view>{}(word), old) % kTransitions];
  if (known.from == old && known.kind == kind && known.word == word) return known.to;
  std::string words = old == 0 ? std::string() : document_.extras[old - 1];
  join(words);
  if (words.empty()) {
    known = {old, 0, word, kind};
    return 0;
  }
  const std::uint32_t entered = EnterExtra(words);
  if (entered == 0) return old;
  known = {old, entered, word, kind};
  return entered;
}

/// 0 for what is over a limit.
std::uint32_t Builder::EnterExtra(const std::string& words) {
  const std::size_t cost = words.size() + kExtraOverhead;
  if (words.size() > kMaxExtraBytes || extra_bytes_ + cost > input_bytes_ * 2 + kSmallInput) {
    ++document_.losses.limits;
    return 0;
  }
  const std::size_t before = document_.extras.size();
  const std::uint32_t index = WithinLimit(extras_.Intern(document_.extras, words, kMaxFormats));
  if (document_.extras.size() > before) extra_bytes_ += cost;
  return index + 1;
}

std::uint32_t Builder::AddExtra(std::uint32_t old, std::string_view word, std::string_view name, Extra how) {
  return AddKnown(old, word, static_cast<std::uint8_t>(how), [&](std::string& words) {
    if (how == Extra::Append || !ReplaceWord(words, name, word)) words += word;
  });
}

std::uint32_t Builder::AddExtra(std::uint32_t old, std::string_view word, std::string_view name, FontPlace place) {
  constexpr std::uint8_t kOfCharacters = 8;
  return AddKnown(old, word, static_cast<std::uint8_t>(kOfCharacters + static_cast<std::uint8_t>(place)),
                  [&](std::string& words) { words = WithCharacterWord(words, word, name, place); });
}

void Builder::AddText(std::string_view text, std::uint32_t format) {
  document_.text.append(text);
  visible_pending_ = true;
  if (HasPending() && document_.runs.back().format == format && document_.runs.back().object == 0) {
    document_.runs.back().bytes += static_cast<std::uint32_t>(text.size());
  } else {
    document_.runs.push_back({static_cast<std::uint32_t>(text.size()), format, 0});
  }
}

void Builder::AddObject(Object&& object, std::uint32_t format) {
  std::vector<Object>& objects = document_.objects;
  const bool is_full = objects.size() > input_bytes_ / kBytesPerObject + 1024;
  const bool follows_invisible = HasPending() && !objects.empty() && document_.runs.back().object == objects.size() &&
                                 FieldOf(document_.runs.back().format) == FieldOf(format);
  ++objects_added_;
  // Neighbours that nobody sees are one. So are all when a file has too many: their place is lost, not what they say.
  if (!objects.empty() && objects.back().kind == ObjectKind::Invisible &&
      (is_full || (follows_invisible && object.kind == ObjectKind::Invisible))) {
    objects.back().rtf += object.rtf;
    document_.losses.limits += is_full && !follows_invisible ? 1u : 0u;
    return;
  }
  visible_pending_ = visible_pending_ || object.kind != ObjectKind::Invisible;
  objects.push_back(std::move(object));
  if (is_full) objects.back().kind = ObjectKind::Invisible;
  document_.runs.push_back({0, format, static_cast<std::uint32_t>(objects.size())});
}

void Builder::EndParagraph(const ParagraphFormat& format, std::uint32_t mark_format, int table_level) {
  Paragraph paragraph;
  paragraph.first_run = static_cast<std::uint32_t>(first_run_);
  paragraph.format = Intern(format);
  paragraph.mark_format = mark_format;
  paragraph.cell = tables_.OpenCell(table_level);
  if (visible_pending_) tables_.MarkText();
  document_.paragraphs.push_back(paragraph);
  first_run_ = document_.runs.size();
  visible_pending_ = false;
}

void Builder::Finish() {
  tables_.EndAll();
  document_.text.shrink_to_fit();
  if (document_.colors.empty()) document_.colors.push_back(0);
  if (document_.char_formats.empty()) document_.char_formats.emplace_back();
  if (document_.paragraph_formats.empty()) document_.paragraph_formats.emplace_back();
}

}  // namespace tme::rtf
