#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfCharset.h"
#include "documents/rtf/RtfContents.h"
#include "documents/rtf/RtfContentsWords.h"
#include "documents/rtf/RtfTextDecoder.h"
#include "documents/rtf/RtfTokenizer.h"

namespace tme::rtf {

/// Goes through the bytes of a file for ListContents.
class ContentsWalk : private TextDecoder::Sink {
 public:
  /// All outlive this.
  ContentsWalk(std::string_view bytes, const DecodeCodePage& decode, Contents& contents);

  void Run(const ContentsStep& step);

 private:
  /// What is done with text.
  enum class Destination : std::uint8_t { Body, Nowhere, Gathered, Data };
  /// Of a group. A file of braces alone has as many as bytes, so that it is small.
  struct Group {
    Destination destination = Destination::Body;
    std::uint8_t unicode_skip = 1;
    bool is_starred = false;
    bool is_inserted = false;
    bool is_deleted = false;
    bool is_copy = false;     ///< of a picture
    bool is_unshown = false;  ///< in a group that is listed as such
  };
  /// A part of the list that ends with a group.
  struct Open {
    ContentsWord word{};
    std::size_t depth = 0;  ///< of its group
    std::size_t begin = 0;
    std::string_view name{};
    std::string text{};  ///< gathered
    Part part{};         ///< of Object and Picture
    std::string object_name{};
    int high = -1;  ///< the first digit of a byte of Data
  };

  void Read();
  void ReadStar();
  void ReadWord();
  /// What a word is counted in; null for one that is not counted.
  std::uint64_t* CountOf(ContentsWord word);
  void ReadKnownWord(const ContentsWordEntry& entry);
  void ReadObjectWord(ContentsWord word);
  void ReadText();
  static void AddHex(Open& data, std::string_view digits);
  static void AddBinary(Open& data, std::string_view bytes);
  void NoteRevision();
  void BeginPart(ContentsWord word, Destination destination);
  void CloseGroup();
  void EndPart(Open& part);
  void EndObject(Open& object);
  void EndInstruction(const std::string& text);
  /// What is read next in the body is what the last link shows.
  void BeginResult();
  bool IsInLink() const { return link_text_depth_ > 0; }
  void EndProperty(const std::string& value);
  void NoteUnshown(const Open& part);
  void AddTarget(PartKind kind, std::string_view name, std::string target);
  void Add(Part&& part);
  void Text(std::string_view text, const TextDecoder::Place& place) override;
  void UnknownCharacter(const TextDecoder::Place& place) override;
  Group& Top() { return groups_.back(); }
  Open* InnermostObject();
  std::uint64_t& TotalOf(PartKind kind) { return contents_.totals[static_cast<std::size_t>(kind)]; }

  const DecodeCodePage& decode_;
  Contents& contents_;
  Tokenizer tokens_;
  Token token_;
  CodePages pages_;
  TextDecoder decoder_;
  TextEncoding encoding_;
  std::vector<Group> groups_;  ///< the first is around the file
  std::vector<Open> open_;
  std::map<std::string, Part, std::less<>> unshown_;
  std::uint64_t unlisted_ = 0;   ///< for want of room there
  std::size_t group_begin_ = 0;  ///< of the last group that began
  std::string property_;         ///< name of the last one of a drawing
  // Of the last link: its place in the list, how deep its field's groups stand, and the one that it shows; 0 for none.
  std::size_t link_ = 0;
  std::size_t link_depth_ = 0;
  std::size_t link_text_depth_ = 0;
  bool was_inserted_ = false;
  bool was_deleted_ = false;
};

}  // namespace tme::rtf
