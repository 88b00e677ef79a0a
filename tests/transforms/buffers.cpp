// The sizes of work buffers, as they are stated.

#include "transforms/families.h"

namespace {

using namespace transform_test;

struct Size {
    int n, bytes, hint = kelHintDefault;
};

template <class F>
void expect_sizes(std::initializer_list<Layout> layouts, const std::vector<Size>& sizes) {
    for (const Layout layout : layouts)
        for (const bool inverse : {false, true})
            for (const Size& size : sizes) {
                const Case<F> c = {layout, inverse, size.n, kelFftNormInv, size.hint};
                EXPECT_EQ(c.buffer_size(), size.bytes) << c;
            }
}

constexpr std::initializer_list<Layout> complex = {Layout::interleaved, Layout::split}, real = {Layout::perm},
                                        all = {Layout::interleaved, Layout::split, Layout::perm},
                                        cosine = {Layout::cosine};

/// Of complex orders from `first` on, none below.
template <class F>
std::vector<Size> sizes_of_orders(int first, const std::vector<int>& bytes, int more_orders = 0) {
    std::vector<Size> sizes;
    for (int order = 0; order <= F::top_order; ++order)
        sizes.push_back(
            {1 << (order + more_orders), order < first ? 0 : bytes[static_cast<std::size_t>(order - first)]});
    return sizes;
}

const std::vector<int> single_bytes = {16,    16,    1040,  2064, 4112, 8208,  8208,  8208, 32784,
                                       32784, 32784, 32784, 8208, 8208, 32784, 32784, 32784},
                       double_bytes = {16,    16,    1040,  2064,  4112,  8208,  8208,  16400, 32784,
                                       32784, 32784, 16400, 16400, 32784, 32784, 32784, 32784};

TEST(BufferSizes, OfFfts) {
    expect_sizes<Fft32f>(complex, sizes_of_orders<Fft32f>(11, single_bytes));
    expect_sizes<Fft64f>(complex, sizes_of_orders<Fft64f>(10, double_bytes));
    expect_sizes<Fft32f>(real, sizes_of_orders<Fft32f>(11, single_bytes, 1));
    expect_sizes<Fft64f>(real, sizes_of_orders<Fft64f>(10, double_bytes, 1));
}

TEST(BufferSizes, OfFftsOf16Bits) {
    for (const Layout layout : all)
        for (const int hint : {0, 1, 2, 7, -1})
            for (int order = 0; order <= 18; ++order) {
                const bool fixed = (hint == 0 && order <= 8) || (hint == 1 && order <= 10);
                const int points = 1 << order, single_order = layout == Layout::perm ? order - 1 : order;
                int wanted = layout == Layout::perm ? 4 * points + 24 : (fixed ? 12 : 8) * points + 16;
                if (!fixed && single_order >= 11) wanted += single_bytes[static_cast<std::size_t>(single_order - 11)];
                expect_sizes<Fft16s>({layout}, {{points, order == 0 ? 0 : wanted, hint}});
            }
}

TEST(BufferSizes, OfDfts) {
    expect_sizes<Dft32f>(complex, {{1, 0}, {4, 0}, {5, 56}, {7, 72}, {8, 0}, {150, 1216}, {151, 4112}, {180, 4112}});
    expect_sizes<Dft32f>(all, {{181, 4112}, {256, 0}, {513, 16416}, {3000, 66592}});
    expect_sizes<Dft64f>(complex, {{1, 0}, {4, 0}, {5, 96}, {7, 128}, {8, 0}, {150, 2416}, {151, 8208}, {180, 8208}});
    expect_sizes<Dft64f>(all, {{181, 8208}, {256, 0}, {513, 32800}, {3000, 133152}});
    expect_sizes<Dft32f>(real, {{1, 0}, {4, 0}, {5, 36}, {7, 44}, {8, 0}, {150, 616}, {151, 620}, {180, 736}});
    expect_sizes<Dft64f>(real, {{1, 0}, {4, 0}, {5, 56}, {7, 72}, {8, 0}, {150, 1216}, {151, 1224}, {180, 1456}});
    expect_sizes<Dft16s>(complex, {{1, 0}, {4, 48}, {5, 56 + 56}, {8, 80}, {151, 1224 + 4112}});
    expect_sizes<Dft16s>(real, {{1, 0}, {4, 40}, {181, 748 + 4112}});
}

TEST(BufferSizes, OfDcts) {
    expect_sizes<Dct32f>(cosine, {{1, 0}, {2, 0, 2}, {3, 28}, {4, 0}, {8, 0}, {16, 80}, {100, 416}, {101, 2064}});
    expect_sizes<Dct32f>(cosine, {{128, 528, 2}, {512, 2064, 2}, {1000, 16416}, {1024, 4112}, {1024, 4112, 1}});
    expect_sizes<Dct32f>(cosine, {{1024, 8208, 2}, {2048, 16416, 2}});
    expect_sizes<Dct64f>(cosine, {{1, 0}, {2, 0, 2}, {3, 40}, {4, 0}, {8, 0}, {16, 144}, {100, 816}, {101, 4112}});
    expect_sizes<Dct64f>(cosine, {{128, 1040, 2}, {512, 4112, 2}, {1000, 32800}, {1024, 8208}, {1024, 8208, 1}});
    expect_sizes<Dct64f>(cosine, {{1024, 16416, 2}, {2048, 32800, 2}});
    expect_sizes<Dct16s>(cosine, {{1, 0}, {8, 48}, {101, 420 + 2064}, {1024, 4112 + 4112, 2}});
}

} // namespace
