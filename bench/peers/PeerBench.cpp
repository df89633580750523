// Times the operations of the plug-in beside the same work done by other libraries, each pair in turn in one run.
#include <malloc.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <exception>

#include "Peer.h"
#include "bench/Options.h"
#include "bench/Timing.h"
#include "bench/Workbench.h"
#include "host/Value.h"

namespace bench {
namespace {

constexpr const char* kUsage =
    R"(bench_peers [option...]: times the plug-in and other libraries, in ns per pixel and multiples of memcpy

  --content=TEXT       contents whose name has this in it: opaque, fading
  --operation=TEXT     operations whose name has this in it
  --peer=TEXT          libraries whose name has this in it
  --seconds=S          for each pair (default 0.3), and at least
  --least=N            rounds (default 5)
  --json               one object per line and measurement
  --help               this text
)";

constexpr int kWidth = 1920, kHeight = 1080;

// As the bitmap contexts have them, but in words.
void Premultiply(const Pixels& straight, std::uint32_t* words) {
  for (const std::uint32_t pixel : straight) {
    const std::uint32_t alpha = pixel >> 24;
    const auto channel = [&](int shift) { return ((pixel >> shift & 0xFF) * alpha / 255) << shift; };
    *words++ = alpha << 24 | channel(16) | channel(8) | channel(0);
  }
}

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
        budget_{static_cast<int>(options.Number("least", 5)), options.Number("seconds", 0.3)} {}

  void RunOn(const Content& content, const std::vector<Peer>& peers) const {
    const Pixels pixels = Draw(content, kWidth, kHeight);
    const bool translucent = std::string(content.name) != "opaque";
    Workbench workbench(host::Storage::BitmapContext, pixels, kWidth, kHeight);
    const Canvas source(kWidth, kHeight), spare(kWidth, kHeight);
    Premultiply(pixels, source.Picture().words);
    if (!options_.Has("json")) {
      std::printf("%s, %d x %d: ns per pixel and multiples of memcpy\n", content.name, kWidth, kHeight);
    }
    for (const Peer& peer : peers) {
      if (!options_.Wants("peer", peer.name) || (translucent && !peer.knowsAlpha)) continue;
      for (const PeerWork& work : peer.prepare(source.Picture())) {
        const Operation& operation = Operations()[IndexOf(work)];
        if (!options_.Wants("operation", operation.name) || (translucent && !operation.takesPicture)) continue;
        // A copy before each, so that both find their source equally warm.
        const std::function<void()> call = workbench.Call(plugin_, operation);
        const auto copyTheirs = [&] { std::memcpy(spare.Picture().words, source.Picture().words, 4 * pixels.size()); };
        Tell(content, peer, work, MeasureInTurn({workbench.Copy(), call, copyTheirs, work.work}, budget_));
        workbench.Clear();
      }
    }
  }

 private:
  void Tell(const Content& content, const Peer& peer, const PeerWork& work, const std::vector<Timing>& timings) const {
    const auto ns = [](const Timing& timing) { return timing.median * 1e9 / (double{kWidth} * kHeight); };
    const double memcpyNs = (ns(timings[0]) + ns(timings[2])) / 2, ours = ns(timings[1]), theirs = ns(timings[3]);
    if (options_.Has("json")) {
      std::printf(R"({"content":"%s","index":%zu,"operation":"%s","library":"%s","version":"%s","difference":"%s",)"
                  R"("memcpy":%.5f,"ours":%.5f,"theirs":%.5f})"
                  "\n",
                  content.name, IndexOf(work), work.operation, peer.name, peer.version.c_str(), work.difference,
                  memcpyNs, ours, theirs);
    } else {
      std::printf("%-22s %-17s LMX %8.3f %7.2fx   peer %8.3f %7.2fx   peer / LMX %6.2f   %s\n", work.operation,
                  peer.name, ours, ours / memcpyNs, theirs, theirs / memcpyNs, theirs / ours, work.difference);
    }
    std::fflush(stdout);
  }

  const Options& options_;
  const Plugin& plugin_;
  const Budget budget_;
};

void Run(const Options& options) {
  // Memory that was freed is used again, touched as it is.
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
  try {
    bench::Run(bench::Options(argc, argv, bench::kUsage));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "bench_peers: %s\n", error.what());
    return 1;
  }
}
