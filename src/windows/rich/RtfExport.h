#pragma once

#include "windows/rich/RtfStore.h"

class QTextDocument;

namespace tme {

/// A view's document as one to write: the store's document with its text, while this object lives. No second copy of
/// pictures and other kept parts is made.
class RtfExport {
 public:
  RtfExport(const QTextDocument& view, RtfStore& store);
  ~RtfExport();
  RtfExport(const RtfExport&) = delete;
  RtfExport& operator=(const RtfExport&) = delete;

  const rtf::RtfDocument& Document() const { return store_.document; }

 private:
  RtfStore& store_;
};

}  // namespace tme
