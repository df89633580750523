// Files that are no pictures, and files that must not be damaged.
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <random>
#include <set>

#include "Files.h"
#include "Process.h"
#include "tests/support/Thrown.h"
#include "tool/Errors.h"
#include "tool/PictureFile.h"

namespace tool_test {
namespace {

// A PNG whose header claims another size.
Bytes Claiming(std::uint32_t width, std::uint32_t height) {
  Bytes size;
  AppendNumber(size, width);
  AppendNumber(size, height);
  Bytes bytes = Png(SmallImage());
  std::copy(size.begin(), size.end(), bytes.begin() + 16);
  return bytes;
}

class HostileFileTest : public FileTest {
 protected:
  HostileFileTest() { WriteFile(Path("out.png"), Text("old")); }

  // The file is refused with a message that names it, and the output file stays unchanged.
  void ExpectRefused(const std::string& path, const std::string& why) {
    const Ended ended = Lmx({"FlipRotate", path, "-o", Path("out.png")});
    EXPECT_EQ(ended.status, 1) << path << ended.error;
    EXPECT_PRED2(StartsWith, ended.error, "lmx: " + path + ": ");
    EXPECT_PRED2(Contains, ended.error, why);
    EXPECT_EQ(ReadFile(Path("out.png")), Text("old"));
  }

  std::string Hostile(const Bytes& bytes) {
    WriteFile(Path("in.png"), bytes);
    return Path("in.png");
  }
};

TEST_F(HostileFileTest, MissingFile) {
  ExpectRefused(Path("missing.png"), "No such file");
}

TEST_F(HostileFileTest, Folder) {
  std::filesystem::create_directory(Path("folder.png"));
  ExpectRefused(Path("folder.png"), "folder");
}

TEST_F(HostileFileTest, PipeWithoutWriter) {
  ASSERT_EQ(mkfifo(Path("pipe.png").c_str(), 0600), 0);
  ExpectRefused(Path("pipe.png"), "ordinary");
}

TEST_F(HostileFileTest, FilesOfOtherKinds) {
  ExpectRefused(Hostile({}), "empty");
  for (const char* text :
       {"\x89", "This is not a picture, whatever its name says.\n", "GIF89a\x01", "P6 1 1 255 abc"}) {
    ExpectRefused(Hostile(Text(text)), "neither a PNG nor a JPEG");
  }
}

// The reader does not set the pixels, and they must not show old contents of the process's memory.
// This variable tells glibc to fill fresh memory.
TEST_F(HostileFileTest, AJpegWithoutAScanIsTheSamePictureEveryTime) {
  constexpr unsigned char kScan[] = {0xFF, 0xDA}, kEnd[] = {0xFF, 0xD9};
  Bytes bytes = Jpeg(OpaqueImage(400, 300));
  bytes.erase(std::search(bytes.begin(), bytes.end(), std::begin(kScan), std::end(kScan)), bytes.end());
  bytes.insert(bytes.end(), std::begin(kEnd), std::end(kEnd));
  const std::string file = Hostile(bytes);
  std::set<Bytes> written;
  for (const char* filler : {"0", "85", "200"}) {
    setenv("MALLOC_PERTURB_", filler, 1);
    const Ended ended = Lmx({"FlipRotate", file, "rotation=180", "-o", Path("turned.png")});
    unsetenv("MALLOC_PERTURB_");
    ASSERT_EQ(ended.status, 0) << ended.error;
    written.insert(ReadFile(Path("turned.png")));
  }
  EXPECT_EQ(written.size(), 1u);
}

// A square PNG of one channel, 8 bits a pixel.
Bytes OneChannelPng(int side, unsigned kind, bool interlaced, const Bytes& palette, const Bytes& packed) {
  PngMaker maker;
  maker.Header(side, side, 8, kind, interlaced);
  if (!palette.empty()) maker.Chunk("PLTE", palette);
  return maker.Chunk("IDAT", packed).Chunk("IEND", {}).bytes;
}

// Bits of a deflate stream. Codes start with their highest bit, everything else with the lowest.
class Packed {
 public:
  Packed& Bits(unsigned value, int count) {
    for (int i = 0; i < count; ++i) Bit(value >> i & 1);
    return *this;
  }
  Packed& Code(unsigned value, int count) {
    for (int i = count - 1; i >= 0; --i) Bit(value >> i & 1);
    return *this;
  }
  Bytes bytes = {0x78, 0x01};  // the head of zlib

