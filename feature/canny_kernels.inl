// SPDX-License-Identifier: Apache-2.0
// Edge-detector kernels, compiled once per vector target (Highway's
// foreach_target re-includes this file): magnitude and low cut of one row,
// the border detector's gradient, magnitude and direction code of one row,
// and non-maximum suppression of one row into map bytes. Every kernel
// works a float-sized lane per pixel and finishes the row with the scalar
// rules of feature/canny_ref.h.
#if defined(ZEB_FEATURE_CANNY_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_FEATURE_CANNY_KERNELS_
#undef ZEB_FEATURE_CANNY_KERNELS_
#else
#define ZEB_FEATURE_CANNY_KERNELS_
#endif

#include <algorithm>
#include <cstdlib>

#include "core/simd-inl.h"
#include "feature/canny_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::canny {

using zeb::canny::Code;
namespace cref = zeb::canny::ref;

using DF = Vd<float>;
using DI = hn::Rebind<int32_t, DF>;
using D8 = hn::Rebind<uint8_t, DF>;
inline constexpr int kN = int(hn::MaxLanes(DF()));

// Magnitude row of 16-bit derivatives (int32 magnitudes) or float ones.
template <class S, class M>
void magnitude_row(const S* HWY_RESTRICT dx, const S* HWY_RESTRICT dy, M* HWY_RESTRICT m, int w, M low) {
    int x = 0;
    if constexpr (std::is_same_v<S, int16_t>) {
        const DI di;
        const hn::Rebind<int16_t, DI> d16;
        const auto vlow = hn::Set(di, low), vmax = hn::Set(di, 65535);
        for (; x + kN <= w; x += kN) {
            const auto ax = hn::Abs(hn::PromoteTo(di, hn::LoadU(d16, dx + x)));
            const auto ay = hn::Abs(hn::PromoteTo(di, hn::LoadU(d16, dy + x)));
            const auto v = hn::Min(hn::Add(ax, ay), vmax);
            hn::StoreU(hn::IfThenElseZero(hn::Gt(v, vlow), v), di, m + x);
        }
    } else {
        const DF df;
        const auto vlow = hn::Set(df, low);
        for (; x + kN <= w; x += kN) {
            const auto v = hn::Add(hn::Abs(hn::LoadU(df, dx + x)), hn::Abs(hn::LoadU(df, dy + x)));
            hn::StoreU(hn::IfThenElseZero(hn::Ge(v, vlow), v), df, m + x);
        }
    }
    for (; x < w; ++x) m[x] = cref::magnitude(dx[x], dy[x], low);
}

// The suppression rule of a vector of pixels, given which lanes lie in the
// vertical and horizontal sectors and which diagonal ones have equal signs.
template <class DM, class MV, class MK>
HWY_INLINE hn::Vec<DI> suppress(DM dm, MV m, MK vert, MK horiz, MK plus, const hn::TFromD<DM>* prev,
                                const hn::TFromD<DM>* cur, const hn::TFromD<DM>* next, int x, MV high) {
    const auto u = hn::LoadU(dm, prev + x), d = hn::LoadU(dm, next + x);
    const auto l = hn::LoadU(dm, cur + x - 1), r = hn::LoadU(dm, cur + x + 1);
    const auto ul = hn::LoadU(dm, prev + x - 1), ur = hn::LoadU(dm, prev + x + 1);
    const auto dl = hn::LoadU(dm, next + x - 1), dr = hn::LoadU(dm, next + x + 1);
    const auto kv = hn::And(hn::Lt(u, m), hn::Not(hn::Gt(d, m)));
    const auto kh = hn::And(hn::Lt(l, m), hn::Not(hn::Gt(r, m)));
    const auto kp = hn::And(hn::Lt(ul, m), hn::Lt(dr, m));
    const auto kmn = hn::And(hn::Lt(ur, m), hn::Lt(dl, m));
    const auto diag = hn::IfThenElse(plus, hn::VecFromMask(dm, kp), hn::VecFromMask(dm, kmn));
    const auto keep = hn::MaskFromVec(hn::IfThenElse(
        vert, hn::VecFromMask(dm, kv), hn::IfThenElse(horiz, hn::VecFromMask(dm, kh), diag)));
    // Zero magnitudes are never kept: every test compares against m.
    const auto strong = hn::And(keep, hn::Gt(m, high));
    const DI di;
    const auto k = hn::IfThenElseZero(hn::RebindMask(di, keep), hn::Set(di, zeb::canny::kCandidate));
    return hn::IfThenElse(hn::RebindMask(di, strong), hn::Set(di, zeb::canny::kStrong), k);
}

