// The boxes of a stretch: of which runs each average is made, and what it takes of them.
//
// Every run is worth the same number of units. Boxes take them in turn, each the same number and
// each from where the one before it ended, so that they are known from three numbers; nobody keeps
// a table of weights.
#pragma once

#include "LMX_Pixel.h"

/// Where a row of boxes begins, and the two sizes. A box takes 32768 units or a few less: what
/// kMostMissing allows.
struct BoxUnits {
  uint32_t ofRun;  ///< at least 1
  uint32_t ofBox;  ///< kWholeBox - kMostMissing to kWholeBox
  uint32_t left;   ///< what no earlier box has taken of the first run: 1 to ofRun
};
constexpr uint32_t kWholeBox = 32768;
constexpr uint32_t kMostMissing = 64;

/// A box that begins with the run in hand. Runs between its first and its last one give all that
/// they are worth.
struct Box {
  size_t count;    ///< runs, at least 1
  uint32_t first;  ///< units of the first one; all of the box's if it is the only one
  uint32_t last;   ///< units of the last one of several
  size_t advance;  ///< how many runs are used up after it
};

/// Gives the boxes one after another, without a division for each.
class BoxWalk {
 public:
  // A box that does not fit into what is left of its first run needs 1 to ofBox - 1 units more.
  // Before the last run, which gives 1 to ofRun of them, that takes (need - 1) / ofRun whole runs:
  // since the first run had at most ofRun to give, either mostWhole_ or one less.
  LMX_ALWAYS_INLINE explicit BoxWalk(const BoxUnits& units)
      : ofRun_(units.ofRun), ofBox_(units.ofBox), left_(units.left), mostWhole_((units.ofBox - 1) / units.ofRun) {}

  LMX_ALWAYS_INLINE Box Next() {
    if (left_ > ofBox_) {
      left_ -= ofBox_;
      return {1, ofBox_, 0, 0};
    }
    if (left_ == ofBox_) {
      left_ = ofRun_;
      return {1, ofBox_, 0, 1};
    }
    const uint32_t first = left_;
    const uint32_t need = ofBox_ - first;
    const uint32_t whole = need > mostWhole_ * ofRun_ ? mostWhole_ : mostWhole_ - 1;
    const uint32_t last = need - whole * ofRun_;
    const bool isUsedUp = last == ofRun_;
    left_ = isUsedUp ? ofRun_ : ofRun_ - last;
    return {whole + 2, first, last, whole + 1 + isUsedUp};
  }

 private:
  uint32_t ofRun_;
  uint32_t ofBox_;
  uint32_t left_;
  uint32_t mostWhole_;
};
