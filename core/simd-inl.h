// SPDX-License-Identifier: Apache-2.0
// Vector operations every kernel shares, written once on Highway and
// compiled per target: what Highway 1.0.3 lacks (integer absolute
// difference, exact widening loads to float) and the aligned or streaming
// store of the shared row loop. Included from a kernel file's per-target
// section (after <hwy/highway.h>); re-included once per target.
#if defined(ZEB_CORE_SIMD_INL_H_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_CORE_SIMD_INL_H_
#undef ZEB_CORE_SIMD_INL_H_
#else
#define ZEB_CORE_SIMD_INL_H_
#endif

#include <hwy/cache_control.h>
#include <hwy/highway.h>

#include <cstdint>
#include <type_traits>

#include "core/row_driver.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE {
namespace hn = hwy::HWY_NAMESPACE;

// Full vectors of one lane type on this target.
template <class T>
using Vd = hn::ScalableTag<T>;

// Bytes of one full vector on this target.
inline constexpr int kVecBytes = int(hn::MaxLanes(hn::ScalableTag<uint8_t>()));

// |a - b| of unsigned integer lanes, exact: one of the two saturating
// differences is zero.
template <class V>
HWY_INLINE V AbsDiffU(V a, V b) {
    return hn::Or(hn::SaturatedSub(a, b), hn::SaturatedSub(b, a));
}

// |a - b| of float lanes: the difference with its sign bit cleared.
template <class V>
HWY_INLINE V AbsDiffF(V a, V b) {
    return hn::Abs(hn::Sub(a, b));
}

// One full float vector of source elements widened exactly to float:
// 8-bit and 16-bit sources read a quarter or half vector of bytes.
template <class T>
HWY_INLINE hn::Vec<Vd<float>> LoadAsF32(const T* HWY_RESTRICT p) {
    const Vd<float> df;
    if constexpr (std::is_same_v<T, float>) {
        return hn::LoadU(df, p);
    } else {
        const hn::Rebind<int32_t, Vd<float>> di;
        const hn::Rebind<T, Vd<float>> ds;
        return hn::ConvertTo(df, hn::PromoteTo(di, hn::LoadU(ds, p)));
    }
}

// The store of the shared row loop: p is on a vector boundary.
template <Store kStore, class D>
HWY_INLINE void StoreKind(hn::Vec<D> v, D d, hn::TFromD<D>* HWY_RESTRICT p) {
    if constexpr (kStore == Store::Stream)
        hn::Stream(v, d, p);
    else
        hn::Store(v, d, p);
}

// The row loop every per-pixel kernel shares: a scalar head until the output
// reaches a vector boundary, a vector body of whole blocks with aligned
// (cached or streaming) stores, a scalar tail. Pixel pointers are aligned to
// their element size, as the C types require, so the boundary is always
// reachable. Compiled per target so that the block inlines.
// scalar(x) computes element x; block(x) computes elements x .. x+kBlock-1
// with out+x on a kAlign-byte boundary. The caller fences after streaming.
template <int kAlign, int kBlock, class O, class Scalar, class Block>
HWY_INLINE void drive_row(O* out, int n, Scalar&& scalar, Block&& block) {
    const auto addr = reinterpret_cast<std::uintptr_t>(out);
    const int head = int(((kAlign - addr % kAlign) % kAlign) / sizeof(O));
    int x = 0;
    for (const int e = head < n ? head : n; x < e; ++x) scalar(x);
    for (; x + kBlock <= n; x += kBlock) block(x);
    for (; x < n; ++x) scalar(x);
}

// Orders streaming stores before what follows; nothing for cached stores.
template <Store kStore>
HWY_INLINE void FinishStores() {
    if constexpr (kStore == Store::Stream) hwy::FlushStream();
}

}  // namespace zeb::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

