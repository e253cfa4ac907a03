// Input: a byte that decides which files there are, then a command line's text.
#include <QString>
#include <algorithm>

#include "Fuzz.h"
#include "shell/PathList.h"

namespace tme::fuzz {
namespace {

QString WithoutSpaces(QString text) {
  return text.removeIf([](QChar character) { return character.isSpace(); });
}

void Run(std::string_view input) {
  const unsigned files = TakeByte(input);
  const auto exists = [files](const QString& path) { return ((files >> (path.size() % 8)) & 1) != 0; };
  const QString text = QString::fromUtf8(input.data(), static_cast<qsizetype>(input.size()));

  QString rest = text;
  QString taken;
  while (!rest.isEmpty()) {
    const qsizetype before = rest.size();
    const QString path = TakePath(rest, exists);
    const bool is_whole = before == text.size() && path == text && exists(text);
    Promise(is_whole || path.isEmpty() || !path.front().isSpace(), "a path begins with a character that is seen");
    Promise(!path.isEmpty() || (rest.isEmpty() && WithoutSpaces(text).isEmpty()), "and has one");
    Promise(rest.size() < before && rest == rest.trimmed(), "what is left is shorter, and trimmed");
    if (path.contains(u' ')) Promise(rest.isEmpty() && exists(path), "a path with blanks is a file, and the last one");
    taken += path;
  }
  Promise(WithoutSpaces(taken) == WithoutSpaces(text), "nothing of the text is lost");
}

}  // namespace
}  // namespace tme::fuzz

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  tme::fuzz::Run(tme::fuzz::AsText(data, size));
  return 0;
}
