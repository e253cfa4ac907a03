#pragma once

#include <QCoreApplication>

#include "documents/reg/RegDocument.h"
#include "windows/tree/SourceLexer.h"

namespace tme {

/// Reads the source of a registry document for display, line by line as its reader does. By the rules nothing is a
/// fault.
class RegSourceLexer : public SourceLexer {
  Q_DECLARE_TR_FUNCTIONS(RegSourceLexer)

 public:
  explicit RegSourceLexer(const RegDocument& document) : document_(document) {}
  /// A wrapped value does, and comments within it.
  bool GoesOn(std::string_view line) const override;
  std::vector<SourceFault> Read(const SourcePart& part, std::span<char> styles) const override;

 private:
  class Reading;
  const RegDocument& document_;
};

}  // namespace tme
