#include "windows/options/ThunarActions_linux.h"

#include <QStringList>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace tme {
namespace {

/// The identifiers of all actions in their order; null when the bytes are no list of actions.
std::optional<QStringList> ActionIds(const QByteArray& bytes) {
  QXmlStreamReader xml(bytes);
  QStringList ids;
  if (!xml.readNextStartElement() || xml.name() != u"actions") return std::nullopt;
  while (xml.readNextStartElement()) {
    QString id;
    while (xml.readNextStartElement()) {
      const bool is_id = xml.name() == u"unique-id";
      const QString text = xml.readElementText(QXmlStreamReader::IncludeChildElements);
      if (is_id) id = text;
    }
    ids.append(id);
  }
  while (!xml.atEnd()) xml.readNext();
  return xml.hasError() ? std::nullopt : std::optional(ids);
}

}  // namespace

std::optional<QByteArray> MergeThunarAction(const QByteArray& bytes, const QByteArray& action) {
  const QByteArray opening("<action>"), closing("</action>");
  std::optional<QStringList> expected = ActionIds(bytes);
  if (!expected) return std::nullopt;

  const QString id = QLatin1StringView(kIntegrationId);
  const qsizetype place = bytes.indexOf("<unique-id>" + QByteArray(kIntegrationId) + "</unique-id>");
  QByteArray merged = bytes;
  if (place >= 0) {
    const qsizetype start = bytes.lastIndexOf(opening, place);
    qsizetype end = bytes.indexOf(closing, place);
    if (start < 0 || end < 0) return std::nullopt;
    end += closing.size();
    if (bytes.mid(end, 1) == "\n") ++end;
    merged.replace(start, end - start, action);
    if (action.isEmpty()) expected->removeOne(id);
  } else if (!action.isEmpty()) {
    const qsizetype end = bytes.lastIndexOf("</actions>");
    if (end < 0) return std::nullopt;
    merged.insert(end, action);
    expected->append(id);
  }
  // What the search by text took for an action may have been something else, such as a comment.
  return ActionIds(merged) == expected ? std::optional(merged) : std::nullopt;
}

}  // namespace tme
