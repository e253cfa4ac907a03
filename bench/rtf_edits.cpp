// What edits of rich text change in its file, through the view that a window shows: tme_rtf_edits FILE...
// Each file gets each edit at some random places. Prints of each how often it held, how often all else in the file
// stayed as it was though more was written than should have been, and how often all was written anew. The edited files
// go into the folder that TME_RTF_EDITS_OUT names.
#include <QApplication>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextTable>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfHunks.h"
#include "documents/rtf/RtfOriginal.h"
#include "files/CodePage.h"
#include "windows/rich/RtfExport.h"
#include "windows/rich/RtfImport.h"

namespace tme {
namespace {

constexpr int kPlaces = 5;
constexpr std::size_t kBytesOfLetter = 12;

enum class Verdict : std::uint8_t { Held, Elsewhere, Anew };

/// Inside: the edited paragraphs alone may change. Letter: one insertion. Same: nothing.
enum class Promise : std::uint8_t { Same, Letter, Inside };

struct Edit {
  const char* name;
  Promise promise;
  void (*make)(QTextCursor& cursor, std::mt19937& random);
};

void SelectWord(QTextCursor& cursor) { cursor.select(QTextCursor::WordUnderCursor); }

void Merge(QTextCursor& cursor, const std::function<void(QTextCharFormat&)>& change) {
  SelectWord(cursor);
  QTextCharFormat format;
  change(format);
  cursor.mergeCharFormat(format);
}

void MoveParagraph(QTextCursor& cursor) {
  cursor.movePosition(QTextCursor::StartOfBlock);
  cursor.movePosition(QTextCursor::NextBlock, QTextCursor::KeepAnchor);
  if (cursor.currentTable() != nullptr || !cursor.hasSelection()) return;
  const QTextDocumentFragment part = cursor.selection();
  cursor.removeSelectedText();
  if (cursor.movePosition(QTextCursor::PreviousBlock) && cursor.currentTable() == nullptr) cursor.insertFragment(part);
}

void Random(QTextCursor& cursor, std::mt19937& random);

const std::array kEdits = {
    Edit{"letter", Promise::Letter, [](QTextCursor& cursor, std::mt19937&) { cursor.insertText(QStringLiteral("x")); }},
    Edit{"letter of another alphabet", Promise::Letter,
         [](QTextCursor& cursor, std::mt19937&) { cursor.insertText(QStringLiteral("\u4E2D")); }},
    Edit{"letter typed and deleted", Promise::Same,
         [](QTextCursor& cursor, std::mt19937&) {
           cursor.insertText(QStringLiteral("x"));
           cursor.deletePreviousChar();
         }},
    Edit{"letter undone", Promise::Same,
         [](QTextCursor& cursor, std::mt19937&) {
           cursor.insertText(QStringLiteral("x"));
           cursor.document()->undo();
         }},
    Edit{"word bold", Promise::Inside,
         [](QTextCursor& cursor, std::mt19937&) {
           Merge(cursor, [](QTextCharFormat& format) { format.setFontWeight(QFont::Bold); });
         }},
    Edit{"word in another font", Promise::Inside,
         [](QTextCursor& cursor, std::mt19937&) {
           Merge(cursor, [](QTextCharFormat& format) { format.setFontFamilies({QStringLiteral("Some Other")}); });
         }},
    Edit{"word in another colour", Promise::Inside,
         [](QTextCursor& cursor, std::mt19937&) {
           Merge(cursor, [](QTextCharFormat& format) { format.setForeground(QColor(1, 99, 17)); });
         }},
    Edit{"word deleted", Promise::Inside,
         [](QTextCursor& cursor, std::mt19937&) {
           SelectWord(cursor);
           cursor.removeSelectedText();
         }},
    Edit{"paragraph split", Promise::Inside, [](QTextCursor& cursor, std::mt19937&) { cursor.insertBlock(); }},
    Edit{"paragraphs joined", Promise::Inside,
         [](QTextCursor& cursor, std::mt19937&) {
           cursor.movePosition(QTextCursor::EndOfBlock);
           cursor.deleteChar();
         }},
    Edit{"paragraph centred", Promise::Inside,
         [](QTextCursor& cursor, std::mt19937&) {
           QTextBlockFormat format;
           format.setAlignment(Qt::AlignHCenter);
           cursor.mergeBlockFormat(format);
         }},
    Edit{"paragraph moved", Promise::Inside, [](QTextCursor& cursor, std::mt19937&) { MoveParagraph(cursor); }},
    Edit{"selection over paragraphs deleted", Promise::Inside,
         [](QTextCursor& cursor, std::mt19937& random) {
           cursor.movePosition(QTextCursor::NextCharacter, QTextCursor::KeepAnchor, static_cast<int>(random() % 200));
           cursor.removeSelectedText();
         }},
    Edit{"table pasted", Promise::Inside,
         [](QTextCursor& cursor, std::mt19937&) {
           cursor.insertTable(2, 2)->cellAt(0, 0).firstCursorPosition().insertText(QStringLiteral("new"));
         }},
    Edit{"several edits", Promise::Inside, &Random},
};

void Random(QTextCursor& cursor, std::mt19937& random) {
  for (int i = 0; i < kPlaces; ++i) {
    const std::size_t which = random() % (kEdits.size() - 4);
    kEdits[which == 3 ? 0 : which].make(cursor, random);
    cursor.setPosition(static_cast<int>(random() % static_cast<unsigned>(cursor.document()->characterCount())));
  }
}

std::string Slurp(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::size_t EndOf(const rtf::RtfSource::Mark& mark) { return std::max(mark.end, mark.whole_end); }

/// Behind where new tables of fonts and colours may come.
std::size_t BeginOfText(const rtf::RtfSource& source) { return std::max(source.header.begin, source.header.end); }

/// Whether the bytes of all paragraphs but the edited ones are there again, in their order.
bool IsRestThere(const std::string& before, const std::string& after, const rtf::RtfSource& source,
                 const std::vector<rtf::RtfHunk>& hunks) {
  // New fonts and colours come before all paragraphs.
  std::size_t at = 0;
  const auto is_there = [&](std::size_t begin, std::size_t end) {
    const std::string_view part = std::string_view(before).substr(begin, end - begin);
    const std::size_t found = after.find(part, at);
    if (found == std::string::npos) return false;
    at = found + part.size();
    return true;
  };
  std::size_t first = 0;
  for (const rtf::RtfHunk& hunk : hunks) {
    // Where paragraphs only came in, the one before or the next one may change.
    const std::size_t begin = first == 0 ? BeginOfText(source) : EndOf(source.marks[first - 1]);
    const bool came_in = hunk.before_begin == hunk.before_end;
    const std::size_t unchanged = hunk.before_begin - (came_in && hunk.before_begin > 0 ? 1 : 0);
    if (unchanged > first && !is_there(begin, source.marks[unchanged - 1].begin)) return false;
    first = hunk.before_end + (came_in ? 1 : 0);
  }
  if (first >= source.marks.size()) return true;
  return is_there(first == 0 ? BeginOfText(source) : EndOf(source.marks[first - 1]), before.size());
}

bool IsOneInsertion(std::string_view before, std::string_view after) {
  if (after.size() < before.size() || after.size() > before.size() + kBytesOfLetter) return false;
  const auto front = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto back = std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend());
  return (front.first - before.begin()) + (back.first - before.rbegin()) >= static_cast<std::ptrdiff_t>(before.size());
}

struct Counts {
  std::array<int, 3> verdicts{};
  void Add(Verdict verdict) { ++verdicts[static_cast<std::size_t>(verdict)]; }
};

class Tried {
 public:
  explicit Tried(const char* path)
      : path_(path),
        bytes_(Slurp(path)),
        read_(rtf::ReadRtf(bytes_, BytesToUtf8, &source_)),
        original_(bytes_, read_, source_) {}

