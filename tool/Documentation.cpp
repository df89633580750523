#include "Documentation.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/Declaration.h"

namespace tool {
namespace {

// ---- Values of arguments that are left out ----

std::int32_t Clamped(double number) {
  using Limits = std::numeric_limits<std::int32_t>;
  if (std::isnan(number)) return 0;
  return static_cast<std::int32_t>(
      std::clamp(number, static_cast<double>(Limits::min()), static_cast<double>(Limits::max())));
}

double Given(const Situation& situation, const char* argument, double otherwise) {
  const auto found = situation.numbers.find(argument);
  return found == situation.numbers.end() ? otherwise : found->second;
}

std::int32_t ToRightEdge(const Situation& situation) {
  return Clamped(situation.width - Given(situation, "left", 0));
}

std::int32_t ToBottomEdge(const Situation& situation) {
  return Clamped(situation.height - Given(situation, "top", 0));
}

// The length that keeps the proportions when the other side becomes `wanted`.
std::int32_t InProportion(int length, int otherLength, double wanted) {
  if (wanted < 1 || otherLength < 1) return length;
  return std::max(Clamped(std::round(length * wanted / otherLength)), 1);
}

std::int32_t WidthInProportion(const Situation& situation) {
  return InProportion(situation.width, situation.height, Given(situation, "height", situation.height));
}

std::int32_t HeightInProportion(const Situation& situation) {
  return InProportion(situation.height, situation.width, Given(situation, "width", situation.width));
}

std::int32_t Slanted(int length, int lines, double shear) {
  return Clamped(length + std::ceil(lines * std::fabs(shear)));
}

std::int32_t SlantedWidth(const Situation& situation) {
  return Slanted(situation.width, situation.height, Given(situation, "shear", 0));
}

std::int32_t SlantedHeight(const Situation& situation) {
  return Slanted(situation.height, situation.width, Given(situation, "shear", 0));
}

std::int32_t PictureWidth(const Situation& situation) {
  return situation.width;
}

std::int32_t PictureHeight(const Situation& situation) {
  return situation.height;
}

// ---- Arguments that several methods have ----

const Fallback kNeeded;
const Fallback kResult;

const Range kDelta{-255, 255}, kAtLeastOne{1}, kStretched{1, 65535};

ArgumentText Source() {
  return {"p", "the picture; it stays as it is", kNeeded};
}

ArgumentText ChangedPicture() {
  return {"p", "the picture, which is changed itself", kNeeded};
}

ArgumentText Yield() {
  return {std::string(kYieldArgument),
          "pixels between two calls of the host's yield service, which come between lines only; 0 or less never yields",
          {"0"}};
}

// The colour methods' rectangle, and after it the arguments of the method itself.
std::vector<ArgumentText> WithSelection(ArgumentText picture, const std::vector<ArgumentText>& others) {
  std::vector<ArgumentText> arguments = {
      std::move(picture),
      {"left", "first column of the selection, which is cut at the picture's edges", {"0"}},
      {"top", "first row of the selection", {"0"}},
      {"width",
       "the selection's last column is left + width: it has width + 1 columns, and one column for 0",
       {"to the right edge", ToRightEdge}},
      {"height", "the selection's last row is top + height", {"to the bottom edge", ToBottomEdge}},
  };
  arguments.insert(arguments.end(), others.begin(), others.end());
  arguments.push_back(Yield());
  return arguments;
}

std::vector<ArgumentText> AdjustHSVArguments(ArgumentText picture) {
  return WithSelection(
      std::move(picture),
      {
          {"hue_degrees",
           "turn of the hue in degrees, above -360 and below 360; 60 makes red yellow, 120 makes it green",
           {"0"},
           0,
           {-360, 360, true, true}},
          {"saturation_factor",
           "factor of the saturation, from 0 and below 1000, cut to a whole number: 0 and 0.9 give greys of the "
           "largest channel, 1 leaves it, "
           "2 doubles it",
           {"1"},
           1,
           {0, 1000, false, true}},
          {"brightness_factor",
           "factor of the brightness, from 0 and below 1000, cut to a whole number: below 1 gives black, 1 leaves it, "
           "2 doubles it",
           {"1"},
           1,
           {0, 1000, false, true}},
          {"negative",
           "invert the colours of the whole picture and make it fully transparent; the context storage form keeps no "
           "colours then",
           {"false"}},
      });
}

std::vector<ArgumentText> AdjustRGBArguments(ArgumentText picture) {
  return WithSelection(std::move(picture), {
                                               {"red_delta", "amount added to red, -255 to 255", {"0"}, 0, kDelta},
                                               {"green_delta", "amount added to green, -255 to 255", {"0"}, 0, kDelta},
                                               {"blue_delta", "amount added to blue, -255 to 255", {"0"}, 0, kDelta},
                                           });
}

std::vector<ArgumentText> ShearArguments(Fallback width, Fallback height, const char* shear) {
  return {
      Source(),
      {"width", "width of the result in pixels, at least 1; the slanted picture is centred in it", width, 0,
       kAtLeastOne},
      {"height", "height of the result in pixels, at least 1", height, 0, kAtLeastOne},
      {"shear", shear, kNeeded, 0, {-1, 1}},
      {"frame_color", "colour of the pixels that the slanted picture does not cover", {"&c000000ff"}},
      Yield(),
  };
}

std::vector<ArgumentText> GradientArguments(const std::vector<ArgumentText>& colours) {
  std::vector<ArgumentText> arguments = {
      {"width", "width of the picture in pixels, at least 1", {"256"}, 0, kAtLeastOne},
      {"height", "height of the picture in pixels, at least 1", {"256"}, 0, kAtLeastOne},
  };
  arguments.insert(arguments.end(), colours.begin(), colours.end());
  arguments.push_back(Yield());
  return arguments;
}

// ---- The table ----

std::vector<MethodText> ReportingMethods() {
  return {
      {"LMX_GetLastError",
       "The error code of the last call",
       "0 after success. lmx asks for it by itself after every call, and shows the message when it is not 0.",
       {},
       "lmx GetLastError"},
      {"LMX_GetErrorMessage",
       "The message of an error code",
       "",
       {{"errorCode", "the code, any number; a code without a message is an unknown error", kNeeded}},
       "lmx GetErrorMessage errorCode=31"},
  };
}

std::vector<MethodText> ColourMethods() {
  return {
      {"LMX_AdjustHSV", "Turns the hue and scales saturation and brightness of a rectangle",
       "Alpha stays as it is. Pixels outside the selection are copied. To see a negative: --storage buffer --opaque.",
       AdjustHSVArguments(Source()), "lmx AdjustHSV photo.jpg hue_degrees=60 -o turned.png"},
      {"LMX_AdjustHSV_InPlace", "The same, changing the picture itself",
       "The picture is the result: lmx hands it on to the next step or writes it.",
       AdjustHSVArguments(ChangedPicture()),
       "lmx AdjustHSV_InPlace photo.jpg saturation_factor=0 width=99 -o grey.png"},
      {"LMX_GetAverageHSV", "Measures hue, saturation and brightness of a rectangle",
       "The hue is that of the mean colour; saturation and brightness are means over the pixels.",
       WithSelection(
           Source(),
           {
               {"hue_degrees",
                "hue of the mean colour, from 0 and below 360 degrees; -1 for black, NaN for another grey", kResult},
               {"saturation", "mean saturation, 0 to 1", kResult},
               {"brightness", "mean brightness, 0 to 0.99609375 (255/256)", kResult},
           }),
       "lmx GetAverageHSV photo.jpg --json", true},
      {"LMX_AdjustRGB", "Adds to red, green and blue of a rectangle",
       "Sums are clamped to 0 to 255. Alpha stays as it is. Pixels outside the selection are copied.",
       AdjustRGBArguments(Source()), "lmx AdjustRGB photo.jpg red_delta=40 blue_delta=-40 -o warm.png"},
      {"LMX_AdjustRGB_InPlace", "The same, changing the picture itself",
       "The picture is the result: lmx hands it on to the next step or writes it.",
       AdjustRGBArguments(ChangedPicture()), "lmx AdjustRGB_InPlace photo.png green_delta=50 top=20 -o photo.png"},
      {"LMX_GetAverageRGB", "Measures the mean red, green and blue of a rectangle",
       "Means are cut to whole numbers. Transparency does not count.",
       WithSelection(Source(),
                     {
                         {"red", "mean of red, 0 to 255", kResult},
                         {"green", "mean of green, 0 to 255", kResult},
                         {"blue", "mean of blue, 0 to 255", kResult},
                     }),
       "lmx GetAverageRGB photo.jpg left=10 top=10 width=50 height=50", true},
  };
}

std::vector<MethodText> TurningMethods() {
  return {
      {"LMX_FlipRotate",
       "Mirrors, then turns clockwise by quarter turns",
       "Exact: every pixel of the result is one of the picture.",
       {Source(),
        {"flip_h", "mirror left and right first", {"false"}},
        {"flip_v", "mirror top and bottom first", {"false"}},
        {"rotation",
         "turn in degrees, -89 to 359, cut to whole quarter turns: 90 to 179 is one, below 90 is none",
         {"0"},
         90,
         {-89, 359}},
        Yield()},
       "lmx FlipRotate photo.jpg rotation=90 -o turned.png"},
      {"LMX_FreeRotateByShear",
       "Turns clockwise by any angle",
       "By three shears. The result is as large as the turned picture needs, with clear corners; edges become clear "
       "and dark.",
       {Source(),
        {"rotation", "turn in degrees, from 0 and below 360", kNeeded, 0, {0, 360, false, true}},
        {"frame_color", "has no effect: the corners are always clear", {"&c000000ff"}},
        Yield()},
       "lmx FreeRotateByShear photo.jpg rotation=12.5 -o tilted.png"},
  };
}

std::vector<MethodText> GradientMethods() {
  return {
      {"LMX_MakeGradient", "Makes a picture that runs from one colour to another",
       "From top to bottom; every row is one colour. A single row is clear.",
       GradientArguments({
           {"color1", "colour of the top row", {"#000000"}},
           {"color2", "colour of the bottom row", {"#ffffff"}},
       }),
       "lmx MakeGradient width=400 height=300 color1=#ff8800 color2=#0044ff -o sky.png"},
      {"LMX_MakeDoubleGradient", "Makes a picture that runs through three colours",
       "From top to bottom; every row is one colour. A half that is a single row is clear.",
       GradientArguments({
           {"color1", "colour of the top row", {"#000000"}},
           {"color2", "colour of the two rows in the middle", {"#ff0000"}},
           {"color3", "colour of the bottom row", {"#ffffff"}},
       }),
       "lmx MakeDoubleGradient color1=#102060 color2=#ff9050 color3=#301030 -o dusk.png"},
  };
}

std::vector<MethodText> FormingMethods() {
  return {
      {"LMX_ShearHorizontal", "Slants the picture sideways",
       "Each row is shifted against the next. The slanted edges are blended with the frame, unless that is opaque.",
       ShearArguments({"what the slanted picture needs", SlantedWidth}, {"the picture's", PictureHeight},
                      "shift of each row against the row below it in pixels, -1 to 1; above 0 moves the top to the "
                      "right"),
       "lmx ShearHorizontal photo.jpg shear=0.25 -o slanted.png"},
      {"LMX_ShearVertical", "Slants the picture upwards or downwards",
       "Each column is shifted against the next. The slanted edges are blended with the frame, unless that is opaque.",
       ShearArguments({"the picture's", PictureWidth}, {"what the slanted picture needs", SlantedHeight},
                      "shift of each column against the column to its right in pixels, -1 to 1; above 0 moves the left "
                      "side down"),
       "lmx ShearVertical photo.jpg shear=-0.25 frame_color=#ffffff -o slanted.png"},
      {"LMX_Stretch",
       "Resamples the picture to another size",
       "Each pixel of the result is the average of the area that it covers.",
       {Source(),
        {"width",
         "width of the result in pixels, 1 to 65535, and at least 1/32768 of the picture's",
         {"in proportion to height", WidthInProportion},
         0,
         kStretched},
        {"height",
         "height of the result in pixels, with the same limits: 1 to 65535",
         {"in proportion to width", HeightInProportion},
         0,
         kStretched},
        Yield()},
       "lmx Stretch photo.jpg width=200 -o small.png"},
      {"LMX_Trim",
       "Cuts out a rectangle",
       "The rectangle may reach outside the picture; pixels there are clear.",
       {Source(),
        {"left", "column of the picture at which the result begins; may be negative", {"0"}},
        {"top", "row of the picture at which the result begins; may be negative", {"0"}},
        {"width", "width of the result in pixels, at least 1", {"to the right edge", ToRightEdge}, 0, kAtLeastOne},
        {"height", "height of the result in pixels, at least 1", {"to the bottom edge", ToBottomEdge}, 0, kAtLeastOne},
        {"frame_color",
         "colour of the pixels outside the picture, which are always clear; only the buffer storage form keeps it",
         {"&c000000ff"}},
        {std::string(kYieldArgument), "has no effect: trimming never yields", {"0"}}},
       "lmx Trim photo.jpg left=20 top=20 width=100 height=80 -o part.png"},
  };
}

}  // namespace

bool Range::Contains(double number) const {
  return (withoutLeast ? number > least : number >= least) && (withoutMost ? number < most : number <= most);
}

std::string RangeText(const Range& range) {
  const auto text = [](double number) { return std::to_string(static_cast<std::int64_t>(number)); };
  if (range.most > std::numeric_limits<std::int32_t>::max()) return "at least " + text(range.least);
  if (range.withoutLeast) return "above " + text(range.least) + " and below " + text(range.most);
  if (range.withoutMost) return "from " + text(range.least) + " and below " + text(range.most);
  return text(range.least) + " to " + text(range.most);
}

const std::vector<MethodText>& Documentation() {
  static const std::vector<MethodText> table = [] {
    std::vector<MethodText> all;
    for (const auto& part :
         {ReportingMethods(), ColourMethods(), TurningMethods(), GradientMethods(), FormingMethods()}) {
      all.insert(all.end(), part.begin(), part.end());
    }
    return all;
  }();
  return table;
}

const MethodText* FindDocumentation(std::string_view method) {
  for (const MethodText& text : Documentation()) {
    if (host::SameName(text.name, method)) return &text;
  }
  return nullptr;
}

const ArgumentText* MethodText::Find(std::string_view argument) const {
  for (const ArgumentText& text : arguments) {
    if (host::SameName(text.name, argument)) return &text;
  }
  return nullptr;
}

}  // namespace tool
