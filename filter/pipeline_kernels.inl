// SPDX-License-Identifier: Apache-2.0
// Row and column kernels of the separable filters (row pass, column pass and
// the Gaussian filter built on them), compiled once per vector target
// (Highway's foreach_target re-includes this file from
// filter/pipeline_kernels.cpp). Every vector loop has a scalar twin that
// performs the same operations in the same order, so heads, tails and
// whole rows agree bit for bit on every target.
#if defined(ZEB_FILTER_PIPELINE_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_FILTER_PIPELINE_KERNELS_
#undef ZEB_FILTER_PIPELINE_KERNELS_
#else
#define ZEB_FILTER_PIPELINE_KERNELS_
#endif

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "core/border.h"
#include "core/frame.h"
#include "core/simd-inl.h"
#include "filter/pipeline_common.h"
#include "filter/pipeline_dispatch.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::pipe {

using namespace ::zeb::pipe;

using DF = Vd<float>;
using DI32 = hn::Rebind<int32_t, DF>;
using DI16 = Vd<int16_t>;
using DU16 = Vd<uint16_t>;
using DU8 = Vd<uint8_t>;
using VF = hn::Vec<DF>;
using VI16 = hn::Vec<DI16>;
using VU16 = hn::Vec<DU16>;
using VI32 = hn::Vec<hn::Repartition<int32_t, DI16>>;

inline constexpr int kLanes = int(hn::MaxLanes(DF()));     // floats per vector
inline constexpr int kShorts = int(hn::MaxLanes(DI16()));  // 16-bit values per vector
inline constexpr int kBytes = int(hn::MaxLanes(DU8()));    // bytes per vector
// Independent accumulators of the float kernels: each output is a serial
// chain of k additions, so enough chains must be in flight to hide the
// adder's latency.
inline constexpr int kFloatChains = 4;

// After the whole blocks of w outputs below e, what is left of n (if any)
// as one more block ending at n: it overlaps the block before and writes
// some outputs again with the same values (no kernel writes over its
// input). Rows shorter than a block are left to the scalar tail.
template <class Block>
HWY_INLINE int OverlapLast(int e, int n, int w, Block&& block) {
    if (e >= n || n < w) return e;
    block(n - w);
    return n;
}

// ---------------------------------------------------------------------------
// Loads and stores.

// kShorts samples widened to 16-bit lanes.
template <class T>
HWY_INLINE VI16 Load16(const T* HWY_RESTRICT p) {
    const DI16 d;
    if constexpr (std::is_same_v<T, uint8_t>)
        return hn::BitCast(d, hn::PromoteTo(DU16(), hn::LoadU(hn::Rebind<uint8_t, DU16>(), p)));
    else
        return hn::LoadU(d, p);
}

// kLanes converted values; clamps first so that the demotions are exact.
template <class D, Cvt C>
HWY_INLINE void StoreF(D* HWY_RESTRICT p, VF v) {
    const DF df;
    if constexpr (std::is_same_v<D, float>) {
        hn::StoreU(v, df, p);
    } else {
        v = hn::Min(hn::Max(v, hn::Set(df, Range<D>::lo)), hn::Set(df, Range<D>::hi));
        const auto i = C == Cvt::Trunc ? TruncInRange(v) : RoundInRange(v);
        const hn::Rebind<D, DF> dd;
#if HWY_TARGET == HWY_SSSE3
        if constexpr (std::is_same_v<D, uint16_t>) {
            // No unsigned 32-to-16-bit pack here: shift the range to signed,
            // pack with signed saturation (exact after the clamp), shift back.
            const hn::Rebind<int16_t, DF> ds;
            const auto s16 = hn::DemoteTo(ds, hn::Sub(i, hn::Set(DI32(), 32768)));
            hn::StoreU(hn::BitCast(dd, hn::Xor(s16, hn::Set(ds, int16_t(-32768)))), dd, p);
            return;
        }
#endif
        hn::StoreU(hn::DemoteTo(dd, i), dd, p);
    }
}

// kShorts bytes (D is int8_t or uint8_t) from 16-bit lanes, saturated.
template <class D>
HWY_INLINE void StoreBytes16(D* HWY_RESTRICT p, VI16 v) {
    const hn::Rebind<D, DI16> d8;
    hn::StoreU(hn::DemoteTo(d8, v), d8, p);
}

