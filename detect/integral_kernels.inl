// SPDX-License-Identifier: Apache-2.0
// Integral-image kernels, compiled once per vector target. Upright rows
// carry a running row sum across the lanes of each vector (an in-vector
// prefix sum plus the carry of the blocks before) and add the row above;
// tilted rows need no running sum: every entry depends on the two rows
// above only, so whole vectors are read at neighbouring columns.
#if defined(ZEB_DETECT_INTEGRAL_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_DETECT_INTEGRAL_KERNELS_
#undef ZEB_DETECT_INTEGRAL_KERNELS_
#else
#define ZEB_DETECT_INTEGRAL_KERNELS_
#endif

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "core/frame.h"
#include "core/simd-inl.h"
#include "detect/integral_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::integral {

// Pixel values of an 8-bit row as 32-bit lanes of du, squared when kSq
// (255 * 255 fits a 16-bit lane, so the square is taken there).
template <bool kSq, class DU>
HWY_INLINE hn::Vec<DU> LoadPixels(DU du, const uint8_t* HWY_RESTRICT p) {
    const hn::Rebind<uint8_t, DU> d8;
    if constexpr (!kSq) {
        return hn::PromoteTo(du, hn::LoadU(d8, p));
    } else {
        const hn::Rebind<uint16_t, DU> d16;
        const auto v = hn::PromoteTo(d16, hn::LoadU(d8, p));
        return hn::PromoteTo(du, hn::Mul(v, v));
    }
}

// Inclusive prefix sum over the 32-bit lanes of v, wrapping: lane i holds
// v[0] + ... + v[i]. Shifts within each 16-byte block, then the block
// totals are carried into the blocks above.
template <class DU>
HWY_INLINE hn::Vec<DU> PrefixSum(DU du, hn::Vec<DU> v) {
    constexpr size_t kN = hn::MaxLanes(DU());
    if constexpr (kN >= 2) v = hn::Add(v, hn::ShiftLeftLanes<1>(du, v));
    if constexpr (kN >= 4) v = hn::Add(v, hn::ShiftLeftLanes<2>(du, v));
    if constexpr (kN > 4) {
        const auto zero = hn::Zero(du);
        const auto totals = hn::Broadcast<3>(v);  // each block's total in all its lanes
        auto carry = BlockBefore(du, totals, zero);  // the total of the block below
#if HWY_TARGET == HWY_AVX3
        if constexpr (kN > 8) {
            // Totals two and three blocks below, shifted in independently.
            const hn::Repartition<uint64_t, DU> d64;
            using V64 = hn::Vec<decltype(d64)>;
            const auto t64 = hn::BitCast(d64, totals).raw, z64 = hn::BitCast(d64, zero).raw;
            carry = hn::Add(carry, hn::BitCast(du, V64{_mm512_alignr_epi64(t64, z64, 4)}));
            carry = hn::Add(carry, hn::BitCast(du, V64{_mm512_alignr_epi64(t64, z64, 2)}));
        }
#endif
        v = hn::Add(v, carry);
    }
    return v;
}

// above + s for the lanes of an upright row: wrapping integers, or the
// 32-bit sums converted to float.
template <class D, class VU>
HWY_INLINE void StoreRowSums(D d, const hn::TFromD<D>* HWY_RESTRICT above, VU s, hn::TFromD<D>* HWY_RESTRICT out) {
    if constexpr (std::is_same_v<hn::TFromD<D>, float>) {
        const hn::RebindToSigned<D> di;
        hn::Store(hn::Add(hn::LoadU(d, above), hn::ConvertTo(d, hn::BitCast(di, s))), d, out);
    } else {
        hn::Store(hn::Add(hn::LoadU(d, above), s), d, out);
    }
}

