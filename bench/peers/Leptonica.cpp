#include <leptonica/allheaders.h>

#include <cmath>

#include "Peer.h"

namespace bench {
namespace {

using Image = std::shared_ptr<Pix>;

void Destroy(Pix* pix) {
  pixDestroy(&pix);
}

// The library's words are 0xRRGGBBAA.
Image Wrap(const PeerPicture& p) {
  Image image(pixCreate(p.width, p.height, 32), Destroy);
  Require(image != nullptr, "pixCreate");
  l_uint32* const data = pixGetData(image.get());
  const std::size_t count = static_cast<std::size_t>(p.width) * static_cast<std::size_t>(p.height);
  for (std::size_t i = 0; i < count; ++i) data[i] = p.words[i] << 8 | p.words[i] >> 24;
  return image;
}

// A function that makes a picture.
template <class Make>
std::function<void()> Making(const char* name, const Make& make) {
  return [=] {
    Pix* result = make();
    Require(result != nullptr, name);
    pixDestroy(&result);
  };
}

std::vector<PeerWork> Prepare(const PeerPicture& s) {
  const Image image = Wrap(s);
  Pix* const p = image.get();
  const int w = s.width, h = s.height;
  const std::shared_ptr<Box> inside(boxCreate(w / 8, h / 8, w * 3 / 4, h * 3 / 4), [](Box* box) { boxDestroy(&box); });
  const Image wide(pixAddBorderGeneral(p, 0, h * 3 / 10, 0, 0, 0), Destroy);
  const Image tall(pixAddBorderGeneral(p, 0, 0, 0, w * 3 / 10, 0), Destroy);
  const auto angle = static_cast<float>(std::atan(0.3)), degree = static_cast<float>(std::atan(1) / 45);
  const auto turn = [&](int degrees) {
    return Making("pixRotate", [=, keep = image] {
      return pixRotate(keep.get(), static_cast<float>(degrees) * degree, L_ROTATE_AREA_MAP, L_BRING_IN_BLACK, w, h);
    });
  };
  const auto reduce = [&](float scale) {
    return Making("pixScaleAreaMap", [=, keep = image] { return pixScaleAreaMap(keep.get(), scale, scale); });
  };
  const auto enlarge = [&](float scale) {
    return Making("pixScaleColorLI", [=, keep = image] { return pixScaleColorLI(keep.get(), scale, scale); });
  };
  const char* const exact = "the same pixels";
  const char* const shear = "4-bit weights; within a picture that was enlarged before; without alpha";
  return {
      {"flip horizontal", exact, Making("pixFlipLR", [=, keep = image] { return pixFlipLR(nullptr, keep.get()); })},
      {"flip vertical", exact, Making("pixFlipTB", [=, keep = image] { return pixFlipTB(nullptr, keep.get()); })},
      {"half turn", exact, Making("pixRotate180", [=, keep = image] { return pixRotate180(nullptr, keep.get()); })},
      {"turn 90", exact, Making("pixRotate90", [=, keep = image] { return pixRotate90(keep.get(), 1); })},
      {"turn 270", exact, Making("pixRotate90", [=, keep = image] { return pixRotate90(keep.get(), -1); })},
      {"trim whole", exact, Making("pixCopy", [=, keep = image] { return pixCopy(nullptr, keep.get()); })},
      {"trim inside", exact,
       Making("pixClipRectangle", [=, keep = image] { return pixClipRectangle(keep.get(), inside.get(), nullptr); })},
      {"trim border", exact,
       Making("pixAddBorderGeneral",
              [=, keep = image] { return pixAddBorderGeneral(keep.get(), w / 20, w / 20, h / 20, h / 20, 0); })},
      {"shear horizontal 0.3", shear,
       Making("pixHShearLI", [=] { return pixHShearLI(wide.get(), h - 1, angle, L_BRING_IN_BLACK); })},
      {"shear vertical 0.3", shear,
       Making("pixVShearLI", [=] { return pixVShearLI(tall.get(), w - 1, angle, L_BRING_IN_BLACK); })},
      {"rotate 30", "one warp with 4-bit weights instead of three shears; without alpha", turn(30)},
      {"rotate 75", "one warp with 4-bit weights instead of a turn and three shears; without alpha", turn(75)},
      {"stretch 1/2", "area, rounded once; without alpha", reduce(0.5F)},
      {"stretch 1/3.7", "area in 1/16 pixels; without alpha", reduce(10 / 37.0F)},
      {"stretch 0.9", "bilinear, 4-bit weights; without alpha", enlarge(0.9F)},
      {"stretch 1.5", "bilinear instead of box, 4-bit weights; without alpha", enlarge(1.5F)},
      {"stretch 3", "bilinear instead of box, 4-bit weights; without alpha", enlarge(3)},
      {"HSV", "hue in 240 steps, 8-bit saturation and value; without alpha",
       Making("pixModifyHue", [=, keep = image] { return pixModifyHue(nullptr, keep.get(), 1 / 6.0F); })},
      {"RGB", "a table for each channel, towards black or white; without alpha",
       Making("pixColorShiftRGB", [=, keep = image] { return pixColorShiftRGB(keep.get(), 0.1F, -0.05F, 0.02F); })},
      {"average RGB", "the same",
       [=, keep = image] {
         float red = 0, green = 0, blue = 0;
         Require(pixGetAverageMaskedRGB(keep.get(), nullptr, 0, 0, 1, L_MEAN_ABSVAL, &red, &green, &blue) == 0,
                 "pixGetAverageMaskedRGB");
       }},
  };
}

}  // namespace

Peer Leptonica() {
  const std::unique_ptr<char, decltype(&lept_free)> version(getLeptonicaVersion(), lept_free);
  const std::string text = version.get();
  return {"leptonica", text.substr(text.find('-') + 1), false, Prepare};
}

}  // namespace bench
