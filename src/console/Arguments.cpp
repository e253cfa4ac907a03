#include "console/Arguments.h"

#include <algorithm>

#include "base/Reversed.h"

namespace tme::console {
namespace {

bool IsOption(std::string_view text) {
  const bool is_number = text.size() > 1 && text[1] >= '0' && text[1] <= '9';
  return text.size() > 1 && text.front() == '-' && !is_number;
}

}  // namespace

Arguments::Arguments(const Command& command, Texts texts) : command_(command) {
  bool options_end = false;
  while (!texts.empty()) {
    const std::string_view text = texts.front();
    texts = texts.subspan(1);
    if (options_end || !IsOption(text)) {
      operands_.push_back(text);
    } else if (text == "--") {
      options_end = true;
    } else if (text == "--help" || text == "-h") {
      wants_help_ = true;
      return;
    } else {
      const std::size_t used = text.starts_with("--") ? TakeLong(text.substr(2), texts) : TakeLetters(text, texts);
      texts = texts.subspan(used);
    }
  }
  if (operands_.size() < command_.min_operands || operands_.size() > command_.max_operands)
    Refuse("usage: tmec " + std::string(command_.name) + " [OPTION…] " + std::string(command_.operands));
}

/// Returns how many of the rest it used.
std::size_t Arguments::TakeLong(std::string_view text, Texts rest) {
  const std::size_t equals = text.find('=');
  const std::string_view name = text.substr(0, equals);
  const std::string shown = "--" + std::string(name);
  const Option& option = Find([name](const Option& each) { return each.name == name; }, shown);
  const bool takes_value = !option.value.empty();
  if (!takes_value && equals != std::string_view::npos) Refuse(shown + " takes no value");
  if (takes_value && equals == std::string_view::npos && rest.empty()) Refuse(shown + " needs a value");
  if (!takes_value || equals != std::string_view::npos) {
    given_.emplace_back(&option, takes_value ? text.substr(equals + 1) : std::string_view());
    return 0;
  }
  given_.emplace_back(&option, rest.front());
  return 1;
}

/// letters: with the "-" before them, such as "-oOUT".
std::size_t Arguments::TakeLetters(std::string_view letters, Texts rest) {
  for (std::size_t at = 1; at < letters.size(); ++at) {
    const std::string shown = "-" + std::string(1, letters[at]);
    const Option& option = Find([&](const Option& each) { return each.letter == letters[at]; }, shown);
    if (option.value.empty()) {
      given_.emplace_back(&option, std::string_view());
      continue;
    }
    const std::string_view behind = letters.substr(at + 1);
    if (behind.empty() && rest.empty()) Refuse(shown + " needs a value");
    given_.emplace_back(&option, behind.empty() ? rest.front() : behind);
    return behind.empty() ? 1 : 0;
  }
  return 0;
}

const Option& Arguments::Find(const std::function<bool(const Option&)>& is_it, std::string_view shown) const {
  const auto found = std::find_if(command_.options.begin(), command_.options.end(), is_it);
  if (found == command_.options.end())
    Refuse("no option " + std::string(shown) + " here; \"--\" goes before what only looks like one");
  return *found;
}

std::optional<std::string_view> Arguments::ValueOf(const Option& option) const {
  for (const auto& [given, value] : Reversed(given_))
    if (given->name == option.name) return value;
  return std::nullopt;
}

std::size_t Arguments::TimesOf(const Option& option) const {
  const auto is_it = [&option](const auto& each) { return each.first->name == option.name; };
  return static_cast<std::size_t>(std::count_if(given_.begin(), given_.end(), is_it));
}

void Arguments::Refuse(const std::string& why) const {
  throw Trouble(std::string(command_.name) + ": " + why + " (see tmec " + std::string(command_.name) + " --help)");
}

std::string HelpOf(const Command& command) {
  constexpr std::size_t kColumn = 24;
  std::string help =
      "Usage: tmec " + std::string(command.name) + " [OPTION…] " + std::string(command.operands) + "\n\n";
  help.append(command.summary).append("\n");
  if (!command.details.empty()) help.append("\n").append(command.details);
  help += "\n";
  const auto add = [&](const Option& option) {
    std::string left = option.letter == '\0' ? "      --" : std::string("  -") + option.letter + ", --";
    left.append(option.name);
    if (!option.value.empty()) left.append(" ").append(option.value);
    left.resize(std::max(left.size() + 2, kColumn), ' ');
    help.append(left).append(option.help).append("\n");
  };
  for (const Option& option : command.options) add(option);
  add({"help", 'h', "", "this text"});
  return help;
}

}  // namespace tme::console