// ---------------------------------------------------------------------------
// Float taps along a line: out[e] = sum over i of c(i) * in[e + i*stride],
// i in index order, then times post (kPost), clamped and converted to D.
// The row pass uses stride = channels; K is 3, 5 or 0 (any length).
template <class S, class D, Cvt C, bool kPost, int K, class Coef>
void float_taps(const S* in, D* out, int n, int stride, int k, Coef coef, float post) {
    const DF df;
    const int kk = K ? K : k;
    constexpr int U = kFloatChains;
    float cs[K ? K : 1];
    if constexpr (K != 0)
        for (int i = 0; i < K; ++i) cs[i] = coef(i);
    auto cf = [&](int i) { return K ? cs[i] : coef(i); };
    const VF vpost = hn::Set(df, post);
    int e = 0;
    for (; e + U * kLanes <= n; e += U * kLanes) {
        VF acc[U];
        const VF c0 = hn::Set(df, cf(0));
        for (int u = 0; u < U; ++u) acc[u] = hn::Mul(c0, LoadAsF32(in + e + u * kLanes));
        for (int i = 1; i < kk; ++i) {
            const VF ci = hn::Set(df, cf(i));
            const S* p = in + e + std::ptrdiff_t(i) * stride;
            for (int u = 0; u < U; ++u) acc[u] = hn::Add(acc[u], hn::Mul(ci, LoadAsF32(p + u * kLanes)));
        }
        for (int u = 0; u < U; ++u) StoreF<D, C>(out + e + u * kLanes, kPost ? hn::Mul(acc[u], vpost) : acc[u]);
    }
    auto one = [&](int x) HWY_ATTR {
        VF acc = hn::Mul(hn::Set(df, cf(0)), LoadAsF32(in + x));
        for (int i = 1; i < kk; ++i)
            acc = hn::Add(acc, hn::Mul(hn::Set(df, cf(i)), LoadAsF32(in + x + std::ptrdiff_t(i) * stride)));
        StoreF<D, C>(out + x, kPost ? hn::Mul(acc, vpost) : acc);
    };
    for (; e + kLanes <= n; e += kLanes) one(e);
    e = OverlapLast(e, n, kLanes, one);
    for (; e < n; ++e) {
        float acc = cf(0) * float(in[e]);
        for (int i = 1; i < kk; ++i) acc = acc + cf(i) * float(in[e + std::ptrdiff_t(i) * stride]);
        out[e] = finish_scalar<D, C, kPost>(acc, post);
    }
}

// Float taps across rows: out[e] = sum over j of c(j) * rows[j][e]. With
// kTailTrunc the values after the last whole block of 16 are truncated
// while the others round as C says.
template <class S, class D, Cvt C, bool kPost, bool kTailTrunc, int K, class Coef>
void float_rows(const S* const* rows, D* out, int n, int k, Coef coef, float post) {
    const DF df;
    const int kk = K ? K : k;
    constexpr int U = kFloatChains;
    float cs[K ? K : 1];
    const S* rs[K ? K : 1];
    if constexpr (K != 0)
        for (int i = 0; i < K; ++i) cs[i] = coef(i), rs[i] = rows[i];
    auto cf = [&](int i) { return K ? cs[i] : coef(i); };
    auto rp = [&](int i) { return K ? rs[i] : rows[i]; };
    const VF vpost = hn::Set(df, post);
    const int body = kTailTrunc ? n - n % 16 : n;
    int e = 0;
    for (; e + U * kLanes <= body; e += U * kLanes) {
        VF acc[U];
        const VF c0 = hn::Set(df, cf(0));
        for (int u = 0; u < U; ++u) acc[u] = hn::Mul(c0, LoadAsF32(rp(0) + e + u * kLanes));
        for (int j = 1; j < kk; ++j) {
            const VF cj = hn::Set(df, cf(j));
            const S* p = rp(j) + e;
            for (int u = 0; u < U; ++u) acc[u] = hn::Add(acc[u], hn::Mul(cj, LoadAsF32(p + u * kLanes)));
        }
        for (int u = 0; u < U; ++u) StoreF<D, C>(out + e + u * kLanes, kPost ? hn::Mul(acc[u], vpost) : acc[u]);
    }
    auto one = [&](int x) HWY_ATTR {
        VF acc = hn::Mul(hn::Set(df, cf(0)), LoadAsF32(rp(0) + x));
        for (int j = 1; j < kk; ++j) acc = hn::Add(acc, hn::Mul(hn::Set(df, cf(j)), LoadAsF32(rp(j) + x)));
        StoreF<D, C>(out + x, kPost ? hn::Mul(acc, vpost) : acc);
    };
    for (; e + kLanes <= body; e += kLanes) one(e);
    e = OverlapLast(e, body, kLanes, one);
    for (; e < n; ++e) {
        float acc = cf(0) * float(rp(0)[e]);
        for (int j = 1; j < kk; ++j) acc = acc + cf(j) * float(rp(j)[e]);
        out[e] = e < body ? finish_scalar<D, C, kPost>(acc, post) : finish_scalar<D, Cvt::Trunc, kPost>(acc, post);
    }
}

