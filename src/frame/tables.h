// Tables of a plan, in one block of memory.
#pragma once

#include "frame/memory.h"

#include <cstddef>
#include <cstdint>

namespace kels {

/// Lays tables out one behind the other, each on a cache line: once without memory, to measure, and once to give it
/// out.
class TableSpace {
public:
    explicit TableSpace(Kel8u* memory) : memory_(memory) {}

    template <class E>
    E* take(std::size_t count) {
        Kel8u* p = memory_ ? memory_ + size_ : nullptr;
        size_ += (count * sizeof(E) + 63) / 64 * 64;
        return reinterpret_cast<E*>(p);
    }
    std::size_t size() const { return size_; }

private:
    Kel8u* memory_;
    std::size_t size_ = 0;
};

/// Memory for all that `lay` takes from a TableSpace, laid out; null if there is none.
template <class Lay>
Owned<Kel8u> make_tables(Lay&& lay) {
    TableSpace measure(nullptr);
    lay(measure);
    Owned<Kel8u> tables = make_owned<Kel8u>(measure.size() + 63);
    if (tables) {
        TableSpace space(tables.get() + (64 - reinterpret_cast<std::uintptr_t>(tables.get()) % 64) % 64);
        lay(space);
    }
    return tables;
}

} // namespace kels
