#include <algorithm>
#include <string_view>
#include <vector>

#include <fmt/format.h>

#include <command_line/completion.h>
#include <platform/format.h>

namespace Tool {
namespace {

// Quotes a text as one word of a shell. Only fish interprets a backslash in single quotes.
std::string Quoted(std::string_view text, bool isFish = false) {
  std::string out = "'";
  for (const char c : text) {
    if (isFish && (c == '\'' || c == '\\')) {
      out += '\\';
      out += c;
    } else if (c == '\'') {
      out += R"('\'')";
    } else {
      out += c;
    }
  }
  return out + "'";
}

std::string Replaced(std::string_view text, std::string_view what, std::string_view by) {
  std::string out;
  for (std::size_t at = 0; (at = text.find(what)) != std::string_view::npos;) {
    out += text.substr(0, at);
    out += by;
    text.remove_prefix(at + what.size());
  }
  return out += text;
}

// The quoted texts, as the patterns of a `case`.
std::string Patterns(const std::vector<std::string>& texts, std::string_view between = " | ") {
  std::vector<std::string> quoted;
  quoted.reserve(texts.size());
  for (const std::string& text : texts) quoted.push_back(Quoted(text));
  return Joined(quoted, between);
}

std::vector<std::string> OptionNames(const Command& command) {
  std::vector<std::string> names;
  for (const CommandOption& option : command.options) {
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

std::vector<std::string> CommandNames(const Command& command) {
  std::vector<std::string> names;
  for (const Command& below : command.commands) names.push_back(below.name);
  return names;
}

// The ways in which a command line calls the commands below the top.
std::vector<std::string> Paths(const Command& top) {
  std::vector<std::string> paths;
  for (const Command* const command : AllCommands(top)) {
    if (command != &top) paths.push_back(command->path);
  }
  return paths;
}

// The command with each name of an option.
std::vector<std::string> Calls(const Command& command, const CommandOption& option) {
  std::vector<std::string> calls;
  for (const std::string& name : option.names) calls.push_back(command.path + " " + name);
  return calls;
}

// The calls up to an option whose value is the next word.
std::vector<std::string> CallsWithValue(const Command& top) {
  std::vector<std::string> all;
  for (const Command* const command : AllCommands(top)) {
    for (const CommandOption& option : command->options) {
      if (option.value.empty()) continue;
      const auto calls = Calls(*command, option);
      all.insert(all.end(), calls.begin(), calls.end());
    }
  }
  return all;
}

// The pattern of file names of an option or argument; empty if its value is not a file.
std::string FilePattern(const CommandOption& option) {
  return option.IsFile() ? fmt::format("*{}", option.Extension()) : std::string();
}

// Whether the last argument can be any number of files.
bool EndsInFiles(const Command& command) {
  return !command.arguments.empty() && command.arguments.back().isRepeatable &&
         command.arguments.back().IsFile();
}

std::string ZshFunction(const Command& command) {
  return fmt::format("_{}", Replaced(command.path, " ", "_"));
}

// An option or argument in the syntax of the zsh completion function `_arguments`.
class ZshSpecC {
 public:
  explicit ZshSpecC(const Command& command) : command_(command) {}

  std::string Option(const CommandOption& option) const {
    std::vector<std::string> excluded;
    if (option.isHelp) {
      excluded = {"-", ":", "*"};
    } else {
      if (!option.isRepeatable && option.names.size() > 1) excluded = option.names;
      for (const std::string& name : option.excludes) excluded.push_back(Excluded(name));
    }
    const std::string before = excluded.empty() ? "" : fmt::format("({})", Joined(excluded, " "));
    std::string lines;
    for (const std::string& name : option.names) {
      std::string spec = fmt::format("{}{}{}", before, option.isRepeatable ? "*" : "", name);
      if (!option.value.empty()) spec += name.starts_with("--") ? "=" : "+";
      spec += fmt::format("[{}]", Replaced(Summary(option.description), "]", "\\]"));
      if (!option.value.empty()) spec += Value(option);
      Line(lines, spec);
    }
    return lines;
  }

  std::string Argument(const CommandOption& argument, std::size_t number) const {
    std::string lines;
    Line(lines, (argument.isRepeatable ? "*" : fmt::format("{}", number + 1)) + Value(argument));
    return lines;
  }

  static void Line(std::string& lines, std::string_view spec) {
    Append(lines, " \\\n    {}", Quoted(spec));
  }

 private:
  static std::string Value(const CommandOption& option) {
    const std::string pattern = FilePattern(option);
    const std::string action = !option.words.empty() ? fmt::format(
                                                           "{{compset -P \"*[^a-zA-Z0-9_]\"; "
                                                           "compadd -S \"\" -- {}}}",
                                                           Joined(option.words, " "))
                               : pattern.empty() ? " "
                               : pattern == "*"  ? "_files"
                                                 : fmt::format("_files -g \"{}\"", pattern);
    const bool isArgument = !option.names.front().starts_with('-');
    return fmt::format(
        ":{}:{}", Replaced(isArgument ? option.names.front() : option.value, ":", "\\:"), action);
  }

  // Arguments are excluded by their number.
  std::string Excluded(const std::string& name) const {
    for (std::size_t i = 0; i < command_.arguments.size(); ++i) {
      if (command_.arguments[i].names.front() != name) continue;
      return command_.arguments[i].isRepeatable ? "*" : fmt::format("{}", i + 1);
    }
    return name;
  }

  const Command& command_;
};

}  // namespace

std::string BashCompletion(const Command& top) {
  std::string values;
  std::string commands;
  for (const Command* const command : AllCommands(top)) {
    for (const CommandOption& option : command->options) {
      if (!option.IsFile() && option.words.empty()) continue;
      Append(values, "      {})\n        {}={}\n        ;;\n", Patterns(Calls(*command, option)),
             option.IsFile() ? "files" : "parts",
             option.IsFile() ? Quoted(FilePattern(option)) : Quoted(Joined(option.words, " ")));
    }
    std::vector<std::string> files;
    for (const CommandOption& argument : command->arguments) {
      files.push_back(Quoted(FilePattern(argument)));
    }
    Append(commands,
           "      {})\n        words={}\n        options={}\n        arguments=({})\n{}"
           "        ;;\n",
           Quoted(command->path), Quoted(Joined(CommandNames(*command), " ")),
           Quoted(Joined(OptionNames(*command), " ")), Joined(files, " "),
           EndsInFiles(*command) ? "        files_go_on=1\n" : "");
  }
  return fmt::format(R"(# Completes the commands of {0} in bash. Generated from the program.
_{0}() {{
  local command={0} cur=${{COMP_WORDS[COMP_CWORD]}} word='' given=0 i
  local words='' options='' files='' parts='' last='' arguments=() files_go_on=0
  COMPREPLY=()
  for ((i = 1; i < COMP_CWORD; ++i)); do
    word=${{COMP_WORDS[i]}}
    case "$command $word" in
      {1})
        command+=" $word"
        ;;
      {2})
        ((++i))
        if [[ ${{COMP_WORDS[i]}} == = && i -lt COMP_CWORD ]]; then ((++i)); fi
        ;;
      "$command -"*) ;;
      *)
        ((++given))
        ;;
    esac
  done
  if ((i > COMP_CWORD)); then  # the word is the value of the option before it
    [[ $cur == = ]] && cur=''
    case "$command $word" in
{3}    esac
  else
    case "$command" in
{4}    esac
    if ((files_go_on && given >= ${{#arguments[@]}})); then
      given=$((${{#arguments[@]}} - 1))
    fi
    if [[ $cur != -* && -z $words && given -lt ${{#arguments[@]}} ]]; then
      files=${{arguments[given]}}
    else
      if [[ $cur == -* || -z $words ]]; then words=$options; fi
      mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
    fi
  fi
  if [[ -n $parts ]]; then  # the last word of the value, which may be within quotes
    cur=${{cur#[\"\']}}
    last=${{cur##*[!a-zA-Z0-9_]}}
    compopt -o nospace 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -P "${{cur%"$last"}}" -W "$parts" -- "$last")
  fi
  if [[ -n $files ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(
      compgen -f -X "!$files" -- "$cur"
      [[ $files == '*' ]] || compgen -d -- "$cur"
    )
  fi
}}
complete -F _{0} {0}
)",
                     top.name, Patterns(Paths(top)), Patterns(CallsWithValue(top)), values,
                     commands);
}

std::string ZshCompletion(const Command& top) {
  std::string out = fmt::format(
      "#compdef {0}\n# Completes the commands of {0} in zsh. Generated from the program.\n",
      top.name);
  for (const Command* const command : AllCommands(top)) {
    const ZshSpecC spec(*command);
    std::string specs;
    for (const CommandOption& option : command->options) specs += spec.Option(option);
    const std::string function = ZshFunction(*command);
    if (command->commands.empty()) {
      for (std::size_t i = 0; i < command->arguments.size(); ++i) {
        specs += spec.Argument(command->arguments[i], i);
      }
      Append(out, "\n{}() {{\n  _arguments -s -S :{}\n}}\n", function, specs);
      continue;
    }
    std::string names;
    for (const Command& below : command->commands) {
      Append(names, "        {}\n", Quoted(below.name + ":" + Summary(below.description)));
    }
    Append(out, R"(
{0}() {{
  local curcontext=$curcontext context state state_descr line ret=1
  typeset -A opt_args
  _arguments -C{1} \
    '1: :->command' \
    '*:: :->rest' && ret=0
  case $state in
    command)
      local -a commands=(
{2}      )
      _describe -t commands command commands && ret=0
      ;;
    rest)
      case $line[1] in
        {3})
          {0}_$line[1] && ret=0
          ;;
      esac
      ;;
  esac
  return ret
}}
)",
           function, specs, names, Joined(CommandNames(*command), " | "));
  }
  Append(out, "\n{} \"$@\"\n", ZshFunction(top));
  return out;
}

std::string FishCompletion(const Command& top) {
  std::string out =
      fmt::format(R"(# Completes the commands of {0} in fish. Generated from the program.

# The command before the cursor, and the number of its arguments so far.
function __{0}_state
    set -l command {0}
    set -l given 0
    set -l is_value 0
    for word in (commandline -opc)[2..-1]
        if test $is_value = 1
            set is_value 0
            continue
        end
        switch "$command $word"
            case {1}
                set command "$command $word"
            case {2}
                set is_value 1
            case "$command -*"
            case '*'
                set given (math $given + 1)
        end
    end
    echo $command
    echo $given
end
function __{0}_is
    set -l state (__{0}_state)
    test "$state[1]" = "$argv"
end
function __{0}_argument
    set -l state (__{0}_state)
    test "$state" = "$argv"
end
# The value before the cursor with each of the words as its last one.
function __{0}_parts
    set -l value (commandline -ct | string replace -r '^--[a-z-]+=' '' | string replace -r '^["\']' '')
    set -l begin (string replace -r '[a-zA-Z0-9_]*$' '' -- "$value")
    for word in $argv
        echo "$begin$word"
    end
end
complete -c {0} -f
)",
                  top.name, Patterns(Paths(top), " "), Patterns(CallsWithValue(top), " "));
  const auto values = [&top](const CommandOption& option) -> std::string {
    if (!option.words.empty()) {
      return fmt::format(" -x -a '(__{}_parts {})'", top.name, Joined(option.words, " "));
    }
    return option.value.empty() ? "" : option.IsFile() ? " -r -F" : " -x";
  };
  for (const Command* const command : AllCommands(top)) {
    const std::string begin =
        fmt::format("complete -c {0} -n '__{0}_is {1}'", top.name, command->path);
    for (const Command& below : command->commands) {
      Append(out, "{} -a {} -d {}\n", begin, below.name, Quoted(Summary(below.description), true));
    }
    for (const CommandOption& option : command->options) {
      out += begin;
      for (const std::string& name : option.names) {
        out += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
      }
      Append(out, "{} -d {}\n", values(option), Quoted(Summary(option.description), true));
    }
    for (std::size_t i = 0; i < command->arguments.size(); ++i) {
      const CommandOption& argument = command->arguments[i];
      if (!argument.IsFile()) continue;
      // Files with the right extension come first, then the others.
      const std::string files =
          argument.Extension().empty()
              ? "-F"
              : fmt::format("-k -a '(__fish_complete_suffix {})'", argument.Extension());
      const std::string place = argument.isRepeatable
                                    ? fmt::format("is {}", command->path)
                                    : fmt::format("argument {} {}", command->path, i);
      Append(out, "complete -c {0} -n '__{0}_{1}' {2}\n", top.name, place, files);
    }
  }
  return out;
}

}  // namespace Tool