// ---------------------------------------------------------------------------
// Exact integer taps with 16-bit coefficients: pairs of taps are
// interleaved and multiplied-added into 32-bit sums. Callers guarantee that
// no sum leaves the 32-bit range. The interleave works within 16-byte
// blocks and the narrowing pack undoes it, so lanes come out in order.

HWY_INLINE VI16 CoefPair(int16_t a, int16_t b) {
    const hn::Repartition<int32_t, DI16> d32;
    return hn::BitCast(DI16(), hn::Set(d32, int32_t(uint32_t(uint16_t(a)) | (uint32_t(uint16_t(b)) << 16))));
}

// Row pass of the 16s and 8u16s forms: S * scale, clamped, truncated.
struct FinScale {
    float scale;
    int16_t scalar(int32_t s) const { return cvt_scalar<int16_t, Cvt::Trunc>(float(s) * scale); }
    HWY_INLINE VI16 vec(VI32 lo, VI32 hi) const {
        const DF df;
        const VF sc = hn::Set(df, scale), a = hn::Set(df, -32768.f), b = hn::Set(df, 32767.f);
        auto one = [&](VI32 s) HWY_ATTR {
            return TruncInRange(hn::Min(hn::Max(hn::Mul(hn::ConvertTo(df, s), sc), a), b));
        };
        return hn::ReorderDemote2To(DI16(), one(lo), one(hi));
    }
};

template <class S, class Fin>
void int_taps(const S* in, int16_t* out, int n, int stride, int k, const int16_t* c, Fin fin) {
    const DI16 d16;
    const hn::Repartition<int32_t, DI16> d32;
    auto one = [&](int e) HWY_ATTR {
        VI32 lo = hn::Zero(d32), hi = hn::Zero(d32);
        int i = 0;
        for (; i + 1 < k; i += 2) {
            const VI16 a = Load16(in + e + std::ptrdiff_t(i) * stride);
            const VI16 b = Load16(in + e + std::ptrdiff_t(i + 1) * stride);
            const VI16 cc = CoefPair(c[i], c[i + 1]);
            lo = MulAddPairs(hn::InterleaveLower(d16, a, b), cc, lo);
            hi = MulAddPairs(hn::InterleaveUpper(d16, a, b), cc, hi);
        }
        if (i < k) {
            const VI16 a = Load16(in + e + std::ptrdiff_t(i) * stride);
            const VI16 cc = CoefPair(c[i], 0);
            lo = MulAddPairs(hn::InterleaveLower(d16, a, hn::Zero(d16)), cc, lo);
            hi = MulAddPairs(hn::InterleaveUpper(d16, a, hn::Zero(d16)), cc, hi);
        }
        hn::StoreU(fin.vec(lo, hi), d16, out + e);
    };
    int e = 0;
    for (; e + kShorts <= n; e += kShorts) one(e);
    e = OverlapLast(e, n, kShorts, one);
    for (; e < n; ++e) {
        int32_t s = 0;
        for (int i = 0; i < k; ++i) s += int32_t(c[i]) * int32_t(in[e + std::ptrdiff_t(i) * stride]);
        out[e] = fin.scalar(s);
    }
}

// ---------------------------------------------------------------------------
// The 8u Gaussian in unsigned 16-bit lanes, one high-half multiply per
// pair of taps. The kernel is symmetric (c[i] == c[k-1-i], as built by the
// kernel setup), a = k/2 its centre; the outer coefficients are at most
// 2048 and enter as c * 16, the centre (up to 4096) as c * 8:
//   row     R = floor(s[a] * c[a] / 32) + sum over i < a of
//               floor((s[i] + s[k-1-i]) * c[i] / 32)         (src * 128)
//   column  C = floor(R[a] * c[a] / 8192) + sum over j < a of
//               floor(((R[j] + R[k-1-j] + 1) >> 1) * c[j] / 4096)   (src * 64)
//   result  min((C + 32) >> 6, 255)
// The coefficients sum to at most 8192 (each is rounded from its exact
// share of 4096 and at most 8192 of them reach 1), so no 16-bit sum overflows.