 private:
  void Bit(unsigned bit) {
    if (used_ == 0) bytes.push_back(0);
    bytes.back() = static_cast<unsigned char>(bytes.back() | bit << used_);
    used_ = (used_ + 1) % 8;
  }
  int used_ = 0;
};

// The last seven bytes are copied from distance 0, that is, from themselves. An interlaced picture
// of 8 x 8 pixels has 79 bytes, including the filters of its 15 rows.
TEST_F(HostileFileTest, APngWhosePixelsAreMissingIsRefused) {
  Packed packed;
  packed.Bits(1, 1).Bits(1, 2);                          // one block, with the codes that are always the same
  for (int i = 0; i < 72; ++i) packed.Code(0x30, 8);     // 0
  packed.Code(5, 7).Code(30, 5).Code(0, 7).Bits(0, 16);  // 7 bytes, distance 30, which is none; the end
  ExpectRefused(Hostile(OneChannelPng(8, 0, true, {}, packed.bytes)), "its pixels cannot be unpacked");
}

TEST_F(HostileFileTest, PixelsBeyondThePaletteAreBlack) {
  const auto picture = [](const Bytes& palette) {
    // Two rows, not packed, and their checksum.
    return OneChannelPng(2, 3, false, palette,
                         {0x78, 0x01, 1, 6, 0, 0xF9, 0xFF, 0, 0, 1, 0, 2, 255, 0x01, 0x0D, 0x01, 0x03});
  };
  const auto opaque = [](std::initializer_list<std::uint32_t> colours) {
    std::vector<std::uint32_t> pixels;
    for (const std::uint32_t colour : colours) pixels.push_back(0xFF000000 | colour);
    return pixels;
  };
  const Bytes one = {1, 2, 3}, two = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(tool::ReadPicture(Hostile(picture(one))).pixels, opaque({0x010203, 0, 0, 0}));
  EXPECT_EQ(tool::ReadPicture(Hostile(picture(two))).pixels, opaque({0x010203, 0x040506, 0, 0}));
  const Bytes whole(768, 9);
  EXPECT_EQ(tool::ReadPicture(Hostile(picture(whole))).pixels, opaque({0x090909, 0x090909, 0x090909, 0x090909}));
  const auto with = [&](std::size_t at, const std::string& type, const Bytes& data) {
    return Inserted(picture(one), at, PngChunk(type, data));
  };
  ExpectRefused(Hostile(with(PngMaker::kHeaderEnd, "PLTE", {1, 2, 3})), "two palettes");
  ExpectRefused(Hostile(with(PngMaker::kHeaderEnd + 15, "tRNS", {1, 2})), "does not suit");
  ExpectRefused(Hostile(picture({1, 2})), "damaged");
  ExpectRefused(Hostile(picture(Bytes(771, 9))), "damaged");
}

// With 32-bit addresses, the end of such a chunk would lie before its start.
TEST_F(HostileFileTest, PngWithAChunkThatIsLongerThanTheFile) {
  for (const int high : {0x00, 0x60, 0x7F, 0xFF}) {
    for (const char* type : {"tEXt", "IDAT", "CgBI"}) {
      const Bytes head = Inserted({static_cast<unsigned char>(high), 0xFF, 0xFF, 0xF0}, 4, Text(type));
      ExpectRefused(Hostile(Inserted(Png(SmallImage()), PngMaker::kHeaderEnd, head)), "ends too early");
    }
  }
}

TEST_F(HostileFileTest, PngWhosePixelsBeginWithAnEmptyChunk) {
  const Bytes png = Inserted(Png(SmallImage()), PngMaker::kHeaderEnd, PngChunk("IDAT", {}));
  EXPECT_EQ(tool::ReadPicture(Hostile(png)).pixels, SmallImage().pixels);
}

TEST_F(HostileFileTest, PngWithBytesAfterItsEnd) {
  for (const std::size_t count : {std::size_t{1}, std::size_t{8}, std::size_t{12}, std::size_t{100}}) {
    Bytes bytes = Png(SmallImage());
    bytes.resize(bytes.size() + count, 0xFF);
    EXPECT_EQ(Lmx({"GetAverageRGB", Hostile(bytes)}).status, 0) << count;
  }
}

TEST_F(HostileFileTest, ClaimsOfHugeSizes) {
  ExpectRefused(Hostile(Claiming(100000, 100000)), "too large: 100000 x 100000");
  ExpectRefused(Hostile(Claiming(8193, 8192)), "too large");
  ExpectRefused(Hostile(Claiming(8192, 8192)), "damaged");
  ExpectRefused(Hostile(Claiming(0xFFFFFFFF, 1)), "too large");
  ExpectRefused(Hostile(Claiming(0, 5)), "damaged");
}

// The decoder would write such a table past the end of its own.
const Bytes kOversizedTable = {0xFF, 0xC4, 0x00, 0x13, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                               0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};

Bytes JpegWith(const Bytes& inserted, std::size_t at) {
  return Inserted(Jpeg(OpaqueImage(19, 11)), at, inserted);
}

TEST_F(HostileFileTest, OversizedTablesOfAJpeg) {
  const char* why = "a table has more than 256 codes";
  const std::size_t scan = Jpeg(OpaqueImage(19, 11)).size() - 40;
  ExpectRefused(Hostile(JpegWith(kOversizedTable, 2)), why);     // the first segment
  ExpectRefused(Hostile(JpegWith(kOversizedTable, 20)), why);    // after the first one
  ExpectRefused(Hostile(JpegWith(kOversizedTable, scan)), why);  // between scans
  ExpectRefused(Hostile(JpegWith(Inserted({0, 0}, 2, kOversizedTable), 20)),
                why);  // after bytes that belong to no segment
}

// Data that programs store in a JPEG can look like anything.
TEST_F(HostileFileTest, TablesInACommentAreNone) {
  const Bytes head = {0xFF, 0xFE, 0x00, static_cast<unsigned char>(2 + kOversizedTable.size())};
  const Ended ended = Lmx({"GetAverageRGB", Hostile(JpegWith(Inserted(head, 4, kOversizedTable), 20))});
  EXPECT_EQ(ended.status, 0) << ended.error;
}

TEST_F(HostileFileTest, DamageAnywhereNeverCrashes) {
  const Bytes sources[] = {Png(OpaqueImage(19, 11)), Jpeg(OpaqueImage(19, 11))};
  std::mt19937 random(7);
  for (int round = 0; round < 60; ++round) {
    Bytes bytes = sources[round % 2];
    for (int i = 0; i < 8; ++i) bytes[random() % bytes.size()] = static_cast<unsigned char>(random());
    WriteFile(Path("in.png"), bytes);
    const Ended ended = Lmx({"GetAverageRGB", Path("in.png")});
    EXPECT_TRUE(ended.status == 0 || ended.status == 1) << "round " << round << ": " << ended.error;
  }
}

struct stat StatusOf(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
  return status;
}

class OutputTest : public FileTest {
 protected:
  const std::string small_ = Given("small.png", SmallImage());
};

TEST_F(OutputTest, TheSourceCanBeTheOutput) {
  EXPECT_EQ(Lmx({"FlipRotate", small_, "flip_h=1", "-o", small_}).status, 0);
  EXPECT_EQ(Result("small.png").pixels[0], 0xFF708090u);
  EXPECT_EQ(Names(), std::vector<std::string>{"small.png"});
}

TEST_F(OutputTest, SurvivesAFailingMethod) {
  WriteFile(Path("out.png"), Text("old"));
  EXPECT_EQ(Lmx({"FlipRotate", small_, "rotation=400", "-o", Path("out.png")}).status, 1);
  EXPECT_EQ(ReadFile(Path("out.png")), Text("old"));
}

TEST_F(OutputTest, SurvivesAFullDisk) {
  const std::string large = Given("large.png", OpaqueImage(300, 200));
  WriteFile(Path("out.png"), Text("old"));
  Surroundings full;
  full.largestFile = 1000;
  const Ended ended = Lmx({"FlipRotate", large, "-o", Path("out.png")}, full);
  EXPECT_EQ(ended.status, 1);
  EXPECT_PRED2(Contains, ended.error, "cannot write");
  EXPECT_EQ(ReadFile(Path("out.png")), Text("old"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"large.png", "out.png", "small.png"}));
}

TEST_F(OutputTest, FoldersAreNoOutput) {
  std::filesystem::create_directory(Path("out.png"));
  for (const std::string& path : {Path("out.png"), Path("missing/out.png"), small_ + "/out.png"}) {
    const Ended ended = Lmx({"FlipRotate", small_, "-o", path});
    EXPECT_EQ(ended.status, 1) << path;
    EXPECT_PRED2(StartsWith, ended.error, "lmx: ");
  }
  EXPECT_EQ(Names(), (std::vector<std::string>{"out.png", "small.png"}));
}

TEST_F(OutputTest, DevicesAreWrittenDirectly) {
  EXPECT_EQ(Lmx({"FlipRotate", small_, "-o", "/dev/null"}).status, 0);
  EXPECT_TRUE(S_ISCHR(StatusOf("/dev/null").st_mode));
  EXPECT_EQ(Lmx({"FlipRotate", small_, "-o", "/dev/full"}).status, 1);
  EXPECT_EQ(Lmx({"FlipRotate", small_, "-o", "/dev/stdout"}).out.substr(1, 3), "PNG");
}

TEST_F(OutputTest, LinksAndPermissionsStay) {
  WriteFile(Path("real.png"), Text("old"));
  ASSERT_EQ(chmod(Path("real.png").c_str(), 0640), 0);
  std::filesystem::create_symlink("real.png", Path("link.png"));
  EXPECT_EQ(Lmx({"FlipRotate", small_, "-o", Path("link.png")}).status, 0);
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link.png")));
  EXPECT_EQ(Result("real.png").pixels, SmallImage().pixels);
  EXPECT_EQ(StatusOf(Path("real.png")).st_mode & 0777, 0640u);
}

// As a user who may not write the file, but may replace files in its folder.
TEST_F(OutputTest, AFileThatMayNotBeWrittenStays) {
  constexpr uid_t kNobody = 65534;
  const std::string path = Path("out.png"), folder = path.substr(0, path.rfind('/'));
  WriteFile(path, Text("old"));
  ASSERT_EQ(chmod(path.c_str(), 0444), 0);
  const bool root = geteuid() == 0;
  if (root) {
    ASSERT_EQ(chown(folder.c_str(), kNobody, kNobody), 0);
  }
  const int status = InChild([&] {
    if (root && setuid(kNobody) != 0) _exit(1);
    EXPECT_EQ(ThrownBy<tool::Failure>([&] { tool::WritePicture(path, SmallImage()); }),
              path + ": cannot write: Permission denied");
  });
  EXPECT_EQ(status, 0);
  EXPECT_EQ(ReadFile(path), Text("old"));
  EXPECT_EQ(Names(), (std::vector<std::string>{"out.png", "small.png"}));
}

TEST_F(OutputTest, TheOwnerStaysWhereTheUserMayGiveFilesAway) {
  constexpr uid_t kOwner = 12345;
  constexpr gid_t kGroup = 23456;
  if (geteuid() != 0) GTEST_SKIP() << "only root may";
  WriteFile(Path("out.png"), Text("old"));
  ASSERT_EQ(chown(Path("out.png").c_str(), kOwner, kGroup), 0);
  ASSERT_EQ(chmod(Path("out.png").c_str(), 04750), 0);
  EXPECT_EQ(Lmx({"FlipRotate", small_, "-o", Path("out.png")}).status, 0);
  EXPECT_EQ(Result("out.png").pixels, SmallImage().pixels);
  const struct stat status = StatusOf(Path("out.png"));
  EXPECT_EQ(status.st_uid, kOwner);
  EXPECT_EQ(status.st_gid, kGroup);
  EXPECT_EQ(status.st_mode & 07777, 04750u);
}

// The new file may belong to another group, for which the old file's rights were never meant.
TEST_F(OutputTest, WithoutTheOwnerAFileGivesNobodyItsRights) {
  constexpr uid_t kNobody = 65534;
  if (geteuid() != 0) GTEST_SKIP() << "only root may make another's file";
  const std::string path = Path("out.png"), folder = path.substr(0, path.rfind('/'));
  WriteFile(path, Text("old"));
  ASSERT_EQ(chmod(path.c_str(), 06776), 0);
  ASSERT_EQ(chown(folder.c_str(), kNobody, kNobody), 0);
  const int ended = InChild([&] {
    if (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0) _exit(1);
    tool::WritePicture(path, SmallImage());
  });
  EXPECT_EQ(ended, 0);
  const struct stat status = StatusOf(path);
  EXPECT_EQ(status.st_uid, kNobody);
  EXPECT_EQ(status.st_mode & 07777, 0706u);
}

TEST_F(OutputTest, NewFilesHaveOrdinaryPermissions) {
  EXPECT_EQ(Lmx({"FlipRotate", small_, "-o", Path("out.png")}).status, 0);
  const mode_t mask = umask(0);
  umask(mask);
  EXPECT_EQ(StatusOf(Path("out.png")).st_mode & 0777, 0666u & ~mask);
}

TEST_F(OutputTest, AFullStandardOutputIsAFailure) {
  const Ended ended = Lmx({"GetAverageRGB", small_, "-o", "/dev/full"});
  EXPECT_EQ(ended.status, 1);
}

}  // namespace
}  // namespace tool_test