// ---- Masked reductions: mask selections and exact widening sums ----
HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE {

// The lanes of d whose byte in an 8-bit mask is non-zero: reads Lanes(d)
// mask bytes from m. Wider lanes widen the bytes first (zero extension
// keeps "non-zero" intact).
template <class D>
HWY_INLINE hn::Mask<D> SelectedLanes(D d, const uint8_t* HWY_RESTRICT m) {
    const hn::RebindToUnsigned<D> du;
    using U = hn::TFromD<decltype(du)>;
    if constexpr (sizeof(U) == 1) {
        return hn::RebindMask(d, hn::Ne(hn::LoadU(du, m), hn::Zero(du)));
    } else {
        const hn::Rebind<uint8_t, decltype(du)> d8;
        return hn::RebindMask(d, hn::Ne(hn::PromoteTo(du, hn::LoadU(d8, m)), hn::Zero(du)));
    }
}

// The exact sum of all lanes of a vector of unsigned (or non-negative)
// integers, as a 64-bit integer; lane order is irrelevant to the result.
template <class D>
HWY_INLINE uint64_t WideLaneSum(D d, hn::Vec<D> v) {
    HWY_ALIGN hn::TFromD<D> lanes[hn::MaxLanes(D())];
    hn::Store(v, d, lanes);
    uint64_t t = 0;
    for (size_t i = 0; i < hn::Lanes(d); ++i) t += uint64_t(lanes[i]);
    return t;
}

// acc + the squares of the 8-bit lanes of v, two squares to a 32-bit lane
// (even and odd bytes are widened in place, sign-extended when kSigned,
// and multiplied pairwise). Exact while no lane passes 2^31.
template <bool kSigned, class V8, class D32>
HWY_INLINE hn::Vec<D32> AddSquaresOf8(D32 d32, V8 v, hn::Vec<D32> acc) {
    const hn::Repartition<int16_t, D32> d16;
    const hn::Repartition<uint16_t, D32> du16;
    const auto w = hn::BitCast(d16, v);
    const auto even = kSigned ? hn::ShiftRight<8>(hn::ShiftLeft<8>(w)) : hn::And(w, hn::Set(d16, 0xff));
    const auto odd = kSigned ? hn::ShiftRight<8>(w) : hn::BitCast(d16, hn::ShiftRight<8>(hn::BitCast(du16, w)));
    auto unused = hn::Zero(d32);  // the second sum of the pairwise multiply stays 0 on x86
    acc = hn::ReorderWidenMulAccumulate(d32, even, even, acc, unused);
    acc = hn::ReorderWidenMulAccumulate(d32, odd, odd, acc, unused);
    return hn::Add(acc, unused);
}

// The 16-bit unsigned lanes of v widened to 32 bits, as two vectors whose
// lanes together hold every value once.
template <class V16>
HWY_INLINE auto WidenHalvesU16(V16 v) {
    const hn::DFromV<V16> d16;
    const hn::RepartitionToWide<decltype(d16)> d32;
    struct Halves {
        hn::Vec<decltype(d32)> lo, hi;
    };
    return Halves{hn::ZipLower(d32, v, hn::Zero(d16)), hn::ZipUpper(d32, v, hn::Zero(d16))};
}

// acc + the squares of the unsigned 32-bit lanes of v, as 64-bit sums.
template <class V32>
HWY_INLINE auto AddSquaresU32(V32 v, hn::Vec<hn::RepartitionToWide<hn::DFromV<V32>>> acc) {
    const hn::DFromV<V32> d32;
    const hn::RepartitionToWide<decltype(d32)> d64;
    const V32 odd = hn::BitCast(d32, hn::ShiftRight<32>(hn::BitCast(d64, v)));
    return hn::Add(acc, hn::Add(hn::MulEven(v, v), hn::MulEven(odd, odd)));
}

}  // namespace zeb::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZEB_CORE_SIMD_INL_H_

