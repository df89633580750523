// Every program in the documentation and in examples/ calls the plug-in as it is declared, and the
// calls work.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "Program.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// Larger than the parts that the programs cut out of it.
constexpr int kWidth = 400, kHeight = 300;

Lines LinesOf(const fs::path& file) {
  std::ifstream in(file);
  EXPECT_TRUE(in) << file;
  Lines lines;
  for (std::string line; std::getline(in, line);) lines.push_back(line);
  return lines;
}

struct Source {
  fs::path file;
  int firstLine;
  Lines lines;
};

// The programs on a page: the text between ```vb and ```.
std::vector<Source> ProgramsOn(const fs::path& page) {
  std::vector<Source> programs;
  const Lines lines = LinesOf(page);
  bool isProgram = false;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (isProgram && lines[i] != "```") programs.back().lines.push_back(lines[i]);
    if (lines[i].rfind("```", 0) != 0) continue;
    isProgram = lines[i] == "```vb";
    if (isProgram) programs.push_back({page, static_cast<int>(i) + 2, {}});
  }
  return programs;
}

std::vector<fs::path> FilesIn(const fs::path& folder, const std::string& extension) {
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == extension) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

const fs::path kFolder = LMX_FOLDER;

std::vector<Source> Examples() {
  std::vector<Source> programs;
  for (const fs::path& file : FilesIn(kFolder / "examples", ".vb")) programs.push_back({file, 1, LinesOf(file)});
  return programs;
}

std::vector<Source> OnPages() {
  std::vector<Source> programs;
  for (const fs::path& folder : {kFolder, kFolder / "docs"}) {
    for (const fs::path& page : FilesIn(folder, ".md")) {
      for (Source& program : ProgramsOn(page)) programs.push_back(std::move(program));
    }
  }
  return programs;
}

class Programs : public testing::TestWithParam<host::Storage> {
 protected:
  Programs() {
    plugin_.newPictures.storage = GetParam();
    plugin_.Load(LMX_LIBRARY);
  }

  void ExpectRight(const std::vector<Source>& sources) {
    for (const Source& source : sources) {
      for (const std::string& complaint : program_.Check(source.lines, source.firstLine)) {
        ADD_FAILURE() << source.file << ", " << complaint;
      }
    }
  }

  // What is wrong with the second of two lines. The first line makes a picture.
  std::string Complaint(const std::string& line) {
    const Lines complaints = program_.Check({"Dim p As Picture = LMX_MakeGradient(8, 6, &c112233, &c445566, 0)", line});
    EXPECT_LE(complaints.size(), 1U) << line;
    return complaints.empty() ? "" : complaints.front();
  }

  host::Host plugin_;
  programs::Program program_{plugin_, {kWidth, kHeight, GetParam()}};
};

TEST_P(Programs, OfThePagesAreRight) {
  const std::vector<Source> sources = OnPages();
  EXPECT_FALSE(sources.empty());
  ExpectRight(sources);
}

TEST_P(Programs, OfTheExamplesAreRightAndCallEveryMethod) {
  ExpectRight(Examples());
  for (const host::Method& method : plugin_.Methods()) {
    EXPECT_EQ(program_.Called().count(method.name), 1U) << "no example calls " << method.name;
  }
}

TEST_P(Programs, ThatAreRightGetNoComplaint) {
  EXPECT_EQ(Complaint("Dim q As Picture = p.LMX_Stretch(p.Width / 2, Max(1, p.Height), 0)"), "");
  EXPECT_EQ(Complaint("If p.LMX_FlipRotate(False, True, 90, 0) = Nil Then Return"), "");
  EXPECT_EQ(Complaint("p.LMX_AdjustRGB_InPlace(0, 0, p.Width - 1, 2, 1, 2, -3, 0)"), "");
  EXPECT_EQ(Complaint("Dim q As Picture = p.LMX_FlipRotate(False, True, 360, 0) // error 31"), "");
}

TEST_P(Programs, ThatAreWrongAreFound) {
  const std::vector<std::pair<std::string, std::string>> wrong = {
      {"Dim q As Picture = p.LMX_Stretsch(4, 3, 0)", "no method LMX_Stretsch"},
      {"Dim q As Picture = p.Stretch(4, 3, 0)", "a picture has no Stretch"},
      {"Dim q As Picture = p.LMX_Stretch(4, 3)", "LMX_Stretch takes 3 arguments, not 2"},
      {"Dim q As Picture = p.LMX_Stretch(4, 3, 0, 0)", "LMX_Stretch takes 3 arguments, not 4"},
      {"Dim q As Picture = LMX_Stretch(p, 4, 3, 0)", "LMX_Stretch is called on a picture"},
      {"Dim q As Picture = p.LMX_MakeGradient(4, 3, &c000000, &cFFFFFF, 0)", "is not called on anything"},
      {"Dim q As Picture = p.LMX_Stretch(4.5, 3, 0)", "width: a fraction instead of integer"},
      {"Dim q As Picture = p.LMX_Stretch(True, 3, 0)", "width: boolean instead of integer"},
      {"Dim q As Picture = p.LMX_FlipRotate(1, False, 90, 0)", "flip_h: integer instead of boolean"},
      {"Dim q As Picture = p.LMX_Trim(0, 0, 4, 3, 0, 0)", "frame_color: integer instead of color"},
      {"Dim q As Picture = p.LMX_Trim(0, 0, 4, 3, &c00, 0)", "a colour is &cRRGGBB or &hTTRRGGBB"},
      {"Dim q As Picture = p.LMX_Trim(0, 0, 4, 3, &c000000, 0", "expected `)`"},
      {"Dim q As Integer = p.LMX_Stretch(4, 3, 0)", "q is integer, and not picture"},
      {"p.LMX_Stretch(4, 3, 0)", "the result is not used"},
      {"Return p.LMX_Stretch(4, 3, 0)", "the function is nothing, and not picture"},
      {"Dim q As Picture = p.LMX_AdjustRGB_InPlace(0, 0, 4, 3, 1, 1, 1, 0)", "there is no result to assign to q"},
      {"p.LMX_GetAverageRGB(0, 0, 4, 3, 1, 2, 3, 0)", "red must be a variable As integer"},
      {"p.LMX_GetAverageRGB(0, 0, 4, 3, p, p, p, 0)", "red must be a variable As integer"},
      {"Dim q As Picture = p.LMX_Stretch(widht, 3, 0)", "unknown name widht"},
      {"Dim q As Picture = p.LMX_Stretch(p.Widht, 3, 0)", "a picture has no Widht"},
      {"Dim q As Picture = p.LMX_FlipRotate(False, False, 360, 0)", "leaves error 31, not 0"},
      {"Dim q As Picture = p.LMX_FlipRotate(False, False, 90, 0) // error 31", "leaves error 0, not 31"},
      {"Dim q As Integer = 1 // error 31", "nothing fails with error 31"},
  };
  for (const auto& [line, complaint] : wrong) {
    const std::string found = Complaint(line);
    EXPECT_EQ(found.rfind("line 2: ", 0), 0U) << line;
    EXPECT_NE(found.find(complaint), std::string::npos) << line << ": " << found;
  }
}

INSTANTIATE_TEST_SUITE_P(Storage, Programs, testing::Values(host::Storage::BitmapContext, host::Storage::Buffer),
                         [](const testing::TestParamInfo<host::Storage>& storage) {
                           return std::string(storage.param == host::Storage::Buffer ? "Buffer" : "Context");
                         });

}  // namespace
