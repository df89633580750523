// Pixels of pictures as the page has them, straight and in the order red, green, blue, alpha, and
// as the two storage forms keep them. Both directions round to the nearest value, as the stand-in
// host does with picture files.
#pragma once

#include <cstddef>
#include <cstdint>

namespace page {

enum class Form { context, buffer };

void StoreStraight(Form form, std::uint32_t* stored, const std::uint8_t* rgba, std::size_t count);
void LoadStraight(Form form, std::uint8_t* rgba, const std::uint32_t* stored, std::size_t count);

/// FNV-1a, 64 bits, over width, height and the stored words: 0xAARRGGBB of a context, the native
/// word of a buffer.
std::uint64_t Hash(Form form, int width, int height, const std::uint32_t* stored);

}  // namespace page
