// Times the plug-in's operations and the same work by other libraries. The two of a pair take turns
// in one run.
#include <malloc.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

#include "Peer.h"
#include "bench/Options.h"
#include "bench/Timing.h"
#include "bench/Workbench.h"
#include "host/Value.h"

namespace bench {
namespace {

constexpr const char* kUsage =
    R"(bench_peers [option...]: times the plug-in and other libraries, in ns per pixel

  --size=WxH           the picture (default 1920x1080)
  --content=TEXT       contents whose name has this in it: opaque, fading
  --operation=TEXT     operations whose name has this in it
  --peer=TEXT          libraries whose name has this in it
  --seconds=S          for each pair (default 0.3), and at least
  --least=N            rounds (default 5)
  --json               one object per line and measurement
  --help               this text
)";

std::size_t IndexOf(const PeerWork& work) {
  std::size_t index = 0;
  for (const Operation& operation : Operations()) {
    if (std::string(operation.name) == work.operation) return index;
    ++index;
  }
  throw host::Error(std::string("there is no operation ") + work.operation);
}

class PeerBench {
 public:
  PeerBench(const Options& options, const Plugin& plugin)
      : options_(options),
        plugin_(plugin),
        budget_{static_cast<int>(options.Number("least", 5)), options.Number("seconds", 0.3)},
        size_(options.Sizes("size", "1920x1080").at(0)) {}

  void RunOn(const Content& content, const std::vector<Peer>& peers) const {
    const Pixels pixels = Draw(content, size_.width, size_.height);
    const bool translucent = std::string(content.name) != "opaque";
    Workbench workbench(host::Storage::BitmapContext, pixels, size_.width, size_.height);
    const Canvas source(size_.width, size_.height), scratch(size_.width, size_.height);
    std::transform(pixels.begin(), pixels.end(), source.Picture().words,
                   [](std::uint32_t pixel) { return host::StoredFromStraight(host::Storage::BitmapContext, pixel); });
    if (!options_.Has("json")) {
      std::printf("%s, %d x %d: ns per pixel\n", content.name, size_.width, size_.height);
    }
    for (const Peer& peer : peers) {
      if (!options_.Wants("peer", peer.name) || (translucent && !peer.knowsAlpha)) continue;
      for (const PeerWork& work : peer.prepare(source.Picture())) {
        const Operation& operation = Operations()[IndexOf(work)];
        const bool hasSource = plugin_.Method(operation.method).parameters[0].type == host::Type::Picture;
        if (!options_.Wants("operation", operation.name) || (translucent && !hasSource)) continue;
        // A copy precedes each, so that both find their source in the same caches.
        const Timing copy = workbench.Memcpy({budget_.least, 0});
        const Work call = workbench.Call(plugin_, operation, 0);
        const auto copyTheirs = [&] {
          std::memcpy(scratch.Picture().words, source.Picture().words, 4 * pixels.size());
        };
        Tell(content, peer, work, copy, MeasureInTurn({call, {work.work, copyTheirs}}, budget_));
        workbench.Clear();
      }
    }
  }

 private:
  void Tell(const Content& content, const Peer& peer, const PeerWork& work, const Timing& copy,
            const std::vector<Timing>& timings) const {
    const auto ns = [&](const Timing& timing) { return timing.median * 1e9 / size_.Pixels(); };
    const double ours = ns(timings[0]), theirs = ns(timings[1]);
    if (options_.Has("json")) {
      std::printf(
          R"({"width":%d,"height":%d,"content":"%s","index":%zu,"operation":"%s","library":"%s","version":"%s","difference":"%s",)"
          R"("memcpy":%.5f,"ours":%.5f,"theirs":%.5f})"
          "\n",
          size_.width, size_.height, content.name, IndexOf(work), work.operation, peer.name, peer.version.c_str(),
          work.difference, ns(copy), ours, theirs);
    } else {
      std::printf("%-20s %-15s LMX %7.3f  peer %7.3f  peer / LMX %5.2f  %s\n", work.operation, peer.name, ours, theirs,
                  theirs / ours, work.difference);
    }
    std::fflush(stdout);
  }

  const Options& options_;
  const Plugin& plugin_;
  const Budget budget_;
  const Size size_;
};

void Run(const Options& options) {
  // The process keeps freed memory and reuses it, so that its pages are already in use.
  mallopt(M_MMAP_MAX, 0);
  mallopt(M_TRIM_THRESHOLD, INT_MAX);
  PinToOneCore();
  const Plugin plugin(LMX_FOLDER "/libLMX.so");
  const std::vector<Peer> peers = {Libyuv(), OpenCv(),    Pixman(), Leptonica(),
                                   Vips(),   StbResize(), Imlib(),  GraphicsMagick()};
  const PeerBench bench(options, plugin);
  for (const Content& content : Contents()) {
    if (std::string(content.name) != "soft" && options.Wants("content", content.name)) bench.RunOn(content, peers);
  }
}

}  // namespace
}  // namespace bench

int main(int argc, char** argv) {
  return bench::RunProgram(argc, argv, bench::kUsage, bench::Run);
}
