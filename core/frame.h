// SPDX-License-Identifier: Apache-2.0
// Internal frame shared by every family: the process-wide variant choice,
// memory wrappers, the store-kind rule, row access.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "zebcore.h"
#include "zebcv.h"

extern "C" {
// 0 selects the u8 variant, 1 the n8 variant. Written once at load.
extern int32_t zeb_cpu_variant;
}

namespace zeb {

// Allocation wrapper: null for len <= 0 without calling zebMalloc.
inline void* alloc(int32_t len) { return len <= 0 ? nullptr : zebMalloc(len); }
inline void release(void* p) { zebFree(p); }

// Cached or streaming stores: the working set h * w * bytesPerPixel, as a
// wrapping 32-bit product, against the largest data cache. A failed cache
// query leaves the size at 0, so streaming is chosen.
inline bool use_streaming(ZebiSize roi, int32_t bytesPerPixel) {
    int32_t cache = 0;
    (void)zebGetMaxCacheSizeB(&cache);
    const int32_t ws = int32_t(uint32_t(roi.height) * uint32_t(roi.width) * uint32_t(bytesPerPixel));
    return ws >= cache;
}

// Row y of an image given by its first pixel and byte step.
template <class T>
inline T* row(T* base, int32_t step, int32_t y) {
    using B = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<B*>(base) + std::ptrdiff_t(y) * step);
}

// Unaligned scalar access without typed-pointer aliasing issues.
template <class T>
inline T load_u(const void* p) {
    T v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

// Rounds p up to a multiple of a (a power of two).
template <class T>
inline T* align_up(T* p, std::size_t a) {
    return reinterpret_cast<T*>((reinterpret_cast<std::uintptr_t>(p) + a - 1) & ~std::uintptr_t(a - 1));
}

// Carves 64-byte aligned arrays one after another out of a work buffer or
// an allocated block. Size formulas reserve 64 bytes of slack per array.
class Carver {
public:
    explicit Carver(void* base) : cur_(static_cast<unsigned char*>(base)) {}
    template <class T>
    T* take(std::size_t count) {
        unsigned char* p = align_up(cur_, 64);
        cur_ = p + count * sizeof(T);
        return reinterpret_cast<T*>(p);
    }

private:
    unsigned char* cur_;
};

// The shared release of state objects made by an ...InitAlloc.
ZebStatus free_state(void* state);

}  // namespace zeb