// ---- Neighbouring lanes across vector boundaries ----
// Sliding-window kernels keep three consecutive vectors of a row (prev,
// cur, next) and form the row shifted by a few lanes from them instead of
// loading it again at an unaligned offset. Compiled per target.
#if defined(ZEB_CORE_SIMD_INL_NEIGHBOURS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_CORE_SIMD_INL_NEIGHBOURS_
#undef ZEB_CORE_SIMD_INL_NEIGHBOURS_
#else
#define ZEB_CORE_SIMD_INL_NEIGHBOURS_
#endif

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE {

// The 16-byte blocks of cur moved up by one block, the lowest block taken
// from the top block of prev (full vectors only).
template <class D>
HWY_INLINE hn::Vec<D> BlockBefore(D d, hn::Vec<D> cur, hn::Vec<D> prev) {
    constexpr size_t kBytes = hn::MaxLanes(D()) * sizeof(hn::TFromD<D>);
    if constexpr (kBytes == 16) {
        return prev;
    } else if constexpr (kBytes == 32) {
        return hn::ConcatLowerUpper(d, cur, prev);
    } else {
#if HWY_TARGET == HWY_AVX3
        const hn::Repartition<uint64_t, D> d64;
        using V64 = hn::Vec<decltype(d64)>;
        return hn::BitCast(d, V64{_mm512_alignr_epi64(hn::BitCast(d64, cur).raw, hn::BitCast(d64, prev).raw, 6)});
#else
        static_assert(kBytes <= 32, "no block shift for this vector size");
        return cur;
#endif
    }
}

// The blocks of cur moved down by one block, the highest block taken from
// the lowest block of next.
template <class D>
HWY_INLINE hn::Vec<D> BlockAfter(D d, hn::Vec<D> cur, hn::Vec<D> next) {
    constexpr size_t kBytes = hn::MaxLanes(D()) * sizeof(hn::TFromD<D>);
    if constexpr (kBytes == 16) {
        return next;
    } else if constexpr (kBytes == 32) {
        return hn::ConcatLowerUpper(d, next, cur);
    } else {
#if HWY_TARGET == HWY_AVX3
        const hn::Repartition<uint64_t, D> d64;
        using V64 = hn::Vec<decltype(d64)>;
        return hn::BitCast(d, V64{_mm512_alignr_epi64(hn::BitCast(d64, next).raw, hn::BitCast(d64, cur).raw, 2)});
#else
        static_assert(kBytes <= 32, "no block shift for this vector size");
        return cur;
#endif
    }
}

// Lane i is cur[i - k]; the k lowest lanes are the k highest of prev: the
// row read k elements earlier (0 < k, k * lane size < 16).
template <int k, class D>
HWY_INLINE hn::Vec<D> ShiftInPrev(D d, hn::Vec<D> cur, hn::Vec<D> prev) {
    using T = hn::TFromD<D>;
    static_assert(k > 0 && k * sizeof(T) < 16, "shift within one block");
#if HWY_TARGET == HWY_AVX3
    if constexpr (sizeof(T) == 4 && hn::MaxLanes(D()) == 16) {
        const hn::Repartition<uint32_t, D> d32;
        using V32 = hn::Vec<decltype(d32)>;
        return hn::BitCast(d, V32{_mm512_alignr_epi32(hn::BitCast(d32, cur).raw, hn::BitCast(d32, prev).raw, 16 - k)});
    }
#endif
    return hn::CombineShiftRightBytes<16 - k * sizeof(T)>(d, cur, BlockBefore(d, cur, prev));
}

// Lane i is cur[i + k]; the k highest lanes are the k lowest of next: the
// row read k elements later.
template <int k, class D>
HWY_INLINE hn::Vec<D> ShiftInNext(D d, hn::Vec<D> cur, hn::Vec<D> next) {
    using T = hn::TFromD<D>;
    static_assert(k > 0 && k * sizeof(T) < 16, "shift within one block");
#if HWY_TARGET == HWY_AVX3
    if constexpr (sizeof(T) == 4 && hn::MaxLanes(D()) == 16) {
        const hn::Repartition<uint32_t, D> d32;
        using V32 = hn::Vec<decltype(d32)>;
        return hn::BitCast(d, V32{_mm512_alignr_epi32(hn::BitCast(d32, next).raw, hn::BitCast(d32, cur).raw, k)});
    }
#endif
    return hn::CombineShiftRightBytes<k * sizeof(T)>(d, BlockAfter(d, cur, next), cur);
}

}  // namespace zeb::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZEB_CORE_SIMD_INL_NEIGHBOURS_

