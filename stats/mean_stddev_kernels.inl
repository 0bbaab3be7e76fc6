// SPDX-License-Identifier: Apache-2.0
// Moment kernels (count, sum, sum of squares of the selected values),
// compiled once per vector target (Highway's foreach_target re-includes
// this file). Integer sums are exact, so their lane layout is free. The
// float kernels keep the fixed lane sets of stats_ref.h, which do not
// depend on the vector width: every target, and the scalar definition,
// performs the same additions in the same order.
#if defined(ZEB_STATS_MEAN_STDDEV_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_STATS_MEAN_STDDEV_KERNELS_
#undef ZEB_STATS_MEAN_STDDEV_KERNELS_
#else
#define ZEB_STATS_MEAN_STDDEV_KERNELS_
#endif

#include <algorithm>
#include <type_traits>

#include "core/frame.h"
#include "core/simd-inl.h"
#include "stats/stats_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::moments {

namespace st = zeb::stats;

// Pixels per block before the 32-bit lane sums are widened: small enough
// that no lane can wrap for any source type on any target.
inline constexpr int kBlock = 4096;

// Channel c of pixels x .. x + Lanes - 1 of a row of kCh interleaved
// channels: a plain load for one channel, a deinterleaving load of three.
template <int kCh, class D, class T>
HWY_INLINE hn::Vec<D> load_channel(D d, const T* HWY_RESTRICT p, int x, int c) {
    if constexpr (kCh == 1) {
        return hn::LoadU(d, p + x);
    } else {
        hn::Vec<D> v0, v1, v2;
        hn::LoadInterleaved3(d, p + std::ptrdiff_t(x) * 3, v0, v1, v2);
        return c == 0 ? v0 : c == 1 ? v1 : v2;
    }
}

// Adds the count, sum and sum of squares of the selected values of
// channel chan of a run of n pixels of kCh interleaved channels to r.
template <class T, bool kMask, int kCh>
void int_run(const T* HWY_RESTRICT p, const uint8_t* HWY_RESTRICT m, int n, int chan, st::IntMoments* r) {
    const Vd<T> d;
    const hn::Repartition<uint64_t, decltype(d)> d64;
    const hn::Repartition<uint32_t, decltype(d)> d32;
    constexpr int kE = int(hn::MaxLanes(Vd<T>()));
    int x = 0;
    while (x + kE <= n) {
        const int end = std::min(n, x + kBlock);
        const int x0 = x;
        int64_t cnt = 0;
        if constexpr (sizeof(T) == 1) {
            const hn::Repartition<uint8_t, decltype(d)> du;
            const hn::Repartition<int32_t, decltype(d)> di32;
            auto s = hn::Zero(d64), c = hn::Zero(d64);
            auto q = hn::Zero(di32);
            for (; x + kE <= end; x += kE) {
                auto v = hn::BitCast(du, load_channel<kCh>(d, p, x, chan));
                // Signed bytes sum as x + 128 (an unsigned byte for the
                // byte-sum instruction); the bias comes off with the count.
                auto u = std::is_signed_v<T> ? hn::Xor(v, hn::Set(du, 0x80)) : v;
                if constexpr (kMask) {
                    const auto sel = hn::VecFromMask(du, SelectedLanes(du, m + x));
                    v = hn::And(v, sel);
                    u = hn::And(u, sel);
                    c = hn::Add(c, hn::SumsOf8(hn::And(sel, hn::Set(du, 1))));
                }
                s = hn::Add(s, hn::SumsOf8(u));
                q = AddSquaresOf8<std::is_signed_v<T>>(di32, v, q);
            }
            cnt = kMask ? int64_t(WideLaneSum(d64, c)) : x - x0;
            r->s += int64_t(WideLaneSum(d64, s)) - (std::is_signed_v<T> ? 128 * cnt : 0);
            r->q += WideLaneSum(d32, hn::BitCast(d32, q));
        } else {
            const hn::Repartition<int16_t, decltype(d)> di16;
            auto s = hn::Zero(d32);
            auto q = hn::Zero(d64);
            auto c = hn::Zero(di16);
            for (; x + kE <= end; x += kE) {
                auto v = load_channel<kCh>(d, p, x, chan);
                if constexpr (kMask) {
                    const auto sel = hn::VecFromMask(d, SelectedLanes(d, m + x));
                    v = hn::And(v, sel);
                    c = hn::Sub(c, hn::BitCast(di16, sel));  // selected lanes are -1
                }
                const auto w = WidenHalvesU16(v);
                s = hn::Add(s, hn::Add(w.lo, w.hi));
                q = AddSquaresU32(w.hi, AddSquaresU32(w.lo, q));
            }
            cnt = x - x0;
            if constexpr (kMask) {
                const auto wc = WidenHalvesU16(hn::BitCast(d, c));
                cnt = int64_t(WideLaneSum(d32, hn::Add(wc.lo, wc.hi)));
            }
            r->s += int64_t(WideLaneSum(d32, s));
            r->q += WideLaneSum(d64, q);
        }
        r->n += cnt;
    }
    if constexpr (kCh == 1) {
        st::int_moments(p + x, kMask ? m + x : nullptr, n - x, *r);
    } else {
        for (; x < n; ++x) {
            if (kMask && !m[x]) continue;
            const int64_t v = p[std::ptrdiff_t(x) * 3 + chan];
            ++r->n;
            r->s += v;
            r->q += uint64_t(v * v);
        }
    }
}

