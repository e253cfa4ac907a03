#pragma once

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "WriteFile.h"
#include "console/Commands.h"
#include "files/TextEncoding.h"

namespace tme {

/// Runs commands of the console program within the test, in a folder of its own.
class ConsoleProbe : public WriteFile {
 protected:
  /// What standard input gives.
  std::string input_;
  /// What the last run wrote.
  std::string output_, errors_;

  /// Returns the exit status. A file is named by "FILE:name", which becomes a path in the folder.
  int Run(const std::vector<std::string>& arguments) {
    constexpr std::string_view kFile = "FILE:";
    std::vector<std::string> texts;
    for (const std::string& argument : arguments)
      texts.push_back(argument.starts_with(kFile) ? PathText(argument.substr(kFile.size())) : argument);
    const std::vector<std::string_view> views(texts.begin(), texts.end());
    TextStreams streams(*this);
    output_.clear();
    errors_.clear();
    return static_cast<int>(console::RunConsole(views, streams));
  }
  /// The same for words without blanks in them.
  int RunWords(const std::string& words) {
    std::istringstream stream(words);
    return Run({std::istream_iterator<std::string>(stream), {}});
  }
  std::string PathText(const std::string& name) const {
    const std::u8string path = In(name).u8string();
    return {path.begin(), path.end()};
  }
  void PutFile(const std::string& name, const std::string& bytes) const { Put(In(name), bytes); }
  std::string FileBytes(const std::string& name) const { return Get(In(name)); }
  static std::string Utf16(std::string text) {
    TextFormat format{.encoding = TextEncoding::Utf16Le, .stray_byte = {}};
    return EncodeText(std::move(text), format);
  }

 private:
  class TextStreams : public console::Streams {
   public:
    explicit TextStreams(ConsoleProbe& probe) : probe_(probe) {}

   protected:
    std::optional<FileFailure> ReadInput(std::string& bytes) override {
      bytes = probe_.input_;
      return std::nullopt;
    }
    std::optional<FileFailure> WriteOutput(std::string_view text) override {
      probe_.output_ += text;
      return std::nullopt;
    }
    void WriteError(std::string_view text) override { probe_.errors_ += text; }
    bool ErrorIsTerminal() const override { return true; }

   private:
    ConsoleProbe& probe_;
  };
};

}  // namespace tme
