#include "Completion.h"

#include <algorithm>
#include <cctype>
#include <ostream>

#include "Documentation.h"
#include "Errors.h"
#include "Help.h"
#include "Options.h"
#include "Plan.h"
#include "Usage.h"

namespace tool {
namespace {

struct Word {
  std::string text;                 ///< an argument with its =, or a word as it is
  std::string meaning;              ///< may be empty
  std::vector<const char*> values;  ///< of an argument, where they are few
};

/// A command or a method, and what may follow it.
struct Step {
  std::string name;
  std::string meaning;
  std::vector<Word> words;
  bool files = false;
};

std::string LowerCase(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

std::string SummaryOf(const host::Method& method) {
  const MethodText* text = FindDocumentation(method.name);
  return text == nullptr ? "" : text->summary;
}

Step StepOf(const host::Method& method) {
  Step step{ShortName(method.name), SummaryOf(method), {}, TakesPicture(method)};
  for (const host::Parameter& parameter : method.parameters) {
    if (IsPicture(parameter) || parameter.byRef) continue;
    std::vector<const char*> values;
    if (parameter.type == host::Type::Boolean) values = {"true", "false"};
    step.words.push_back({parameter.name + "=", MeaningOf(parameter, FindDocumentation(method.name)), values});
  }
  step.words.push_back({"+", "another method follows", {}});
  return step;
}

// The words in capitals after a command say what follows it; any others but options stand for
// pictures.
Step StepOf(const Command& command, const host::Host& plugin) {
  Step step{command.name, command.meaning, {}, false};
  const std::string words = command.words;
  if (words.find("METHOD") != std::string::npos) {
    for (const host::Method& method : plugin.Methods()) {
      step.words.push_back({ShortName(method.name), SummaryOf(method), {}});
    }
  } else if (words.find("SHELL") != std::string::npos) {
    for (const std::string& shell : Shells()) step.words.push_back({shell, "", {}});
  } else {
    const std::size_t second = step.name.size() + 1;
    step.files = words.size() > second && words[second] != '-';
  }
  return step;
}

std::vector<Step> Steps(const host::Host& plugin) {
  std::vector<Step> steps;
  for (const host::Method& method : plugin.Methods()) steps.push_back(StepOf(method));
  for (const Command& command : Commands()) {
    if (*command.name != '\0') steps.push_back(StepOf(command, plugin));
  }
  return steps;
}

// The short and long names of the options, as patterns or words between `separator`s.
template <class Wanted>
std::string Names(const char* separator, Wanted wanted) {
  std::string names;
  for (const Option& option : Options()) {
    if (!wanted(option)) continue;
    for (const char* name : {option.letter, option.name}) {
      if (*name != '\0') names += (names.empty() ? "" : separator) + std::string(name);
    }
  }
  return names;
}

bool TakesValue(const Option& option) {
  return option.value != nullptr;
}

bool TakesFile(const Option& option) {
  return option.TakesFile();
}

bool TakesOther(const Option& option) {
  return option.value != nullptr && !option.TakesFile() && option.words.empty();
}

template <class Texts>
std::string Joined(const Texts& texts) {
  std::string joined;
  for (const auto& text : texts) joined += (joined.empty() ? "" : " ") + std::string(text);
  return joined;
}

// Between single quotes; `escaped` are characters that need a backslash there, and `quote` stands
// for a quote.
std::string Quoted(const std::string& text, const char* quote, const std::string& escaped) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += quote;
      continue;
    }
    if (escaped.find(c) != std::string::npos) quoted += '\\';
    quoted += c;
  }
  return quoted + "'";
}

// ---- bash ----

