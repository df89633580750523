// Completions, requested as the shells do it, for the shells that are installed.
#include "tool/Completion.h"

#include <gtest/gtest.h>
#include <stdio.h>

#include <algorithm>
#include <sstream>

#include "Files.h"
#include "Process.h"
#include "tool/Errors.h"
#include "tool/Options.h"
#include "tool/Plan.h"
#include "tool/Usage.h"

namespace tool_test {
namespace {

using Texts = std::vector<std::string>;

// The output of a shell command, line by line.
Texts Printed(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("popen");
  std::string text;
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe)) text += static_cast<char>(c);
  EXPECT_EQ(pclose(pipe), 0) << command;
  return Lines(text);
}

class Completion : public FileTest {
 protected:
  Completion() { plugin_.Load(LMX_LIBRARY); }

  std::string ScriptFor(const std::string& shell) {
    std::ostringstream out;
    tool::WriteCompletion(out, shell, plugin_);
    return out.str();
  }

  // The shell's output for these lines, run in the test's folder, which has the script.
  Texts Run(const std::string& shell, const std::string& lines) {
    const std::string script = ScriptFor(shell);
    WriteFile(Path("script"), Text(script));
    WriteFile(Path("lines"), Text(lines));
    return Printed("cd '" + Path("") + "' && HOME=. XDG_CONFIG_HOME=. " + shell + " ./lines");
  }

  // Bash's offers for the last of these words, which are split as bash splits them. Nothing means
  // file names.
  Texts Bash(const Texts& words) {
    std::string line;
    for (const std::string& word : words) line += " '" + word + "'";
    return Run("bash", "source ./script; COMP_WORDS=(lmx" + line + "); COMP_CWORD=" + std::to_string(words.size()) +
                           "; _lmx; for word in \"${COMPREPLY[@]}\"; do echo \"$word\"; done");
  }

  host::Host plugin_;
};

Texts Arguments(const host::Method& method) {
  Texts names;
  for (const host::Parameter& parameter : method.parameters) {
    if (!tool::IsPicture(parameter) && !parameter.byRef) names.push_back(parameter.name + "=");
  }
  return names;
}

TEST_F(Completion, BashKnowsEveryMethodAndCommand) {
  const Texts offered = Bash({""});
  Texts expected;
  for (const host::Method& method : plugin_.Methods()) expected.push_back(tool::ShortName(method.name));
  for (const tool::Command& command : tool::Commands()) {
    if (*command.name != '\0') expected.emplace_back(command.name);
  }
  EXPECT_EQ(offered, expected);
  EXPECT_EQ(Bash({"Str"}), Texts{"Stretch"});
  EXPECT_EQ(Bash({"--json", "-o", "x.png", "--format", "=", "png", "Str"}), Texts{"Stretch"});
  EXPECT_EQ(Bash({"Stretch", "a.png", "+", "Tr"}), Texts{"Trim"});
}

TEST_F(Completion, BashKnowsEveryArgument) {
  for (const host::Method& method : plugin_.Methods()) {
    Texts expected = Arguments(method);
    expected.emplace_back("+");
    EXPECT_EQ(Bash({tool::ShortName(method.name), "a.png", ""}), expected);
    EXPECT_EQ(Bash({method.name, "a.png", ""}), expected);
  }
  EXPECT_EQ(Bash({"Stretch", "a.png", "width", "=", "5", "h"}), Texts{"height="});
  EXPECT_EQ(Bash({"Stretch", "a.png", "+", "Trim", "l"}), Texts{"left="});
}

TEST_F(Completion, BashKnowsEveryOption) {
  Texts expected;
  for (const tool::Option& option : tool::Options()) {
    if (*option.letter != '\0') expected.emplace_back(option.letter);
    expected.emplace_back(option.name);
  }
  EXPECT_EQ(Bash({"-"}), expected);
  EXPECT_EQ(Bash({"Stretch", "-"}), expected);
  EXPECT_EQ(Bash({"Stretch", "a.png", "--comp"}), Texts{"--compression"});
}

TEST_F(Completion, BashKnowsTheValuesThatAreFew) {
  for (const tool::Option& option : tool::Options()) {
    const Texts words(option.words.begin(), option.words.end());
    if (option.value == nullptr) continue;
    EXPECT_EQ(Bash({option.name, ""}), words) << option.name;
    EXPECT_EQ(Bash({"Trim", "a.png", option.name, "="}), words) << option.name;
  }
  EXPECT_EQ(Bash({"--format", "=", "j"}), Texts{"jpeg"});
  EXPECT_EQ(Bash({"FlipRotate", "a.png", "flip_h", "="}), (Texts{"true", "false"}));
  EXPECT_EQ(Bash({"LMX_FlipRotate", "a.png", "FLIP_V", "=", "t"}), Texts{"true"});
  EXPECT_EQ(Bash({"Stretch", "a.png", "width", "="}), Texts{});
  EXPECT_EQ(Bash({"completion", ""}), tool::Shells());
  EXPECT_EQ(Bash({"help", "Tri"}), Texts{"Trim"});
}

