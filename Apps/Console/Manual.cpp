// zolva-manual man|bash|zsh|fish: prints the manual page or a shell's completion, made from what
// the command line takes.
#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <utility>

#include <ZolvaCheckoutKit/ZLVVersion.h>

#include "Apps/Console/Arguments.h"

namespace {

using Commands = std::vector<CommandDescription>;

constexpr std::string_view fileValue = "FILE";

template <class... Pieces>
void print(const Pieces&... pieces) {
  (std::fwrite(std::string_view(pieces).data(), 1, std::string_view(pieces).size(), stdout), ...);
}

/// `text` with `with` before each of the characters.
std::string escaped(std::string_view text, std::string_view characters, std::string_view with) {
  std::string result;
  for (const char c : text) {
    if (characters.find(c) != std::string_view::npos) result += with;
    result += c;
  }
  return result;
}

/// For roff, where a hyphen is not a minus sign, and a point begins a request.
std::string roff(std::string_view text) {
  const auto line = escaped(text, "-\\", "\\");
  return line.starts_with('.') || line.starts_with('\'') ? "\\&" + line : line;
}

void printOptions(const CommandDescription& command) {
  for (const auto& option : command.options) {
    print(".TP\n\\fB", roff(option.name), "\\fR");
    if (!option.value.empty()) print(" \\fI", roff(option.value), "\\fR");
    print("\n", roff(option.description), option.isRequired ? " (required)" : "", "\n");
  }
}

void printMan(const Commands& commands) {
  print(".TH ZOLVA 1 \"\" \"zolva " ZLV_VERSION "\"\n.SH NAME\nzolva \\- ",
        roff(commands.front().description.substr(0, commands.front().description.rfind('.'))),
        "\n.SH SYNOPSIS\n.B zolva\n[\\fIOPTIONS\\fR] \\fICOMMAND\\fR [\\fIARGUMENTS\\fR]\n"
        ".SH OPTIONS\nThey may stand before the command or behind it.\n");
  printOptions(commands.front());
  print(".SH COMMANDS\n");
  for (auto command = commands.begin() + 1; command != commands.end(); ++command) {
    print(".SS ", roff(command->name), "\n", roff(command->description), ".\n");
    printOptions(*command);
  }
  print(
      ".SH PAGES\nWhen the wallet asks for the user, \\(lqopen \\fIURL\\fR\\(rq is printed on "
      "standard error. A line on standard input is a URL that the application is asked to open; "
      "an empty line, or the end, closes the page.\n"
      ".SH EXIT STATUS\n.TP\n.B 0\nThe call gave a result; for doctor, no check failed.\n"
      ".TP\n.B 1\nIt gave an error; for doctor, a check failed.\n.TP\n.B 2\nWrong usage.\n"
      ".TP\n.B 3\nA fault of the program or the machine.\n"
      ".SH EXAMPLES\n.nf\nzolva sandbox\n"
      "zolva \\-\\-server http://127.0.0.1:PORT doctor \\-\\-yes \\-\\-confirm\\-pages\n"
      "zolva \\-\\-server https://shop.example/pay doctor \\-\\-json\n.fi\n");
}

std::string names(const CommandDescription& command) {
  std::string text;
  for (const auto& option : command.options) {
    if (option.name.starts_with("--")) text += option.name + " ";
  }
  return text;
}

/// The options that are followed by a value, as a pattern of the shell's.
std::string valued(const Commands& commands, bool areFiles) {
  std::string text;
  for (const auto& command : commands) {
    for (const auto& option : command.options) {
      if (!option.name.starts_with("--") || option.value.empty()) continue;
      if ((option.value == fileValue) == areFiles) text += (text.empty() ? "" : "|") + option.name;
    }
  }
  return text;
}

void printBash(const Commands& commands) {
  print("_zolva() {\n  local word=${COMP_WORDS[COMP_CWORD]} command= words= i\n",
        "  COMPREPLY=()\n  case ${COMP_WORDS[COMP_CWORD - 1]} in\n    ", valued(commands, true),
        ") COMPREPLY=($(compgen -f -- \"$word\")); return ;;\n    ", valued(commands, false),
        ") return ;;\n  esac\n",
        "  for ((i = 1; i < COMP_CWORD; ++i)); do\n    case ${COMP_WORDS[i]} in\n");
  for (auto command = commands.begin() + 1; command != commands.end(); ++command) {
    print("      ", command->name, ") command=1 words='", names(*command), "' ;;\n");
  }
  print("    esac\n  done\n  [ -n \"$command\" ] || words='");
  for (auto command = commands.begin() + 1; command != commands.end(); ++command) {
    print(command->name, " ");
  }
  print("'\n  COMPREPLY=($(compgen -W \"$words ", names(commands.front()),
        "\" -- \"$word\"))\n}\ncomplete -F _zolva zolva\n");
}

std::string quoted(std::string_view text) {
  std::string result = "'";
  for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return result + "'";
}

void printZshOptions(const CommandDescription& command) {
  for (const auto& [name, value, description, isRequired] : command.options) {
    const auto text = escaped(description, "[]:\\", "\\");
    auto argument = ":" + text + ": ";
    if (name.starts_with("--")) {
      argument = name;
      argument.append("[").append(text).append("]");
      if (!value.empty()) argument.append(":").append(value).append(":");
      if (!value.empty()) argument += value == fileValue ? "_files" : " ";
    }
    print(" ", quoted(argument));
  }
}

void printZsh(const Commands& commands) {
  print("#compdef zolva\nlocal -a globals commands\nlocal curcontext=$curcontext state line\n",
        "globals=(");
  printZshOptions(commands.front());
  print(")\ncommands=(");
  for (auto command = commands.begin() + 1; command != commands.end(); ++command) {
    print(" ", quoted(command->name + ":" + escaped(command->description, ":", "\\")));
  }
  print(")\n_arguments -C $globals '1: :->command' '*:: :->argument'\n",
        "case $state in\n  command) _describe command commands ;;\n  argument)\n",
        "    case $words[1] in\n");
  for (auto command = commands.begin() + 1; command != commands.end(); ++command) {
    print("      ", command->name, ") _arguments $globals");
    printZshOptions(*command);
    print(" ;;\n");
  }
  print("    esac ;;\nesac\n");
}

void printFish(const Commands& commands) {
  print("complete -c zolva -f\n");
  for (const auto& command : commands) {
    const bool isProgram = &command == &commands.front();
    if (!isProgram) {
      print("complete -c zolva -n __fish_use_subcommand -a ", command.name, " -d ",
            quoted(command.description), "\n");
    }
    for (const auto& option : command.options) {
      if (!option.name.starts_with("--")) continue;
      print("complete -c zolva");
      if (!isProgram) print(" -n '__fish_seen_subcommand_from ", command.name, "'");
      print(" -l ", option.name.substr(2));
      if (!option.value.empty()) print(option.value == fileValue ? " -r -F" : " -x");
      print(" -d ", quoted(option.description), "\n");
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  constexpr std::pair<std::string_view, void (*)(const Commands&)> forms[] = {
      {"man", printMan}, {"bash", printBash}, {"zsh", printZsh}, {"fish", printFish}};
  for (const auto& [name, write] : forms) {
    if (argc != 2 || name != argv[1]) continue;
    write(describeArguments());
    return 0;
  }
  return 2;
}