// Upright rows of plain pixel values. Two output vectors' worth of values
// are summed in 16-bit lanes, where a prefix sum over a 16-byte block takes
// two bit shifts within 64-bit lanes and one byte shuffle and holds eight
// values; the 16-bit vector is then widened
// into two 32-bit vectors. With 16-byte and 32-byte vectors each 32-bit
// vector holds at most one block, so no prefix step crosses a block; with
// 64-byte vectors each holds two blocks and its upper block takes the lower
// block's total by a masked broadcast. The carries (block totals) are added
// off the chain of the running sum. Out reaches a vector boundary after a
// scalar head.
template <class O>
HWY_INLINE void PlainRowSums(const uint8_t* HWY_RESTRICT src, int w, const O* HWY_RESTRICT above,
                             O* HWY_RESTRICT out) {
#if HWY_TARGET == HWY_AVX3
    const Vd<O> d;  // two blocks of 16-bit values per 32-bit vector
#else
    const hn::CappedTag<O, 8> d;  // at most one block of 16-bit values per 32-bit vector
#endif
    const hn::RebindToUnsigned<decltype(d)> du;
    const hn::Repartition<uint16_t, decltype(du)> d16;
    const hn::Half<decltype(d16)> dh;
    const hn::Rebind<uint8_t, decltype(d16)> d8;
    const hn::Repartition<uint64_t, decltype(d16)> d64;
    const hn::Repartition<uint8_t, decltype(d16)> d8x;
    // Bytes 8..15 of each block take bytes 6 and 7 (the 16-bit lane 3);
    // bytes 0..7 are cleared.
    uint8_t pick[hn::MaxLanes(d8x)];
    for (size_t i = 0; i < hn::MaxLanes(d8x); ++i) pick[i] = i % 16 < 8 ? 0x80 : uint8_t(6 + i % 2);
    const auto groupTotal = hn::LoadU(d8x, pick);
    constexpr int kN = int(hn::MaxLanes(du)), kStep = 2 * kN;
    uint32_t lanes[kN];
    for (int i = 0; i < kN; ++i) lanes[i] = uint32_t(kN - 1);
    const auto last = hn::SetTableIndices(du, lanes);
    const auto addr = reinterpret_cast<std::uintptr_t>(out);
    constexpr std::uintptr_t kAlign = kN * sizeof(O);
    const int head = addr % sizeof(O) ? w : std::min(w, int((kAlign - addr % kAlign) % kAlign / sizeof(O)));
    int x = 0;
    uint32_t s = 0;
    for (; x < head; ++x) {
        s += src[x];
        out[x] = ref::add_row_sum(above[x], s);
    }
    auto carry = hn::Set(du, s);
    for (; x + kStep <= w; x += kStep) {
        // Prefix over each group of four values by bit shifts within 64-bit
        // lanes, then the upper group of each block adds the lower's total.
        auto p = hn::PromoteTo(d16, hn::LoadU(d8, src + x));
        p = hn::Add(p, hn::BitCast(d16, hn::ShiftLeft<16>(hn::BitCast(d64, p))));
        p = hn::Add(p, hn::BitCast(d16, hn::ShiftLeft<32>(hn::BitCast(d64, p))));
        p = hn::Add(p, hn::BitCast(d16, hn::TableLookupBytesOr0(hn::BitCast(d8x, p), groupTotal)));
        auto lo = hn::PromoteTo(du, hn::LowerHalf(dh, p));
        auto hi = hn::PromoteTo(du, hn::UpperHalf(dh, p));
        if constexpr (kN == 16) {
            // Four blocks: lanes 8..15 of each vector add lane 7 (the total of
            // the block below), then the upper vector adds the lower's total.
            uint32_t seven[kN];
            for (int i = 0; i < kN; ++i) seven[i] = 7;
            const auto lowerBlockLast = hn::SetTableIndices(du, seven);
            const auto upperBlock = hn::Not(hn::FirstN(du, kN / 2));
            lo = hn::Add(lo, hn::IfThenElseZero(upperBlock, hn::TableLookupLanes(lo, lowerBlockLast)));
            const auto hiBelow = hn::IfThenElseZero(upperBlock, hn::TableLookupLanes(hi, lowerBlockLast));
            hi = hn::Add(hn::Add(hi, hiBelow), hn::TableLookupLanes(lo, last));
        } else if constexpr (kN == 8) {
            hi = hn::Add(hi, hn::TableLookupLanes(lo, last));  // two blocks: the upper one starts after the lower
        }
        StoreRowSums(d, above + x, hn::Add(carry, lo), out + x);
        StoreRowSums(d, above + x + kN, hn::Add(carry, hi), out + x + kN);
        carry = hn::Add(carry, hn::TableLookupLanes(hi, last));
    }
    s = hn::GetLane(carry);
    for (; x < w; ++x) {
        s += src[x];
        out[x] = ref::add_row_sum(above[x], s);
    }
}

