// What a sample costs in a stream, over taps and block lengths.
#pragma once

namespace bench {

/// Measures powers of two and their neighbours, prints what stands out, and draws fir-map.png in the working directory.
int map_fir();

} // namespace bench