// Non-maximum suppression of one row of the derivative detectors: map
// bytes 0, 128 (candidate) or 255 (strong). prev, cur and next hold the
// magnitudes of the rows above, at and below, readable at -1 and w.
template <class S, class M>
void suppress_row(const S* HWY_RESTRICT dx, const S* HWY_RESTRICT dy, const M* prev, const M* cur, const M* next,
                  uint8_t* HWY_RESTRICT map, int w, M high) {
    const DF df;
    const DI di;
    const D8 d8;
    using DM = std::conditional_t<std::is_same_v<M, float>, DF, DI>;
    const DM dm;
    const auto vhigh = hn::Set(dm, high);
    const auto tanHigh = hn::Set(df, zeb::canny::kTanHigh), tanLow = hn::Set(df, zeb::canny::kTanLow);
    int x = 0;
    for (; x + kN <= w; x += kN) {
        const auto m = hn::LoadU(dm, cur + x);
        if (hn::AllTrue(dm, hn::Eq(m, hn::Zero(dm)))) {  // nothing to examine
            hn::StoreU(hn::Zero(d8), d8, map + x);
            continue;
        }
        hn::Vec<DI> sx, sy;  // the derivatives' sign bits in bit 31
        hn::Vec<DF> ax, ay;
        if constexpr (std::is_same_v<S, int16_t>) {
            const hn::Rebind<int16_t, DI> d16;
            sx = hn::PromoteTo(di, hn::LoadU(d16, dx + x));
            sy = hn::PromoteTo(di, hn::LoadU(d16, dy + x));
            ax = hn::ConvertTo(df, hn::Abs(sx));
            ay = hn::ConvertTo(df, hn::Abs(sy));
        } else {
            const auto fx = hn::LoadU(df, dx + x), fy = hn::LoadU(df, dy + x);
            sx = hn::BitCast(di, fx);
            sy = hn::BitCast(di, fy);
            ax = hn::Abs(fx);
            ay = hn::Abs(fy);
        }
        const auto vert = hn::Gt(ay, hn::Mul(tanHigh, ax));
        const auto horiz = hn::Lt(ay, hn::Mul(tanLow, ax));
        const auto plus = hn::Not(hn::Lt(hn::Xor(sx, sy), hn::Zero(di)));
        const auto out = suppress(dm, m, hn::RebindMask(dm, vert), hn::RebindMask(dm, horiz),
                                  hn::RebindMask(dm, plus), prev, cur, next, x, vhigh);
        hn::StoreU(hn::DemoteTo(d8, out), d8, map + x);
    }
    for (; x < w; ++x) {
        const float ax = std::fabs(float(dx[x])), ay = std::fabs(float(dy[x]));
        const bool same = zeb::canny::sign_bit(dx[x]) == zeb::canny::sign_bit(dy[x]);
        map[x] = cref::suppress(cref::sector(ax, ay, same), prev, cur, next, x, high);
    }
}

// v * c for a small constant c, with shifts and additions (a 32-bit
// multiply is several instructions on the baseline target).
template <int c, class V>
HWY_INLINE V MulConst(V v) {
    if constexpr (c == 1) return v;
    else if constexpr (c == 2) return hn::Add(v, v);
    else if constexpr (c == 3) return hn::Add(hn::Add(v, v), v);
    else if constexpr (c == 4) return hn::ShiftLeft<2>(v);
    else if constexpr (c == 6) return hn::ShiftLeft<1>(hn::Add(hn::Add(v, v), v));
    else if constexpr (c == 10) return hn::ShiftLeft<1>(hn::Add(hn::ShiftLeft<2>(v), v));
    else return hn::Mul(v, hn::Set(hn::DFromV<V>(), c));
}

