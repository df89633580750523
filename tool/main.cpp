// lmx, the stand-in host for people: runs the plug-in's methods on picture files.
#include <exception>
#include <filesystem>
#include <iostream>
#include <new>

#include "Bench.h"
#include "Chart.h"
#include "CommandLine.h"
#include "Compare.h"
#include "Completion.h"
#include "Errors.h"
#include "Help.h"
#include "Info.h"
#include "Interrupt.h"
#include "Job.h"
#include "Manual.h"
#include "PictureFile.h"
#include "Pictures.h"
#include "Plan.h"

namespace tool {
namespace {

std::string PluginFile(const CommandLine& line) {
  if (line.plugin) return *line.plugin;
  const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  const std::filesystem::path beside = folder / "libLMX.so", installed = folder / LMX_PLUGIN_FOLDER / "libLMX.so";
  return (std::filesystem::exists(beside) ? beside : installed).string();
}

void Load(host::Host& plugin, const CommandLine& line) {
  plugin.Load(PluginFile(line));
  if (!plugin.messageBoxes.empty()) throw Failure("the plug-in says: " + plugin.messageBoxes.front());
  if (plugin.Module() == nullptr) throw Failure("the plug-in registers no methods");
}

void ExpectOperands(const CommandLine& line, std::size_t most) {
  const StepWords& words = line.steps.front();
  const bool fits = line.steps.size() == 1 && words.operands.size() <= most && words.assignments.empty();
  if (!fits) throw UsageError("too many words after `" + words.method + "`");
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

void ShowManual(const CommandLine& line) {
  ExpectOperands(line, 0);
  host::Host plugin;
  Load(plugin, line);
  WriteManual(std::cout, plugin);
}

void ShowCompletion(const CommandLine& line) {
  ExpectOperands(line, 1);
  const std::vector<std::string>& operands = line.steps.front().operands;
  if (operands.empty()) throw UsageError("for which shell? lmx completion bash");
  host::Host plugin;
  Load(plugin, line);
  WriteCompletion(std::cout, operands.front(), plugin);
}

void TimeMethods(const CommandLine& line) {
  ExpectOperands(line, 1);
  const std::vector<std::string>& operands = line.steps.front().operands;
  if (operands.empty()) throw UsageError("on which picture? lmx bench photo.jpg");
  WriteBench(std::cout, PluginFile(line), ReadPicture(operands.front()), line.storage, line.yield, line.json);
}

void CallMethods(const CommandLine& line) {
  host::Options options;
  options.newPictures.storage = line.storage;
  options.keepLog = false;
  host::Host plugin(options);
  Load(plugin, line);
  RunMethods(plugin, line);
}

void Show(const CommandLine& line) {
  if (line.help) return WriteUsage(std::cout);
  if (line.version) return WriteVersion(std::cout);
  if (line.steps.empty()) throw UsageError("which method? `lmx list` shows them, `lmx --help` explains");
  const std::string& word = line.steps.front().method;
  if (line.tolerance) throw UsageError("--tolerance is for `compare`");
  if (word == "list") return ShowList(line);
  if (word == "help") return ShowHelp(line);
  if (word == "chart") return DrawChart(line);
  if (word == "info") return ShowInfo(line);
  if (word == "bench") return TimeMethods(line);
  if (word == "man") return ShowManual(line);
  if (word == "completion") return ShowCompletion(line);
  CallMethods(line);
}

// Returns the exit status of what went well.
int Act(const CommandLine& line) {
  const bool compares = !line.help && !line.version && !line.steps.empty() && line.steps.front().method == "compare";
  if (compares) return ComparePictures(line);
  Show(line);
  return 0;
}

int Complain(const char* what, int status) {
  std::cout.flush();
  std::cerr << "lmx: " << what << '\n';
  return status;
}

int Main(const std::vector<std::string>& words) {
  try {
    WatchSignals();
    const int status = Act(ParseCommandLine(words));
    if (!std::cout.flush()) throw Failure("cannot write to standard output");
    return status;
  } catch (const UsageError& error) {
    return Complain(error.what(), UsageError::kStatus);
  } catch (const Trouble& trouble) {
    return Complain(trouble.what(), Trouble::kStatus);
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