  bool IsRichText() const { return !source_.marks.empty(); }

  Verdict Untouched() {
    Open();
    const RtfExport written(*view_, store_);
    const auto result = original_.WithEdits(written.Document(), BytesToUtf8);
    return Note("untouched", !result ? Verdict::Anew : *result == bytes_ ? Verdict::Held : Verdict::Elsewhere);
  }

  Verdict Try(const Edit& edit, std::mt19937& random) {
    Open();
    view_->setUndoRedoEnabled(true);
    QTextCursor cursor(view_.get());
    const auto place = random() % static_cast<unsigned>(view_->characterCount());
    cursor.setPosition(static_cast<int>(place));
    edit.make(cursor, random);
    const RtfExport written(*view_, store_);
    const std::optional<std::string> result = original_.WithEdits(written.Document(), BytesToUtf8);
    const std::string name = std::string(edit.name) + " at " + std::to_string(place);
    if (!result) return Note(name.c_str(), Verdict::Anew);
    bool held = false;
    switch (edit.promise) {
      case Promise::Same:
        held = *result == bytes_;
        break;
      case Promise::Letter:
        held = IsOneInsertion(bytes_, *result);
        break;
      case Promise::Inside:
        held = unedited_.paragraphs.size() == source_.marks.size() &&
               IsRestThere(bytes_, *result, source_,
                           rtf::HunksBetween(unedited_, DigestOf(written.Document()),
                                             std::vector<rtf::BlockShape>(unedited_.blocks.size())));
        break;
    }
    if (const char* const folder = std::getenv("TME_RTF_EDITS_OUT"))
      std::ofstream(std::string(folder) + "/" + name + ".rtf", std::ios::binary) << *result;
    return Note(name.c_str(), held ? Verdict::Held : Verdict::Elsewhere);
  }