// Number of selected pixels among n mask bytes.
inline int64_t count_selected(const uint8_t* HWY_RESTRICT m, int n) {
    const Vd<uint8_t> d;
    const hn::Repartition<uint64_t, decltype(d)> d64;
    constexpr int kE = int(hn::MaxLanes(Vd<uint8_t>()));
    auto c = hn::Zero(d64);
    int x = 0;
    for (; x + kE <= n; x += kE)
        c = hn::Add(c, hn::SumsOf8(hn::And(hn::VecFromMask(d, SelectedLanes(d, m + x)), hn::Set(d, 1))));
    int64_t total = int64_t(WideLaneSum(d64, c));
    for (; x < n; ++x) total += m[x] != 0;
    return total;
}

// Adds a run of columns, starting at a multiple of kMomentLanes, to the
// sixteen single-precision sum and square lanes ls, lq: lane j takes the
// columns x with x % 16 == j, in column order. A target holds the sixteen
// lanes in 16 / Lanes vectors; unselected pixels add +0.
template <bool kMask>
void float_run(const float* HWY_RESTRICT p, const uint8_t* HWY_RESTRICT m, int n, float* HWY_RESTRICT ls,
               float* HWY_RESTRICT lq) {
    const Vd<float> df;
    constexpr int kL = int(hn::MaxLanes(Vd<float>()));
    constexpr int kR = st::kMomentLanes / kL;
    static_assert(kR * kL == st::kMomentLanes);
    hn::Vec<Vd<float>> s[kR], q[kR];
    for (int k = 0; k < kR; ++k) {
        s[k] = hn::LoadU(df, ls + k * kL);
        q[k] = hn::LoadU(df, lq + k * kL);
    }
    int x = 0;
    for (; x + st::kMomentLanes <= n; x += st::kMomentLanes) {
        HWY_UNROLL(8)
        for (int k = 0; k < kR; ++k) {
            auto v = hn::LoadU(df, p + x + k * kL);
            if constexpr (kMask) v = hn::IfThenElseZero(SelectedLanes(df, m + x + k * kL), v);
            s[k] = hn::Add(s[k], v);
            q[k] = hn::Add(q[k], hn::Mul(v, v));
        }
    }
    for (int k = 0; k < kR; ++k) {
        hn::StoreU(s[k], df, ls + k * kL);
        hn::StoreU(q[k], df, lq + k * kL);
    }
    st::float_moments(p + x, kMask ? m + x : nullptr, n - x, ls, lq);
}

