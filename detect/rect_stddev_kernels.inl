// SPDX-License-Identifier: Apache-2.0
// Standard deviation under a rectangle at every output position, from an
// integral table and its square table, compiled once per vector target.
// The four corners of each table are fixed offsets from the output
// position, so one output row reads eight table rows at fixed columns;
// the arithmetic runs in double-precision lanes (the float stages in
// float lanes of the same count).
#if defined(ZEB_DETECT_RECT_STDDEV_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_DETECT_RECT_STDDEV_KERNELS_
#undef ZEB_DETECT_RECT_STDDEV_KERNELS_
#else
#define ZEB_DETECT_RECT_STDDEV_KERNELS_
#endif

#include <type_traits>

#include "core/frame.h"
#include "core/simd-inl.h"
#include "detect/rect_stddev_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::stddev {

// Corners 0..3 of both tables, combined as P0 - P1 - P2 + P3 (upright) or
// P0 - P1 + P2 - P3 (tilted), left to right, in the lanes of the table
// type (wrapping for integer tables).
template <bool kTilted, class D, class T>
HWY_INLINE hn::Vec<D> Corners(D d, const T* const* p, int x) {
    const auto a = hn::Sub(hn::LoadU(d, p[0] + x), hn::LoadU(d, p[1] + x));
    if constexpr (kTilted)
        return hn::Sub(hn::Add(a, hn::LoadU(d, p[2] + x)), hn::LoadU(d, p[3] + x));
    else
        return hn::Add(hn::Sub(a, hn::LoadU(d, p[2] + x)), hn::LoadU(d, p[3] + x));
}

// A corner combination as doubles (integer tables: the wrapped sum read as
// signed) or, for the upright sum, as floats.
template <class DT, class V>
HWY_INLINE auto ToDouble(DT dd, V v) {
    using T = hn::TFromV<V>;
    if constexpr (std::is_same_v<T, double>) {
        return v;
    } else if constexpr (std::is_same_v<T, float>) {
        return hn::PromoteTo(dd, v);
    } else {
        return hn::PromoteTo(dd, hn::BitCast(hn::Rebind<int32_t, DT>(), v));
    }
}

// (int) of x >= 0 with results of 2^31 or more stored as INT32_MAX and a
// NaN as 0.
template <class DT>
HWY_INLINE hn::Vec<hn::Rebind<int32_t, DT>> SaturatedTrunc(DT dd, hn::Vec<DT> x) {
    const hn::Rebind<int32_t, DT> di;
    x = hn::IfThenZeroElse(hn::Ne(x, x), x);
    return hn::DemoteTo(di, hn::Min(x, hn::Set(dd, 2147483647.0)));  // truncates
}

// Output rows of a w x h destination. TI, TQ: lane types of the integral
// and square tables (uint32_t for integer tables); TO: float or int32_t.
// area is the rectangle's pixel count A; scale the float 2^-scaleFactor.
template <bool kTilted, class TI, class TQ, class TO>
void rows(const TI* I, int is, const TQ* Q, int qs, TO* dst, int ds, int w, int h, ref::CornerRows c, int64_t area,
          float scale) {
    const Vd<double> dd;
    const hn::Rebind<TI, decltype(dd)> di;
    const hn::Rebind<TQ, decltype(dd)> dq;
    const hn::Rebind<float, decltype(dd)> df;
    const hn::Rebind<TO, decltype(dd)> dout;
    constexpr int kN = int(hn::MaxLanes(dd));
    const ref::StdDevConsts k = ref::consts(area, scale);
    for (int y = 0; y < h; ++y) {
        const TI* pi[4];
        const TQ* pq[4];
        for (int j = 0; j < 4; ++j) {
            pi[j] = row(I, is, y + c.dy[j]) + c.dx[j];
            pq[j] = row(Q, qs, y + c.dy[j]) + c.dx[j];
        }
        TO* out = row(dst, ds, y);
        int x = 0;
        for (; x + kN <= w; x += kN) {
            // Tilted float tables are combined in double precision.
            const auto si = [&]() HWY_ATTR {
                if constexpr (kTilted && std::is_same_v<TI, float>) {
                    const auto at = [&](int j) HWY_ATTR { return hn::PromoteTo(dd, hn::LoadU(di, pi[j] + x)); };
                    return hn::Sub(hn::Add(hn::Sub(at(0), at(1)), at(2)), at(3));
                } else {
                    return Corners<kTilted>(di, pi, x);
                }
            }();
            const auto sq = ToDouble(dd, Corners<kTilted>(dq, pq, x));
            if constexpr (!kTilted && std::is_same_v<TO, float>) {
                // Sum in single precision; moments in double with the
                // reciprocal of the area; variance rounded to float.
                hn::Vec<decltype(df)> sum;
                if constexpr (std::is_same_v<TI, float>)
                    sum = si;
                else
                    sum = hn::ConvertTo(df, hn::BitCast(hn::Rebind<int32_t, decltype(dd)>(), si));
                const auto r = hn::Set(dd, k.recip);
                const auto mean = hn::Mul(hn::PromoteTo(dd, sum), r);
                const auto var = hn::DemoteTo(df, hn::Sub(hn::Mul(sq, r), hn::Mul(mean, mean)));
                const auto pos = hn::Gt(var, hn::Zero(df));
                hn::StoreU(hn::IfThenElseZero(pos, hn::Sqrt(var)), df, out + x);
            } else if constexpr (!kTilted) {
                // Scaled integer form: moments in single precision.
                const hn::Rebind<int32_t, decltype(dd)> d32;
                const auto af = hn::Set(df, k.areaF);
                const auto mean = hn::Div(hn::ConvertTo(df, hn::BitCast(d32, si)), af);
                auto var = hn::Sub(hn::Div(hn::DemoteTo(df, sq), af), hn::Mul(mean, mean));
                var = hn::IfThenElseZero(hn::Gt(var, hn::Zero(df)), var);
                const auto sd = hn::Sqrt(hn::PromoteTo(dd, var));
                const auto v = hn::Add(hn::Mul(sd, hn::Set(dd, k.scale)), hn::Set(dd, 0.5));
                hn::StoreU(SaturatedTrunc(dd, v), dout, out + x);
            } else {
                const auto a = hn::Set(dd, k.areaD);
                const auto mean = hn::Div(ToDouble(dd, si), a);
                auto var = hn::Sub(hn::Div(sq, a), hn::Mul(mean, mean));
                var = hn::IfThenElseZero(hn::Gt(var, hn::Zero(dd)), var);
                if constexpr (std::is_same_v<TO, float>) {
                    hn::StoreU(hn::Sqrt(hn::DemoteTo(df, var)), df, out + x);
                } else {
                    const auto v = hn::Add(hn::Mul(hn::Sqrt(var), hn::Set(dd, k.scale)), hn::Set(dd, 0.5));
                    hn::StoreU(SaturatedTrunc(dd, v), dout, out + x);
                }
            }
        }
        for (; x < w; ++x) out[x] = ref::stddev<kTilted, TO>(pi, pq, x, k);
    }
}

}  // namespace zeb::HWY_NAMESPACE::stddev
HWY_AFTER_NAMESPACE();

#endif  // ZEB_DETECT_RECT_STDDEV_KERNELS_
