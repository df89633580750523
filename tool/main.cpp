// lmx, the stand-in host for people: runs the plug-in's methods on picture files.
#include <unistd.h>

#include <exception>
#include <filesystem>
#include <iostream>
#include <new>

#include "Bench.h"
#include "Chart.h"
#include "CommandLine.h"
#include "Errors.h"
#include "File.h"
#include "Help.h"
#include "Interrupt.h"
#include "PictureFile.h"
#include "Plan.h"
#include "Runner.h"

namespace tool {
namespace {

std::string PluginFile(const CommandLine& line) {
  if (line.plugin) return *line.plugin;
  return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libLMX.so").string();
}

void Load(host::Host& plugin, const CommandLine& line) {
  plugin.Load(PluginFile(line));
  if (!plugin.messageBoxes.empty()) throw Failure("the plug-in says: " + plugin.messageBoxes.front());
  if (plugin.Module() == nullptr) throw Failure("the plug-in registers no methods");
}

host::Picture ToHost(const Image& image, host::Storage storage) {
  host::PictureShape shape;
  shape.width = image.width;
  shape.height = image.height;
  shape.storage = storage;
  host::Picture picture(shape);
  picture.SetStraight(image.pixels);
  return picture;
}

Image FromHost(const host::Picture& picture, bool opaque) {
  Image image{picture.Width(), picture.Height(), picture.Straight()};
  if (opaque) {
    for (std::uint32_t& pixel : image.pixels) pixel |= 0xFF000000;
  }
  return image;
}

void ExpectOperands(const CommandLine& line, std::size_t most) {
  const StepWords& words = line.steps.front();
  const bool fits = line.steps.size() == 1 && words.operands.size() <= most && words.assignments.empty();
  if (!fits) throw UsageError("too many words behind `" + words.method + "`");
}

// Another format's name on a file would deceive other programs.
Format FormatFor(const std::string& output, std::optional<Format> wanted) {
  const std::optional<Format> named = FormatOf(output);
  if (named && wanted && *named != *wanted)
    throw UsageError("--format asks for another format than the name " + output);
  if (!named && !wanted && std::filesystem::path(output).has_extension()) {
    throw UsageError("lmx writes PNG and JPEG files: " + output + " needs a name that ends in .png or .jpg");
  }
  return wanted.value_or(named.value_or(Format::Png));
}

Encoding EncodingOf(const CommandLine& line) {
  Encoding encoding;
  if (!line.output) return encoding;
  if (*line.output == kStandardStream && isatty(STDOUT_FILENO) != 0) {
    throw UsageError("standard output is a terminal: give a file or a pipe");
  }
  encoding.format = FormatFor(*line.output, line.format);
  const bool png = encoding.format == Format::Png;
  if (line.quality && png) throw UsageError("--quality is for JPEG files, and " + *line.output + " is a PNG");
  if (line.compression && !png) throw UsageError("--compression is for PNG files, and " + *line.output + " is a JPEG");
  encoding.compression = line.compression.value_or(encoding.compression);
  encoding.quality = line.quality.value_or(encoding.quality);
  return encoding;
}

void DrawChart(const CommandLine& line) {
  ExpectOperands(line, 0);
  if (!line.output) throw UsageError("where shall the chart go? Give a file: -o chart.png");
  WritePicture(*line.output, MakeChart(), EncodingOf(line));
}

void ShowHelp(const CommandLine& line) {
  ExpectOperands(line, 1);
  const std::vector<std::string>& operands = line.steps.front().operands;
  if (operands.empty()) return WriteUsage(std::cout);
  host::Host plugin;
  Load(plugin, line);
  const host::Method* method = plugin.FindMethod(operands.front());
  if (method == nullptr) throw UsageError(NoMethod(plugin, operands.front()));
  WriteMethodHelp(std::cout, *method);
}

void ShowList(const CommandLine& line) {
  ExpectOperands(line, 0);
  host::Host plugin;
  Load(plugin, line);
  WriteMethodList(std::cout, plugin);
}

void TimeMethods(const CommandLine& line) {
  ExpectOperands(line, 1);
  const std::vector<std::string>& operands = line.steps.front().operands;
  if (operands.empty()) throw UsageError("on which picture? lmx bench photo.jpg");
  WriteBench(std::cout, PluginFile(line), ReadPicture(operands.front()), line.storage, line.yield, line.json);
}

void RunMethods(const CommandLine& line) {
  host::Options options;
  options.newPictures.storage = line.storage;
  options.keepLog = false;
  host::Host plugin(options);
  Load(plugin, line);
  const Plan plan = MakePlan(plugin, line);

  const ReportStyle style = line.json ? ReportStyle::Json : line.verbose ? ReportStyle::Verbose : ReportStyle::Results;
  // The picture has standard output for itself.
  std::ostream& out = line.output == kStandardStream ? std::cerr : std::cout;
  Runner runner(plugin, line.yield, line.repeat, [&out, style](const CallReport& report) {
    Write(out, report, style);
    for (const std::string& note : report.notes) std::cerr << "lmx: " << note << '\n';
  });
  host::Picture picture;
  if (plan.source) picture = ToHost(ReadPicture(*plan.source), line.storage);
  picture = runner.Run(plan, std::move(picture));
  if (line.output) WritePicture(*line.output, FromHost(picture, line.opaque), EncodingOf(line));
}

void Act(const CommandLine& line) {
  if (line.help) return WriteUsage(std::cout);
  if (line.version) return WriteVersion(std::cout);
  if (line.steps.empty()) throw UsageError("which method? `lmx list` shows them, `lmx --help` explains");
  EncodingOf(line);
  const std::string& word = line.steps.front().method;
  if (word == "list") return ShowList(line);
  if (word == "help") return ShowHelp(line);
  if (word == "chart") return DrawChart(line);
  if (word == "bench") return TimeMethods(line);
  RunMethods(line);
}

int Complain(const char* what, int status) {
  std::cout.flush();
  std::cerr << "lmx: " << what << '\n';
  return status;
}

int Main(const std::vector<std::string>& words) {
  try {
    WatchSignals();
    Act(ParseCommandLine(words));
    if (!std::cout.flush()) throw Failure("cannot write to standard output");
    return 0;
  } catch (const UsageError& error) {
    return Complain(error.what(), UsageError::kStatus);
  } catch (const Interrupted& interrupted) {
    return Complain(interrupted.what(), Interrupted::kStatus);
  } catch (const std::bad_alloc&) {
    return Complain("not enough memory", Failure::kStatus);
  } catch (const std::exception& error) {
    return Complain(error.what(), Failure::kStatus);
  }
}

}  // namespace
}  // namespace tool

int main(int argc, char** argv) {
  return tool::Main(std::vector<std::string>(argv + (argc > 0), argv + argc));
}