// K is the kernel length when fixed (3 or 5; its offsets and coefficients
// stay in registers), 0 for any length.
template <int K>
void gauss8_taps(const uint8_t* in, uint16_t* out, int n, int stride, int k, const uint16_t* c) {
    const DU16 du;
    const int a = K ? K / 2 : k / 2;
    constexpr int kHalf = K ? K / 2 : 1;
    const std::ptrdiff_t mid = std::ptrdiff_t(a) * stride;
    auto load = [&](const uint8_t* p) HWY_ATTR { return hn::BitCast(du, Load16(p)); };
    const VU16 ca = hn::Set(du, uint16_t(c[a] << 3));
    VU16 cs[kHalf];
    std::ptrdiff_t lo[kHalf], hi[kHalf];
    auto tap = [&](int i, VU16& ci, std::ptrdiff_t& p, std::ptrdiff_t& q) HWY_ATTR {
        ci = hn::Set(du, uint16_t(c[i] << 4));
        p = std::ptrdiff_t(i) * stride;
        q = std::ptrdiff_t(k - 1 - i) * stride;
    };
    if constexpr (K != 0)
        for (int i = 0; i < kHalf; ++i) tap(i, cs[i], lo[i], hi[i]);
    // U vectors from e on; two independent chains hide the latencies.
    auto block = [&](int e, auto units) HWY_ATTR {
        constexpr int U = decltype(units)::value;
        VU16 acc[U];
        for (int u = 0; u < U; ++u) acc[u] = hn::MulHigh(hn::ShiftLeft<8>(load(in + e + mid + u * kShorts)), ca);
        for (int i = 0; i < a; ++i) {
            VU16 ci;
            std::ptrdiff_t p, q;
            if constexpr (K != 0)
                ci = cs[i], p = lo[i], q = hi[i];
            else
                tap(i, ci, p, q);
            for (int u = 0; u < U; ++u) {
                const VU16 sum = hn::Add(load(in + e + p + u * kShorts), load(in + e + q + u * kShorts));
                acc[u] = hn::Add(acc[u], hn::MulHigh(hn::ShiftLeft<7>(sum), ci));
            }
        }
        for (int u = 0; u < U; ++u) hn::StoreU(acc[u], du, out + e + u * kShorts);
    };
    using Two = std::integral_constant<int, 2>;
    using One = std::integral_constant<int, 1>;
    int e = 0;
    for (; e + 2 * kShorts <= n; e += 2 * kShorts) block(e, Two());
    for (; e + kShorts <= n; e += kShorts) block(e, One());
    e = OverlapLast(e, n, kShorts, [&](int x) HWY_ATTR { block(x, One()); });
    for (; e < n; ++e) {
        uint32_t acc = (uint32_t(in[e + mid]) * c[a]) >> 5;
        for (int i = 0; i < a; ++i)
            acc += ((uint32_t(in[e + std::ptrdiff_t(i) * stride]) + in[e + std::ptrdiff_t(k - 1 - i) * stride]) * c[i]) >> 5;
        out[e] = uint16_t(acc);
    }
}

template <int K>
void gauss8_rows(const uint16_t* const* rows, uint8_t* out, int n, int k, const uint16_t* c) {
    const DU16 du;
    const int a = K ? K / 2 : k / 2;
    constexpr int kHalf = K ? K / 2 : 1;
    const VU16 ca = hn::Set(du, uint16_t(c[a] << 3));
    const VU16 round = hn::Set(du, uint16_t(32));
    const uint16_t* centre = rows[a];
    VU16 cs[kHalf];
    const uint16_t* lo[kHalf];
    const uint16_t* hi[kHalf];
    auto tap = [&](int j, VU16& cj, const uint16_t*& p, const uint16_t*& q) HWY_ATTR {
        cj = hn::Set(du, uint16_t(c[j] << 4));
        p = rows[j];
        q = rows[k - 1 - j];
    };
    if constexpr (K != 0)
        for (int j = 0; j < kHalf; ++j) tap(j, cs[j], lo[j], hi[j]);
    auto block = [&](int e, auto units) HWY_ATTR {
        constexpr int U = decltype(units)::value;
        VU16 acc[U];
        for (int u = 0; u < U; ++u) acc[u] = hn::MulHigh(hn::LoadU(du, centre + e + u * kShorts), ca);
        for (int j = 0; j < a; ++j) {
            VU16 cj;
            const uint16_t* p;
            const uint16_t* q;
            if constexpr (K != 0)
                cj = cs[j], p = lo[j], q = hi[j];
            else
                tap(j, cj, p, q);
            for (int u = 0; u < U; ++u) {
                const VU16 avg = hn::AverageRound(hn::LoadU(du, p + e + u * kShorts), hn::LoadU(du, q + e + u * kShorts));
                acc[u] = hn::Add(acc[u], hn::MulHigh(avg, cj));
            }
        }
        // At most 1023 after the shift: the signed pack saturates to 255.
        for (int u = 0; u < U; ++u)
            StoreBytes16(out + e + u * kShorts, hn::BitCast(DI16(), hn::ShiftRight<6>(hn::Add(acc[u], round))));
    };
    using Two = std::integral_constant<int, 2>;
    using One = std::integral_constant<int, 1>;
    int e = 0;
    for (; e + 2 * kShorts <= n; e += 2 * kShorts) block(e, Two());
    for (; e + kShorts <= n; e += kShorts) block(e, One());
    e = OverlapLast(e, n, kShorts, [&](int x) HWY_ATTR { block(x, One()); });
    for (; e < n; ++e) {
        uint32_t acc = (uint32_t(rows[a][e]) * c[a]) >> 13;
        for (int j = 0; j < a; ++j) acc += (((uint32_t(rows[j][e]) + rows[k - 1 - j][e] + 1) >> 1) * c[j]) >> 12;
        const uint32_t v = (acc + 32) >> 6;
        out[e] = uint8_t(v > 255 ? 255 : v);
    }
}

