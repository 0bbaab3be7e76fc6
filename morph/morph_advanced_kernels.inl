// SPDX-License-Identifier: Apache-2.0
// The differences of the compound operations, compiled once per vector
// target: d = a - b saturated to the pixel type (plain difference for
// floats), and for bit images d = a AND NOT b.
#if defined(ZEB_MORPH_ADVANCED_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_MORPH_ADVANCED_KERNELS_
#undef ZEB_MORPH_ADVANCED_KERNELS_
#else
#define ZEB_MORPH_ADVANCED_KERNELS_
#endif

#include <cstdint>
#include <limits>
#include <type_traits>

#include "core/frame.h"
#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::morphadv {

template <class T>
HWY_INLINE T sub_sat(T a, T b) {
    if constexpr (std::is_floating_point_v<T>) {
        return a - b;
    } else {
        const int v = int(a) - int(b);
        const int lo = int(std::numeric_limits<T>::lowest()), hi = int(std::numeric_limits<T>::max());
        return T(v < lo ? lo : v > hi ? hi : v);
    }
}

// d = a - b over n samples of a row; d may be a or b.
template <class T>
HWY_INLINE void sub_row(const T* a, const T* b, T* d, int n) {
    const Vd<T> dt;
    constexpr int kN = int(hn::MaxLanes(Vd<T>()));
    int x = 0;
    for (; x + kN <= n; x += kN) {
        const auto va = hn::LoadU(dt, a + x), vb = hn::LoadU(dt, b + x);
        if constexpr (std::is_floating_point_v<T>)
            hn::StoreU(hn::Sub(va, vb), dt, d + x);
        else
            hn::StoreU(hn::SaturatedSub(va, vb), dt, d + x);
    }
    for (; x < n; ++x) d[x] = sub_sat(a[x], b[x]);
}

// Over an image of h rows of n samples: d = a - b (kAFirst) where d is
// the image b itself, or d = d - a otherwise: the second operand of the
// difference is always the image in d.
template <class T, bool kAFirst>
void subtract(const T* a, int as, T* d, int ds, int n, int h) {
    for (int y = 0; y < h; ++y) {
        const T* ra = row(a, as, y);
        T* rd = row(d, ds, y);
        if (kAFirst)
            sub_row(ra, rd, rd, n);
        else
            sub_row(static_cast<const T*>(rd), ra, rd, n);
    }
}

// Bit images of w pixels a row, most significant bit first: the same two
// forms with AND NOT, leaving the bits past w in the last byte of each
// destination row as they were.
template <bool kAFirst>
void subtract_bits(const uint8_t* a, int as, uint8_t* d, int ds, int w, int h) {
    const int full = w / 8, rest = w % 8;
    const uint8_t keep = uint8_t(0xffu >> rest);  // bits past the ROI
    for (int y = 0; y < h; ++y) {
        const uint8_t* ra = row(a, as, y);
        uint8_t* rd = row(d, ds, y);
        const Vd<uint8_t> d8;
        constexpr int kN = int(hn::MaxLanes(Vd<uint8_t>()));
        int x = 0;
        for (; x + kN <= full; x += kN) {
            const auto va = hn::LoadU(d8, ra + x), vd = hn::LoadU(d8, rd + x);
            hn::StoreU(kAFirst ? hn::AndNot(vd, va) : hn::AndNot(va, vd), d8, rd + x);
        }
        for (; x < full; ++x) rd[x] = uint8_t(kAFirst ? ra[x] & ~rd[x] : rd[x] & ~ra[x]);
        if (rest) {
            const uint8_t v = uint8_t(kAFirst ? ra[full] & ~rd[full] : rd[full] & ~ra[full]);
            rd[full] = uint8_t((v & ~keep) | (rd[full] & keep));
        }
    }
}

}  // namespace zeb::HWY_NAMESPACE::morphadv
HWY_AFTER_NAMESPACE();

#endif  // ZEB_MORPH_ADVANCED_KERNELS_
