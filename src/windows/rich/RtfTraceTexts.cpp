#include "windows/rich/RtfTraceTexts.h"

#include <QDateTime>
#include <QLocale>
#include <algorithm>

#include "files/CodePage.h"
#include "windows/rich/RtfPartText.h"

using namespace Qt::StringLiterals;

namespace tme {

using rtf::RevisionKind;
using rtf::UnseenKind;

namespace {

/// Whether control words hold one of this name that is switched on.
bool HasWord(const std::string& words, std::string_view name) {
  for (std::size_t at = words.find(name); at != std::string::npos; at = words.find(name, at + 1)) {
    const std::size_t end = at + name.size();
    if (end == words.size() || (words[end] != '0' && !rtf::IsLetter(words[end]))) return true;
  }
  return false;
}

/// The name that stands in the table for nobody.
constexpr const char* kNobody = "Unknown";

QString WithText(const QString& what, const QString& text) { return text.isEmpty() ? what : what + u": "_s + text; }

QString InOneLine(const std::string& text) { return RtfPartText::Shown(text).simplified(); }

bool HasPageBorders(const std::string& words) {
  constexpr std::string_view kBorders[] = {"\\pgbrdrt", "\\pgbrdrb", "\\pgbrdrl", "\\pgbrdrr"};
  return std::ranges::any_of(kBorders, [&](auto word) { return HasWord(words, word); });
}

}  // namespace

RtfTraceTexts::RtfTraceTexts(const RtfStore& store) : store_(store), texts_(store.document, BytesToUtf8) {}

/// "Ann, 3/4/24 10:15 AM", or as much of it as the file says.
QString RtfTraceTexts::ByWhom(const QString& author, const rtf::PackedTime& time) {
  if (time.month == 0) return author;
  const QDateTime moment({time.year, time.month, time.day}, QTime(time.hour, time.minute));
  if (!moment.isValid()) return author;
  const QString when = QLocale().toString(moment, QLocale::ShortFormat);
  return author.isEmpty() ? when : tr("%1, %2").arg(author, when);
}

QString RtfTraceTexts::PagesOf(const rtf::Unseen& unseen) {
  const bool is_header = unseen.kind == UnseenKind::Header;
  switch (unseen.pages) {
    case rtf::PagesOf::First:
      return is_header ? tr("Header of the first page") : tr("Footer of the first page");
    case rtf::PagesOf::Left:
      return is_header ? tr("Header of left pages") : tr("Footer of left pages");
    case rtf::PagesOf::Right:
      return is_header ? tr("Header of right pages") : tr("Footer of right pages");
    case rtf::PagesOf::All:
      break;
  }
  return is_header ? tr("Header") : tr("Footer");
}

QString RtfTraceTexts::OfUnseen(const rtf::Unseen& unseen) const {
  const QString text = InOneLine(unseen.text);
  switch (unseen.kind) {
    case UnseenKind::Comment: {
      const QString who = ByWhom(InOneLine(unseen.author), unseen.time);
      return (who.isEmpty() ? tr("Comment") : tr("Comment (%1)").arg(who)) + u'\n' + text;
    }
    case UnseenKind::Formula:
      return WithText(tr("Formula, which is kept and not shown"), text);
    case UnseenKind::FormField:
      return text.startsWith(u"FORMCHECKBOX"_s)   ? tr("Check box, which is kept and not shown")
             : text.startsWith(u"FORMDROPDOWN"_s) ? tr("Drop-down list, which is kept and not shown")
                                                  : tr("Field to fill in, which is kept and not shown");
    case UnseenKind::Field:
      return WithText(tr("A field, which is not carried out here"), text);
    case UnseenKind::Header:
    case UnseenKind::Footer:
      break;
  }
  return WithText(tr("%1, from this section on").arg(PagesOf(unseen)), text);
}

QString RtfTraceTexts::OfGroups(const std::string& groups) {
  QStringList texts;
  for (const rtf::Unseen& unseen : rtf::UnseenIn(groups, texts_)) texts.append(OfUnseen(unseen));
  return texts.join(u'\n');
}

QString RtfTraceTexts::OfSection(const std::string& words) {
  QStringList texts{OfGroups(words)};
  if (texts.front().isEmpty()) texts.clear();
  if (HasPageBorders(words)) texts.append(tr("The pages have borders"));
  return texts.join(u'\n');
}

QString RtfTraceTexts::OfAttached(const std::vector<RtfStore::Attached>& parts) {
  QStringList texts;
  std::string hidden;
  for (const RtfStore::Attached& part : parts) {
    hidden += part.hidden_text;
    const rtf::Object* object = rtf::EntryOf(store_.document.objects, part.object);
    if (const QString text = object ? OfGroups(object->rtf) : QString(); !text.isEmpty()) texts.append(text);
  }
  if (const QString text = InOneLine(hidden); !text.isEmpty()) texts.append(WithText(tr("Hidden text"), text));
  return texts.join(u'\n');
}

QStringList RtfTraceTexts::OnPages(UnseenKind kind) {
  QStringList texts;
  for (const rtf::Unseen& unseen : rtf::UnseenIn(store_.document.kept_section, texts_)) {
    if (unseen.kind != kind) continue;
    if (const QString mark = tr("Watermark: %1").arg(InOneLine(unseen.watermark));
        !unseen.watermark.empty() && !texts.contains(mark))
      texts.prepend(mark);
    const QString text = WithText(PagesOf(unseen), InOneLine(unseen.text));
    if (!texts.contains(text)) texts.append(text);
  }
  return texts;
}

RtfTraceTexts::Band RtfTraceTexts::BandOf(const QStringList& texts) {
  if (texts.isEmpty()) return {};
  return {texts.join(u" \u2013 "_s), texts.join(u'\n') + u'\n' + tr("Kept when the document is saved")};
}

RtfTraceTexts::Band RtfTraceTexts::Top() {
  QStringList texts = OnPages(UnseenKind::Header);
  if (HasPageBorders(store_.document.document_controls)) texts.prepend(tr("The pages have borders"));
  return BandOf(texts);
}

RtfTraceTexts::Band RtfTraceTexts::Bottom() { return BandOf(OnPages(UnseenKind::Footer)); }

QString RtfTraceTexts::OfRevision(const rtf::Revision& revision) {
  if (!authors_) authors_ = rtf::AuthorsOf(store_.document, texts_);
  QString what;
  switch (revision.kind) {
    case RevisionKind::Inserted:
      what = tr("Tracked change: inserted");
      break;
    case RevisionKind::Deleted:
      what = tr("Tracked change: deleted");
      break;
    case RevisionKind::MovedFrom:
      what = tr("Tracked change: moved away from here");
      break;
    case RevisionKind::MovedTo:
      what = tr("Tracked change: moved here");
      break;
    case RevisionKind::Format:
      what = tr("Tracked change: another format");
      break;
  }
  const auto author = static_cast<std::size_t>(revision.author);
  const bool is_named = revision.author >= 0 && author < authors_->size() && (*authors_)[author] != kNobody;
  const QString who = ByWhom(is_named ? InOneLine((*authors_)[author]) : QString(), revision.time);
  return who.isEmpty() ? what : tr("%1 (%2)").arg(what, who);
}

RtfTraceTexts::Revision RtfTraceTexts::OfFormat(int number) {
  const rtf::CharFormat* format = rtf::EntryOf(store_.document.char_formats, static_cast<std::uint32_t>(number));
  const std::string* words = format ? rtf::EntryOf(store_.document.extras, format->extra) : nullptr;
  if (!words) return {};
  Revision shown;
  QStringList tips;
  for (const rtf::Revision& revision : rtf::RevisionsIn(*words)) {
    tips.append(OfRevision(revision));
    const bool is_gone = revision.kind == RevisionKind::Deleted || revision.kind == RevisionKind::MovedFrom;
    const bool is_new = revision.kind == RevisionKind::Inserted || revision.kind == RevisionKind::MovedTo;
    const Mark mark = is_gone ? Mark::Deleted : is_new ? Mark::Inserted : Mark::Changed;
    // What went is more than what came, and that is more than a format.
    if (mark == Mark::Deleted || shown.mark == Mark::None || (mark == Mark::Inserted && shown.mark == Mark::Changed))
      shown.mark = mark;
  }
  shown.tip = tips.join(u'\n');
  return shown;
}

}  // namespace tme
