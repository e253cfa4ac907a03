#include "windows/rich/RtfHtmlParts.h"

#include <QBuffer>
#include <QImage>
#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <map>
#include <optional>
#include <utility>
#include <vector>

#include "system/Twips.h"

using namespace Qt::StringLiterals;

namespace tme {
namespace {

constexpr std::size_t kLevels = 9;
constexpr int kIndentOfLevel = 720, kHanging = 360;  // twips
constexpr std::size_t kMaxListsOfPage = 1000;
/// Of the anchors that carry a first number.
constexpr auto kStartName = "tme-list-start-"_L1;

struct Level {
  QTextListFormat::Style style = QTextListFormat::ListStyleUndefined;
  int start = 1;
  bool operator==(const Level&) const = default;
};
using Levels = std::array<std::optional<Level>, kLevels>;

/// The number of a style in the format's own counting.
int NumberFormatOf(QTextListFormat::Style style) {
  constexpr std::pair<QTextListFormat::Style, int> kFormats[] = {{QTextListFormat::ListDecimal, 0},
                                                                 {QTextListFormat::ListUpperRoman, 1},
                                                                 {QTextListFormat::ListLowerRoman, 2},
                                                                 {QTextListFormat::ListUpperAlpha, 3},
                                                                 {QTextListFormat::ListLowerAlpha, 4}};
  for (const auto& [known, number] : kFormats)
    if (known == style) return number;
  constexpr int kBullet = 23;
  return kBullet;
}

std::string_view BulletOf(QTextListFormat::Style style) {
  if (style == QTextListFormat::ListCircle) return "\\u9702 o";
  return style == QTextListFormat::ListSquare ? "\\u9642 *" : "\\u8226 *";
}

/// Untranslated control words of one level.
std::string WordsOf(const Level& level, std::size_t number) {
  const int format = NumberFormatOf(level.style);
  const bool is_bullet = level.style <= QTextListFormat::ListDisc && level.style >= QTextListFormat::ListSquare;
  std::string words = "{\\listlevel\\levelnfc" + std::to_string(format) + "\\leveljc0\\levelfollow0\\levelstartat";
  words.append(std::to_string(level.start));
  if (is_bullet)
    words.append("{\\leveltext\\'01").append(BulletOf(level.style)).append(";}{\\levelnumbers;}");
  else
    words.append("{\\leveltext\\'02\\'0").append(std::to_string(number)).append(".;}{\\levelnumbers\\'01;}");
  const auto indent = static_cast<int>(number + 1) * kIndentOfLevel;
  return words.append("\\fi-").append(std::to_string(kHanging)).append("\\li").append(std::to_string(indent)) + "}";
}

/// The lists of a text: a list and those in it are one as long as they say the same of each level.
class ListMaker {
 public:
  /// The number of the list that an item stands in.
  int NumberOf(const QTextList& list, int level, int start) {
    const auto [place, is_new] = known_.try_emplace(&list, 0);
    if (is_new) place->second = Enter({list.format().style(), start}, static_cast<std::size_t>(level));
    return place->second;
  }

  /// Untranslated control words.
  std::string Tables() const {
    if (lists_.empty()) return {};
    // The same page pasted twice is two lists.
    static std::atomic<int> last_id = 1'000'000;
    std::string lists = "{\\*\\listtable", overrides = "{\\*\\listoverridetable";
    for (std::size_t i = 0; i < lists_.size(); ++i) {
      const std::string id = "\\listid" + std::to_string(++last_id);
      lists += "{\\list\\listhybrid";
      for (std::size_t level = 0; level < kLevels; ++level)
        lists += WordsOf(lists_[i][level].value_or(Level{QTextListFormat::ListDecimal, 1}), level);
      lists.append("{\\listname ;}").append(id).append("}");
      overrides.append("{\\listoverride").append(id).append("\\listoverridecount0\\ls");
      overrides.append(std::to_string(i + 1)).append("}");
    }
    return lists + "}" + overrides + "}";
  }

 private:
  int Enter(const Level& wanted, std::size_t level) {
    const bool is_inner = level > 0 && current_[level - 1] > 0;
    int number = is_inner ? current_[level - 1] : 0;
    if (number > 0) {
      const std::optional<Level>& there = lists_[static_cast<std::size_t>(number) - 1][level];
      if (there && *there != wanted) number = 0;
    }
    if (number == 0 && lists_.size() < kMaxListsOfPage) {
      lists_.emplace_back();
      number = static_cast<int>(lists_.size());
    }
    if (number > 0) lists_[static_cast<std::size_t>(number) - 1][level] = wanted;
    std::fill(current_.begin() + static_cast<std::ptrdiff_t>(level), current_.end(), number);
    return number;
  }