// The border detector's gradient row: rows[0..k-1] hold the source rows
// around this one with k/2 border pixels on each side. Writes the cut
// magnitude (0 unless strictly above low) and the direction code.
template <int kKind, bool kL2>
void gradient_row(const uint8_t* const* rows, float* HWY_RESTRICT m, uint8_t* HWY_RESTRICT code, int w, float low) {
    const DF df;
    const DI di;
    const D8 d8;
    const auto vlow = hn::Set(df, low), tanLow = hn::Set(df, zeb::canny::kTanLow);
    // The sums fit 16 bits (at most 12240 in magnitude): they are formed
    // on twice the pixels of a float vector, then widened half by half.
    const hn::Repartition<int16_t, DF> d16;
    const hn::Rebind<uint8_t, decltype(d16)> d8w;
    const hn::Half<decltype(d16)> dh;
    constexpr int kW = 2 * kN;
    auto px = [&](int j, int o) HWY_ATTR { return hn::PromoteTo(d16, hn::LoadU(d8w, rows[j] + o)); };
    // Magnitude, cut and direction code of kN pixels from their sums.
    auto finish = [&](hn::Vec<DI> gx, hn::Vec<DI> gy, int o) HWY_ATTR {
        const auto ax = hn::ConvertTo(df, hn::Abs(gx)), ay = hn::ConvertTo(df, hn::Abs(gy));
        // A correctly rounded single-precision root equals the double root
        // rounded to single, so the float root serves the L2 rule.
        const auto mag = kL2 ? hn::Sqrt(hn::Add(hn::Mul(ax, ax), hn::Mul(ay, ay))) : hn::Add(ax, ay);
        hn::StoreU(hn::IfThenElseZero(hn::Gt(mag, vlow), mag), df, m + o);
        const auto tl = hn::Mul(tanLow, ax);
        const auto vert = hn::RebindMask(di, hn::Gt(ay, hn::Add(hn::Add(ax, ax), tl)));
        const auto horiz = hn::RebindMask(di, hn::Gt(tl, ay));
        const auto plus = hn::Not(hn::Lt(hn::Xor(gx, gy), hn::Zero(di)));
        const auto diag = hn::IfThenElse(plus, hn::Set(di, zeb::canny::kDiagPlus), hn::Set(di, zeb::canny::kDiagMinus));
        const auto c = hn::IfThenElse(vert, hn::Set(di, zeb::canny::kVert),
                                      hn::IfThenElse(horiz, hn::Set(di, zeb::canny::kHoriz), diag));
        hn::StoreU(hn::DemoteTo(d8, c), d8, code + o);
    };
    int x = 0;
    for (; x + kW <= w; x += kW) {
        hn::Vec<decltype(d16)> gx, gy;
        if constexpr (kKind == 2) {
            // Column differences and sums first, then along the row.
            hn::Vec<decltype(d16)> sm[5], df5[5];
            for (int i = 0; i < 5; ++i) {
                const auto p0 = px(0, x + i), p1 = px(1, x + i), p2 = px(2, x + i), p3 = px(3, x + i),
                           p4 = px(4, x + i);
                sm[i] = hn::Add(hn::Add(hn::Add(p0, p4), MulConst<4>(hn::Add(p1, p3))), MulConst<6>(p2));
                df5[i] = hn::Add(hn::Sub(p4, p0), MulConst<2>(hn::Sub(p3, p1)));
            }
            gx = hn::Add(hn::Sub(sm[4], sm[0]), MulConst<2>(hn::Sub(sm[3], sm[1])));
            gy = hn::Add(hn::Add(hn::Add(df5[0], df5[4]), MulConst<4>(hn::Add(df5[1], df5[3]))),
                         MulConst<6>(df5[2]));
        } else {
            constexpr int a = kKind == 0 ? 1 : 3, b = kKind == 0 ? 2 : 10;
            const auto r00 = px(0, x), r02 = px(0, x + 2), r10 = px(1, x), r12 = px(1, x + 2);
            const auto r20 = px(2, x), r22 = px(2, x + 2), r01 = px(0, x + 1), r21 = px(2, x + 1);
            gx = hn::Add(MulConst<a>(hn::Add(hn::Sub(r02, r00), hn::Sub(r22, r20))), MulConst<b>(hn::Sub(r12, r10)));
            gy = hn::Add(MulConst<a>(hn::Add(hn::Sub(r20, r00), hn::Sub(r22, r02))), MulConst<b>(hn::Sub(r21, r01)));
        }
        finish(hn::PromoteTo(di, hn::LowerHalf(dh, gx)), hn::PromoteTo(di, hn::LowerHalf(dh, gy)), x);
        finish(hn::PromoteTo(di, hn::UpperHalf(dh, gx)), hn::PromoteTo(di, hn::UpperHalf(dh, gy)), x + kN);
    }
    for (; x < w; ++x) {
        int32_t gx, gy;
        cref::gradient<kKind>(rows, x, gx, gy);
        const float ax = float(std::abs(gx)), ay = float(std::abs(gy));
        const float mag = cref::border_magnitude(ax, ay, kL2);
        m[x] = mag > low ? mag : 0.f;
        code[x] = cref::border_sector(ax, ay, (gx ^ gy) >= 0);
    }
}

// Suppression of one row of the border detector, driven by the direction
// codes, which the map bytes are replaced with (map may be code).
void suppress_code_row(uint8_t* map, const float* prev, const float* cur, const float* next, int w, float high) {
    const DF df;
    const DI di;
    const D8 d8;
    const auto vhigh = hn::Set(df, high);
    int x = 0;
    for (; x + kN <= w; x += kN) {
        const auto m = hn::LoadU(df, cur + x);
        if (hn::AllTrue(df, hn::Eq(m, hn::Zero(df)))) {
            hn::StoreU(hn::Zero(d8), d8, map + x);
            continue;
        }
        const auto c = hn::PromoteTo(di, hn::LoadU(d8, map + x));
        const auto vert = hn::RebindMask(df, hn::Eq(c, hn::Set(di, zeb::canny::kVert)));
        const auto horiz = hn::RebindMask(df, hn::Eq(c, hn::Set(di, zeb::canny::kHoriz)));
        const auto plus = hn::RebindMask(df, hn::Eq(c, hn::Set(di, zeb::canny::kDiagPlus)));
        hn::StoreU(hn::DemoteTo(d8, suppress(df, m, vert, horiz, plus, prev, cur, next, x, vhigh)), d8, map + x);
    }
    for (; x < w; ++x) map[x] = cref::suppress(Code(map[x]), prev, cur, next, x, high);
}

}  // namespace zeb::HWY_NAMESPACE::canny
HWY_AFTER_NAMESPACE();

#endif  // ZEB_FEATURE_CANNY_KERNELS_
