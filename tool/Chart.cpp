// The chart is a card with soft edges on a clear ground. Text and four different corners show flips
// and turns, line pairs, star and zone plate show resampling, the wheel and the bars show colours,
// the ramps show steps, and a window in the card shows soft transparency. Its sides are odd and
// differ.
#include "Chart.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "Canvas.h"

namespace tool {
namespace {

constexpr int kWidth = 761, kHeight = 507;
constexpr double kPi = 3.14159265358979323846;

constexpr Area kCard{14, 12, 733, 477};
constexpr double kCardRadius = 22;
constexpr int kHeaderHeight = 60;
constexpr Area kWindow{474, 92, 252, 200};

constexpr std::uint32_t kInk = 0x1B2333, kPaper = 0xFBFAF6, kMuted = 0x8A93A5;
constexpr std::uint32_t kCoral = 0xE4572E, kYellow = 0xFFC914, kTeal = 0x17A3A0, kGreen = 0x76B041;

double Length(double x, double y) {
  return std::sqrt(x * x + y * y);
}

// Distance to the edge of a rectangle with round corners; below 0 inside.
double DistanceToRounded(Area area, double radius, double x, double y) {
  const double dx = std::fabs(x - (area.x + area.width / 2.0)) - (area.width / 2.0 - radius);
  const double dy = std::fabs(y - (area.y + area.height / 2.0)) - (area.height / 2.0 - radius);
  return Length(std::max(dx, 0.0), std::max(dy, 0.0)) + std::min(std::max(dx, dy), 0.0) - radius;
}

// Falls smoothly from 1 at distance 0 to 0 at distance `reach`.
double Falloff(double distance, double reach) {
  const double t = 1 - std::clamp(distance / reach, 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

Paint Hue(double turn, double saturation) {
  const auto channel = [&](double offset) {
    const double ramp = std::fabs(std::fmod(turn + offset, 1.0) * 6 - 3) - 1;
    return static_cast<float>(1 - saturation * (1 - std::clamp(ramp, 0.0, 1.0)));
  };
  return {channel(0), channel(2 / 3.0), channel(1 / 3.0), 1};
}

Paint Grey(double level) {
  const float channel = static_cast<float>(std::clamp(level, 0.0, 1.0));
  return {channel, channel, channel, 1};
}

// A shape within a circle; the shader gets radius (0 to 1) and direction (0 to 1, clockwise from
// the right).
template <class Shader>
void DrawDisc(Canvas& canvas, int x, int y, int radius, Shader shader) {
  canvas.Draw({x - radius, y - radius, 2 * radius, 2 * radius}, [=](double px, double py) {
    const double distance = Length(px - x, py - y) / radius;
    if (distance > 1) return Paint();
    const double turn = std::atan2(py - y, px - x) / (2 * kPi);
    return shader(distance, turn < 0 ? turn + 1 : turn);
  });
}

void DrawCard(Canvas& canvas) {
  Area shadow = kCard;
  shadow.y += 4;
  canvas.Draw({0, 0, kWidth, kHeight}, [=](double x, double y) {
    return WithAlpha(Opaque(kInk), 0.45 * Falloff(DistanceToRounded(shadow, kCardRadius, x, y), 13));
  });
  // In each corner a quarter of a disc, in its own colour.
  canvas.Draw(kCard, [](double x, double y) {
    if (DistanceToRounded(kCard, kCardRadius, x, y) > 0) return Paint();
    const bool left = x < kWidth / 2.0, top = y < kHeight / 2.0;
    const double cornerX = left ? kCard.x : kCard.x + kCard.width, cornerY = top ? kCard.y : kCard.y + kCard.height;
    if (Length(x - cornerX, y - cornerY) < 46) {
      return Opaque(top ? (left ? kCoral : kYellow) : (left ? kTeal : kGreen));
    }
    return Opaque(y < kCard.y + kHeaderHeight ? kInk : kPaper);
  });
}

void DrawHeader(Canvas& canvas) {
  canvas.Write(74, 28, 4, Opaque(kPaper), "LMX TEST CHART");
  const std::string size = std::to_string(kWidth) + " X " + std::to_string(kHeight);
  canvas.Write(694 - Canvas::TextWidth(2, size), 35, 2, Opaque(kMuted), size);
}

void DrawWheelAndStar(Canvas& canvas) {
  DrawDisc(canvas, 134, 192, 100, [](double distance, double turn) { return Hue(turn, distance); });
  DrawDisc(canvas, 354, 192, 100, [](double distance, double turn) {
    const bool spoke = distance > 0.985 || std::fmod(turn * 36, 1.0) < 0.5;
    return Opaque(spoke ? kInk : kPaper);
  });
}

// A hole through the card, with coloured light and a strip of growing alpha in it.
void DrawWindow(Canvas& canvas) {
  const auto inside = [](double x, double y) { return DistanceToRounded(kWindow, 14, x, y) < 0; };
  canvas.Erase(kWindow, [=](double x, double y) { return inside(x, y) ? Opaque(0) : Paint(); });
  const struct {
    int x, y;
    std::uint32_t colour;
  } lights[] = {{556, 152, 0xFF2D2D}, {644, 152, 0x21C521}, {600, 208, 0x2D50FF}};
  for (const auto& light : lights) {
    DrawDisc(canvas, light.x, light.y, 70, [&light](double distance, double) {
      return WithAlpha(Opaque(light.colour), 0.9 * Falloff(distance - 0.1, 0.9));
    });
  }
  canvas.Draw({490, 262, 220, 18}, [](double x, double) { return WithAlpha(Opaque(kInk), (x - 490) / 220); });
}

// Groups of lines one to four pixels wide, upright above and lying below.
void DrawLinePairs(Canvas& canvas) {
  constexpr int kPairs = 5, kGap = 8;
  int x = 38;
  for (int width = 1; width <= 4; ++width) {
    const int extent = 2 * width * kPairs;
    for (int line = 0; line < kPairs; ++line) {
      canvas.Fill({x + 2 * width * line, 336, width, 54}, Opaque(kInk));
      canvas.Fill({x, 402 + 2 * width * line, std::max(extent - width, 14), width}, Opaque(kInk));
    }
    canvas.Write(x, 322, 1, Opaque(kMuted), std::to_string(width));
    x += std::max(extent, 16) + kGap;
  }
}

// Rings that become finer outwards, up to nearly one pixel each.
void DrawZonePlate(Canvas& canvas) {
  DrawDisc(canvas, 248, 390, 68, [](double distance, double) {
    constexpr double kRadius = 68;
    const double phase = 0.42 * kPi * kRadius * distance * distance;
    return Grey(0.53 + 0.43 * std::cos(phase));
  });
}

void DrawBarsAndRamps(Canvas& canvas) {
  constexpr int kLeft = 342, kAcross = 384;
  const std::uint32_t bars[] = {0xFFFFFF, 0xFFFF00, 0x00FFFF, 0x00FF00, 0xFF00FF, 0xFF0000, 0x0000FF, 0x000000};
  canvas.Fill({kLeft - 1, 321, kAcross + 2, 42}, Opaque(kMuted));
  canvas.Fill({kLeft - 1, 369, kAcross + 2, 54}, Opaque(kMuted));
  int x = kLeft;
  for (const std::uint32_t bar : bars) {
    canvas.Fill({x, 322, kAcross / 8, 40}, Opaque(bar));
    x += kAcross / 8;
  }
  for (int step = 0; step < 16; ++step) {
    canvas.Fill({kLeft + step * (kAcross / 16), 370, kAcross / 16, 26}, Grey(step / 15.0));
  }
  canvas.Draw({kLeft, 396, kAcross, 26}, [](double px, double) { return Grey((px - kLeft) / kAcross); });
}

void DrawText(Canvas& canvas) {
  canvas.Write(342, 432, 2, Opaque(kInk), "ABCDEFGHIJKLMNOPQRSTUVWXYZ");
  canvas.Write(342, 453, 1, Opaque(kInk), "THE QUICK BROWN FOX JUMPS OVER THE LAZY DOG 0123456789");
  canvas.Fill({342, 466, 384, 1}, Opaque(kCoral));
}

}  // namespace

Image MakeChart() {
  Canvas canvas(kWidth, kHeight);
  DrawCard(canvas);
  DrawHeader(canvas);
  DrawWheelAndStar(canvas);
  DrawWindow(canvas);
  DrawLinePairs(canvas);
  DrawZonePlate(canvas);
  DrawBarsAndRamps(canvas);
  DrawText(canvas);
  return canvas.Finish();
}

}  // namespace tool