// ---------------------------------------------------------------------------
// Integer shortcuts that give exactly the single-precision results. They run
// only where the single-precision arithmetic is itself exact: a divisor of
// +-2^s makes every scaled coefficient exact, and small coefficients keep
// every product and partial sum below 2^24, so the float sum equals the
// integer sum S scaled by 1/divisor, bit for bit.

// trunc(s / 2^shift), negated when negate.
HWY_INLINE VI16 TruncShift16(VI16 s, int shift, bool negate) {
    const DI16 d;
    const VI16 bias = hn::And(hn::ShiftRight<15>(s), hn::Set(d, int16_t((1 << shift) - 1)));
    const VI16 q = hn::ShiftRightSame(hn::Add(s, bias), shift);
    return negate ? hn::Sub(hn::Zero(d), q) : q;
}

// Row pass of 8u sources: |k[i]| <= 127 and sum |k[i]| <= 128, so pairs of
// taps fit the unsigned-by-signed byte multiply-add and every 16-bit partial
// sum stays within +-32640. Output trunc(S / divisor).
// NP is the number of tap pairs when fixed (k = 3 or 5), 0 for any length.
template <int NP>
void u8_pair_taps(const uint8_t* in, int16_t* out, int n, int stride, int k, const int16_t* c, int shift,
                  bool negate, float scale) {
    const DU8 du8;
    const hn::Repartition<int8_t, DU8> ds8;
    const DI16 d16;
    // Byte pairs of coefficients and the offsets of their two taps, built
    // once per row; an odd length pairs its last tap with itself under a
    // zero coefficient. The shortcut is taken for k <= 128 only.
    constexpr int kMaxPairs = NP ? NP : 64;
    const int np = NP ? NP : (k + 1) / 2;
    hn::Vec<decltype(ds8)> pairs[kMaxPairs];
    std::ptrdiff_t off0[kMaxPairs], off1[kMaxPairs];
    for (int p = 0; p < np; ++p) {
        const bool odd = 2 * p + 1 == k;
        const int16_t cc = int16_t(uint16_t(uint8_t(c[2 * p])) | uint16_t(uint8_t(odd ? 0 : c[2 * p + 1])) << 8);
        pairs[p] = hn::BitCast(ds8, hn::Set(d16, cc));
        off0[p] = std::ptrdiff_t(2 * p) * stride;
        off1[p] = std::ptrdiff_t(odd ? 2 * p : 2 * p + 1) * stride;
    }
    auto block = [&](int e) HWY_ATTR {
        VI16 lo = hn::Zero(d16), hi = hn::Zero(d16);
        for (int p = 0; p < np; ++p) {
            const auto a = hn::LoadU(du8, in + e + off0[p]);
            const auto b = hn::LoadU(du8, in + e + off1[p]);
            lo = hn::Add(lo, MulAddBytePairs(hn::InterleaveLower(du8, a, b), pairs[p]));
            hi = hn::Add(hi, MulAddBytePairs(hn::InterleaveUpper(du8, a, b), pairs[p]));
        }
        VI16 first, second;
        BlocksInOrder(TruncShift16(lo, shift, negate), TruncShift16(hi, shift, negate), first, second);
        hn::StoreU(first, d16, out + e);
        hn::StoreU(second, d16, out + e + kShorts);
    };
    int e = 0;
    for (; e + kBytes <= n; e += kBytes) block(e);
    e = OverlapLast(e, n, kBytes, block);
    const FinScale fin{scale};
    for (; e < n; ++e) {
        int32_t s = 0;
        for (int i = 0; i < k; ++i) s += int32_t(c[i]) * int32_t(in[e + std::ptrdiff_t(i) * stride]);
        out[e] = fin.scalar(s);
    }
}

