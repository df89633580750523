// What the definitions of the methods have in common. Not for tests.
#pragma once

#include "Model.h"

namespace model {

std::uint32_t Alpha(std::uint32_t pixel);
std::uint32_t Red(std::uint32_t pixel);
std::uint32_t Green(std::uint32_t pixel);
std::uint32_t Blue(std::uint32_t pixel);
/// Alpha in bits 24-31, then the low 8 bits of each colour.
std::uint32_t Pack(std::uint32_t alpha, std::uint32_t red, std::uint32_t green, std::uint32_t blue);

/// Addition of 32-bit numbers that wraps.
std::int32_t WrappingSum(std::int32_t a, std::int32_t b);
/// The integer part. What is no number, or does not fit, gives the most negative integer.
std::int32_t IntegerPart(double value);

/// A walk along a column from one row on, down (a step of 1) or up (-1). In a buffer it ends at the
/// last row, and before a missing one; in a bitmap context it goes on.
class ColumnWalk {
 public:
  ColumnWalk(const StoredPicture& picture, int row, int step);
  int RowAfter(int steps) const;

 private:
  int row_;
  int step_;
  int most_;  // steps that lead anywhere
};

/// An Outcome that only has a code.
Outcome Failure(int code);

/// Asks for a new picture that the caller gets. Returns nil if it cannot be locked or a size is
/// below 1.
StoredPicture* MakeResult(Outcome& outcome, int width, int height, const MakePicture& make);
/// Asks for a new picture that is given up at the end of the pass that reads it. Returns nil
/// likewise.
StoredPicture* MakeTemporary(Outcome& outcome, int width, int height, const MakePicture& make);

/// One pass over a picture: its place in the chain, and its own count of pixels since the last
/// yield.
class Pass {
 public:
  Pass(Outcome& outcome, int yield, std::size_t writing, Order order, std::vector<std::size_t> alive)
      : outcome_(outcome), yield_(yield), state_{writing, 0, order, std::move(alive)} {}

  /// The rule of the methods that yield before a line and then count it.
  void BeforeLine(int line, int pixels);
  /// The rule of the methods that count a line when it is done and then yield.
  void CountAfterLine(int line, int pixels);
  /// The rule of the methods that yield when a line is done and then count it.
  void YieldAfterLine(int line, int pixels);

 private:
  void YieldIfDue(int linesDone);

  Outcome& outcome_;
  const int yield_;
  Yield state_;
  std::int64_t counter_ = 0;
};

/// The copy of a flip or turn, which free rotation starts with. `quarter` is clockwise.
void FlipRotatePass(const StoredPicture& source, StoredPicture& result, bool flipH, bool flipV, int quarter,
                    Outcome& outcome, int yield, std::size_t writing);

}  // namespace model
