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
       "several: each gets the picture that the one before left"},
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
      "A picture is a PNG or JPEG file (one with a = in its name: ./a=b.png), and so is the result, by the end of its "
      "name; - is standard input and standard output, where the result is a PNG and values go to standard error.";
  static const std::string batches =
      "Several pictures go into a folder, under their names: -o folder/, which is made if it is missing; or each to a "
      "name of its own: -o '{name}-small.{ext}', where {name} is the picture's name and {ext} what it ends in. If some "
      "fail, the others are done all the same, and the failures are listed at the end.";
  static const std::string photos =
      "Photos are read upright, as EXIF data say that they were taken; the result has none. Pictures of up to " +
      std::to_string(kMaxPixels) + " pixels are read, from files of up to 256 MiB.";
  static const std::string names =
      "Methods and arguments have the names of their declarations; LMX_ may be left out, and upper and lower case are "
      "the same. Most arguments may be left out: `lmx help METHOD` says what they are then.";
  static const std::string colours =
      "Colours are #rrggbb or #rgb; or as programs have them, &cRRGGBB, &cRRGGBBTT or &hTTRRGGBB, TT from 00 (opaque) "
      "to FF (clear), in quotes for the shell. #rrggbbxx is refused, because the web means alpha by it.";
  static const std::string differences =
      "`lmx compare` exits with 0 if the pictures are the same, with 1 if they differ, and with 2 if it cannot tell. "
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
