#include "files/TextFile.h"

#include <string>
#include <string_view>

#include "files/FileBytes.h"
#include "files/TextEncoder.h"

namespace tme {

std::optional<FileFailure> WriteTextFile(const std::filesystem::path& path, TextFormat& format,
                                         const PartProducer& produce, FileSteps& steps) {
  bool fits = true;
  TextEncoder encoder(format);
  const auto each_part = [&](TextEncoder& with, const PartSink& put) {
    return produce([&](std::string_view part) {
      const std::optional<std::string> bytes = with.Encode(part);
      fits = bytes.has_value();
      return fits && put(*bytes);
    });
  };
  const auto encode = [&](const PartSink& put) {
    const bool complete = each_part(encoder, put);
    TextEncoder again(format);
    fits = fits && encoder.ReadsBack([&](const PartSink& check) { return each_part(again, check); });
    // A text without parts has its mark, too.
    return complete && fits && put(encoder.Encode({}).value_or(std::string()) + encoder.Rest());
  };
  auto failure = WriteFileParts(path, encode, steps);
  if (fits) return failure;
  format = NextFormat(format);
  return WriteTextFile(path, format, produce, steps);
}

bool TextFileHolds(const std::filesystem::path& path, const TextFormat& format, const PartProducer& produce) {
  std::string bytes;
  if (ReadFileBytes(path, bytes)) return false;
  TextEncoder encoder(format);
  std::string_view rest = bytes;
  const auto take = [&](std::string_view part) {
    const std::optional<std::string> encoded = encoder.Encode(part);
    if (!encoded || !rest.starts_with(*encoded)) return false;
    rest.remove_prefix(encoded->size());
    return true;
  };
  return produce(take) && take({}) && rest == encoder.Rest();
}

}  // namespace tme
