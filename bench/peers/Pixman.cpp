#include <pixman.h>

#include <cmath>

#include "Peer.h"

namespace bench {
namespace {

using Image = std::shared_ptr<pixman_image_t>;

Image Wrap(const PeerPicture& p) {
  return {pixman_image_create_bits(PIXMAN_a8r8g8b8, p.width, p.height, p.words, p.Stride()), pixman_image_unref};
}

// A picture, the map from places of the result to its own, and a filter.
struct Mapped {
  pixman_f_transform matrix;
  pixman_filter_t filter;
};

Mapped Identity() {
  return {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}}, PIXMAN_FILTER_NEAREST};
}

Mapped Affine(double xx, double xy, double x0, double yx, double yy, double y0, pixman_filter_t filter) {
  return {{{{xx, xy, x0}, {yx, yy, y0}, {0, 0, 1}}}, filter};
}

// Keeps the memory of the result as long as the work.
struct Target {
  explicit Target(int width, int height) : canvas(width, height), image(Wrap(canvas.Picture())) {}
  Canvas canvas;
  Image image;
};

std::function<void()> Compose(const Image& from, int x, int y, int width, int height) {
  const Target to(width, height);
  return [=] {
    pixman_image_composite32(PIXMAN_OP_SRC, from.get(), nullptr, to.image.get(), x, y, 0, 0, 0, 0, width, height);
  };
}

std::function<void()> Transform(const PeerPicture& s, const Mapped& by, int width, int height) {
  const Image from = Wrap(s);
  pixman_transform_t fixed;
  Require(pixman_transform_from_pixman_f_transform(&fixed, &by.matrix) != 0, "pixman_transform_from");
  Require(pixman_image_set_transform(from.get(), &fixed) != 0, "pixman_image_set_transform");
  Require(pixman_image_set_filter(from.get(), by.filter, nullptr, 0) != 0, "pixman_image_set_filter");
  return Compose(from, 0, 0, width, height);
}

std::function<void()> Scale(const PeerPicture& s, double factor) {
  const int width = static_cast<int>(s.width * factor), height = static_cast<int>(s.height * factor);
  return Transform(s, Affine(1 / factor, 0, 0, 0, 1 / factor, 0, PIXMAN_FILTER_BILINEAR), width, height);
}

// The filter that weights every source pixel by the area that it covers.
std::function<void()> ScaleByArea(const PeerPicture& s, double factor) {
  const int width = static_cast<int>(s.width * factor), height = static_cast<int>(s.height * factor);
  const Image from = Wrap(s);
  const pixman_fixed_t step = pixman_double_to_fixed(1 / factor);
  pixman_transform_t scale;
  pixman_transform_init_scale(&scale, step, step);
  Require(pixman_image_set_transform(from.get(), &scale) != 0, "pixman_image_set_transform");
  int count = 0;
  pixman_fixed_t* const weights = pixman_filter_create_separable_convolution(
      &count, step, step, PIXMAN_KERNEL_IMPULSE, PIXMAN_KERNEL_IMPULSE, PIXMAN_KERNEL_BOX, PIXMAN_KERNEL_BOX, 4, 4);
  const bool set = pixman_image_set_filter(from.get(), PIXMAN_FILTER_SEPARABLE_CONVOLUTION, weights, count) != 0;
  std::free(weights);
  Require(set, "pixman_image_set_filter");
  return Compose(from, 0, 0, width, height);
}

std::function<void()> Turn(const PeerPicture& s, double degrees) {
  const double angle = degrees * 3.14159265358979 / 180, c = std::cos(angle), i = std::sin(angle);
  const double width = s.width * c + s.height * i, height = s.width * i + s.height * c;
  const Mapped by = Affine(c, i, s.width / 2.0 - (c * width + i * height) / 2, -i, c,
                           s.height / 2.0 + (i * width - c * height) / 2, PIXMAN_FILTER_BILINEAR);
  return Transform(s, by, static_cast<int>(width), static_cast<int>(height));
}