// ---- Instructions Highway 1.0.3 does not offer on every target ----
// Integer multiply-adds, block reordering, in-range float conversions and
// the spreading of a byte mask to float lanes. The raw instructions of
// each target stay here; kernels call these by name. Compiled per target.
#if defined(ZEB_CORE_SIMD_INL_TARGET_OPS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_CORE_SIMD_INL_TARGET_OPS_
#undef ZEB_CORE_SIMD_INL_TARGET_OPS_
#else
#define ZEB_CORE_SIMD_INL_TARGET_OPS_
#endif

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE {

// sum + (a[2i] * b[2i] + a[2i+1] * b[2i+1]) per 32-bit lane, exact.
template <class V16, class V32>
HWY_INLINE V32 MulAddPairs(V16 a, V16 b, V32 sum) {
#if HWY_TARGET <= HWY_AVX3
    return hn::Add(sum, V32{_mm512_madd_epi16(a.raw, b.raw)});
#else
    const hn::DFromV<V32> d32;
    V32 unused = hn::Zero(d32);
    return hn::ReorderWidenMulAccumulate(d32, a, b, sum, unused);
#endif
}

// u[2i] * s[2i] + u[2i+1] * s[2i+1] per 16-bit lane: unsigned bytes u times
// signed bytes s, saturated (callers keep the sums in range).
template <class VU8, class VI8>
HWY_INLINE hn::Vec<hn::Repartition<int16_t, hn::DFromV<VU8>>> MulAddBytePairs(VU8 u, VI8 s) {
    using VI16 = hn::Vec<hn::Repartition<int16_t, hn::DFromV<VU8>>>;
#if HWY_TARGET <= HWY_AVX3
    return VI16{_mm512_maddubs_epi16(u.raw, s.raw)};
#elif HWY_TARGET == HWY_AVX2
    return VI16{_mm256_maddubs_epi16(u.raw, s.raw)};
#else
    return VI16{_mm_maddubs_epi16(u.raw, s.raw)};
#endif
}

// lo holds elements 0..7 and hi elements 8..15 of every 16-byte block of
// a row of 16-bit values; first and second receive the row's elements in
// order.
template <class V>
HWY_INLINE void BlocksInOrder(V lo, V hi, V& first, V& second) {
#if HWY_TARGET <= HWY_AVX3
    const __m512i i0 = _mm512_set_epi64(11, 10, 3, 2, 9, 8, 1, 0);
    const __m512i i1 = _mm512_set_epi64(15, 14, 7, 6, 13, 12, 5, 4);
    first = V{_mm512_permutex2var_epi64(lo.raw, i0, hi.raw)};
    second = V{_mm512_permutex2var_epi64(lo.raw, i1, hi.raw)};
#elif HWY_TARGET == HWY_AVX2
    const hn::DFromV<V> d;
    first = hn::ConcatLowerLower(d, hi, lo);
    second = hn::ConcatUpperUpper(d, hi, lo);
#else
    first = lo;
    second = hi;
#endif
}

// Conversions of floats known to lie inside the int32 range (clamped
// before, or exact sums below 2^24): the plain instructions, without the
// out-of-range fix-up of Highway's conversions. Rounding to nearest even,
// and toward zero.
template <class VF>
HWY_INLINE hn::Vec<hn::RebindToSigned<hn::DFromV<VF>>> RoundInRange(VF v) {
    using VI = hn::Vec<hn::RebindToSigned<hn::DFromV<VF>>>;
#if HWY_TARGET <= HWY_AVX3
    return VI{_mm512_cvtps_epi32(v.raw)};
#elif HWY_TARGET == HWY_AVX2
    return VI{_mm256_cvtps_epi32(v.raw)};
#else
    return VI{_mm_cvtps_epi32(v.raw)};
#endif
}
template <class VF>
HWY_INLINE hn::Vec<hn::RebindToSigned<hn::DFromV<VF>>> TruncInRange(VF v) {
    using VI = hn::Vec<hn::RebindToSigned<hn::DFromV<VF>>>;
#if HWY_TARGET <= HWY_AVX3
    return VI{_mm512_cvttps_epi32(v.raw)};
#elif HWY_TARGET == HWY_AVX2
    return VI{_mm256_cvttps_epi32(v.raw)};
#else
    return VI{_mm_cvttps_epi32(v.raw)};
#endif
}

// The lanes of four consecutive float vectors whose mask byte is zero,
// from one full vector of mask bytes (4 * Lanes(df) bytes): one byte
// comparison, then spread to 32-bit lanes.
template <class DF>
HWY_INLINE void ZeroBytesToFloatMasks4(DF df, const uint8_t* HWY_RESTRICT m, hn::Mask<DF>* HWY_RESTRICT keep) {
    constexpr int kN = int(hn::MaxLanes(df));
    static_assert(4 * kN == kVecBytes, "the mask bytes of four float vectors fill one byte vector");
    const hn::Repartition<uint8_t, DF> d8;
    const auto zero = hn::Eq(hn::LoadU(d8, m), hn::Zero(d8));
#if HWY_TARGET == HWY_AVX3
    // One bit per byte: each float vector takes its 16 bits.
    const uint64_t bits = zero.raw;
    for (int k = 0; k < 4; ++k) keep[k] = hn::Mask<DF>{static_cast<__mmask16>(bits >> (kN * k))};
#elif HWY_TARGET == HWY_AVX2
    // Sign-extend each quarter of the byte mask to 32-bit lanes.
    const __m256i e = hn::VecFromMask(d8, zero).raw;
    const __m128i lo = _mm256_castsi256_si128(e), hi = _mm256_extracti128_si256(e, 1);
    const __m128i q[4] = {lo, _mm_unpackhi_epi64(lo, lo), hi, _mm_unpackhi_epi64(hi, hi)};
    for (int k = 0; k < 4; ++k)
        keep[k] = hn::MaskFromVec(hn::Vec256<float>{_mm256_castsi256_ps(_mm256_cvtepi8_epi32(q[k]))});
#else
    // Double each byte twice: 16 bytes give four vectors of 32-bit lanes.
    const hn::Repartition<uint16_t, DF> d16;
    const auto e = hn::VecFromMask(d8, zero);
    const auto w0 = hn::BitCast(d16, hn::InterleaveLower(e, e)), w1 = hn::BitCast(d16, hn::InterleaveUpper(d8, e, e));
    keep[0] = hn::MaskFromVec(hn::BitCast(df, hn::InterleaveLower(w0, w0)));
    keep[1] = hn::MaskFromVec(hn::BitCast(df, hn::InterleaveUpper(d16, w0, w0)));
    keep[2] = hn::MaskFromVec(hn::BitCast(df, hn::InterleaveLower(w1, w1)));
    keep[3] = hn::MaskFromVec(hn::BitCast(df, hn::InterleaveUpper(d16, w1, w1)));
#endif
}

}  // namespace zeb::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#endif  // ZEB_CORE_SIMD_INL_TARGET_OPS_
