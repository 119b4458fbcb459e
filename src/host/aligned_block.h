// Blocks of pixels and samples: zeroed, and aligned to 32 bytes as the frame records promise.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>

inline constexpr std::align_val_t kBlockAlignment{32};

struct ALIGNED_FREE {
    void operator()(void* block) const { ::operator delete(block, kBlockAlignment); }
};

template <typename T>
using AlignedBlock = std::unique_ptr<T[], ALIGNED_FREE>;

template <typename T>
[[nodiscard]] AlignedBlock<T> AllocateAligned(size_t count) {
    static_assert(std::is_arithmetic_v<T>);
    T* block = static_cast<T*>(::operator new(count * sizeof(T), kBlockAlignment));
    std::uninitialized_fill_n(block, count, T{});
    return AlignedBlock<T>(block);
}
