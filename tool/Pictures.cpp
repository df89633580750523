#include "Pictures.h"

#include <iostream>
#include <sstream>

#include "Batch.h"
#include "Errors.h"
#include "File.h"
#include "Job.h"
#include "PictureFile.h"
#include "Plan.h"
#include "Runner.h"

namespace tool {
namespace {

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

class PictureRun {
 public:
  PictureRun(host::Host& plugin, const CommandLine& line)
      : plugin_(plugin), line_(line), plan_(MakePlan(plugin, line)), jobs_(MakeJobs(line, plan_.sources)) {}

  void Run() {
    if (line_.output) MakeFolder(*line_.output);
    if (jobs_.size() > 1)
      return RunBatch(plan_.sources, Workers(), std::cout, [this](std::size_t i) { return Tell(i); });
    // The picture has standard output for itself.
    std::ostream& out = line_.output == kStandardStream ? std::cerr : std::cout;
    RunJob(jobs_.front(), [&](const CallReport& report) {
      Write(out, report, Style());
      for (const std::string& note : report.notes) std::cerr << "lmx: " << note << '\n';
    });
  }

 private:
  std::size_t Workers() const { return line_.jobs ? static_cast<std::size_t>(*line_.jobs) : Processors(); }

  ReportStyle Style() const {
    return line_.json ? ReportStyle::Json : line_.verbose ? ReportStyle::Verbose : ReportStyle::Results;
  }

  void RunJob(const Job& job, const std::function<void(const CallReport&)>& tell) {
    Runner runner(plugin_, line_.yield, line_.repeat, tell);
    host::Picture picture;
    if (job.source) picture = ToHost(ReadPicture(*job.source), line_.storage);
    picture = runner.Run(plan_, std::move(picture));
    if (job.output) WritePicture(*job.output, FromHost(picture, line_.opaque), job.encoding);
  }

  // One of several.
  Told Tell(std::size_t index) {
    const Job& job = jobs_[index];
    std::ostringstream out;
    Told told;
    const auto tell = [&](CallReport report) {
      report.picture = *job.source;
      Write(out, report, Style());
      for (const std::string& note : report.notes) {
        const bool aboutArguments = note.rfind("note: ", 0) == 0;
        told.notes.push_back(aboutArguments ? note : *job.source + ": " + note);
      }
    };
    try {
      RunJob(job, tell);
    } catch (const Interrupted&) {
      throw;
    } catch (const std::bad_alloc&) {
      told.failure = "not enough memory";
    } catch (const std::exception& error) {
      told.failure = error.what();
    }
    told.out = out.str();
    return told;
  }

  host::Host& plugin_;
  const CommandLine& line_;
  const Plan plan_;
  const std::vector<Job> jobs_;
};

}  // namespace

void RunMethods(host::Host& plugin, const CommandLine& line) {
  PictureRun(plugin, line).Run();
}

}  // namespace tool