  std::vector<Levels> lists_;
  std::map<const QTextList*, int> known_;
  std::array<int, kLevels> current_{};  ///< by level, the last list
};

int StartOf(const QTextBlock& block) {
  for (QTextBlock::iterator it = block.begin(); !it.atEnd(); ++it)
    for (const QString& name : it.fragment().charFormat().anchorNames())
      if (name.startsWith(kStartName)) return QStringView(name).mid(kStartName.size()).toInt();
  return 1;
}

/// A picture that the format knows; empty for others.
std::string PictureOf(const QString& address) {
  constexpr qsizetype kMaxHeader = 100;
  const qsizetype comma = address.indexOf(u',');
  const bool is_inside = address.startsWith(u"data:image/"_s, Qt::CaseInsensitive) && comma > 0 && comma < kMaxHeader &&
                         QStringView(address).left(comma).contains(u";base64"_s);
  if (!is_inside) return {};
  QByteArray bytes = QByteArray::fromBase64(QByteArray::fromPercentEncoding(address.mid(comma + 1).toLatin1()));
  if (bytes.startsWith("\x89PNG") || bytes.startsWith("\xFF\xD8\xFF")) return bytes.toStdString();
  const QImage image = QImage::fromData(bytes);
  bytes.clear();
  QBuffer buffer(&bytes);
  if (!image.isNull()) image.save(&buffer, "PNG");
  return bytes.toStdString();
}

/// Null where nothing is to be shown.
std::optional<QTextCharFormat> ObjectOf(const QTextImageFormat& image, RtfStore& store) {
  rtf::Object picture{.kind = rtf::ObjectKind::Picture, .rtf = {}, .picture = PictureOf(image.name()), .label = {}};
  if (picture.picture.empty()) return std::nullopt;
  picture.width = UnitsToTwips(std::max(image.width(), 0.0));
  picture.height = UnitsToTwips(std::max(image.height(), 0.0));
  store.document.objects.push_back(std::move(picture));
  QTextCharFormat format;
  format.setObjectType(kRtfObjectType);
  format.setProperty(kObject, static_cast<int>(store.document.objects.size()));
  return format;
}

/// Puts what `with` makes of each match in its place.
template <typename With>
QString WithEach(const QString& text, const QRegularExpression& each, With with) {
  QString changed;
  qsizetype end = 0;
  for (QRegularExpressionMatchIterator matches = each.globalMatch(text); matches.hasNext();) {
    const QRegularExpressionMatch found = matches.next();
    changed += QStringView(text).sliced(end, found.capturedStart() - end);
    changed += with(found);
    end = found.capturedEnd();
  }
  changed += QStringView(text).sliced(end);
  return changed;
}

}  // namespace

QString WithListStarts(QString html) {
  static const QRegularExpression start(u"(<ol\\b[^<>]*\\bstart\\s*=\\s*[\"']?(\\d{1,6})[^<>]*>\\s*<li\\b[^<>]*>)"_s,
                                        QRegularExpression::CaseInsensitiveOption);
  return html.replace(start, u"\\1<a name=\"%1\\2\"></a>"_s.arg(kStartName));
}

QString WithKnownStyles(const QString& html) {
  constexpr auto kAnyCase = QRegularExpression::CaseInsensitiveOption;
  static const QRegularExpression styled(u"<style\\b[^<>]*>[^<]*|<[a-z][^<>]*>"_s, kAnyCase);
  // In the first paragraph of a cell it would take back what is behind the cell.
  static const QRegularExpression nothing(
      u"\\bbackground(?:-color)?\\s*:\\s*(?:transparent|rgba\\([^()]*,\\s*0\\))\\s*(?:;|(?=[\"'}]))"_s, kAnyCase);
  static const QRegularExpression cell(u"^<(?:table|td|th)\\b"_s, kAnyCase);
  static const QRegularExpression width(u"[\"';\\s]width\\s*:\\s*(\\d{1,5})(?:\\.\\d*)?(px|%)"_s, kAnyCase);
  static const QRegularExpression points(u"\\b(\\d{1,3}(?:\\.\\d*)?)pt\\b"_s, kAnyCase);
  return WithEach(html, styled, [](const QRegularExpressionMatch& found) {
    QString words = found.captured().remove(nothing);
    if (!cell.match(words).hasMatch()) return words;
    words = WithEach(words, points, [](const QRegularExpressionMatch& length) {
      return u"%1px"_s.arg(std::lround(std::max(1.0, length.captured(1).toDouble() / kPointsPerPixel)));
    });
    const QRegularExpressionMatch size = width.match(words);
    if (!size.hasMatch() || words.contains(u"width="_s, Qt::CaseInsensitive)) return words;
    const bool is_share = size.captured(2) == u"%"_s;
    words.insert(words.size() - 1, u" width=\"%1%2\""_s.arg(size.captured(1), is_share ? u"%"_s : QString()));
    return words;
  });
}

std::string ResolveLists(QTextDocument& text) {
  ListMaker maker;
  for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
    QTextList* list = block.textList();
    if (!list) continue;
    QTextListFormat list_format = list->format();
    if (list_format.indent() > 0) {
      const int level = std::min(list_format.indent(), static_cast<int>(kLevels)) - 1;
      list_format.setProperty(kListNumber, maker.NumberOf(*list, level, StartOf(block)));
      list_format.setProperty(kListLevel, level);
      list_format.setIndent(0);
      list->setFormat(list_format);
    }
    QTextBlockFormat format = block.blockFormat();
    const int level = list_format.intProperty(kListLevel);
    format.setLeftMargin(format.leftMargin() + TwipsToUnits((level + 1) * kIndentOfLevel));
    format.setIndent(0);
    QTextCursor(block).setBlockFormat(format);
  }
  return maker.Tables();
}

void ResolvePictures(QTextDocument& text, RtfStore& store) {
  QTextCursor cursor(&text);
  const QString picture(QChar::ObjectReplacementCharacter);
  while (!(cursor = text.find(picture, cursor)).isNull()) {
    const std::optional<QTextCharFormat> object = ObjectOf(cursor.charFormat().toImageFormat(), store);
    if (object)
      cursor.insertText(picture, *object);
    else
      cursor.removeSelectedText();
  }
}

}  // namespace tme