// Column pass of 16s rows into integer D: sum |k[j]| < 512, so S stays
// below 2^24 and converts exactly; rounding as the single-precision path
// (nearest in whole blocks of 16, truncation after). NP is the number of
// coefficient pairs when fixed (k = 3 or 5), 0 for any length.
template <class D, int NP>
void s16_exact_rows(const int16_t* const* rows, D* out, int n, int k, const int16_t* c, float scale) {
    const DF df;
    const DI16 d16;
    const hn::Repartition<int32_t, DI16> d32;
    const int body = n - n % 16;
    const VF sc = hn::Set(df, scale);
    // Pairs of rows and coefficients; an odd length pairs its last row with
    // itself under a zero coefficient.
    constexpr int kMaxPairs = 16;
    const int np = NP ? NP : (k + 1) / 2;
    VI16 pairs[NP ? NP : kMaxPairs];
    const int16_t* r0[NP ? NP : kMaxPairs];
    const int16_t* r1[NP ? NP : kMaxPairs];
    auto set = [&](int slot, int p) HWY_ATTR {
        const bool odd = 2 * p + 1 == k;
        pairs[slot] = CoefPair(c[2 * p], odd ? 0 : c[2 * p + 1]);
        r0[slot] = rows[2 * p];
        r1[slot] = rows[odd ? 2 * p : 2 * p + 1];
    };
    auto finish = [&](VI32 s) HWY_ATTR { return RoundInRange(hn::Mul(hn::ConvertTo(df, s), sc)); };
    // NB blocks from e0 on, pairs p0 .. p1-1 of the pair table.
    auto block = [&](int e0, auto nb) HWY_ATTR {
        constexpr int NB = decltype(nb)::value;
        VI32 a0[NB], a1[NB];
        for (int u = 0; u < NB; ++u) a0[u] = a1[u] = hn::Zero(d32);
        auto add_pairs = [&](int count) HWY_ATTR {
            for (int p = 0; p < count; ++p)
                for (int u = 0; u < NB; ++u) {
                    const int e = e0 + u * kShorts;
                    const VI16 a = hn::LoadU(d16, r0[p] + e), b = hn::LoadU(d16, r1[p] + e);
                    a0[u] = MulAddPairs(hn::InterleaveLower(d16, a, b), pairs[p], a0[u]);
                    a1[u] = MulAddPairs(hn::InterleaveUpper(d16, a, b), pairs[p], a1[u]);
                }
        };
        if constexpr (NP != 0) {
            add_pairs(NP);
        } else {
            // Long kernels run through the pair table a slice at a time.
            for (int p0 = 0; p0 < np; p0 += kMaxPairs) {
                const int count = np - p0 < kMaxPairs ? np - p0 : kMaxPairs;
                for (int p = 0; p < count; ++p) set(p, p0 + p);
                add_pairs(count);
            }
        }
        for (int u = 0; u < NB; ++u) {
            // |S * scale| < 2^24: rounding first and saturating in the packs
            // equals clamping first.
            const VI16 r = hn::ReorderDemote2To(d16, finish(a0[u]), finish(a1[u]));
            if constexpr (sizeof(D) == 2)
                hn::StoreU(r, d16, out + e0 + u * kShorts);
            else
                StoreBytes16(out + e0 + u * kShorts, r);
        }
    };
    if constexpr (NP != 0)
        for (int p = 0; p < NP; ++p) set(p, p);
    using Two = std::integral_constant<int, 2>;
    using One = std::integral_constant<int, 1>;
    int e = 0;
    for (; e + 2 * kShorts <= body; e += 2 * kShorts) block(e, Two());
    for (; e + kShorts <= body; e += kShorts) block(e, One());
    e = OverlapLast(e, body, kShorts, [&](int x) HWY_ATTR { block(x, One()); });
    for (; e < n; ++e) {
        float acc = float(c[0]) * scale * float(rows[0][e]);
        for (int j = 1; j < k; ++j) acc = acc + float(c[j]) * scale * float(rows[j][e]);
        out[e] = e < body ? cvt_scalar<D, Cvt::Nearest>(acc) : cvt_scalar<D, Cvt::Trunc>(acc);
    }
}

// ---------------------------------------------------------------------------
// One row of a row pass with its horizontal border. span(in, out, count)
// computes `count` outputs where output e reads in[e + i*ch]. The interior
// reads the source row directly; the at most k-1 outputs at either end that
// need pixels outside the row read a short border-extended copy (edge, room
// for 2 * (2k - 2) * ch samples) built with the shared border rules.
template <class S, class D, class Span>
void row_with_border(const S* src, D* dst, int w, int ch, int k, int a, const border::Spec& bs, const S* value,
                     S* edge, Span&& span) {
    const int xl = bs.left ? 0 : (a < w ? a : w);
    int xr = bs.right ? w : w - (k - 1 - a);
    if (xr < xl) xr = xl;
    if (xr > xl) span(src + std::ptrdiff_t(xl - a) * ch, dst + std::ptrdiff_t(xl) * ch, (xr - xl) * ch);
    // Positions p0 .. p0+count-1 of the extended row into edge.
    auto extend = [&](int p0, int count) {
        for (int t = 0; t < count; ++t) {
            const int p = p0 + t;
            S* d = edge + std::ptrdiff_t(t) * ch;
            const bool inMem = (p < 0 && bs.left) || (p >= w && bs.right);
            const int j = inMem ? p : border::map_index(p, w, bs.mode);
            for (int c = 0; c < ch; ++c) d[c] = j < 0 && !inMem ? value[c] : src[std::ptrdiff_t(j) * ch + c];
        }
    };
    if (xl > 0) {
        extend(-a, xl + k - 1);
        span(edge, dst, xl * ch);
    }
    if (xr < w) {
        extend(xr - a, w - xr + k - 1);
        span(edge, dst + std::ptrdiff_t(xr) * ch, (w - xr) * ch);
    }
}

