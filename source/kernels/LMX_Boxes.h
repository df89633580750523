// The boxes of a stretch: which runs each average covers, and with which weights.
//
// Every run is worth the same number of units. Every box takes the same number of units, and begins
// where the box before it ended. So three numbers describe all boxes, without a table of weights.
#pragma once

#include "LMX_Pixel.h"

/// The first of a row of boxes, and the two sizes. The kernel `boxes` takes boxes of 32768 units or
/// a few less (kMostMissing). PrivStretch.cpp derives what occurs.
struct BoxUnits {
  uint32_t ofRun;  ///< what a run is worth, at least 1
  uint32_t ofBox;  ///< what a box takes: kWholeBox - kMostMissing to kWholeBox in `boxes`
  uint32_t left;   ///< the units of the first run that no earlier box has taken: 1 to ofRun
};
constexpr uint32_t kWholeBox = 32768;
constexpr uint32_t kMostMissing = 64;

/// One box. It takes all units of the runs between its first and its last one.
struct Box {
  size_t count;    ///< runs, at least 1
  uint32_t first;  ///< units of the first run; all of the box's if there is one run only
  uint32_t last;   ///< units of the last of several runs
  size_t advance;  ///< how many runs are used up when the box is full
};

/// Gives the boxes one after another, without a division for each.
class BoxWalk {
 public:
  // A box that is larger than the rest of its first run needs 1 to ofBox - 1 more units. The last
  // run gives 1 to ofRun of them, so (need - 1) / ofRun whole runs lie before it. The first run
  // gave 1 to ofRun units, so need - 1 is ofBox - 1 less 1 to ofRun, and the quotient is mostWhole_
  // or mostWhole_ - 1: no division.
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
