#include "cli/completion_script.h"

#include <vector>

namespace brindle {

namespace {

using Commands = std::span<const Command* const>;

std::string joinedChoices(std::span<const std::string_view> choices) {
  std::string text;
  for (const std::string_view choice : choices) {
    if (!text.empty()) text += ' ';
    text += choice;
  }
  return text;
}

std::string joinedNames(Commands commands) {
  std::string text;
  for (const Command* command : commands) {
    if (!text.empty()) text += ' ';
    text += command->name;
  }
  return text;
}

/// The words that may stand where the argument is; empty when any may.
std::string wordsOf(const ArgumentSpec& argument, Commands commands) {
  return argument.namesCommand ? joinedNames(commands) : joinedChoices(argument.choices);
}

/// The text inside single quotes, as every one of the shells reads it.
std::string quoted(std::string_view text, std::string_view escapedQuote) {
  std::string result = "'";
  for (const char character : text) {
    if (character == '\'') {
      result += escapedQuote;
    } else {
      result += character;
    }
  }
  return result + "'";
}

/// Help texts stand in zsh's own small language, in which these characters mean something.
std::string zshText(std::string_view text) {
  std::string result;
  for (const char character : text) {
    if (character == '[' || character == ']' || character == ':' || character == '\\') result += '\\';
    result += character;
  }
  return result;
}

std::string zshQuoted(std::string_view text) { return quoted(text, "'\\''"); }
std::string fishQuoted(std::string_view text) { return quoted(text, "\\'"); }

/// All words that may follow the command's name.
std::string bashWords(const Command& command, Commands commands) {
  std::string words;
  for (const ArgumentSpec& argument : command.arguments) {
    const std::string choices = wordsOf(argument, commands);
    if (!choices.empty()) words += choices + " ";
  }
  for (const OptionSpec& option : command.options) words += std::string(option.name) + " ";
  return words + "--help --no-color";
}

std::string bashScript(Commands commands) {
  std::string names, values, words;
  for (const Command* command : commands) {
    const std::string name(command->name);
    names += name + " ";
    if (command->style == ArgumentStyle::raw) continue;
    for (const OptionSpec& option : command->options) {
      if (option.value.empty() || option.valueOptional) continue;
      // Without choices the shell's own completion of file names takes over.
      values +=
          "    '" + name + " " + std::string(option.name) + "') words='" + joinedChoices(option.choices) + "' ;;\n";
    }
    words += "      " + name + ") words='" + bashWords(*command, commands) + "' ;;\n";
  }
  return "_brindle() {\n"
         "  local current=\"${COMP_WORDS[COMP_CWORD]}\" previous=\"${COMP_WORDS[COMP_CWORD - 1]}\"\n"
         "  local command='' index words=''\n"
         "  for ((index = 1; index < COMP_CWORD; index++)); do\n"
         "    if [[ ${COMP_WORDS[index]} != -* ]]; then\n"
         "      command=\"${COMP_WORDS[index]}\"\n"
         "      break\n"
         "    fi\n"
         "  done\n"
         "  case \"$command $previous\" in\n" +
         values +
         "    *) case \"$command\" in\n"
         "      '') words='" +
         names + "--help --no-color --version' ;;\n" + words +
         "      esac ;;\n"
         "  esac\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
         "}\n"
         "complete -o default -F _brindle brindle\n";
}

std::string zshArgument(const ArgumentSpec& argument, Commands commands) {
  const std::string place = argument.repeated ? "*" : argument.required ? "" : ":";
  const std::string words = wordsOf(argument, commands);
  const std::string action = words.empty() ? "_default" : "(" + words + ")";
  return zshQuoted(place + ":" + zshText(argument.name) + ":" + action);
}

std::string zshOption(const OptionSpec& option) {
  std::string text = std::string(option.name) + "[" + zshText(option.help) + "]";
  if (!option.value.empty()) {
    const std::string action = option.choices.empty() ? "_default" : "(" + joinedChoices(option.choices) + ")";
    text += (option.valueOptional ? "::" : ":") + zshText(option.value) + ":" + action;
  }
  return zshQuoted(text);
}

/// One argument of zsh's _arguments a line.
std::string zshCall(const std::string& indent, const std::vector<std::string>& specs) {
  std::string call = "_arguments";
  for (const std::string& spec : specs) call += " \\\n" + indent + "  " + spec;
  return call;
}

std::string zshCase(const Command& command, Commands commands) {
  // "-S": what follows "--" is no option; "-A": nor is what follows the command that is run.
  std::vector<std::string> specs = {command.style == ArgumentStyle::trailingCommand ? "-S -A '-*'" : "-S"};
  for (const OptionSpec& option : command.options) specs.push_back(zshOption(option));
  for (const ArgumentSpec& argument : command.arguments) specs.push_back(zshArgument(argument, commands));
  specs.emplace_back("'--help[shows help]'");
  specs.emplace_back("'--no-color[never uses colour]'");
  if (command.style == ArgumentStyle::trailingCommand) specs.emplace_back("'*::command:_normal'");
  const std::string head = "      " + std::string(command.name) + ")\n";
  if (command.style != ArgumentStyle::trailingCommand) return head + "        " + zshCall("        ", specs) + " ;;\n";
  // _arguments loses count of the words when the dashes come first.
  return head +
         "        if [[ \"$words[2]\" == -- ]] && ((CURRENT > 2)); then\n"
         "          shift 2 words\n"
         "          ((CURRENT -= 2))\n"
         "          _normal\n"
         "        else\n"
         "          " +
         zshCall("          ", specs) + "\n        fi ;;\n";
}

std::string zshScript(Commands commands) {
  std::string names, cases;
  for (const Command* command : commands) {
    names += "    " + zshQuoted(std::string(command->name) + ":" + zshText(command->summary)) + "\n";
    if (command->style != ArgumentStyle::raw) cases += zshCase(*command, commands);
  }
  const std::vector<std::string> own = {"-C",
                                        "'--help[shows help]'",
                                        "'--no-color[never uses colour]'",
                                        "'--version[shows the version]'",
                                        "'1: :->command'",
                                        "'*:: :->words'"};
  return "#compdef brindle\n"
         "_brindle() {\n"
         "  local curcontext=\"$curcontext\" state line\n"
         "  local -a commands\n"
         "  commands=(\n" +
         names + "  )\n  " + zshCall("  ", own) +
         "\n"
         "  case \"$state\" in\n"
         "    command) _describe command commands ;;\n"
         "    words) case \"$words[1]\" in\n" +
         cases +
         "    esac ;;\n"
         "  esac\n"
         "}\n"
         // As a file of zsh's own path it is read at the first completion, which it then has to answer.
         "if [[ \"$funcstack[1]\" == _brindle ]]; then\n"
         "  _brindle \"$@\"\n"
         "else\n"
         "  compdef _brindle brindle\n"
         "fi\n";
}

std::string fishScript(Commands commands) {
  std::string script;
  for (const Command* command : commands) {
    script += "complete -c brindle -n __fish_use_subcommand -f -a " + std::string(command->name) + " -d " +
              fishQuoted(command->summary) + "\n";
    if (command->style == ArgumentStyle::raw) continue;
    const std::string line = "complete -c brindle -n '__fish_seen_subcommand_from " + std::string(command->name) + "'";
    for (const OptionSpec& option : command->options) {
      script += line + " -l " + std::string(option.name.substr(2));
      if (!option.value.empty() && !option.valueOptional) script += " -r";
      if (!option.choices.empty()) script += " -f -a " + fishQuoted(joinedChoices(option.choices));
      script += " -d " + fishQuoted(option.help) + "\n";
    }
    for (const ArgumentSpec& argument : command->arguments) {
      const std::string words = wordsOf(argument, commands);
      if (words.empty()) continue;
      script += line + " -f -a " + fishQuoted(words) + " -d " + fishQuoted(argument.help) + "\n";
    }
    if (command->style == ArgumentStyle::trailingCommand) {
      script += line + " -x -a '(__fish_complete_subcommand --fcs-skip=2)'\n";
    }
  }
  return script + "complete -c brindle -l help -d 'shows help'\n" +
         "complete -c brindle -l no-color -d 'never uses colour'\n" +
         "complete -c brindle -n __fish_use_subcommand -l version -d 'shows the version'\n";
}

}  // namespace

std::string completionScript(Shell shell, Commands commands) {
  switch (shell) {
    case Shell::bash:
      return bashScript(commands);
    case Shell::zsh:
      return zshScript(commands);
    case Shell::fish:
      return fishScript(commands);
  }
  return {};
}

}  // namespace brindle
