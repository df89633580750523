#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "Peer.h"

namespace bench {
namespace {

constexpr int kStrip = 16;  // rows that stay in the cache between conversions

cv::Mat Wrap(const PeerPicture& picture) {
  return {picture.height, picture.width, CV_8UC4, picture.words};
}

cv::Mat Result(int width, int height) {
  return {height, width, CV_8UC4, cv::Scalar(0, 0, 0, 0)};
}

std::function<void()> Flip(const PeerPicture& s, int code) {
  return [from = Wrap(s), to = Result(s.width, s.height), code]() mutable { cv::flip(from, to, code); };
}

std::function<void()> Rotate(const PeerPicture& s, int code) {
  return [from = Wrap(s), to = Result(s.height, s.width), code]() mutable { cv::rotate(from, to, code); };
}

std::function<void()> Copy(const PeerPicture& s, cv::Rect part) {
  return [from = Wrap(s)(part), to = Result(part.width, part.height)]() mutable { from.copyTo(to); };
}

std::function<void()> Border(const PeerPicture& s) {
  const int x = s.width / 20, y = s.height / 20;
  return [from = Wrap(s), to = Result(s.width + 2 * x, s.height + 2 * y), x, y]() mutable {
    cv::copyMakeBorder(from, to, y, y, x, x, cv::BORDER_CONSTANT, cv::Scalar(0, 0, 0, 0));
  };
}

// `matrix` maps places of the source to places of the result.
std::function<void()> Warp(const PeerPicture& s, const cv::Matx23d& matrix, int width, int height) {
  return [from = Wrap(s), to = Result(width, height), matrix]() mutable {
    cv::warpAffine(from, to, matrix, to.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT, cv::Scalar(0, 0, 0, 0));
  };
}

std::function<void()> Turn(const PeerPicture& s, double degrees) {
  const double angle = degrees * CV_PI / 180, c = std::cos(angle), i = std::sin(angle);
  const double width = s.width * c + s.height * i, height = s.width * i + s.height * c;
  const cv::Matx23d matrix(c, -i, (width - s.width * c + s.height * i) / 2,  //
                           i, c, (height - s.width * i - s.height * c) / 2);
  return Warp(s, matrix, static_cast<int>(width), static_cast<int>(height));
}

std::function<void()> Resize(const PeerPicture& s, double factor, int mode) {
  const int width = static_cast<int>(s.width * factor), height = static_cast<int>(s.height * factor);
  return [from = Wrap(s), to = Result(width, height), mode]() mutable { cv::resize(from, to, to.size(), 0, 0, mode); };
}

// Works on each strip of the picture, as hue, saturation and value.
template <class Work>
void ForEachStrip(const cv::Mat& from, const Work& work) {
  thread_local cv::Mat colours, hsv;
  for (int y = 0; y < from.rows; y += kStrip) {
    const cv::Range rows(y, std::min(y + kStrip, from.rows));
    cv::cvtColor(from.rowRange(rows), colours, cv::COLOR_BGRA2BGR);
    cv::cvtColor(colours, hsv, cv::COLOR_BGR2HSV_FULL);
    work(rows, colours, hsv);
  }
}

std::function<void()> AdjustHsv(const PeerPicture& s) {
  cv::Mat table(1, 256, CV_8UC3);
  for (int i = 0; i < 256; ++i) {
    const auto hue = static_cast<std::uint8_t>(i + 21), same = static_cast<std::uint8_t>(i);
    table.at<cv::Vec3b>(i) = {hue, same, same};
  }
  return [from = Wrap(s), to = Result(s.width, s.height), table]() mutable {
    ForEachStrip(from, [&](const cv::Range& rows, cv::Mat& colours, cv::Mat& hsv) {
      cv::LUT(hsv, table, hsv);
      cv::cvtColor(hsv, colours, cv::COLOR_HSV2BGR_FULL);
      cv::cvtColor(colours, to.rowRange(rows), cv::COLOR_BGR2BGRA);
    });
  };
}

std::function<void()> MeanHsv(const PeerPicture& s) {
  return [from = Wrap(s)] {
    cv::Scalar sum;
    ForEachStrip(from, [&](const cv::Range&, const cv::Mat&, const cv::Mat& hsv) { sum += cv::sum(hsv); });
    Require(sum[2] > 0, "sum");
  };
}

std::function<void()> Add(const PeerPicture& s) {
  return [from = Wrap(s), to = Result(s.width, s.height)]() mutable { cv::add(from, cv::Scalar(5, -10, 20, 0), to); };
}

std::function<void()> Mean(const PeerPicture& s) {
  return [from = Wrap(s)] { Require(cv::mean(from)[0] > 0, "mean"); };
}

std::vector<PeerWork> Prepare(const PeerPicture& s) {
  const char* const exact = "the same pixels; translucent ones are moved, not converted";
  const char* const warp = "one bilinear warp with positions in 1/32 pixel; premultiplied";
  const cv::Rect inside(s.width / 8, s.height / 8, s.width * 3 / 4, s.height * 3 / 4);
  const int tall = s.height + s.width * 3 / 10, wide = s.width + s.height * 3 / 10;
  return {
      {"flip horizontal", exact, Flip(s, 1)},
      {"flip vertical", exact, Flip(s, 0)},
      {"half turn", exact, Flip(s, -1)},
      {"turn 90", exact, Rotate(s, cv::ROTATE_90_CLOCKWISE)},
      {"turn 270", exact, Rotate(s, cv::ROTATE_90_COUNTERCLOCKWISE)},
      {"trim whole", exact, Copy(s, {0, 0, s.width, s.height})},
      {"trim inside", exact, Copy(s, inside)},
      {"trim border", exact, Border(s)},
      {"shear horizontal 0.3", warp, Warp(s, {1, -0.3, 0.3 * s.height, 0, 1, 0}, wide, s.height)},
      {"shear vertical 0.3", warp, Warp(s, {1, 0, 0, -0.3, 1, 0.3 * s.width}, s.width, tall)},
      {"rotate 30", "one bilinear warp instead of three shears; premultiplied", Turn(s, 30)},
      {"rotate 75", "one bilinear warp instead of a turn and three shears; premultiplied", Turn(s, 75)},
      {"stretch 1/2", "area, rounded once; premultiplied", Resize(s, 0.5, cv::INTER_AREA)},
      {"stretch 1/3.7", "area, in floating point; premultiplied", Resize(s, 10 / 37.0, cv::INTER_AREA)},
      {"stretch 0.9", "area, in floating point; premultiplied", Resize(s, 0.9, cv::INTER_AREA)},
      {"stretch 1.5", "bilinear instead of box, 11-bit weights", Resize(s, 1.5, cv::INTER_LINEAR)},
      {"stretch 3", "bilinear instead of box, 11-bit weights", Resize(s, 3, cv::INTER_LINEAR)},
      {"HSV", "hue in 256 steps, 8-bit saturation and value; alpha becomes opaque", AdjustHsv(s)},
      {"RGB", "a saturating addition; on premultiplied colours", Add(s)},
      {"average RGB", "four channels; of premultiplied colours", Mean(s)},
      {"average HSV", "mean of 8-bit hues, saturations and values; premultiplied", MeanHsv(s)},
  };
}

}  // namespace

Peer OpenCv() {
  cv::setNumThreads(1);
  return {"OpenCV", cv::getVersionString(), true, Prepare};
}

}  // namespace bench
