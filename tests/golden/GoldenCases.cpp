// The list of the cases.
#include "GoldenCases.h"

#include "Drawings.h"

namespace golden {

using host::Colour;
using host::Value;
using model::Form;
using model::HsvChange;
using model::MakePicture;
using model::Outcome;
using model::Rectangle;
using model::RgbChange;
using model::StoredPicture;

namespace {

constexpr int kWidth = 23;
constexpr int kHeight = 17;

// A method with one list of arguments.
struct Call {
  std::string name;  // method and arguments
  support::MethodCall method;
};

using Model = std::function<Outcome(const StoredPicture*, const MakePicture&)>;

Call Make(const std::string& method, const std::string& name, std::vector<Value> arguments, Model define) {
  return {method + ":" + name, {method, true, std::move(arguments), std::move(define)}};
}

std::string Words(std::initializer_list<double> numbers) {
  std::string text;
  for (const double number : numbers) {
    char word[32];
    std::snprintf(word, sizeof word, "%s%g", text.empty() ? "" : ",", number);
    text += word;
  }
  return text;
}

void AddFlipsAndTurns(std::vector<Call>& calls) {
  for (const int rotation : {0, 90, 180, 270}) {
    for (const bool flipH : {false, true}) {
      for (const bool flipV : {false, true}) {
        const std::string name = std::to_string(rotation) + (flipH ? "h" : "") + (flipV ? "v" : "");
        calls.push_back(Make("FlipRotate", name, {flipH, flipV, rotation, 50},
                             [=](const StoredPicture* source, const MakePicture& make) {
                               return model::FlipRotate(source, flipH, flipV, rotation, 50, make);
                             }));
      }
    }
  }
}

void AddShears(std::vector<Call>& calls) {
  struct {
    int width, height;
    double shear;
    std::uint32_t frame;
  } const cases[] = {{30, 17, 0.3, 0x00FF8040},   {30, 20, 0.3, 0x80FF8040}, {44, 15, -0.777, 0xFF123456},
                     {40, 40, 1.0, 0x00102030},   {9, 11, -1.0, 0x40FFFFFF}, {23, 17, 0.0, 0x00FFFFFF},
                     {25, 19, 0.0123, 0xFF000000}};
  for (const auto& c : cases) {
    char frame[16];
    std::snprintf(frame, sizeof frame, ",%08x", static_cast<unsigned>(c.frame));
    const std::string name = Words({1.0 * c.width, 1.0 * c.height, c.shear}) + frame;
    const std::vector<Value> arguments = {c.width, c.height, c.shear, Colour{c.frame}, 70};
    calls.push_back(Make("ShearHorizontal", name, arguments, [=](const StoredPicture* source, const MakePicture& make) {
      return model::ShearHorizontal(source, c.width, c.height, c.shear, c.frame, 70, make);
    }));
    calls.push_back(Make("ShearVertical", name, arguments, [=](const StoredPicture* source, const MakePicture& make) {
      return model::ShearVertical(source, c.width, c.height, c.shear, c.frame, 70, make);
    }));
  }
}

void AddFreeRotations(std::vector<Call>& calls) {
  for (const double angle : {0.0, 1.5, 30.0, 44.999, 45.0, 90.0, 133.3, 200.0, 271.0, 359.9}) {
    calls.push_back(Make("FreeRotateByShear", Words({angle}), {angle, Colour{0x00FFFFFF}, 100},
                         [=](const StoredPicture* source, const MakePicture& make) {
                           return model::FreeRotateByShear(source, angle, 0x00FFFFFF, 100, make);
                         }));
  }
}

void AddStretches(std::vector<Call>& calls) {
  struct {
    int width, height;
  } const cases[] = {{23, 17}, {1, 1}, {46, 34}, {11, 8}, {7, 40}, {50, 5}, {24, 16}, {69, 51}};
  for (const auto& c : cases) {
    calls.push_back(Make("Stretch", Words({1.0 * c.width, 1.0 * c.height}), {c.width, c.height, 60},
                         [=](const StoredPicture* source, const MakePicture& make) {
                           return model::Stretch(source, c.width, c.height, 60, make);
                         }));
  }
}

std::string Words(const Rectangle& r) {
  return Words({1.0 * r.left, 1.0 * r.top, 1.0 * r.width, 1.0 * r.height});
}

void AddTrims(std::vector<Call>& calls) {
  for (const Rectangle r :
       {Rectangle{0, 0, 23, 17}, Rectangle{3, 2, 10, 12}, Rectangle{-4, 5, 40, 20}, Rectangle{50, 0, 3, 3}}) {
    calls.push_back(Make("Trim", Words(r), {r.left, r.top, r.width, r.height, Colour{0x00A0B0C0}, 10},
                         [=](const StoredPicture* source, const MakePicture& make) {
                           return model::Trim(source, r, 0x00A0B0C0, 10, make);
                         }));
  }
}

constexpr Rectangle kSelections[] = {{0, 0, 23, 17}, {4, 3, 9, 8}, {20, -5, 40, 10}};

void AddHsvCalls(std::vector<Call>& calls) {
  const HsvChange changes[] = {{60, 1, 1, false},    {-133.7, 2, 1, false}, {10, 3, 2, false},
                               {0, 0.5, 1.5, false}, {359.9, 999, 1, true}, {-1, 1, 0, false}};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    const HsvChange change = changes[i];
    const Rectangle r = kSelections[i % 3];
    const std::string name =
        Words(r) + ";" +
        Words({change.hueDegrees, change.saturationFactor, change.brightnessFactor, change.negative ? 1.0 : 0.0});
    const std::vector<Value> arguments = {
        r.left,          r.top, r.width, r.height, change.hueDegrees, change.saturationFactor, change.brightnessFactor,
        change.negative, 40};
    calls.push_back(Make("AdjustHSV", name, arguments, [=](const StoredPicture* source, const MakePicture& make) {
      return model::AdjustHsv(source, r, change, 40, make);
    }));
    calls.push_back(Make("AdjustHSV_InPlace", name, arguments, [=](const StoredPicture* source, const MakePicture&) {
      return model::AdjustHsvInPlace(source, r, change, 40);
    }));
  }
}

void AddRgbCalls(std::vector<Call>& calls) {
  const RgbChange changes[] = {{10, -20, 30}, {255, 0, -255}, {-1, 1, 0}};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    const RgbChange change = changes[i];
    const Rectangle r = kSelections[i];
    const std::string name = Words(r) + ";" + Words({1.0 * change.red, 1.0 * change.green, 1.0 * change.blue});
    const std::vector<Value> arguments = {r.left, r.top, r.width, r.height, change.red, change.green, change.blue, 40};
    calls.push_back(Make("AdjustRGB", name, arguments, [=](const StoredPicture* source, const MakePicture& make) {
      return model::AdjustRgb(source, r, change, 40, make);
    }));
    calls.push_back(Make("AdjustRGB_InPlace", name, arguments, [=](const StoredPicture* source, const MakePicture&) {
      return model::AdjustRgbInPlace(source, r, change, 40);
    }));
  }
}

