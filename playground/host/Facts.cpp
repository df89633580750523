// What the page shares with the command-line tool: the texts about methods and arguments, default
// values, and the test chart.
#include <cstdint>
#include <cstring>
#include <string>

#include "tool/Chart.h"
#include "tool/Documentation.h"

#define PAGE_EXPORT(name) extern "C" __attribute__((export_name(#name), used))

namespace page {
namespace {

std::string Quoted(const std::string& text) {
  std::string json = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') json += '\\';
    json += c;
  }
  return json + '"';
}

std::string ArgumentFacts(const tool::ArgumentText& argument) {
  const bool computed = argument.fallback.compute != nullptr;
  const char* text = argument.fallback.text;
  return "{\"name\":" + Quoted(argument.name) + ",\"meaning\":" + Quoted(argument.meaning) +
         ",\"fallback\":" + (text == nullptr ? "null" : Quoted(text)) +
         ",\"computed\":" + (computed ? "true" : "false") + "}";
}

std::string MethodFacts(const tool::MethodText& method) {
  std::string json = "{\"name\":" + Quoted(method.name) + ",\"summary\":" + Quoted(method.summary) +
                     ",\"details\":" + Quoted(method.details) + ",\"arguments\":[";
  for (std::size_t i = 0; i < method.arguments.size(); ++i) {
    json += (i == 0 ? "" : ",") + ArgumentFacts(method.arguments[i]);
  }
  return json + "]}";
}

const std::string& AllFacts() {
  static const std::string json = [] {
    std::string all = "[";
    for (const tool::MethodText& method : tool::Documentation()) all += (all == "[" ? "" : ",") + MethodFacts(method);
    return all + "]";
  }();
  return json;
}

const tool::Image& TheChart() {
  static const tool::Image chart = tool::MakeChart();
  return chart;
}

}  // namespace
}  // namespace page

PAGE_EXPORT(factsData) const char* FactsData() {
  return page::AllFacts().data();
}
PAGE_EXPORT(factsLength) std::size_t FactsLength() {
  return page::AllFacts().size();
}

/// The value of an argument that is left out and computed. `given` are the values of all arguments
/// of the method, in their order; NaN for those that are left out as well.
PAGE_EXPORT(computeFallback)
std::int32_t ComputeFallback(int method, int argument, int width, int height, const double* given) {
  const tool::MethodText& text = tool::Documentation()[static_cast<std::size_t>(method)];
  tool::Situation situation{width, height, {}};
  for (std::size_t i = 0; i < text.arguments.size(); ++i) {
    if (given[i] == given[i]) situation.numbers[text.arguments[i].name] = given[i];
  }
  return text.arguments[static_cast<std::size_t>(argument)].fallback.compute(situation);
}

PAGE_EXPORT(chartWidth) int ChartWidth() {
  return page::TheChart().width;
}
PAGE_EXPORT(chartHeight) int ChartHeight() {
  return page::TheChart().height;
}
/// The chart's straight pixels: red, green, blue, alpha.
PAGE_EXPORT(drawChart) void DrawChart(std::uint8_t* rgba) {
  for (const std::uint32_t pixel : page::TheChart().pixels) {
    const std::uint32_t word = (pixel & 0xFF00FF00) | (pixel >> 16 & 0xFF) | (pixel & 0xFF) << 16;
    std::memcpy(rgba, &word, 4);
    rgba += 4;
  }
}