 private:
  void Open() {
    store_ = {};
    view_ = std::make_unique<QTextDocument>();
    RtfSimplified simplified;
    ImportRtf(rtf::RtfDocument(read_), store_, *view_, simplified);
    const RtfExport written(*view_, store_);
    original_.SetUnedited(written.Document());
    unedited_ = DigestOf(written.Document());
  }
  static rtf::RtfDigest DigestOf(const rtf::RtfDocument& document) {
    return rtf::DigestOf(document, rtf::RtfBlocks(document));
  }
  Verdict Note(const char* edit, Verdict verdict) const {
    if (verdict != Verdict::Held)
      std::fprintf(stderr, "%s: %s: %s\n", path_, edit, verdict == Verdict::Anew ? "all anew" : "elsewhere");
    return verdict;
  }

  const char* path_;
  const std::string bytes_;
  rtf::RtfSource source_;
  const rtf::RtfDocument read_;
  rtf::RtfOriginal original_;
  RtfStore store_;
  std::unique_ptr<QTextDocument> view_;
  rtf::RtfDigest unedited_;
};

void Print(const char* name, const Counts& counts) {
  const auto& [held, elsewhere, anew] = counts.verdicts;
  std::printf("| %s | %d | %d | %d | %d |\n", name, held + elsewhere + anew, held, elsewhere, anew);
}

int Run(int count, char** paths) {
  Counts untouched;
  std::array<Counts, kEdits.size()> edited;
  int other = 0;
  for (int i = 0; i < count; ++i) {
    Tried tried(paths[i]);
    if (!tried.IsRichText()) {
      ++other;
      continue;
    }
    untouched.Add(tried.Untouched());
    std::mt19937 random(1);
    for (std::size_t edit = 0; edit < kEdits.size(); ++edit)
      for (int place = 0; place < kPlaces; ++place) edited[edit].Add(tried.Try(kEdits[edit], random));
  }
  std::printf("%d files, %d of them no rich text\n\n| edit | tried | held | more changed | all anew |\n", count, other);
  std::puts("|---|---:|---:|---:|---:|");
  Print("none", untouched);
  for (std::size_t edit = 0; edit < kEdits.size(); ++edit) Print(kEdits[edit].name, edited[edit]);
  return 0;
}

}  // namespace
}  // namespace tme

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  return tme::Run(argc - 1, argv + 1);
}
