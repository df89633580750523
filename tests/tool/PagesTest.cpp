// The commands of lmx in the documentation work as they are written.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>

#include "Files.h"

namespace tool_test {
namespace {

class Pages : public FileTest, public testing::WithParamInterface<const char*> {};

TEST_P(Pages, CommandsWork) {
  const Bytes photo = Jpeg(OpaqueImage(400, 300));
  std::filesystem::create_directory(Path("photos"));
  for (const char* name : {"photo.jpg", "photos/one.jpg", "photos/two.jpg"}) WriteFile(Path(name), photo);
  for (const char* name : {"a.png", "b.png"}) WriteFile(Path(name), Png(OpaqueImage(40, 30)));
  const std::string start = "cd '" + Path("") + "' && PATH=$(dirname '" LMX_PROGRAM "'):$PATH && ";
  const std::regex inCell("`(lmx [^`]* -o [^`]*)`");
  const std::regex command(R"((\$ )?(build/\w+/)?(lmx .*|for .*lmx .*))");

  std::ifstream page(LMX_FOLDER "/" + std::string(GetParam()));
  int count = 0;
  const auto expectWorking = [&](const std::string& line) {
    const int status = std::system((start + line + " > /dev/null").c_str());
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << line;
    ++count;
  };
  bool isBlock = false, isCommands = false;
  for (std::string line; std::getline(page, line);) {
    std::smatch found;
    if (line.rfind("```", 0) == 0) {
      isBlock = !isBlock;
      isCommands = isBlock && line == "```";
    }
    if (!isBlock && std::regex_search(line, found, inCell)) expectWorking(found[1]);
    if (!isCommands || !std::regex_match(line, found, command) || found[3].str().rfind("lmx bench", 0) == 0) continue;
    expectWorking(found[3]);
  }
  EXPECT_GT(count, 3);
}

INSTANTIATE_TEST_SUITE_P(OfLmx, Pages, testing::Values("README.md", "docs/how-do-i.md", "docs/lmx.md"),
                         [](const testing::TestParamInfo<const char*>& page) {
                           return std::regex_replace(std::string(page.param), std::regex("\\W"), "_");
                         });

}  // namespace
}  // namespace tool_test
