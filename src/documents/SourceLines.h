#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/Parts.h"
#include "base/TextStore.h"

namespace tme {

/// What lines end in. Mixed: in several ways, or in CR alone.
enum class LineEnds : std::uint8_t { Mixed, CrLf, Lf };

/// The text of a document that is held whole, in pieces: runs of whole lines, line ends included, that each belong to
/// one thing (a header, an entry, a value with its continuation lines, a comment, blank lines). The pieces stand in a
/// ring in the order of the file, so that every edit costs the same at any size. A piece that was not edited is a view
/// of the text that was read; a removed one stays in memory, and can be put back.
class SourceLines {
  struct Entry;

 public:
  /// The number of a piece. Numbers grow and are not used again before Clear.
  using Piece = std::uint32_t;
  /// Always there, and empty: it stands before the first piece and behind the last one.
  static constexpr Piece kEnds = 0;

  /// What edits changed, to be taken back and made again: 32 bytes for each piece that got another text or neighbour.
  class Changes;

  /// texts: holds what edits make; outlives this.
  explicit SourceLines(TextStore& texts) : texts_(texts) { Clear(); }

  /// Forgets all pieces. The texts are the caller's to give up.
  void Clear();
  /// Makes room for so many.
  void Reserve(std::size_t pieces) { pieces_.reserve(pieces + 1); }

  Piece First() const { return pieces_[kEnds].next; }
  Piece Last() const { return pieces_[kEnds].previous; }
  /// kEnds behind the last one.
  Piece Next(Piece piece) const { return pieces_[piece].next; }
  Piece Previous(Piece piece) const { return pieces_[piece].previous; }
  std::string_view Text(Piece piece) const { return {pieces_[piece].text, pieces_[piece].size}; }
  /// What the reader gave: its own business.
  std::uint8_t Kind(Piece piece) const { return pieces_[piece].kind; }

  // Edits. Texts are copied where nothing else is said.

  /// Adds a piece behind the last one. lines: not copied, so it must lie in memory that stays.
  Piece Append(std::string_view lines, std::uint8_t kind);
  /// Adds lines behind a piece (kEnds: at the start). What stood last without a line end gets one, and then the new
  /// last line goes without.
  Piece InsertBehind(Piece place, std::string_view lines, std::uint8_t kind);
  /// Adds lines behind a piece as they are. lines: not copied, as Append's.
  Piece InsertAsIs(Piece place, std::string_view lines, std::uint8_t kind);
  void Replace(Piece piece, std::string_view lines);
  void SetKind(Piece piece, std::uint8_t kind) { Edited(piece).kind = kind; }
  void Remove(Piece piece) { Remove(piece, piece); }
  /// Removes all from one to the other, which costs the same whatever their number. They keep their texts and order.
  void Remove(Piece first, Piece last);

  /// Edits note here what they change, but for Append; null for nowhere. Not owned.
  void NoteIn(Changes* changes) { changes_ = changes; }
  /// Takes changes back, the last one first, if nothing was changed since; Reapply makes them again.
  void Revert(Changes& changes);
  void Reapply(Changes& changes);

  /// The line end that a new line behind a piece takes: that of the piece, or of the nearest one before it that has
  /// one, or of the next one behind it; CR LF where the document has none.
  std::string_view LineEndBehind(Piece piece) const;
  /// What all lines end in; CrLf for a document without line ends. Linear in the bytes.
  LineEnds UsedLineEnds() const;
  /// Gives all lines this end; Mixed leaves them. A last line without an end stays without. Linear in the bytes, and
  /// pieces that change are copied. Returns whether any did.
  bool SetLineEnds(LineEnds ends);
  /// Hands over the text of all pieces in parts of whole pieces. Those that follow one another in memory are not copied
  /// unless they are few.
  bool Write(const PartSink& sink) const;
  /// Bytes.
  std::uint64_t Size() const;
  /// Numbers of pieces are below it.
  std::size_t PieceCount() const { return pieces_.size(); }
  /// The bytes before each of some pieces, which stand in the order of the file. Linear, as PieceAt is.
  std::vector<std::uint64_t> OffsetsOf(std::span<const Piece> pieces) const;
  /// The piece with this byte; kEnds behind the last one.
  Piece PieceAt(std::uint64_t offset) const;

 private:
  struct Entry {
    const char* text;
    std::uint32_t size;
    Piece next;
    Piece previous;
    std::uint8_t kind;
  };

  /// The piece, to be changed.
  Entry& Edited(Piece piece);
  /// A piece that is not linked yet. place: what it comes behind.
  Piece Make(Piece place, std::string_view lines, std::uint8_t kind);
  void SetText(Entry& entry, std::string_view lines);
  /// Before lines come behind a piece: ends the line before them, or the lines themselves. Returns the lines.
  std::string_view WithLineEnds(Piece place, std::string_view lines);

  TextStore& texts_;
  std::vector<Entry> pieces_;
  Changes* changes_ = nullptr;
};

class SourceLines::Changes {
 public:
  bool IsEmpty() const { return changes_.empty(); }
  void Reserve(std::size_t pieces) { changes_.reserve(pieces); }

 private:
  friend class SourceLines;
  struct Change {
    Piece piece;
    Entry entry;
  };
  std::vector<Change> changes_;
};

/// The line end of the last line of a text: CR LF, LF, CR, or nothing.
std::string_view LineEndOf(std::string_view lines);

/// What the lines of a text end in; null without a line end. Linear.
std::optional<LineEnds> UsedLineEndsIn(std::string_view lines);
/// The same lines, each ended by `end`; the last one only if it was ended. Linear.
std::string LinesEndedBy(std::string_view lines, std::string_view end);

}  // namespace tme
