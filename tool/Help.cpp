#include "Help.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <sstream>

#include "Documentation.h"
#include "Options.h"
#include "Usage.h"

namespace tool {
namespace {

constexpr std::size_t kColumns = 100;
constexpr std::size_t kCommandColumns = 45;  // of the commands' words; only the longest call has more

// Writes a text word by word; lines after the first begin under its start, at column `indent`.
void WriteWrapped(std::ostream& out, const std::string& text, std::size_t indent) {
  std::istringstream words(text);
  std::string word;
  std::size_t column = indent;
  while (words >> word) {
    if (column > indent && column + 1 + word.size() > kColumns) {
      out << '\n' << std::string(indent, ' ');
      column = indent;
    }
    if (column > indent) {
      out << ' ';
      ++column;
    }
    out << word;
    column += word.size();
  }
  out << '\n';
}

// A name and what it means, beside it or, after a name that is longer than the others, below it.
void WriteRow(std::ostream& out, const std::string& name, const std::string& meaning, std::size_t columns) {
  out << "  " << name;
  if (name.size() > columns) out << '\n' << std::string(2 + columns, ' ');
  if (name.size() < columns) out << std::string(columns - name.size(), ' ');
  out << "  ";
  WriteWrapped(out, meaning, columns + 4);
}

std::string OptionWords(const Option& option) {
  std::string words = option.letter;
  if (!words.empty()) words += ", ";
  words += option.name;
  if (option.value != nullptr) words += std::string(" ") + option.value;
  return words;
}

}  // namespace

const char* Version() {
  return LMX_VERSION;
}

const char* Purpose() {
  return "calls the methods of the LMX picture plug-in on picture files";
}

std::string MeaningOf(const host::Parameter& parameter, const MethodText* method) {
  const ArgumentText* text = method == nullptr ? nullptr : method->Find(parameter.name);
  std::string meaning = text == nullptr ? "" : text->meaning;
  if (parameter.type == host::Type::Picture) return meaning;
  if (parameter.byRef) return "result: " + meaning;
  const bool needed = text == nullptr || text->fallback.text == nullptr;
  return meaning + (needed ? " (needed)" : std::string(" (default: ") + text->fallback.text + ")");
}

void WriteUsage(std::ostream& out) {
  out << "lmx " << Version() << ' ' << Purpose() << ".\n\n";
  for (const Command& command : Commands())
    WriteRow(out, std::string("lmx ") + command.words, command.meaning, kCommandColumns);
  for (const std::string& paragraph : Paragraphs()) {
    out << '\n';
    WriteWrapped(out, paragraph, 0);
  }
  out << "\nOptions, anywhere:\n";
  std::size_t longest = 0;
  for (const Option& option : Options()) longest = std::max(longest, OptionWords(option).size());
  for (const Option& option : Options()) WriteRow(out, OptionWords(option), option.meaning, longest);
  std::string ends;
  for (const ExitStatus& status : ExitStatuses()) {
    ends += (ends.empty() ? " " : ", ") + std::to_string(status.status) + ' ' + status.meaning;
  }
  out << '\n';
  WriteWrapped(out, "Exit status:" + ends + ".", 0);
}

void WriteVersion(std::ostream& out) {
  out << "lmx " LMX_VERSION " (" << 8 * sizeof(void*) << "-bit, plug-in interface " << kPluginInterfaceVersion << ")\n";
}

void WriteMethodList(std::ostream& out, const host::Host& plugin) {
  std::size_t longest = 0;
  for (const host::Method& method : plugin.Methods()) longest = std::max(longest, method.name.size());
  for (const host::Method& method : plugin.Methods()) {
    const MethodText* text = FindDocumentation(method.name);
    out << std::left << std::setw(static_cast<int>(longest)) << method.name << "  "
        << (text == nullptr ? "" : text->summary) << '\n';
  }
}

void WriteMethodHelp(std::ostream& out, const host::Method& method) {
  const MethodText* text = FindDocumentation(method.name);
  WriteWrapped(out, method.declaration, 0);
  if (text != nullptr) {
    out << '\n';
    WriteWrapped(out, text->summary + ". " + text->details, 0);
  }
  std::size_t longestName = 0, longestType = 0;
  for (const host::Parameter& parameter : method.parameters) {
    longestName = std::max(longestName, parameter.name.size());
    longestType = std::max(longestType, std::string(TypeName(parameter.type)).size());
  }
  if (!method.parameters.empty()) out << '\n';
  for (const host::Parameter& parameter : method.parameters) {
    out << "  " << std::left << std::setw(static_cast<int>(longestName)) << parameter.name << "  "
        << std::setw(static_cast<int>(longestType)) << TypeName(parameter.type) << "  ";
    WriteWrapped(out, MeaningOf(parameter, text), longestName + longestType + 6);
  }
  if (text != nullptr) out << "\nExample: " << text->example << '\n';
}

}  // namespace tool
