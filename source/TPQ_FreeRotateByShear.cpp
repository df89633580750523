// LMX_FreeRotateByShear: turns the source clockwise by any angle, into a new picture that just
// holds it.
//
// rotation     degrees, 0 to below 360; a NaN counts as 0
// frame_color  accepted and not used: corners and edges are always transparent
// The angle is quarter turns, which are exact, and a rest d of -45 to below 45 degrees. For the
// rest the picture is sheared three times: by tan(d/2) along its rows, by -sin(d) along its
// columns, by tan(d/2) along its rows again (Paeth, "A Fast Algorithm for General Raster Rotation",
// 1986). All three passes run also when the rest is 0.
// Errors, in this order: 31 rotation, 2 source nil. Nil with code 0 when a picture cannot be made
// or locked, and for sizes whose 16.16 positions do not fit in 32 bits. But a result whose pixels
// cannot be reached goes to the caller as it is.
#include "TPQ_FreeRotateByShear.h"

#include <cmath>
#include <cstdlib>

#include "LMX_Convert.h"
#include "LMX_Picture.h"
#include "LMX_Trigonometry.h"
#include "PrivFlipRotate.h"
#include "PrivShear.h"
#include "TPQ_Errors.h"

namespace {

// Rationale: pi has these digits only, and the results depend on them: they decide steps and sizes.
constexpr double kPi = 3.14159;
constexpr double kTwoPi = 6.28318;

constexpr unsigned int kTransparentBlack = 0xFF000000;  // as a host colour

struct Size {
  std::int32_t width;
  std::int32_t height;
};

// All that follows from the size and the angle.
struct Rotation {
  int quarter;          // quarter turns, 0 to 3
  double alongRows;     // shear of the first and third pass
  double alongColumns;  // shear of the second pass
  Size turned;          // after the quarter turns
  Size sheared;         // after the first shear
  Size shearedTwice;    // after the second shear
  Size result;
};

double Normalised(double angle) {
  if (angle < 0.0) angle += kTwoPi;
  if (angle > kTwoPi) angle -= kTwoPi;
  return angle;
}

// The smallest size that holds `size` turned by `theta` radians; `degrees` has the sign of `theta`.
Size BoundingBox(const Size& size, double theta, double degrees) {
  if (degrees == 0) return size;
  const double width = size.width;
  const double height = size.height;
  const double diagonal = 2 * std::sqrt((height * height + width * width) * 0.25);
  const double a = ArcTangent(height / width);
  const double a1 = Normalised(theta + a);
  const double a2 = Normalised((kPi - a) + theta);
  const double a3 = Normalised(theta - a);
  const double sine = Sine(degrees > 0 ? a1 : a2);
  const double cosine = Cosine(degrees > 0 ? a3 : a1);
  return {TruncatedToInt(std::ceil(diagonal * cosine)), TruncatedToInt(std::ceil(sine * diagonal))};
}

// The length of `lines` lines of `length` pixels, each displaced by `step` against the next, in
// 16.16.
std::int64_t ShearedLength(std::int32_t length, std::int32_t lines, std::int32_t step) {
  return static_cast<std::int64_t>(length) * 65536 + 65535 + static_cast<std::int64_t>(std::abs(step)) * lines;
}

// False when the picture has no pixels, or so many that 32-bit arithmetic would overflow.
bool PlanRotation(const Size& source, double rotation, Rotation* plan) {
  if (source.width < 1 || source.height < 1) return false;
  if (std::isnan(rotation)) rotation = 0;
  const int quarters = TruncatedToInt(std::floor((rotation + 45.0) / 90.0));
  const double degrees = rotation - quarters * 90;
  const double theta = degrees * kPi / 180.0;
  const double tangent = Tangent(theta * -0.5);
  const double sine = Sine(-theta);
  plan->quarter = quarters % 4;
  plan->alongRows = -tangent;
  plan->alongColumns = sine;

  const Size turned = plan->quarter % 2 == 0 ? source : Size{source.height, source.width};
  const std::int64_t sheared = ShearedLength(turned.width, turned.height, TruncatedToInt(tangent * -65536.0));
  if (!FitsInt(sheared)) return false;
  plan->turned = turned;
  plan->sheared = {static_cast<std::int32_t>(sheared / 65536), turned.height};

  const std::int64_t shearedTwice =
      ShearedLength(plan->sheared.height, plan->sheared.width, TruncatedToInt(sine * 65536.0));
  if (!FitsInt(shearedTwice)) return false;
  plan->shearedTwice = {plan->sheared.width, static_cast<std::int32_t>(shearedTwice / 65536)};
  plan->result = BoundingBox(turned, theta, degrees);
  return true;
}

bool Make(LMX_Picture& picture, const Size& size, bool keep) {
  picture.SetNewPicture(size.width, size.height, keep);
  return picture.Lock();
}

}  // namespace

REALpictureStruct* LMX_FreeRotateByShear_Frame(REALpictureStruct* p, double rotation, unsigned int /*frame_color*/,
                                               int yield) {
  gLMX_Error = rotation >= 360.0 || rotation < 0.0 ? kRotationOutOfBounds : !p ? kSourceIsNil : kNoError;
  if (gLMX_Error != kNoError) return nullptr;
  return PrivFreeRotateByShear_Frame_NonVector(p, rotation, kTransparentBlack, yield);
}

REALpictureStruct* PrivFreeRotateByShear_Frame_NonVector(REALpictureStruct* source, double rotation,
                                                         unsigned int frame_color, int yield) {
  LMX_Picture original(source);
  if (!original.Lock()) return nullptr;
  Rotation plan;
  if (!PlanRotation({original.width, original.height}, rotation, &plan)) return nullptr;

  // Each temporary picture goes when the pass that reads it is over.
  LMX_Picture result, turned, sheared, shearedTwice;
  if (!Make(turned, plan.turned, false)) return nullptr;
  TurnedRows rows(original, turned, plan.quarter, yield);
  ImageRegion image(turned);

  if (!Make(sheared, plan.sheared, false)) return nullptr;
  ShearImageHorizontal(rows, sheared, plan.alongRows, frame_color, yield, image);
  turned.Release();

  if (!Make(shearedTwice, plan.shearedTwice, false)) return nullptr;
  ShearImageVertical(sheared, shearedTwice, plan.alongColumns, frame_color, yield, image);
  sheared.Release();

  if (Make(result, plan.result, true)) {
    ShearImageHorizontal(shearedTwice, result, plan.alongRows, frame_color, yield, image);
  }
  shearedTwice.Release();
  return result.picture;
}
