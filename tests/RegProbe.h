#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "TreeMirror.h"
#include "documents/reg/RegDocument.h"
#include "documents/reg/RegKeyWalk.h"
#include "documents/reg/RegReader.h"
#include "documents/reg/RegWriter.h"

namespace tme {

/// These tests write texts with "$" for HKEY_USERS, "%" for HKEY_CURRENT_USER, "/" for a backslash, "'" for a double
/// quote and "|" for a line end.
inline std::string Reg(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const std::size_t found = std::string_view("$%/'|").find(c);
    constexpr std::string_view meanings[] = {"HKEY_USERS", "HKEY_CURRENT_USER", "\\", "\"", "\n"};
    out += found == std::string_view::npos ? std::string_view(&c, 1) : meanings[found];
  }
  return out;
}

/// "name:S=data" for each value of the node, in parentheses; "" when it has none.
inline std::string DumpValues(const RegDocument& document, const RegNode& node) {
  std::string dump;
  for (const std::size_t record : document.ValuesOfPath(&node)) {
    const RegValueRecord& value = document.Values()[record];
    dump.append(dump.empty() ? "(" : " ")
        .append(value.name)
        .append(":")
        .append(1, "-SDH"[static_cast<int>(value.type)]);
    dump.append("=").append(value.data).append(value.deleted ? "!" : "");
  }
  return dump.empty() ? dump : dump + ")";
}

/// The whole document: values of the root, then each node as its text, its values, and its children in braces.
inline std::string Dump(const RegDocument& document) {
  std::string dump;
  const auto enter = [&](const RegNode& node) {
    if (node.Parent() != nullptr) dump.append(node.Row() == 0 ? "{" : " ").append(node.Text());
    dump += DumpValues(document, node);
    return true;
  };
  WalkKeys(*document.Root(), enter, [&](const RegNode& node) { dump += node.ChildCount() > 0 ? "}" : ""; });
  return dump;
}

inline RegNode* NodeAt(const RegDocument& document, std::string_view path) {
  RegNode* found = nullptr;
  const std::string wanted = Reg(path);
  const auto enter = [&](const RegNode& node) {
    if (found == nullptr && node.KeyPath() == wanted) found = const_cast<RegNode*>(&node);
    return found == nullptr;
  };
  WalkKeys(*document.Root(), enter, [](const RegNode&) {});
  return found;
}

/// text: as for Reg.
inline RegReadResult ReadReg(RegDocument& document, std::string_view text) {
  const auto yes = [] { return true; };
  return ReadReg(document, Reg(text), {.wrong_header = yes, .large_file = yes, .progress = {}});
}

inline std::string Written(const RegDocument& document, RegLayout layout) {
  std::string written;
  const auto append = [&](std::string_view part) {
    EXPECT_TRUE(part.ends_with("\r\n"));
    written += part;
    return true;
  };
  EXPECT_TRUE(WriteReg(document, layout, append));
  EXPECT_EQ(RegOutputBytes(document, layout), written.size());
  return written;
}

class RegMirror : public TreeMirror<RegDocument, RegNode, RegDocumentObserver> {
 public:
  using TreeMirror::TreeMirror;

  void ValueAdded(std::size_t record) override { EXPECT_EQ(record + 1, document_.Values().size()); }
  void ValueChanged(std::size_t record) override { changed.push_back(record); }

  std::vector<std::size_t> changed;
};

}  // namespace tme