// One upright row: out[x] = above[x] + s(x), s(x) the sum of the first
// x + 1 pixel values (squares when kSq). O is uint32_t (wrapping), float
// (float(int32(s)) + above) or double (exact s + above). A scalar head
// brings the output to a vector boundary, so that the body's stores are
// aligned; the carry into the next block adds the block's total, taken off
// the chain of the running sum.
template <bool kSq, class O>
HWY_INLINE void UprightRow(const uint8_t* HWY_RESTRICT src, int w, const O* HWY_RESTRICT above,
                           O* HWY_RESTRICT out) {
    if constexpr (!kSq && !std::is_same_v<O, double>) {
        PlainRowSums(src, w, above, out);
        return;
    }
    const Vd<O> d;
    const hn::Rebind<uint32_t, Vd<O>> du;
    constexpr int kN = int(hn::MaxLanes(d));
    uint32_t lanes[kN];
    for (int i = 0; i < kN; ++i) lanes[i] = uint32_t(kN - 1);
    const auto last = hn::SetTableIndices(du, lanes);  // every lane takes the last one
    const auto addr = reinterpret_cast<std::uintptr_t>(out);
    constexpr std::uintptr_t kAlign = kN * sizeof(O);
    const int head = addr % sizeof(O) ? w : std::min(w, int((kAlign - addr % kAlign) % kAlign / sizeof(O)));
    int x = 0;
    if constexpr (std::is_same_v<O, double>) {
        double s = 0;
        for (; x < head; ++x) {
            s += double(ref::pixel<kSq>(src[x]));
            out[x] = above[x] + s;
        }
        const hn::Rebind<int32_t, Vd<O>> di;
        auto carry = hn::Set(d, s);
        for (; x + kN <= w; x += kN) {
            const auto p = PrefixSum(du, LoadPixels<kSq>(du, src + x));
            hn::Store(hn::Add(hn::LoadU(d, above + x), hn::Add(carry, hn::PromoteTo(d, hn::BitCast(di, p)))), d,
                      out + x);
            carry = hn::Add(carry, hn::PromoteTo(d, hn::BitCast(di, hn::TableLookupLanes(p, last))));
        }
        s = hn::GetLane(carry);
        for (; x < w; ++x) {
            s += double(ref::pixel<kSq>(src[x]));
            out[x] = above[x] + s;
        }
    } else {
        uint32_t s = 0;
        for (; x < head; ++x) {
            s += ref::pixel<kSq>(src[x]);
            out[x] = ref::add_row_sum(above[x], s);
        }
        auto carry = hn::Set(du, s);
        for (; x + kN <= w; x += kN) {
            const auto p = PrefixSum(du, LoadPixels<kSq>(du, src + x));
            StoreRowSums(d, above + x, hn::Add(carry, p), out + x);
            carry = hn::Add(carry, hn::TableLookupLanes(p, last));
        }
        s = hn::GetLane(carry);
        for (; x < w; ++x) {
            s += ref::pixel<kSq>(src[x]);
            out[x] = ref::add_row_sum(above[x], s);
        }
    }
}

// The whole upright table of an 8-bit source: row 0 and column 0 hold val.
template <bool kSq, class O>
void upright(const uint8_t* src, int ss, O* dst, int ds, int w, int h, O val) {
    std::fill(dst, dst + w + 1, val);
    for (int y = 0; y < h; ++y) {
        O* cur = row(dst, ds, y + 1);
        cur[0] = val;
        UprightRow<kSq>(row(src, ss, y), w, row(dst, ds, y) + 1, cur + 1);
    }
}

// The two source values of a tilted entry, S(X-1) + S(X) (or their
// squares), as lanes of the table type.
template <bool kSq, class D>
HWY_INLINE hn::Vec<D> PixelPair(D d, const uint8_t* HWY_RESTRICT p) {
    using O = hn::TFromD<D>;
    const hn::Rebind<uint32_t, D> du;
    const auto pair = hn::Add(LoadPixels<kSq>(du, p), LoadPixels<kSq>(du, p + 1));
    if constexpr (std::is_same_v<O, uint32_t>) {
        return pair;
    } else if constexpr (std::is_same_v<O, float>) {
        return hn::ConvertTo(d, hn::BitCast(hn::Rebind<int32_t, D>(), pair));
    } else {
        return hn::PromoteTo(d, hn::BitCast(hn::Rebind<int32_t, D>(), pair));
    }
}

// Row y + 2 of a tilted table from the source row and table rows y + 1
// (r1) and y (r0).
template <bool kSq, class O>
HWY_INLINE void TiltedRow(const uint8_t* HWY_RESTRICT s, int w, const O* HWY_RESTRICT r1, const O* HWY_RESTRICT r0,
                          O* HWY_RESTRICT out) {
    const Vd<O> d;
    constexpr int kN = int(hn::MaxLanes(d));
    out[0] = r1[1];
    int X = 1;
    for (; X + kN <= w; X += kN) {
        const auto pair = PixelPair<kSq>(d, s + X - 1);
        const auto v = hn::Sub(hn::Add(hn::Add(pair, hn::LoadU(d, r1 + X - 1)), hn::LoadU(d, r1 + X + 1)),
                               hn::LoadU(d, r0 + X));
        hn::StoreU(v, d, out + X);
    }
    for (; X < w; ++X)
        out[X] = ref::tilted_entry<O>(ref::pixel<kSq>(s[X - 1]) + ref::pixel<kSq>(s[X]), r1[X - 1], r1[X + 1], r0[X]);
    out[w] = ref::tilted_entry<O>(ref::pixel<kSq>(s[w - 1]), r1[w - 1], r1[w + 1], r0[w]);
    out[w + 1] = r1[w];
}

template <bool kSq, class O>
void tilted(const uint8_t* src, int ss, O* dst, int ds, int w, int h, O val) {
    std::fill(dst, dst + w + 2, val);
    std::fill(row(dst, ds, 1), row(dst, ds, 1) + w + 2, val);
    for (int y = 0; y < h; ++y)
        TiltedRow<kSq>(row(src, ss, y), w, row(dst, ds, y + 1), row(dst, ds, y), row(dst, ds, y + 2));
}

}  // namespace zeb::HWY_NAMESPACE::integral
HWY_AFTER_NAMESPACE();

#endif  // ZEB_DETECT_INTEGRAL_KERNELS_
