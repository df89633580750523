#include "Help.h"

#include <algorithm>
#include <iomanip>
#include <ostream>
#include <sstream>

#include "Documentation.h"

namespace tool {
namespace {

constexpr std::size_t kColumns = 100;

constexpr const char* kUsage =
    R"( calls the methods of the LMX picture plug-in on picture files.

  lmx list                                             the methods, a line each
  lmx help METHOD                                      what a method does, and its arguments
  lmx METHOD picture [name=value...] -o out.png        one call
  lmx METHOD picture [name=value...] + METHOD [name=value...] ... -o out.png
                                                       several: each gets the picture that the one before left
  lmx METHOD picture... [name=value...] -o folder/     the same on many pictures, on all processors
  lmx chart -o chart.png                               draws a test chart
  lmx info picture...                                  what the files are: size, transparency, orientation, bytes
  lmx compare a.png b.png [-o difference.png]          whether two pictures are the same, and where they are not
  lmx bench picture                                    times the methods on a picture, with and without yields

A picture is a PNG or JPEG file (one with a = in its name: ./a=b.png), and so is the result, by the end of its
name; - is standard input and standard output, where the result is a PNG and values go to standard error.
Several pictures go into a folder, under their names: -o folder/, which is made if it is missing; or each to a
name of its own: -o '{name}-small.{ext}', where {name} is the picture's name and {ext} what it ends in. If some
fail, the others are done all the same, and the failures are listed at the end.
Photos are read upright, as EXIF data say that they were taken; the result has none. Pictures of up to
67108864 pixels are read, from files of up to 256 MiB.
Methods and arguments have the names of their declarations; LMX_ may be left out, and upper and lower case
are the same. Most arguments may be left out: `lmx help METHOD` says what they are then.
Colours are #rrggbb or #rgb; or as programs have them, &cRRGGBB, &cRRGGBBTT or &hTTRRGGBB, TT from 00 (opaque) to FF
(clear), in quotes for the shell. #rrggbbxx is refused, because the web means alpha by it.

Options, anywhere:
  -o, --output FILE    where the picture goes; its old content stays if anything fails
  -j, --jobs N         of several pictures, work on N at once; default: as many as there are processors. Memory is needed
                       for each of them
  --storage FORM       how the host keeps pictures: context (default) or buffer
  --yield N            let methods yield to the host every N pixels; Ctrl-C stops them there. On a terminal lmx lets
                       them yield by itself
  --repeat N           call each method N times; the last call counts, and its time is that of a warm one
  --format FORMAT      png or jpeg, where the name of the file does not say it
  --compression N      of a PNG, 0 to 9: 0 is fastest, 9 gives small files slowly; default: 3
  --quality N          of a JPEG, 1 to 100; default: 90. Where the picture is clear it lies on white
  --tolerance N        of compare, 0 to 255: pixels count as the same up to this difference of a channel; default: 0
  --opaque             write the colours without their transparency
  -v, --verbose        show each call as a program would write it, its error code, size and time
  --json               the same and the measured values for scripts, one object per call and line
  --plugin PATH        the library; default: libLMX.so beside lmx
  -h, --help           this text
  --version            the version of lmx

Exit status: 0 success, 1 failure (with the plug-in's message), 2 wrong usage, 130 stopped by Ctrl-C.
Of compare: 0 the same, 1 different, 2 anything else, 130. Pixels that are clear in both pictures are the same.
)";

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

std::string MeaningOf(const host::Parameter& parameter, const MethodText* method) {
  const ArgumentText* text = method == nullptr ? nullptr : method->Find(parameter.name);
  std::string meaning = text == nullptr ? "" : text->meaning;
  if (parameter.type == host::Type::Picture) return meaning;
  if (parameter.byRef) return "result: " + meaning;
  const bool needed = text == nullptr || text->fallback.text == nullptr;
  return meaning + (needed ? " (needed)" : std::string(" (default: ") + text->fallback.text + ")");
}

}  // namespace

void WriteUsage(std::ostream& out) {
  out << "lmx " LMX_VERSION << kUsage;
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
