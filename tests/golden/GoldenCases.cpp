// The list of cases.
#include "GoldenCases.h"

#include "Drawings.h"

namespace golden {

using host::Colour;
using host::Storage;
using host::Value;
using support::Arguments;

namespace {

constexpr int kWidth = 23;
constexpr int kHeight = 17;

// A method with a list of arguments.
struct Call {
  std::string name;  // method and arguments
  support::MethodCall call;
};

class Calls {
 public:
  // The last argument is the yield; the name does not contain it.
  void Add(const std::string& method, const std::string& name, const Arguments& arguments) {
    calls_.push_back({method + ":" + name, {method, arguments}});
  }
  const std::vector<Call>& All() const { return calls_; }

 private:
  std::vector<Call> calls_;
};

std::string Words(std::initializer_list<double> numbers) {
  std::string text;
  for (const double number : numbers) {
    char word[32];
    std::snprintf(word, sizeof word, "%s%g", text.empty() ? "" : ",", number);
    text += word;
  }
  return text;
}

std::string Hex(std::uint32_t colour) {
  char text[16];
  std::snprintf(text, sizeof text, ",%08x", static_cast<unsigned>(colour));
  return text;
}

void AddFlipsAndTurns(Calls& calls) {
  for (const int rotation : {0, 90, 180, 270}) {
    for (const bool flipH : {false, true}) {
      for (const bool flipV : {false, true}) {
        const std::string name = std::to_string(rotation) + (flipH ? "h" : "") + (flipV ? "v" : "");
        calls.Add("FlipRotate", name, {flipH, flipV, rotation, 50});
      }
    }
  }
}

void AddShears(Calls& calls) {
  struct {
    int width, height;
    double shear;
    std::uint32_t frame;
  } const cases[] = {{30, 17, 0.3, 0x00FF8040},   {30, 20, 0.3, 0x80FF8040}, {44, 15, -0.777, 0xFF123456},
                     {40, 40, 1.0, 0x00102030},   {9, 11, -1.0, 0x40FFFFFF}, {23, 17, 0.0, 0x00FFFFFF},
                     {25, 19, 0.0123, 0xFF000000}};
  for (const auto& c : cases) {
    const std::string name = Words({1.0 * c.width, 1.0 * c.height, c.shear}) + Hex(c.frame);
    for (const char* method : {"ShearHorizontal", "ShearVertical"}) {
      calls.Add(method, name, {c.width, c.height, c.shear, Colour{c.frame}, 70});
    }
  }
}

void AddFreeRotations(Calls& calls) {
  for (const double angle : {0.0, 1.5, 30.0, 44.999, 45.0, 90.0, 133.3, 200.0, 271.0, 359.9}) {
    calls.Add("FreeRotateByShear", Words({angle}), {angle, Colour{0x00FFFFFF}, 100});
  }
}

void AddStretches(Calls& calls) {
  for (const auto& [width, height] : {std::pair(23, 17), std::pair(1, 1), std::pair(46, 34), std::pair(11, 8),
                                      std::pair(7, 40), std::pair(50, 5), std::pair(24, 16), std::pair(69, 51)}) {
    calls.Add("Stretch", Words({1.0 * width, 1.0 * height}), {width, height, 60});
  }
}

struct Rectangle {
  int left, top, width, height;
};

std::string Words(const Rectangle& r) {
  return Words({1.0 * r.left, 1.0 * r.top, 1.0 * r.width, 1.0 * r.height});
}

void AddTrims(Calls& calls) {
  for (const Rectangle r :
       {Rectangle{0, 0, 23, 17}, Rectangle{3, 2, 10, 12}, Rectangle{-4, 5, 40, 20}, Rectangle{50, 0, 3, 3}}) {
    calls.Add("Trim", Words(r), {r.left, r.top, r.width, r.height, Colour{0x00A0B0C0}, 10});
  }
}

constexpr Rectangle kSelections[] = {{0, 0, 23, 17}, {4, 3, 9, 8}, {20, -5, 40, 10}};

void AddHsvCalls(Calls& calls) {
  struct {
    double hue, saturation, brightness;
    bool negative;
  } const changes[] = {{60, 1, 1, false},    {-133.7, 2, 1, false}, {10, 3, 2, false},
                       {0, 0.5, 1.5, false}, {359.9, 999, 1, true}, {-1, 1, 0, false}};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    const auto& c = changes[i];
    const Rectangle r = kSelections[i % 3];
    const std::string name = Words(r) + ";" + Words({c.hue, c.saturation, c.brightness, c.negative ? 1.0 : 0.0});
    for (const char* method : {"AdjustHSV", "AdjustHSV_InPlace"}) {
      calls.Add(method, name, {r.left, r.top, r.width, r.height, c.hue, c.saturation, c.brightness, c.negative, 40});
    }
  }
}

void AddRgbCalls(Calls& calls) {
  struct {
    int red, green, blue;
  } const changes[] = {{10, -20, 30}, {255, 0, -255}, {-1, 1, 0}};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    const auto& c = changes[i];
    const Rectangle r = kSelections[i];
    const std::string name = Words(r) + ";" + Words({1.0 * c.red, 1.0 * c.green, 1.0 * c.blue});
    for (const char* method : {"AdjustRGB", "AdjustRGB_InPlace"}) {
      calls.Add(method, name, {r.left, r.top, r.width, r.height, c.red, c.green, c.blue, 40});
    }
  }
}

