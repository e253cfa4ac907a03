#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "documents/rtf/RtfReader.h"

namespace tme::rtf {

/// What the data of an embedded or linked object say of it. Texts are UTF-8.
struct OleData {
  std::string class_name;  ///< "Package", "Excel.Sheet.12"; empty where the data are none that this knows
  /// The source of a link, the file names of a package, addresses of pages and files: as many as kMaxOleNames.
  std::vector<std::string> names;
};
inline constexpr std::size_t kMaxOleNames = 10;

/// bytes: the data, or as much of their beginning as is at hand. Reads them only; what makes no sense is passed over.
OleData ReadOleData(std::string_view bytes, const DecodeCodePage& decode);

}  // namespace tme::rtf
