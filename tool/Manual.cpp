#include "Manual.h"

#include <ostream>
#include <string>

#include "Documentation.h"
#include "Help.h"
#include "Options.h"
#include "Usage.h"

namespace tool {
namespace {

// The text as roff prints it: no character of it is an instruction. What stands in `backticks` is
// bold.
std::string Roff(const std::string& text) {
  std::string roff;
  bool typed = false;
  for (const char c : text) {
    if (c == '`') {
      typed = !typed;
      roff += typed ? "\\fB" : "\\fR";
    } else if (c == '\\') {
      roff += "\\e";
    } else if (c == '-') {
      roff += "\\-";
    } else if (c == '\'') {
      roff += "\\(aq";
    } else if (c == '^') {
      roff += "\\(ha";
    } else if (c == '~') {
      roff += "\\(ti";
    } else {
      roff += c;
    }
  }
  return !roff.empty() && roff.front() == '.' ? "\\&" + roff : roff;
}

std::string Bold(const std::string& text) {
  return "\\fB" + Roff(text) + "\\fR";
}

std::string Italic(const std::string& text) {
  return "\\fI" + Roff(text) + "\\fR";
}

void WriteTerm(std::ostream& out, const std::string& term, const std::string& meaning) {
  out << ".TP\n" << term << '\n' << Roff(meaning) << '\n';
}

std::string Words(const Option& option) {
  std::string words = Bold(option.name);
  if (*option.letter != '\0') words.insert(0, Bold(option.letter) + ", ");
  if (option.value != nullptr) words += ' ' + Italic(option.value);
  return words;
}

void WriteMethod(std::ostream& out, const host::Method& method) {
  const MethodText* text = FindDocumentation(method.name);
  out << ".SS " << Roff(method.name) << '\n';
  if (text != nullptr) out << Roff(text->summary + ". " + text->details) << "\n.PP\n";
  out << Roff(method.declaration) << '\n';
  for (const host::Parameter& parameter : method.parameters) {
    WriteTerm(out, Bold(parameter.name) + " " + Italic(TypeName(parameter.type)), MeaningOf(parameter, text));
  }
  if (text != nullptr) out << ".PP\nExample:\n.PP\n.in +4n\n.EX\n" << Roff(text->example) << "\n.EE\n.in\n";
}

}  // namespace

void WriteManual(std::ostream& out, const host::Host& plugin) {
  out << ".\\\" Written by `lmx man`.\n.TH LMX 1 \"\" \"lmx " << Version() << "\"\n.SH NAME\nlmx \\- "
      << Roff(Purpose()) << "\n.SH SYNOPSIS\n.nf\n";
  for (const Command& command : Commands()) out << Bold("lmx") << ' ' << Roff(command.words) << '\n';
  out << ".fi\n.SH DESCRIPTION\n";
  for (const std::string& paragraph : Paragraphs()) out << ".PP\n" << Roff(paragraph) << '\n';
  out << ".SH COMMANDS\n";
  for (const Command& command : Commands()) WriteTerm(out, Bold(std::string("lmx ") + command.words), command.meaning);
  out << ".SH OPTIONS\n";
  for (const Option& option : Options()) WriteTerm(out, Words(option), option.meaning);
  out << ".SH METHODS\n";
  for (const host::Method& method : plugin.Methods()) WriteMethod(out, method);
  out << ".SH EXIT STATUS\n";
  for (const ExitStatus& status : ExitStatuses()) WriteTerm(out, Bold(std::to_string(status.status)), status.meaning);
}

}  // namespace tool
