#define X_DISPLAY_MISSING
#include <Imlib2.h>

#include <cmath>
#include <cstring>

#include "Peer.h"

namespace bench {
namespace {

using Image = std::shared_ptr<void>;

void Use(const Image& image) {
  imlib_context_set_image(image.get());
}

void Free(Imlib_Image image) {
  imlib_context_set_image(image);
  imlib_free_image();
}

Image Wrap(const PeerPicture& p) {
  Image image(imlib_create_image_using_copied_data(p.width, p.height, p.words), Free);
  Require(image != nullptr, "imlib_create_image");
  Use(image);
  imlib_image_set_has_alpha(1);
  return image;
}

Image Make(int width, int height) {
  Image image(imlib_create_image(width, height), Free);
  Require(image != nullptr, "imlib_create_image");
  Use(image);
  imlib_image_set_has_alpha(1);
  std::memset(imlib_image_get_data(), 0, 4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  return image;
}

// A function that changes the picture itself.
template <class Change>
std::function<void()> InPlace(const Image& image, const Change& change) {
  return [=] {
    Use(image);
    change();
  };
}

// A function that makes a picture.
template <class Function>
std::function<void()> Making(const char* name, const Image& image, const Function& make) {
  return [=] {
    Use(image);
    const Imlib_Image result = make();
    Require(result != nullptr, name);
    Free(result);
  };
}

std::function<void()> Scale(const PeerPicture& s, const Image& image, double factor) {
  const int width = static_cast<int>(s.width * factor), height = static_cast<int>(s.height * factor);
  return Making("imlib_create_cropped_scaled_image", image, [=] {
    imlib_context_set_anti_alias(1);
    return imlib_create_cropped_scaled_image(0, 0, s.width, s.height, width, height);
  });
}

// Draws the picture as a parallelogram with the given sides.
std::function<void()> Skew(const PeerPicture& s, const Image& image, int width, int height, int x, int y, int hx,
                           int hy, int vx, int vy) {
  const Image to = Make(width, height);
  return [=] {
    Use(to);
    imlib_context_set_anti_alias(1);
    imlib_context_set_blend(0);
    imlib_blend_image_onto_image_skewed(image.get(), 1, 0, 0, s.width, s.height, x, y, hx, hy, vx, vy);
  };
}

std::function<void()> AddColour(const Image& image) {
  const auto table = [](int delta) {
    std::vector<std::uint8_t> values(256);
    for (int i = 0; i < 256; ++i)
      values[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(std::max(0, std::min(255, i + delta)));
    return values;
  };
  auto red = table(20), green = table(-10), blue = table(5), alpha = table(0);
  const Image modifier(imlib_create_color_modifier(), [](Imlib_Color_Modifier m) {
    imlib_context_set_color_modifier(m);
    imlib_free_color_modifier();
  });
  imlib_context_set_color_modifier(modifier.get());
  imlib_set_color_modifier_tables(red.data(), green.data(), blue.data(), alpha.data());
  return [=] {
    Use(image);
    imlib_context_set_color_modifier(modifier.get());
    imlib_apply_color_modifier();
  };
}

std::function<void()> Gradient(const PeerPicture& like, const std::vector<std::uint32_t>& colours) {
  const Image to = Make(like.width, like.height);
  const Image range(imlib_create_color_range(), [](Imlib_Color_Range r) {
    imlib_context_set_color_range(r);
    imlib_free_color_range();
  });
  imlib_context_set_color_range(range.get());
  for (std::size_t i = 0; i < colours.size(); ++i) {
    const auto channel = [&](int shift) { return static_cast<int>(colours[i] >> shift & 0xFF); };
    imlib_context_set_color(channel(16), channel(8), channel(0), 255);
    imlib_add_color_to_color_range(i == 0 ? 0 : 100);
  }
  return [=] {
    Use(to);
    imlib_context_set_blend(0);
    imlib_context_set_color_range(range.get());
    imlib_image_fill_color_range_rectangle(0, 0, like.width, like.height, 180);
  };
}

std::vector<PeerWork> Prepare(const PeerPicture& s) {
  const Image source = Wrap(s), changed = Wrap(s);
  const int w = s.width, h = s.height, x = w / 20, y = h / 20;
  const char* const place = "the same pixels, in place";
  const char* const scale = "means of a few samples where it reduces, bilinear where it enlarges";
  const auto turn = [&](int degrees) {
    const double angle = degrees * std::atan(1) / 45;
    return Making("imlib_create_rotated_image", source, [=] {
      imlib_context_set_anti_alias(1);
      return imlib_create_rotated_image(angle);
    });
  };
  const int lean = h * 3 / 10, drop = w * 3 / 10;
  return {
      {"flip horizontal", place, InPlace(changed, [] { imlib_image_flip_horizontal(); })},
      {"flip vertical", place, InPlace(changed, [] { imlib_image_flip_vertical(); })},
      {"half turn", place, InPlace(changed, [] { imlib_image_orientate(2); })},
      {"turn 90", "the same pixels", InPlace(Wrap(s), [] { imlib_image_orientate(1); })},
      {"turn 270", "the same pixels", InPlace(Wrap(s), [] { imlib_image_orientate(3); })},
      {"trim whole", "the same pixels", Making("imlib_clone_image", source, [] { return imlib_clone_image(); })},
      {"trim inside", "the same pixels",
       Making("imlib_create_cropped_image", source,
              [=] { return imlib_create_cropped_image(w / 8, h / 8, w * 3 / 4, h * 3 / 4); })},
      {"trim border", "the same pixels",
       Making("imlib_create_cropped_image", source,
              [=] { return imlib_create_cropped_image(-x, -y, w + 2 * x, h + 2 * y); })},
      {"shear horizontal 0.3", "one bilinear warp, drawn onto a clear picture",
       Skew(s, source, w + lean, h, lean, 0, w, 0, -lean, h)},
      {"shear vertical 0.3", "one bilinear warp, drawn onto a clear picture",
       Skew(s, source, w, h + drop, 0, drop, w, -drop, 0, h)},
      {"rotate 30", "one bilinear warp instead of three shears, in a square", turn(30)},
      {"rotate 75", "one bilinear warp instead of a turn and three shears, in a square", turn(75)},
      {"stretch 1/2", scale, Scale(s, source, 0.5)},
      {"stretch 1/3.7", scale, Scale(s, source, 10 / 37.0)},
      {"stretch 0.9", scale, Scale(s, source, 0.9)},
      {"stretch 1.5", "bilinear instead of box", Scale(s, source, 1.5)},
      {"stretch 3", "bilinear instead of box", Scale(s, source, 3)},
      {"RGB in place", "a table for each channel", AddColour(changed)},
      {"gradient", "other rounding", Gradient(s, {0x3070D0, 0xF0F8FF})},
      {"double gradient", "other rounding; one row in the middle", Gradient(s, {0x3070D0, 0xF0F8FF, 0x305010})},
  };
}

}  // namespace

Peer Imlib() {
  imlib_set_cache_size(0);
  const auto number = [](int n) { return std::to_string(n); };
  return {"Imlib2",
          number(IMLIB2_VERSION_MAJOR) + '.' + number(IMLIB2_VERSION_MINOR) + '.' + number(IMLIB2_VERSION_MICRO), false,
          Prepare};
}

}  // namespace bench