TEST_F(Completion, BashCompletesFilesWherePicturesGo) {
  for (const Texts& words : {Texts{"Stretch", ""}, Texts{"bench", ""}, Texts{"Stretch", "ph"}, Texts{"-o", "o"}}) {
    EXPECT_EQ(Bash(words), Texts{}) << testing::PrintToString(words);
  }
  EXPECT_EQ(Bash({"MakeGradient", "w"}), Texts{"width="});
}

TEST_F(Completion, ZshAndFishKnowAllWords) {
  for (const char* shell : {"zsh", "fish"}) {
    const std::string script = ScriptFor(shell);
    const bool zsh = std::string(shell) == "zsh";
    for (const host::Method& method : plugin_.Methods()) {
      const std::string name = tool::ShortName(method.name);
      EXPECT_NE(script.find(zsh ? "\n        '" + name + ":" : " -f -a " + name + " "), std::string::npos) << name;
      for (const std::string& argument : Arguments(method)) {
        EXPECT_NE(script.find("'" + argument), std::string::npos) << shell << " " << name << " " << argument;
      }
    }
    for (const tool::Option& option : tool::Options()) {
      const std::string name = zsh ? std::string("'") + option.name + ":" : std::string(" -l ") + (option.name + 2);
      EXPECT_NE(script.find(name), std::string::npos) << shell << " " << name;
    }
  }
}

// Functions that print their arguments replace those of zsh.
TEST_F(Completion, ZshOffersWhatIsDeclared) {
  if (Printed("command -v zsh || true").empty()) GTEST_SKIP() << "no zsh";
  const std::string stubs =
      "compdef() { : }; _files() { print files }; _message() { print message }; compadd() { print -l -- ${@:#--} };"
      "_describe() { print -rl -- ${${(P)${${@:#-o}[2]}}%%:*} };"
      "compset() { [[ $PREFIX == *=* ]] || return 1; IPREFIX=${PREFIX%%=*}=; PREFIX=${PREFIX#*=} };";
  const auto zsh = [&](const Texts& given) {
    std::string line = "words=(lmx";
    for (const std::string& word : given) line += " \"" + word + "\"";
    line += "); CURRENT=" + std::to_string(given.size() + 1) + "; PREFIX=\"" + given.back() + "\"; ";
    return Run("zsh", stubs + "source ./script;" + line + "_lmx");
  };
  EXPECT_EQ(zsh({""}).front(), "GetLastError");
  EXPECT_EQ(zsh({""}).size(), Bash({""}).size());
  EXPECT_EQ(zsh({"Stretch", ""}), Texts{"files"});
  EXPECT_EQ(zsh({"Stretch", "a.png", ""}), (Texts{"width=", "height=", "yield="}));
  EXPECT_EQ(zsh({"-o", "x.png", "LMX_Stretch", "a.png", "w"}), (Texts{"width=", "height=", "yield="}));
  EXPECT_EQ(zsh({"Stretch", "a.png", "+", ""}).front(), "GetLastError");
  EXPECT_EQ(zsh({"FlipRotate", "a.png", "flip_h="}), (Texts{"true", "false"}));
  EXPECT_EQ(zsh({"Stretch", "a.png", "width="}), Texts{"message"});
  EXPECT_EQ(zsh({"--format", ""}), (Texts{"png", "jpeg"}));
  EXPECT_EQ(zsh({"--format=j"}), (Texts{"png", "jpeg"}));
  EXPECT_EQ(zsh({"-"}).size(), Bash({"-"}).size());
}

TEST_F(Completion, FishOffersWhatIsDeclared) {
  if (Printed("command -v fish || true").empty()) GTEST_SKIP() << "no fish";
  const auto fish = [&](const std::string& line) {
    return Run("fish", "source ./script; complete -C \"" + line + "\" | string replace -r '\\t.*' ''; or true");
  };
  EXPECT_EQ(fish("lmx Str"), Texts{"Stretch"});
  EXPECT_EQ(fish("lmx --json -o x.png Str"), Texts{"Stretch"});
  EXPECT_EQ(fish("lmx Stretch a.png wi"), Texts{"width="});
  EXPECT_EQ(fish("lmx LMX_Stretch a.png + Trim a.png le"), Texts{"left="});
  EXPECT_EQ(fish("lmx Stretch sc"), Texts{"script"});
  EXPECT_EQ(fish("lmx FlipRotate a.png flip_h=t"), Texts{"flip_h=true"});
  EXPECT_EQ(fish("lmx --format j"), Texts{"jpeg"});
  EXPECT_EQ(fish("lmx completion "), (Texts{"bash", "fish", "zsh"}));
  EXPECT_EQ(fish("lmx --comp"), Texts{"--compression"});
}

TEST_F(Completion, IsWhatLmxPrints) {
  for (const std::string& shell : tool::Shells()) {
    EXPECT_EQ(Lmx({"completion", shell}), (Ended{0, ScriptFor(shell), ""}));
  }
  EXPECT_EQ(Lmx({"completion"}).status, 2);
  EXPECT_EQ(Lmx({"completion", "csh"}).error, "lmx: there is no completion for `csh`, but for bash zsh fish\n");
}

}  // namespace
}  // namespace tool_test