std::function<void()> Gradient(const PeerPicture& like, const std::vector<std::uint32_t>& colours) {
  std::vector<pixman_gradient_stop_t> stops;
  for (std::size_t i = 0; i < colours.size(); ++i) {
    const auto channel = [&](int shift) { return static_cast<std::uint16_t>((colours[i] >> shift & 0xFF) * 257); };
    const double place = static_cast<double>(i) / static_cast<double>(colours.size() - 1);
    stops.push_back({pixman_double_to_fixed(place), {channel(16), channel(8), channel(0), 0xFFFF}});
  }
  const pixman_point_fixed_t top = {0, 0}, bottom = {0, pixman_int_to_fixed(like.height)};
  const Image from(pixman_image_create_linear_gradient(&top, &bottom, stops.data(), static_cast<int>(stops.size())),
                   pixman_image_unref);
  return Compose(from, 0, 0, like.width, like.height);
}

std::vector<PeerWork> Prepare(const PeerPicture& s) {
  const char* const exact = "the same pixels; translucent ones are moved, not converted";
  const char* const warp = "one bilinear warp with 7-bit weights; premultiplied";
  const double w = s.width, h = s.height;
  const int x = s.width / 20, y = s.height / 20;
  const auto nearest = PIXMAN_FILTER_NEAREST, bilinear = PIXMAN_FILTER_BILINEAR;
  const Image plain = Wrap(s);
  const int tall = s.height + s.width * 3 / 10, wide = s.width + s.height * 3 / 10;
  return {
      {"flip horizontal", exact, Transform(s, Affine(-1, 0, w, 0, 1, 0, nearest), s.width, s.height)},
      {"flip vertical", exact, Transform(s, Affine(1, 0, 0, 0, -1, h, nearest), s.width, s.height)},
      {"half turn", exact, Transform(s, Affine(-1, 0, w, 0, -1, h, nearest), s.width, s.height)},
      {"turn 90", exact, Transform(s, Affine(0, 1, 0, -1, 0, h, nearest), s.height, s.width)},
      {"turn 270", exact, Transform(s, Affine(0, -1, w, 1, 0, 0, nearest), s.height, s.width)},
      {"trim whole", exact, Transform(s, Identity(), s.width, s.height)},
      {"trim inside", exact, Compose(plain, s.width / 8, s.height / 8, s.width * 3 / 4, s.height * 3 / 4)},
      {"trim border", exact, Compose(plain, -x, -y, s.width + 2 * x, s.height + 2 * y)},
      {"shear horizontal 0.3", warp, Transform(s, Affine(1, 0.3, -0.3 * h, 0, 1, 0, bilinear), wide, s.height)},
      {"shear vertical 0.3", warp, Transform(s, Affine(1, 0, 0, 0.3, 1, -0.3 * w, bilinear), s.width, tall)},
      {"rotate 30", "one bilinear warp instead of three shears; premultiplied", Turn(s, 30)},
      {"rotate 75", "one bilinear warp instead of a turn and three shears; premultiplied", Turn(s, 75)},
      {"stretch 1/2", "bilinear, which is the mean of 2 x 2 here; premultiplied", Scale(s, 0.5)},
      {"stretch 1/3.7", "area, 16 positions for each pixel; premultiplied", ScaleByArea(s, 10 / 37.0)},
      {"stretch 0.9", "area, 16 positions for each pixel; premultiplied", ScaleByArea(s, 0.9)},
      {"stretch 1.5", "bilinear instead of box, 7-bit weights; premultiplied", Scale(s, 1.5)},
      {"stretch 3", "bilinear instead of box, 7-bit weights; premultiplied", Scale(s, 3)},
      {"gradient", "other rounding", Gradient(s, {0x3070D0, 0xF0F8FF})},
      {"double gradient", "other rounding; one row in the middle", Gradient(s, {0x3070D0, 0xF0F8FF, 0x305010})},
  };
}

}  // namespace

Peer Pixman() {
  return {"pixman", pixman_version_string(), true, Prepare};
}

}  // namespace bench
