// Seeds of the kernels: each kernel at widths near those of the vectors, touching either
// inaccessible page, in place and not in place.

#include "Archive.h"
#include "KernelCases.h"
#include "KernelInput.h"
#include "Seeds.h"
#include "support/Random.h"

namespace fuzz {

std::vector<Bytes> KernelSeeds() {
  static constexpr std::uint8_t kWidths[] = {0, 1, 3, 7, 8, 15, 16, 17, 31, 33, 63, 65, 129};
  std::vector<Bytes> seeds;
  Random random(1);
  for (std::size_t kernel = 0; kernel < KernelCases().size(); ++kernel) {
    for (const std::uint8_t n : kWidths) {
      KernelInput input;
      input.kernel = static_cast<std::uint8_t>(kernel);
      input.n = n;
      input.place = static_cast<std::uint8_t>(random.Below(2));
      input.shift = static_cast<std::uint8_t>(random.Below(64));
      input.inPlace = static_cast<std::uint8_t>(random.Below(3));
      Writer writer;
      Visit(writer, input);
      Bytes seed = writer.Bytes();
      for (std::uint32_t i = 0; i < 24u + n; ++i) seed.push_back(static_cast<std::uint8_t>(random.Below(256)));
      seeds.push_back(std::move(seed));
    }
  }
  return seeds;
}

}  // namespace fuzz
