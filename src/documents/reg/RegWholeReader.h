#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "documents/reg/RegData.h"

namespace tme {

class RegDocument;

struct RegWholeOptions {
  /// What lines are when the first one says no version: Version5 for a text that was UTF-16.
  RegVersion unsaid = RegVersion::Regedit4;
  /// Values before the first key: not understood, or of the root (as the clipboard has them).
  enum class FirstValues : std::uint8_t { NotUnderstood, OfRoot };
  FirstValues first_values = FirstValues::NotUnderstood;
  /// Bytes read, and in all. Is called every few thousand lines; may be empty. False cancels.
  std::function<bool(std::uint64_t done, std::uint64_t all)> progress = {};
};

struct RegWholeResult {
  /// The document is empty then.
  bool cancelled = false;
  /// Whether the first line says the version.
  bool has_header = false;
  std::uint64_t comments = 0;
  std::uint64_t key_deletions = 0;
  std::uint64_t value_deletions = 0;
  /// Lines that are neither of these, nor key, value or blank. They stay as they are.
  std::uint64_t not_understood = 0;
  /// From 1; 0 for none.
  std::uint64_t first_not_understood = 0;
};

/// Fills a fresh document with the text of a registry file, whatever it is, in whole holding: document.Lines() writes
/// the same bytes again. Linear. The root is selected afterwards.
/// text: UTF-8, bytes that are not pass through; taken over by the document.
RegWholeResult ReadWholeReg(RegDocument& document, std::string text, const RegWholeOptions& options = {});

}  // namespace tme