void WriteBash(std::ostream& out, const std::vector<Step>& steps) {
  out << R"(# Completion of lmx in bash, written by `lmx completion bash`.
# Where it leaves COMPREPLY empty, bash completes names of files.
_lmx() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} step='' picture='' name='' i
  local -a words=()
  COMPREPLY=()
  # name=value is three words here.
  for ((i = 1; i < COMP_CWORD; ++i)); do
    case ${COMP_WORDS[i]} in
      +) step='' picture=yes ;;
      )"
      << Names(" | ", TakesValue) << R"()
        [[ ${COMP_WORDS[i + 1]} == = ]] && ((++i))
        ((++i))
        ;;
      -?*) ;;
      *)
        if [[ ! $step ]]; then
          step=${COMP_WORDS[i],,}
          step=${step#lmx_}
        elif [[ ${COMP_WORDS[i + 1]} == = ]]; then
          ((i += 2))
        else
          picture=yes
        fi
        ;;
    esac
  done
  if [[ $word == = ]]; then
    name=$before word=''
  elif [[ $before == = ]]; then
    name=${COMP_WORDS[COMP_CWORD - 2]}
  else
    case $before in )"
      << Names(" | ", TakesValue) << R"() name=$before ;; esac
  fi
  case $step.${name,,} in
)";
  for (const Option& option : Options()) {
    if (!option.words.empty()) out << "    *." << option.name << ") words=(" << Joined(option.words) << ") ;;\n";
  }
  out << "    *.-*) return ;;\n";
  for (const Step& step : steps) {
    for (const Word& word : step.words) {
      if (word.values.empty()) continue;
      const std::string name = word.text.substr(0, word.text.size() - 1);
      out << "    " << LowerCase(step.name + "." + name) << ") words=(" << Joined(word.values) << ") ;;\n";
    }
  }
  out << "    *.?*) return ;;\n    .) words=(";
  const char* blank = "";
  for (const Step& step : steps) {
    out << blank << step.name;
    blank = " ";
  }
  out << ") ;;\n";
  for (const Step& step : steps) {
    std::vector<std::string> words;
    for (const Word& word : step.words) words.push_back(word.text);
    out << "    " << LowerCase(step.name) << ".)\n";
    if (step.files) out << "      [[ $word || $picture ]] || return\n";
    out << "      words=(" << Joined(words) << ")\n      ;;\n";
  }
  out << "  esac\n  [[ ! $name && $word == -* ]] && words=(" << Names(" ", [](const Option&) { return true; }) << R"()
  mapfile -t COMPREPLY < <(compgen -W "${words[*]}" -- "$word")
  [[ ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
  return 0
}
complete -o default -F _lmx lmx
)";
}

// ---- zsh ----

std::string ZshItem(const std::string& text, const std::string& meaning) {
  // A colon ends the word in a list of words with their meanings.
  std::string item;
  for (const char c : text) item += (c == ':' ? "\\:" : std::string(1, c));
  return Quoted(item + ":" + meaning, "'\\''", "");
}

void WriteZshValues(std::ostream& out, const std::vector<Step>& steps) {
  for (const Option& option : Options()) {
    if (!option.words.empty()) {
      out << "    (*." << option.name << ") compadd -- " << Joined(option.words) << "; return ;;\n";
    }
  }
  for (const Step& step : steps) {
    for (const Word& word : step.words) {
      if (word.values.empty()) continue;
      const std::string name = word.text.substr(0, word.text.size() - 1);
      out << "    (" << LowerCase(step.name + "." + name) << ") compadd -- " << Joined(word.values) << "; return ;;\n";
    }
  }
}

void WriteZshWords(std::ostream& out, const std::vector<Step>& steps) {
  for (const Step& step : steps) {
    out << "    (" << LowerCase(step.name) << ")\n";
    if (step.files) out << "      [[ -n $PREFIX || -n $picture ]] || { _files; return }\n";
    out << "      found=(\n";
    for (const Word& word : step.words) out << "        " << ZshItem(word.text, word.meaning) << '\n';
    out << "      )\n      ;;\n";
  }
}

