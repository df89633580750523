#include "Usage.h"

#include "Errors.h"
#include "PictureFile.h"

namespace tool {

const std::vector<Command>& Commands() {
  static const std::vector<Command> table = {
      {"list", "list", "the methods, a line each"},
      {"help", "help METHOD", "what a method does, and its arguments"},
      {"", "METHOD picture [name=value...] -o out.png", "one call"},
      {"", "METHOD picture [name=value...] + METHOD [name=value...] ... -o out.png",
       "several calls: each gets the result of the one before"},
      {"", "METHOD picture... [name=value...] -o folder/", "the same on many pictures, on all processors"},
      {"chart", "chart -o chart.png", "draws a test chart"},
      {"info", "info picture...", "what the files are: size, transparency, orientation, bytes"},
      {"compare", "compare a.png b.png [-o difference.png]",
       "whether two pictures are the same, and where they are not"},
      {"bench", "bench picture", "times the methods on a picture, with and without yields"},
      {"man", "man", "prints the manual page: lmx man | man -l -"},
      {"completion", "completion SHELL", "prints what completes the words of lmx in a shell: bash, zsh or fish"},
  };
  return table;
}

const std::vector<std::string>& Paragraphs() {
  static const std::string files =
      "A picture is a PNG or JPEG file; write ./a=b.png for a name with a =. The end of its name says which of them a "
      "result is. - is standard input and standard output; there a result is a PNG, and values go to standard error.";
  static const std::string batches =
      "Several pictures go into a folder and keep their names: -o folder/, which is made if it is missing; or each "
      "gets "
      "a new name: -o '{name}-small.{ext}', where {name} is the picture's name and {ext} its extension. A failure does "
      "not stop the others; all failures are listed at the end.";
  static const std::string photos =
      "Photos come out upright, as their EXIF data say; results have no EXIF data. Pictures of up to " +
      std::to_string(kMaxPixels) + " pixels are read, from files of up to 256 MiB.";
  static const std::string names =
      "Methods and arguments have the names of their declarations; LMX_ may be left out, and upper and lower case are "
      "the same. Most arguments may be left out: `lmx help METHOD` tells their default values.";
  static const std::string colours =
      "Colours are #rrggbb or #rgb; or as programs have them, &cRRGGBB, &cRRGGBBTT or &hTTRRGGBB, TT from 00 (opaque) "
      "to FF (clear), in quotes for the shell. #rrggbbxx is refused: on the web its last digits are alpha.";
  static const std::string differences =
      "`lmx compare` exits with 0 if the pictures are the same, with 1 if they differ, and with 2 if it cannot compare "
      "them. "
      "Pixels that are clear in both are the same.";
  static const std::vector<std::string> table = {files, batches, photos, names, colours, differences};
  return table;
}

const std::vector<ExitStatus>& ExitStatuses() {
  static const std::vector<ExitStatus> table = {
      {0, "success"},
      {Failure::kStatus, "failure (with the plug-in's message)"},
      {UsageError::kStatus, "wrong usage"},
      {Interrupted::kStatus, "stopped by Ctrl-C"},
  };
  return table;
}

}  // namespace tool
