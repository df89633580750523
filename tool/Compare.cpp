#include "Compare.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "Errors.h"
#include "File.h"
#include "Job.h"
#include "PictureFile.h"
#include "Values.h"

namespace tool {
namespace {

constexpr std::array<const char*, 4> kNames = {"red", "green", "blue", "alpha"};
constexpr std::array<int, 4> kShifts = {16, 8, 0, 24};

// By channel; nothing for two clear pixels.
std::array<int, 4> Distances(std::uint32_t a, std::uint32_t b) {
  std::array<int, 4> distances{};
  if ((a | b) >> 24 == 0) return distances;
  for (std::size_t i = 0; i < distances.size(); ++i) {
    distances[i] = std::abs(static_cast<int>(a >> kShifts[i] & 0xFF) - static_cast<int>(b >> kShifts[i] & 0xFF));
  }
  return distances;
}

int LargestOf(const Difference& difference) {
  int largest = 0;
  for (const Difference::Largest& channel : difference.channels) largest = std::max(largest, channel.amount);
  return largest;
}

std::string SizeText(const Image& image) {
  return std::to_string(image.width) + " x " + std::to_string(image.height);
}

void WriteJson(const Image& a, const Image& b, bool equal, const Difference* difference) {
  std::cout << "{\"equal\":" << (equal ? "true" : "false") << ",\"widths\":[" << a.width << ',' << b.width
            << "],\"heights\":[" << a.height << ',' << b.height << "],\"pixels\":";
  if (difference == nullptr) {
    std::cout << "null}\n";
    return;
  }
  std::cout << difference->pixels;
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    const Difference::Largest& largest = difference->channels[i];
    std::cout << ",\"" << kNames[i] << "\":{\"largest\":" << largest.amount;
    if (largest.amount != 0) std::cout << ",\"x\":" << largest.x << ",\"y\":" << largest.y;
    std::cout << '}';
  }
  std::cout << "}\n";
}

void WriteText(const Image& a, bool equal, const Difference& difference, int tolerance) {
  if (LargestOf(difference) == 0) {
    std::cout << "the pictures are equal, " << SizeText(a) << " pixels\n";
    return;
  }
  std::cout << difference.pixels << " of " << a.pixels.size() << " pixels differ";
  if (tolerance != 0) std::cout << " by more than " << tolerance;
  std::cout << (equal ? ": the pictures count as equal" : "") << '\n';
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    const Difference::Largest& largest = difference.channels[i];
    if (largest.amount == 0) continue;
    std::cout << kNames[i] << " by up to " << largest.amount << ", at column " << largest.x << ", row " << largest.y
              << '\n';
  }
}

int CompareFiles(const CommandLine& line, const std::vector<std::string>& files, const Encoding& encoding) {
  const int tolerance = line.tolerance.value_or(0);
  const Image a = ReadPicture(files[0]), b = ReadPicture(files[1]);
  if (a.width != b.width || a.height != b.height) {
    if (line.json) {
      WriteJson(a, b, false, nullptr);
    } else {
      std::cout << "the sizes differ: " << SizeText(a) << " and " << SizeText(b) << " pixels\n";
    }
    if (line.output) throw Failure("pictures of two sizes have no picture of their difference for -o " + *line.output);
    return kDifferent;
  }
  const Difference difference = Compare(a, b, tolerance);
  const bool equal = difference.pixels == 0;
  if (line.json) {
    WriteJson(a, b, equal, &difference);
  } else {
    WriteText(a, equal, difference, tolerance);
  }
  if (line.output) WritePicture(*line.output, PictureOfDifference(a, b, difference), encoding);
  return equal ? 0 : kDifferent;
}

}  // namespace

Difference Compare(const Image& a, const Image& b, int tolerance) {
  Difference difference;
  for (std::size_t i = 0; i < a.pixels.size(); ++i) {
    if (a.pixels[i] == b.pixels[i]) continue;
    const std::array<int, 4> distances = Distances(a.pixels[i], b.pixels[i]);
    if (*std::max_element(distances.begin(), distances.end()) > tolerance) ++difference.pixels;
    for (std::size_t channel = 0; channel < distances.size(); ++channel) {
      Difference::Largest& largest = difference.channels[channel];
      if (distances[channel] <= largest.amount) continue;
      const auto width = static_cast<std::size_t>(a.width);
      largest = {distances[channel], static_cast<int>(i % width), static_cast<int>(i / width)};
    }
  }
  return difference;
}

Image PictureOfDifference(const Image& a, const Image& b, const Difference& difference) {
  const int largest = std::max(LargestOf(difference), 1);
  Image image{a.width, a.height, {}};
  image.pixels.reserve(a.pixels.size());
  for (std::size_t i = 0; i < a.pixels.size(); ++i) {
    const std::array<int, 4> distances = Distances(a.pixels[i], b.pixels[i]);
    std::uint32_t pixel = 0xFF000000;
    for (std::size_t channel = 0; channel < 3; ++channel) {
      const int shown = 255 * std::max(distances[channel], distances[3]) / largest;
      pixel |= static_cast<std::uint32_t>(shown) << kShifts[channel];
    }
    image.pixels.push_back(pixel);
  }
  return image;
}

int ComparePictures(const CommandLine& line) {
  const std::vector<std::string>& files = line.steps.front().operands;
  if (line.steps.size() != 1 || files.size() != 2 || !line.steps.front().assignments.empty()) {
    throw UsageError("`compare` takes two pictures: lmx compare a.png b.png");
  }
  if (files[0] == kStandardStream && files[1] == kStandardStream) throw UsageError("standard input is one picture");
  const Encoding encoding = EncodingOf(line);
  if (line.output == kStandardStream)
    throw UsageError("`compare` has a text for standard output: give a file after -o");
  try {
    const int status = CompareFiles(line, files, encoding);
    if (!std::cout.flush()) throw Failure("cannot write to standard output");
    return status;
  } catch (const Failure& failure) {
    throw Trouble(failure.what());
  } catch (const std::bad_alloc&) {
    throw Trouble("not enough memory");
  }
}

}  // namespace tool
