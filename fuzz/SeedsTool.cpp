// Seeds of the tool's texts and picture files.

#include <cstddef>
#include <cstring>
#include <string>

#include "Seeds.h"
#include "tool/Documentation.h"
#include "tool/Options.h"
#include "tool/Plan.h"
#include "tool/Stb.h"
#include "tool/Usage.h"

namespace fuzz {
namespace {

void Append(void* bytes, void* data, int size) {
  const auto* begin = static_cast<const std::uint8_t*>(data);
  static_cast<Bytes*>(bytes)->insert(static_cast<Bytes*>(bytes)->end(), begin, begin + size);
}

Bytes Pixels(int width, int height, int channels) {
  Bytes pixels;
  for (int i = 0; i < width * height * channels; ++i) pixels.push_back(static_cast<std::uint8_t>(i * 37 + i / 5));
  return pixels;
}

Bytes Png(int width, int height, int channels, int filter) {
  stbi_write_force_png_filter = filter;
  Bytes png;
  stbi_write_png_to_func(Append, &png, width, height, channels, Pixels(width, height, channels).data(),
                         width * channels);
  return png;
}

Bytes Jpeg(int width, int height, int channels, int quality) {
  Bytes jpeg;
  stbi_write_jpg_to_func(Append, &jpeg, width, height, channels, Pixels(width, height, channels).data(), quality);
  return jpeg;
}

Bytes Text(const std::string& text) {
  return Bytes(text.begin(), text.end());
}

Bytes Inserted(Bytes file, std::ptrdiff_t at, const Bytes& part) {
  file.insert(file.begin() + at, part.begin(), part.end());
  return file;
}

void AddChanged(std::vector<Bytes>& seeds, Bytes seed, std::size_t at, const Bytes& bytes) {
  std::memcpy(seed.data() + at, bytes.data(), bytes.size());
  seeds.push_back(std::move(seed));
}

}  // namespace

std::vector<Bytes> PictureFileSeeds() {
  std::vector<Bytes> seeds;
  for (int channels = 1; channels <= 4; ++channels) {
    for (int filter = -1; filter <= 4; ++filter) seeds.push_back(Png(7, 5, channels, filter));
    for (const int quality : {5, 60, 100}) seeds.push_back(Jpeg(19, 11, channels, quality));
  }
  const Bytes png = Png(3, 2, 4, 0);
  constexpr std::size_t kWidth = 16, kHeight = 20, kDepth = 24, kColours = 25, kInterlace = 28;
  for (const char* depth : {"\1", "\2", "\4", "\x10"}) AddChanged(seeds, png, kDepth, Text(depth));
  for (const char* colours : {"\2", "\3", "\4"}) AddChanged(seeds, png, kColours, Text(colours));
  AddChanged(seeds, png, kInterlace, {1});
  AddChanged(seeds, png, kWidth, {0, 0, 0, 0});
  AddChanged(seeds, png, kWidth, {0xFF, 0xFF, 0xFF, 0xFF});
  AddChanged(seeds, png, kHeight, {0x80, 0, 0, 0});
  AddChanged(seeds, png, kWidth, {0, 0, 0x20, 1, 0, 0, 0x20, 0});
  const std::string exif("II*\0\x08\0\0\0\1\0\x12\1\3\0\1\0\0\0\6\0\0\0", 22);  // a photo to be turned
  seeds.push_back(Inserted(png, 33, Text(std::string("\0\0\0\x16", 4) + "eXIf" + exif + "CRC?")));
  seeds.push_back(Inserted(Jpeg(19, 11, 3, 60), 2,
                           Text(std::string("\xFF\xE1\0\x1E"
                                            "Exif\0\0",
                                            10) +
                                exif)));
  for (const char* other : {"GIF89a\1", "P6 1 1 255 abc", "BM6\0\0\0", "RIFF", "II*"}) seeds.push_back(Text(other));
  return seeds;
}

std::vector<Bytes> CommandLineSeeds() {
  std::vector<Bytes> seeds;
  for (const char* text :
       {" FlipRotate\np.png\nflip_h=yes\nrotation=90\n-o\nout.png",
        " Stretch\np.png\nwidth=12\nheight=3\n-o\no\n--json",
        " FreeRotateByShear\np.png\nrotation=12.5\nframe_color=&cff000080\n--output=o\n+\nTrim\nleft=-3\nwidth=9",
        " ShearHorizontal\np\nshear=-0.5\nwidth=20\nheight=9\n-o\no\n--storage\nbuffer",
        " ShearVertical\np\nshear=1\n-o\no\n--opaque",
        " AdjustHSV\np\nhue_degrees=120\nnegative=1\n-o\no\n--yield=1",
        " AdjustHSV_InPlace\np\nsaturation_factor=2\n-o\no",
        " AdjustRGB\np\nred_delta=-255\n-o\no",
        " AdjustRGB_InPlace\np\nblue_delta=9\n-o\no\n--verbose",
        " GetAverageHSV\np\nleft=1\n--json",
        " GetAverageRGB\np",
        " MakeGradient\nwidth=5\nheight=9\ncolor1=&h00FF0000\ncolor2=#0000FF\n-o\no",
        " MakeDoubleGradient\nwidth=3\nheight=3\ncolor1=#000000\ncolor2=#ffffff\ncolor3=&c12345678\n-o\no",
        " GetLastError\n--json",
        " GetErrorMessage\nerrorCode=31\n--json",
        " --\n-x\n+\ny",
        " -h\n--version\n--plugin=x",
        " Trim\np\nwidth=2147483647\n-o\no",
        " list",
        " help\nTrim",
        "i-2147483648",
        "i2147483648",
        "d-0.5e-3",
        "dnan",
        "d1e308",
        "d0.30000000000000004",
        "d-359.99999999999994",
        "d4.9e-324",
        "byes",
        "bFALSE",
        "c#12abEF40",
        "c&c12abEF40",
        "c&C12abEF",
        "c#1aF",
        "c&hFF000000",
        "s\"\\\n",
        "(LMX_Trim(extends p as picture, left as integer,ByRef mean as double) as picture",
        "(X() as string",
        "(a_1(x as color,y as boolean)"}) {
    seeds.push_back(Text(text));
  }
  return seeds;
}

std::vector<std::string> CommandLineWords() {
  std::vector<std::string> words;
  for (const tool::Option& option : tool::Options()) {
    words.insert(words.end(), {option.letter, option.name, std::string(option.name) + "="});
    words.insert(words.end(), option.words.begin(), option.words.end());
  }
  for (const tool::Command& command : tool::Commands()) words.emplace_back(command.name);
  for (const tool::MethodText& method : tool::Documentation()) {
    words.push_back(tool::ShortName(method.name));
    for (const tool::ArgumentText& argument : method.arguments) words.push_back(argument.name + "=");
  }
  return words;
}

}  // namespace fuzz