// ---------------------------------------------------------------------------
// Spans of the row and column passes, with the 3- and 5-tap kernels
// unrolled. Results do not depend on which one runs.

template <class S, class D, Cvt C, bool kPost, class Coef>
auto float_row_span(int k, int ch, Coef coef, float post) {
    return [=](const S* in, D* out, int n) HWY_ATTR {
        if (k == 3)
            float_taps<S, D, C, kPost, 3>(in, out, n, ch, k, coef, post);
        else if (k == 5)
            float_taps<S, D, C, kPost, 5>(in, out, n, ch, k, coef, post);
        else
            float_taps<S, D, C, kPost, 0>(in, out, n, ch, k, coef, post);
    };
}

template <class S, class D, Cvt C, bool kPost, bool kTailTrunc, class Coef>
auto float_col_span(int k, Coef coef, float post) {
    return [=](const S* const* rows, D* out, int n) HWY_ATTR {
        if (k == 3)
            float_rows<S, D, C, kPost, kTailTrunc, 3>(rows, out, n, k, coef, post);
        else if (k == 5)
            float_rows<S, D, C, kPost, kTailTrunc, 5>(rows, out, n, k, coef, post);
        else
            float_rows<S, D, C, kPost, kTailTrunc, 0>(rows, out, n, k, coef, post);
    };
}

// The row pass over a whole ROI into the caller's row buffers.
template <class S, class D, class Span>
void each_row(const RowPass<S, D>& j, Span span) {
    for (int y = 0; y < j.height; ++y)
        row_with_border(row(j.src, j.srcStep, y), j.dst[y], j.width, j.channels, j.k, j.anchor, j.border, j.value,
                        j.edge, span);
}

// The column pass over a whole ROI.
template <class S, class D, class Span>
void each_column_row(const ColumnPass<S, D>& j, Span span) {
    for (int y = 0; y < j.height; ++y) span(j.rows + y, row(j.dst, j.dstStep, y), j.width * j.channels);
}

// A whole separable filter with borders on all four sides, strip by strip
// (see StripBuffers).
template <class S, class M, class D, class RowSpan, class ColSpan>
void separable_image(const S* src, int srcStep, D* dst, int dstStep, int w, int h, int ch, int k,
                     const border::Spec& bs, const S* value, const StripBuffers& b, RowSpan rowSpan,
                     ColSpan colSpan) {
    const int a = k / 2;
    S* edge = static_cast<S*>(b.edge);
    M* constRow = static_cast<M*>(b.constRow);
    bool constReady = false;
    auto slot = [&](int j) { return reinterpret_cast<M*>(b.ring + b.pitch * ((j + a) % b.ringRows)); };
    // The filtered row of image row j (j may lie outside 0..h-1).
    auto filtered = [&](int j) -> const M* {
        const S* s = border::source_row(src, srcStep, j, h, bs);
        return s ? slot(j) : constRow;
    };
    int next = -a;  // first image row not yet filtered
    for (int y0 = 0; y0 < h; y0 += b.strip) {
        const int rows = h - y0 < b.strip ? h - y0 : b.strip;
        const int end = y0 + rows + k - 1 - a;
        for (; next < end; ++next) {
            const S* s = border::source_row(src, srcStep, next, h, bs);
            if (s) {
                row_with_border(s, slot(next), w, ch, k, a, bs, value, edge, rowSpan);
            } else if (!constReady) {
                S* cs = static_cast<S*>(b.constSrc);
                for (int x = 0; x < w; ++x)
                    for (int c = 0; c < ch; ++c) cs[std::ptrdiff_t(x) * ch + c] = value[c];
                border::Spec cb;
                cb.mode = border::kConst;
                row_with_border(static_cast<const S*>(cs), constRow, w, ch, k, a, cb, value, edge, rowSpan);
                constReady = true;
            }
        }
        const M** p = reinterpret_cast<const M**>(b.ptrs);
        for (int t = 0; t < rows + k - 1; ++t) p[t] = filtered(y0 - a + t);
        for (int y = 0; y < rows; ++y) colSpan(p + y, row(dst, dstStep, y0 + y), w * ch);
    }
}

// ---------------------------------------------------------------------------
// Whole passes as the exports run them.