void WriteZsh(std::ostream& out, const std::vector<Step>& steps) {
  out << R"(#compdef lmx
# Completion of lmx in zsh, written by `lmx completion zsh`.
_lmx() {
  local step= picture= name= before=$words[CURRENT-1] i
  local -a found
  for ((i = 2; i < CURRENT; ++i)); do
    case $words[i] in
      (+) step= picture=yes ;;
      ()"
      << Names("|", TakesValue) << R"() ((++i)) ;;
      (-?*) ;;
      (*)
        if [[ -z $step ]]; then
          step=${${(L)words[i]}#lmx_}
        elif [[ $words[i] != [A-Za-z_]*=* ]]; then
          picture=yes
        fi
        ;;
    esac
  done
  if compset -P 1 '*='; then
    name=${IPREFIX%=}
  else
    case $before in ()"
      << Names("|", TakesValue) << R"() name=$before ;; esac
  fi
  case $step.${(L)name} in
    (*.()"
      << Names("|", TakesFile) << R"()) _files; return ;;
    (*.()"
      << Names("|", TakesOther) << R"()) _message value; return ;;
)";
  WriteZshValues(out, steps);
  out << R"(    (*.?*) _message value; return ;;
  esac
  if [[ $PREFIX == -?* || $PREFIX == - ]]; then
    found=(
)";
  for (const Option& option : Options()) {
    for (const char* name : {option.letter, option.name}) {
      if (*name != '\0') out << "      " << ZshItem(name, option.meaning) << '\n';
    }
  }
  out << R"(    )
    _describe -o option found
    return
  fi
  case $step in
    ('')
      found=(
)";
  for (const Step& step : steps) out << "        " << ZshItem(step.name, step.meaning) << '\n';
  out << R"(      )
      _describe 'method or command' found
      return
      ;;
)";
  WriteZshWords(out, steps);
  out << R"(  esac
  local -a arguments=(${(M)found:#*=:*}) others=(${found:#*=:*})
  _describe argument arguments -S '' -- others || _files
}
if [[ $funcstack[1] == _lmx ]]; then
  _lmx "$@"
else
  compdef _lmx lmx
fi
)";
}

// ---- fish ----

std::string FishText(const std::string& text) {
  return Quoted(text, "\\'", "\\");
}

void WriteFish(std::ostream& out, const std::vector<Step>& steps) {
  out << R"(# Completion of lmx in fish, written by `lmx completion fish`.

# The method or command that the cursor is after, in lower case; none where one is to come.
function __lmx_step
    set -l step
    set -l skip
    for word in (commandline -opc)[2..-1]
        if test -n "$skip"
            set skip
            continue
        end
        switch $word
            case +
                set step
            case )"
      << Names(" ", TakesValue) << R"(
                set skip yes
            case '-?*'
            case '*'
                test -n "$step"; or set step (string replace -r '^lmx_' '' (string lower -- $word))
        end
    end
    echo $step
end

function __lmx_after
    test "$argv" = (__lmx_step)
end

)";
  for (const Option& option : Options()) {
    out << "complete -c lmx";
    if (*option.letter != '\0') out << " -s " << option.letter + 1;
    out << " -l " << option.name + 2;
    if (option.TakesFile()) out << " -r -F";
    if (option.value != nullptr && !option.TakesFile()) out << " -x";
    if (!option.words.empty()) out << " -a " << FishText(Joined(option.words));
    out << " -d " << FishText(option.meaning) << '\n';
  }
  for (const Step& step : steps) {
    out << "complete -c lmx -n \"__lmx_after ''\" -f -a " << step.name << " -d " << FishText(step.meaning) << '\n';
  }
  for (const Step& step : steps) {
    const std::string after = " -n '__lmx_after " + LowerCase(step.name) + "'";
    if (!step.files) out << "complete -c lmx" << after << " -f\n";
    for (const Word& word : step.words) {
      out << "complete -c lmx" << after;
      if (word.values.empty()) {
        out << " -a " << FishText(word.text);
      } else {
        std::string words;
        for (const char* value : word.values) words += (words.empty() ? "" : " ") + word.text + value;
        out << " -a " << FishText(words);
      }
      if (!word.meaning.empty()) out << " -d " << FishText(word.meaning);
      out << '\n';
    }
  }
}

struct Shell {
  const char* name;
  void (*write)(std::ostream& out, const std::vector<Step>& steps);
};

constexpr Shell kShells[] = {{"bash", WriteBash}, {"zsh", WriteZsh}, {"fish", WriteFish}};

}  // namespace

const std::vector<std::string>& Shells() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    for (const Shell& shell : kShells) all.emplace_back(shell.name);
    return all;
  }();
  return names;
}

void WriteCompletion(std::ostream& out, const std::string& shell, const host::Host& plugin) {
  for (const Shell& known : kShells) {
    if (shell == known.name) return known.write(out, Steps(plugin));
  }
  throw UsageError("there is no completion for `" + shell + "`, but for " + Joined(Shells()));
}

}  // namespace tool