// The small-image kernel of the unmasked one-channel form: four lanes, two
// rows at a time (first row first), remainder columns into lane 0; the
// sums S and Q as stats_ref.h's plain_moments gives them.
inline void plain_run(const float* src, int step, int w, int h, double* S, double* Q) {
    const hn::CappedTag<float, 4> d4;
    HWY_ALIGN float ls[4] = {0, 0, 0, 0}, lq[4] = {0, 0, 0, 0};
    auto s = hn::Zero(d4), q = hn::Zero(d4);
    const int body = w - w % 4;
    for (int y = 0; y < h; y += 2) {
        const float* a = row(src, step, y);
        const float* b = y + 1 < h ? row(src, step, y + 1) : nullptr;
        for (int x = 0; x < body; x += 4) {
            const auto va = hn::LoadU(d4, a + x);
            s = hn::Add(s, va);
            q = hn::Add(q, hn::Mul(va, va));
            if (b) {
                const auto vb = hn::LoadU(d4, b + x);
                s = hn::Add(s, vb);
                q = hn::Add(q, hn::Mul(vb, vb));
            }
        }
        if (body == w) continue;
        hn::Store(s, d4, ls);
        hn::Store(q, d4, lq);
        for (int x = body; x < w; ++x) {
            const float va = load_u<float>(a + x);
            ls[0] += va;
            lq[0] += va * va;
            if (b) {
                const float vb = load_u<float>(b + x);
                ls[0] += vb;
                lq[0] += vb * vb;
            }
        }
        s = hn::Load(d4, ls);
        q = hn::Load(d4, lq);
    }
    hn::Store(s, d4, ls);
    hn::Store(q, d4, lq);
    *S = double(ls[0]) + double(ls[1]) + double(ls[2]) + double(ls[3]);
    *Q = double(lq[0]) + double(lq[1]) + double(lq[2]) + double(lq[3]);
}

// Adds (x - mean)^2 of a run of columns, starting at a multiple of
// kMomentLanes, to the sixteen double lanes ld (lane x % 16 takes column
// x); unselected pixels add +0.
template <bool kMask>
void deviation_run(const float* HWY_RESTRICT p, const uint8_t* HWY_RESTRICT m, int n, double mean,
                   double* HWY_RESTRICT ld) {
    const Vd<double> dd;
    const hn::Rebind<float, decltype(dd)> dh;
    const hn::Rebind<int32_t, decltype(dd)> di32;
    const hn::Rebind<int64_t, decltype(dd)> di64;
    constexpr int kL = int(hn::MaxLanes(Vd<double>()));
    constexpr int kR = st::kMomentLanes / kL;
    static_assert(kR * kL == st::kMomentLanes);
    hn::Vec<Vd<double>> acc[kR];
    for (int k = 0; k < kR; ++k) acc[k] = hn::LoadU(dd, ld + k * kL);
    const auto mv = hn::Set(dd, mean);
    int x = 0;
    for (; x + st::kMomentLanes <= n; x += st::kMomentLanes) {
        HWY_UNROLL(8)
        for (int k = 0; k < kR; ++k) {
            const int o = x + k * kL;
            auto v = hn::Sub(hn::PromoteTo(dd, hn::LoadU(dh, p + o)), mv);
            if constexpr (kMask) {
                // All-ones 32-bit selections sign-extend to all-ones 64-bit ones.
                const auto sel32 = hn::VecFromMask(di32, SelectedLanes(di32, m + o));
                v = hn::And(hn::BitCast(dd, hn::PromoteTo(di64, sel32)), v);
            }
            acc[k] = hn::Add(acc[k], hn::Mul(v, v));
        }
    }
    for (int k = 0; k < kR; ++k) hn::StoreU(acc[k], dd, ld + k * kL);
    st::deviation(p + x, kMask ? m + x : nullptr, n - x, mean, ld);
}

}  // namespace zeb::HWY_NAMESPACE::moments
HWY_AFTER_NAMESPACE();

#endif  // ZEB_STATS_MEAN_STDDEV_KERNELS_
