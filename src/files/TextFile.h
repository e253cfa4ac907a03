#pragma once

#include <filesystem>
#include <optional>

#include "base/Parts.h"
#include "files/FileFailure.h"
#include "files/TextEncoding.h"

namespace tme {

class FileSteps;

/// As WriteFileParts, of text in parts of whole lines (UTF-8). It is written in the given encoding or the one that
/// EncodeText would take, and `format` says so; the producer may run again.
std::optional<FileFailure> WriteTextFile(const std::filesystem::path& path, TextFormat& format,
                                         const PartProducer& produce, FileSteps& steps);

/// Whether the file has exactly the bytes of the text in this encoding. False, too, where it cannot be read.
bool TextFileHolds(const std::filesystem::path& path, const TextFormat& format, const PartProducer& produce);

}  // namespace tme