void AddAverages(std::vector<Call>& calls) {
  for (const Rectangle r : kSelections) {
    calls.push_back(
        Make("GetAverageHSV", Words(r), {r.left, r.top, r.width, r.height, 0.0, 0.0, 0.0, 40},
             [=](const StoredPicture* source, const MakePicture&) { return model::AverageHsv(source, r, 40); }));
    calls.push_back(
        Make("GetAverageRGB", Words(r), {r.left, r.top, r.width, r.height, 0, 0, 0, 40},
             [=](const StoredPicture* source, const MakePicture&) { return model::AverageRgb(source, r, 40); }));
  }
}

void AddGradients(std::vector<Call>& calls) {
  const std::uint32_t colours[][3] = {{0x00FF0000, 0x000000FF, 0x0000FF00}, {0xFF102030, 0x00FEDCBA, 0x40000000}};
  for (const auto& k : colours) {
    for (const int height : {1, 2, 3, 5, 16, 101}) {
      char name[40];
      std::snprintf(name, sizeof name, "5,%d,%08x,%08x", height, static_cast<unsigned>(k[0]),
                    static_cast<unsigned>(k[1]));
      const std::uint32_t first = k[0], second = k[1], third = k[2];
      Call simple = Make("MakeGradient", name, {5, height, Colour{first}, Colour{second}, 12},
                         [=](const StoredPicture*, const MakePicture& make) {
                           return model::MakeGradient(5, height, first, second, 12, make);
                         });
      Call twofold = Make("MakeDoubleGradient", name, {5, height, Colour{first}, Colour{second}, Colour{third}, 12},
                          [=](const StoredPicture*, const MakePicture& make) {
                            return model::MakeDoubleGradient(5, height, first, second, third, 12, make);
                          });
      simple.method.hasSource = twofold.method.hasSource = false;
      calls.push_back(std::move(simple));
      calls.push_back(std::move(twofold));
    }
  }
}

struct Pictures {
  Subject subject;
  Form source;
  Form made;
};

constexpr Pictures kPictures[] = {{Subject::Opaque, Form::BitmapContext, Form::BitmapContext},
                                  {Subject::Soft, Form::BitmapContext, Form::BitmapContext},
                                  {Subject::Grey, Form::BitmapContext, Form::BitmapContext},
                                  {Subject::Wild, Form::BitmapContext, Form::BitmapContext},
                                  {Subject::Soft, Form::BitmapContext, Form::Buffer},
                                  {Subject::Opaque, Form::Buffer, Form::Buffer},
                                  {Subject::Soft, Form::Buffer, Form::Buffer},
                                  {Subject::Wild, Form::Buffer, Form::Buffer},
                                  {Subject::Soft, Form::Buffer, Form::BitmapContext}};

const char* NameOf(Form form) {
  return form == Form::Buffer ? "buffer" : "context";
}

}  // namespace

std::vector<Case> Cases() {
  std::vector<Call> calls;
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
  for (const Call& call : calls) {
    if (!call.method.hasSource) {
      for (const Form form : {Form::BitmapContext, Form::Buffer}) {
        cases.push_back({call.name + ":" + NameOf(form), call.method, std::nullopt, form});
      }
      continue;
    }
    for (const Pictures& p : kPictures) {
      const std::string pictures = std::string(NameOf(p.subject)) + "-" + NameOf(p.source) + "-" + NameOf(p.made);
      cases.push_back({call.name + ":" + pictures, call.method, Draw(p.subject, p.source, kWidth, kHeight), p.made});
    }
  }
  return cases;
}

}  // namespace golden
