// Every method on pictures of a few very long rows or columns, compared with the reference model to
// the last pixel and yield.
#include "support/Cases.h"
#include "support/Pictures.h"
#include "support/PluginTest.h"

namespace {

using host::Colour;
using host::Storage;
using host::Value;

struct Shape {
  int width;
  int height;
  Storage form;
};

void PrintTo(const Shape& shape, std::ostream* out) {
  *out << shape.width << " x " << shape.height << (shape.form == Storage::Buffer ? " buffer" : " context");
}

class LongLines : public support::PluginTest, public testing::WithParamInterface<Shape> {
 protected:
  void Check(const std::string& name, std::vector<Value> arguments, int yield = 0) {
    SCOPED_TRACE(name);
    arguments.emplace_back(yield);
    support::Setting setting;
    setting.mostPixels = 1 << 23;
    setting.newPictures.assign(4, support::NewPicture{GetParam().form, {}, model::Fault::None, 0});
    Random random(static_cast<std::uint64_t>(W()));
    if (support::FindMethod(name).hasSource) setting.source = support::RandomPicture(random, GetParam().form, W(), H());
    CheckCall({name, arguments}, setting);
  }

  static int W() { return GetParam().width; }
  static int H() { return GetParam().height; }
  static int Most() { return std::max(W(), H()); }
};

constexpr Colour kFrame{0x30406080};

TEST_P(LongLines, FlipRotate) {
  Check("FlipRotate", {true, false, 0}, Most());
  Check("FlipRotate", {false, true, 90}, Most() + 1);
  Check("FlipRotate", {false, false, 270});
}

TEST_P(LongLines, Shears) {
  Check("ShearHorizontal", {W() + H(), H(), H() < 100 ? 1.0 : -3.0 / Most(), kFrame});
  Check("ShearHorizontal", {W() < 100 ? W() + 5 : W() / 2, H(), -0.999 / std::min(H(), 9), kFrame}, Most());
  Check("ShearVertical",
        {W(), W() + H() > 100000 && W() > 2 ? H() + 40 : H() + W(), W() < 100 ? -1.0 : 7.0 / Most(), kFrame});
  Check("ShearVertical", {W(), H() < 100 ? H() + 5 : H() / 2, 0.999 / std::min(W(), 9), kFrame}, Most());
}

TEST_P(LongLines, Stretch) {
  Check("Stretch", {std::min(W() * 2, 65535), std::min(H(), 65535)});
  Check("Stretch", {std::min(W(), 31), std::min(H(), 31)}, 7);
  Check("Stretch", {std::min(W(), 2), std::min(H(), 2)});  // reductions below 1/32768 are refused
  Check("Stretch", {W() * 2, H() * 2});                    // sizes above 65535 are refused, too
}

// Lines of more than 32767 pixels are refused.
TEST_P(LongLines, FreeRotateByShear) {
  for (const double rotation : {0.0, 90.0, 0.05, 180.05}) Check("FreeRotateByShear", {rotation, kFrame}, 10 * Most());
}

TEST_P(LongLines, Trim) {
  Check("Trim", {-3, -1, W() + 6, H() + 2, kFrame});
  Check("Trim", {W() - 2, H() - 2, 5, 4, kFrame});
}

TEST_P(LongLines, Colours) {
  const auto rectangle = [](std::vector<Value> rest) {
    std::vector<Value> arguments = {W() / 3, H() / 3, W() / 2, H() / 2};
    arguments.insert(arguments.end(), rest.begin(), rest.end());
    return arguments;
  };
  Check("AdjustHSV", rectangle({100.0, 2.0, 1.0, false}), Most());
  Check("AdjustHSV_InPlace", rectangle({-100.0, 1.0, 2.0, true}));
  Check("AdjustRGB", rectangle({20, -30, 255}), Most());
  Check("AdjustRGB_InPlace", rectangle({-20, 30, -255}));
  Check("GetAverageHSV", {0, 0, W(), H(), 0.0, 0.0, 0.0}, Most());
  Check("GetAverageRGB", {0, 0, W(), H(), 0, 0, 0}, Most());
}

TEST_P(LongLines, Gradients) {
  Check("MakeGradient", {W(), H(), kFrame, Colour{0x00FF0080}}, Most());
  Check("MakeDoubleGradient", {W(), H(), kFrame, Colour{0x00FF0080}, Colour{0xFF00FF00}});
}

std::vector<Shape> Shapes() {
  std::vector<Shape> shapes;
  for (const Storage form : {Storage::BitmapContext, Storage::Buffer}) {
    for (const auto& [across, along] :
         {std::pair(3, 65535), std::pair(2, 65536), std::pair(2, 32766), std::pair(1, 1000000)}) {
      shapes.push_back({across, along, form});
      shapes.push_back({along, across, form});
    }
  }
  return shapes;
}

INSTANTIATE_TEST_SUITE_P(Shapes, LongLines, testing::ValuesIn(Shapes()), [](const auto& shape) {
  return (shape.param.form == Storage::Buffer ? "Buffer" : "Context") + std::to_string(shape.param.width) + "x" +
         std::to_string(shape.param.height);
});

}  // namespace
