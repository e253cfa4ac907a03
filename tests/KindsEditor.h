#pragma once

#include "Editor.h"
#include "shell/DocumentWindow.h"
#include "shell/NoticeBar.h"

/// What a document of a kind holds before and after an edit, and how it is saved.
struct SavedKind {
  tme::DocumentKind kind;
  const char* name;
  std::string old_bytes, new_bytes;
  const char* save;
  const char* save_as;
};
inline const SavedKind kSavedKinds[] = {
    {tme::DocumentKind::Ini, "a.ini", "[A]\r\nx=1\r\n\r\n", "[A]\r\nx=2\r\n\r\n", "SaveFile", "SaveAs"},
    {tme::DocumentKind::Txt, "a.txt", "old text", "the new text", "SaveFile", "SaveAs"},
    {tme::DocumentKind::Rtf, "a.rtf", "{\\rtf1 old}", "{\\rtf1 the new}", "SaveFile", "SaveAs"},
    {tme::DocumentKind::Reg, "a.reg", "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"n\"=\"old\"\r\n\r\n",
     "REGEDIT4\r\n\r\n[HKEY_USERS\\A]\r\n\"n\"=\"new\"\r\n\r\n", "FileSaveRegular", "FileSaveAsRegular"}};

/// An editor for tests over documents of all kinds.
class KindsEditor : public Editor {
 protected:
  tme::DocumentWindow& Window(tme::DocumentKind kind, int slot = 0) { return *global_.documents.At(kind, slot); }
  static QString Notice(const tme::DocumentWindow& window) { return window.findChild<tme::NoticeBar*>()->Text(); }
  bool HistoryHolds(const std::string& content) const {
    for (const tme::KeptVersion& version : history_.versions.List())
      if (history_.contents.Read(version.digest) == content) return true;
    return false;
  }
};
