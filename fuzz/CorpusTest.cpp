// The packed corpora: they can be read back, and damaged ones are refused.
#include "Corpus.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "support/MethodTable.h"

namespace {

using fuzz::Bytes;
using fuzz::Corpus;

const Corpus kAwkward = {{"", {0}},
                         {"a name of words", {}},
                         {"empty", {}},
                         {"finding-line-ends", {'\n', '\n'}},
                         {"looks like a head", {'1', ' ', 'x', '\n', 0, '\n'}},
                         {"zeros", Bytes(300)}};

TEST(Corpus, ReadsWhatItHasWritten) {
  EXPECT_EQ(fuzz::Unpacked(fuzz::Packed(kAwkward)), kAwkward);
  EXPECT_EQ(fuzz::Unpacked({}), Corpus());
}

TEST(Corpus, RefusesWhatIsCutOff) {
  const Bytes whole = fuzz::Packed(kAwkward);
  std::size_t read = 0;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    try {
      fuzz::Unpacked(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
      ++read;
    } catch (const std::runtime_error&) {
    }
  }
  EXPECT_EQ(read, kAwkward.size()) << "only where one input ends may the file end";
}

TEST(Corpus, RefusesWhatItWouldNotWrite) {
  for (const std::string text : {"\n", "x", "1 a\nbc", "-1 a\n\n", " 1 a\nb\n", "01 a\nb\n", "1 b\nx\n1 a\nx\n",
                                 "1 a\nx\n1 a\nx\n", "99999999999999999999 a\nx\n", "1\nx\n"}) {
    EXPECT_THROW(fuzz::Unpacked(Bytes(text.begin(), text.end())), std::runtime_error) << text;
  }
}

TEST(Corpus, OfEveryTargetIsThere) {
  for (const std::string target : {"methods", "kernels", "picture_file", "command_line"}) {
    EXPECT_GT(fuzz::Unpacked(fuzz::ReadBytes(LMX_FUZZ_FOLDER "/" + target + ".corpus")).size(), 100u) << target;
  }
}

// Any other byte would mean another method after a method is added.
TEST(Corpus, NamesMethodsByTheirPlaces) {
  for (const auto& [name, bytes] : fuzz::Unpacked(fuzz::ReadBytes(LMX_FUZZ_FOLDER "/methods.corpus"))) {
    ASSERT_FALSE(bytes.empty()) << name;
    EXPECT_LT(bytes[0], support::Methods().size()) << name;
  }
}

TEST(Corpus, FileThatIsNotThereIsAnError) {
  EXPECT_THROW(fuzz::ReadBytes("no such file"), std::runtime_error);
}

}  // namespace