void AddAverages(Calls& calls) {
  for (const Rectangle r : kSelections) {
    calls.Add("GetAverageHSV", Words(r), {r.left, r.top, r.width, r.height, 0.0, 0.0, 0.0, 40});
    calls.Add("GetAverageRGB", Words(r), {r.left, r.top, r.width, r.height, 0, 0, 0, 40});
  }
}

void AddGradients(Calls& calls) {
  const std::uint32_t colours[][3] = {{0x00FF0000, 0x000000FF, 0x0000FF00}, {0xFF102030, 0x00FEDCBA, 0x40000000}};
  for (const auto& [first, second, third] : colours) {
    for (const int height : {1, 2, 3, 5, 16, 101}) {
      const std::string name = "5," + std::to_string(height) + Hex(first) + Hex(second);
      calls.Add("MakeGradient", name, {5, height, Colour{first}, Colour{second}, 12});
      calls.Add("MakeDoubleGradient", name, {5, height, Colour{first}, Colour{second}, Colour{third}, 12});
    }
  }
}

struct Pictures {
  Subject subject;
  Storage source;
  Storage made;
};

constexpr Pictures kPictures[] = {{Subject::Opaque, Storage::BitmapContext, Storage::BitmapContext},
                                  {Subject::Soft, Storage::BitmapContext, Storage::BitmapContext},
                                  {Subject::Grey, Storage::BitmapContext, Storage::BitmapContext},
                                  {Subject::Wild, Storage::BitmapContext, Storage::BitmapContext},
                                  {Subject::Soft, Storage::BitmapContext, Storage::Buffer},
                                  {Subject::Opaque, Storage::Buffer, Storage::Buffer},
                                  {Subject::Soft, Storage::Buffer, Storage::Buffer},
                                  {Subject::Wild, Storage::Buffer, Storage::Buffer},
                                  {Subject::Soft, Storage::Buffer, Storage::BitmapContext}};

}  // namespace

const char* NameOf(Storage form) {
  return form == Storage::Buffer ? "buffer" : "context";
}

std::vector<Case> Cases() {
  Calls calls;
  AddHsvCalls(calls);
  AddRgbCalls(calls);
  AddAverages(calls);
  AddFlipsAndTurns(calls);
  AddFreeRotations(calls);
  AddShears(calls);
  AddStretches(calls);
  AddTrims(calls);
  AddGradients(calls);
  std::vector<Case> cases;
  for (const auto& [name, call] : calls.All()) {
    if (!call.method->hasSource) {
      for (const Storage form : {Storage::BitmapContext, Storage::Buffer}) {
        cases.push_back({name + ":" + NameOf(form), call, std::nullopt, form});
      }
      continue;
    }
    for (const Pictures& p : kPictures) {
      const std::string pictures = std::string(NameOf(p.subject)) + "-" + NameOf(p.source) + "-" + NameOf(p.made);
      cases.push_back({name + ":" + pictures, call, Draw(p.subject, p.source, kWidth, kHeight), p.made});
    }
  }
  return cases;
}

}  // namespace golden