template <class S, class D>
void row_job(const RowPass<S, D>& j) {
    const int k = j.k, ch = j.channels;
    if constexpr (std::is_same_v<D, float>) {
        each_row(j, float_row_span<S, D, Cvt::None, false>(k, ch, FloatCoefs{j.c}, 1.f));
    } else {
        if constexpr (std::is_same_v<D, int16_t> && std::is_same_v<S, uint8_t>) {
            if (j.exact && j.pairShift >= 0) {
                const int16_t* kern = j.kern;
                const int shift = j.pairShift;
                const bool negate = j.negate;
                const float scale = j.scale;
                each_row(j, [=](const uint8_t* in, int16_t* out, int n) HWY_ATTR {
                    if (k == 3)
                        u8_pair_taps<2>(in, out, n, ch, k, kern, shift, negate, scale);
                    else if (k == 5)
                        u8_pair_taps<3>(in, out, n, ch, k, kern, shift, negate, scale);
                    else
                        u8_pair_taps<0>(in, out, n, ch, k, kern, shift, negate, scale);
                });
                return;
            }
        }
        if constexpr (std::is_same_v<D, int16_t>) {
            if (j.exact) {
                const int16_t* kern = j.kern;
                const FinScale fin{j.scale};
                each_row(j, [=](const S* in, int16_t* out, int n) HWY_ATTR {
                    int_taps<S, FinScale>(in, out, n, ch, k, kern, fin);
                });
                return;
            }
        }
        each_row(j, float_row_span<S, D, Cvt::Trunc, false>(k, ch, FloatCoefs{j.c}, 1.f));
    }
}

template <class S, class D>
void column_job(const ColumnPass<S, D>& j) {
    const int k = j.k;
    if constexpr (std::is_same_v<S, float>) {
        each_column_row(j, float_col_span<S, D, Cvt::None, false, false>(k, FloatCoefs{j.c}, 1.f));
    } else {
        // 16-bit signed rows round to nearest in whole blocks of 16 values
        // and truncate after.
        constexpr bool kTail = std::is_same_v<S, int16_t>;
        if constexpr (kTail) {
            if (j.exact) {
                const int16_t* kern = j.kern;
                const float scale = j.scale;
                each_column_row(j, [=](const int16_t* const* r, D* out, int n) HWY_ATTR {
                    if (k == 3)
                        s16_exact_rows<D, 2>(r, out, n, k, kern, scale);
                    else if (k == 5)
                        s16_exact_rows<D, 3>(r, out, n, k, kern, scale);
                    else
                        s16_exact_rows<D, 0>(r, out, n, k, kern, scale);
                });
                return;
            }
        }
        each_column_row(j, float_col_span<S, D, Cvt::Nearest, false, kTail>(k, ScaledCoefs{j.kern, j.scale}, 1.f));
    }
}

template <class T>
void gauss_job(const GaussImage<T>& j) {
    const int k = j.k, ch = j.channels;
    if constexpr (std::is_same_v<T, float>) {
        const FloatCoefs c{reinterpret_cast<const float*>(j.table)};
        separable_image<T, float, T>(j.src, j.srcStep, j.dst, j.dstStep, j.width, j.height, ch, k, j.border, j.value,
                                     j.buffers, float_row_span<T, float, Cvt::None, false>(k, ch, c, 1.f),
                                     float_col_span<float, T, Cvt::None, false, false>(k, c, 1.f));
    } else if constexpr (std::is_same_v<T, uint8_t>) {
        const uint16_t* c = reinterpret_cast<const uint16_t*>(j.table);
        separable_image<T, uint16_t, T>(
            j.src, j.srcStep, j.dst, j.dstStep, j.width, j.height, ch, k, j.border, j.value, j.buffers,
            [=](const uint8_t* in, uint16_t* out, int n) HWY_ATTR {
                if (k == 3)
                    gauss8_taps<3>(in, out, n, ch, k, c);
                else if (k == 5)
                    gauss8_taps<5>(in, out, n, ch, k, c);
                else
                    gauss8_taps<0>(in, out, n, ch, k, c);
            },
            [=](const uint16_t* const* rows, uint8_t* out, int n) HWY_ATTR {
                if (k == 3)
                    gauss8_rows<3>(rows, out, n, k, c);
                else if (k == 5)
                    gauss8_rows<5>(rows, out, n, k, c);
                else
                    gauss8_rows<0>(rows, out, n, k, c);
            });
    } else {
        const TableCoefs c{j.table};
        const float post = 1.0f / 32768.0f;
        separable_image<T, T, T>(j.src, j.srcStep, j.dst, j.dstStep, j.width, j.height, ch, k, j.border, j.value,
                                 j.buffers, float_row_span<T, T, Cvt::Nearest, true>(k, ch, c, post),
                                 float_col_span<T, T, Cvt::Nearest, true, false>(k, c, post));
    }
}

}  // namespace zeb::HWY_NAMESPACE::pipe
HWY_AFTER_NAMESPACE();

#endif  // ZEB_FILTER_PIPELINE_KERNELS_
