#include "windows/rich/RtfTraceTexts.h"

#include <QStringList>

#include "documents/rtf/RtfLabel.h"
#include "documents/rtf/RtfTokenizer.h"
#include "files/CodePage.h"
#include "shell/DisplayText.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// Whether control words hold one of this name that is switched on.
bool HasWord(const std::string& words, std::string_view name) {
  for (std::size_t at = words.find(name); at != std::string::npos; at = words.find(name, at + 1)) {
    const std::size_t end = at + name.size();
    if (end == words.size() || (words[end] != '0' && !rtf::IsLetter(words[end]))) return true;
  }
  return false;
}

}  // namespace

QString RtfTraceTexts::OfObject(const rtf::RtfDocument& document, const std::string& group) {
  const auto with_text = [&](const QString& what) {
    const QString text = DisplayText(rtf::TextOfGroup(group, document.ansi_code_page, BytesToUtf8)).simplified();
    return text.isEmpty() ? what : tr("%1: %2").arg(what, text);
  };
  if (group.find("\\annotation") != std::string::npos) return with_text(tr("Comment"));
  if (group.find("\\moMath") != std::string::npos) return tr("Formula, which is kept and not shown");
  if (group.starts_with("{\\header")) return with_text(tr("Header of the section here"));
  return group.starts_with("{\\footer") ? with_text(tr("Footer of the section here")) : QString();
}

QString RtfTraceTexts::OfAttached(const RtfStore& store, const std::vector<RtfStore::Attached>& parts) {
  QStringList texts;
  for (const RtfStore::Attached& part : parts) {
    const rtf::Object* object = rtf::EntryOf(store.document.objects, part.object);
    const QString text = object ? OfObject(store.document, object->rtf) : QString();
    if (!text.isEmpty()) texts.append(text);
  }
  return texts.join(u'\n');
}

RtfTraceTexts::Band RtfTraceTexts::BandOf(const rtf::RtfDocument& document, std::string_view word,
                                          const QString& name) {
  QStringList texts;
  rtf::Tokenizer tokens(document.kept_section);
  rtf::Token token;
  bool is_there = false;
  for (tokens.Next(token); token.kind != rtf::TokenKind::End; tokens.Next(token)) {
    if (token.kind != rtf::TokenKind::GroupStart) continue;
    std::string group;
    tokens.TakeGroup(token.begin, &group);
    if (group.find(word) == std::string::npos) continue;
    is_there = true;
    const QString text = DisplayText(rtf::TextOfGroup(group, document.ansi_code_page, BytesToUtf8)).simplified();
    if (!text.isEmpty() && !texts.contains(text)) texts.append(text);
  }
  if (!is_there) return {};
  const QString text = texts.isEmpty() ? name : tr("%1: %2").arg(name, texts.join(u" | "_s));
  return {text, text};
}

RtfTraceTexts::Band RtfTraceTexts::Top(const rtf::RtfDocument& document) {
  Band band = BandOf(document, "\\header", tr("Header"));
  for (const char* word : {"\\pgbrdrt", "\\pgbrdrb", "\\pgbrdrl", "\\pgbrdrr"}) {
    if (!HasWord(document.document_controls, word)) continue;
    const QString borders = tr("The pages have borders");
    band.text = band.text.isEmpty() ? borders : band.text + u" – "_s + borders;
    break;
  }
  band.tip = tr("%1. Saving keeps it.").arg(band.text);
  return band;
}

RtfTraceTexts::Band RtfTraceTexts::Bottom(const rtf::RtfDocument& document) {
  Band band = BandOf(document, "\\footer", tr("Footer"));
  band.tip = tr("%1. Saving keeps it.").arg(band.text);
  return band;
}

RtfRevision RtfTraceTexts::RevisionOf(const rtf::RtfDocument& document, int number) {
  if (number <= 0) return RtfRevision::None;
  const rtf::CharFormat& format = document.char_formats[static_cast<std::size_t>(number) - 1];
  const std::string* words = rtf::EntryOf(document.extras, format.extra);
  if (!words) return RtfRevision::None;
  if (HasWord(*words, "\\deleted")) return RtfRevision::Deleted;
  return HasWord(*words, "\\revised") ? RtfRevision::Inserted : RtfRevision::None;
}

QString RtfTraceTexts::OfRevision(RtfRevision revision) {
  return revision == RtfRevision::Deleted ? tr("Tracked change: deleted") : tr("Tracked change: inserted");
}

}  // namespace tme
