#include <string>
#include <string_view>
#include <vector>

#include "console/Commands.h"
#include "files/StandardStreams.h"

namespace {

class SystemStreams : public tme::console::Streams {
 protected:
  std::optional<tme::FileFailure> ReadInput(std::string& bytes) override { return tme::ReadStandardInput(bytes); }
  std::optional<tme::FileFailure> WriteOutput(std::string_view text) override {
    return tme::WriteStandard(tme::StandardStream::Output, text);
  }
  void WriteError(std::string_view text) override { tme::WriteStandard(tme::StandardStream::Error, text); }
  bool ErrorIsTerminal() const override { return tme::IsTerminal(tme::StandardStream::Error); }
};

}  // namespace

int main(int argc, char** argv) {
  tme::ReserveStandardStreams();
  const std::vector<std::string> arguments = tme::ProgramArguments(argc, argv);
  const std::vector<std::string_view> views(arguments.begin(), arguments.end());
  SystemStreams streams;
  return static_cast<int>(tme::console::RunConsole(views, streams));
}
