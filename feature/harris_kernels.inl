// SPDX-License-Identifier: Apache-2.0
// Corner-response kernels, compiled once per vector target (Highway's
// foreach_target re-includes this file). A region's source pixels arrive as
// a float block that already holds every pixel its windows reach; the
// kernels form the derivatives and their three products over the region
// widened by the window, then the window means and the response. Each
// value is computed by the same sequence of single-precision operations in
// every lane and in the scalar tails, so results do not depend on the
// target or on where a region starts.
#if defined(ZEB_FEATURE_HARRIS_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_FEATURE_HARRIS_KERNELS_
#undef ZEB_FEATURE_HARRIS_KERNELS_
#else
#define ZEB_FEATURE_HARRIS_KERNELS_
#endif

#include "core/simd-inl.h"
#include "core/frame.h"
#include "feature/harris_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::harris {

namespace ref = zeb::harris::ref;
using DF = Vd<float>;
inline constexpr int kN = int(hn::MaxLanes(DF()));

// n source elements converted to float (exact for 8-bit pixels).
template <class S>
void convert_row(const S* HWY_RESTRICT src, float* HWY_RESTRICT dst, int n) {
    const DF df;
    int x = 0;
    for (; x + kN <= n; x += kN) hn::StoreU(LoadAsF32(src + x), df, dst + x);
    for (; x < n; ++x) dst[x] = float(src[x]);
}

// Sum over taps c[0..n-1] (zero taps skipped, the first product starting
// the sum) of c[i] * v(i), in order.
template <int n, const int* c, class V, class Get>
HWY_INLINE V taps(Get&& v, V zero) {
    V s = zero;
    bool first = true;
    for (int i = 0; i < n; ++i) {
        if (c[i] == 0) continue;
        const V t = hn::Mul(hn::Set(hn::DFromV<V>(), float(c[i])), v(i));
        s = first ? t : hn::Add(s, t);
        first = false;
    }
    return s;
}

// Derivatives and products over dw x dh positions. Position (x, y) is
// centred on block pixel (x + r, y + r); the block has bs floats per row
// and dw + 2r of them are read. tx, ty: two lines of dw + 2r floats.
// Products go to planes of dw floats per row.
template <class K>
void products(const float* HWY_RESTRICT block, int bs, int dw, int dh, float* HWY_RESTRICT tx, float* HWY_RESTRICT ty,
              float* HWY_RESTRICT pxx, float* HWY_RESTRICT pyy, float* HWY_RESTRICT pxy) {
    const DF df;
    constexpr int n = K::n;
    const int bw = dw + n - 1;
    for (int y = 0; y < dh; ++y) {
        const float* rows = block + std::ptrdiff_t(y) * bs;
        // Column sums of the two derivatives along the block row.
        int x = 0;
        for (; x + kN <= bw; x += kN) {
            auto at = [&](int i) HWY_ATTR { return hn::LoadU(df, rows + std::ptrdiff_t(i) * bs + x); };
            hn::StoreU(taps<n, K::colX>(at, hn::Zero(df)), df, tx + x);
            hn::StoreU(taps<n, K::colY>(at, hn::Zero(df)), df, ty + x);
        }
        for (; x < bw; ++x) {
            auto at = [&](int i) { return rows[std::ptrdiff_t(i) * bs + x]; };
            tx[x] = ref::taps<n, K::colX>(at);
            ty[x] = ref::taps<n, K::colY>(at);
        }
        // Row sums and products.
        float* oxx = pxx + std::ptrdiff_t(y) * dw;
        float* oyy = pyy + std::ptrdiff_t(y) * dw;
        float* oxy = pxy + std::ptrdiff_t(y) * dw;
        x = 0;
        for (; x + kN <= dw; x += kN) {
            const auto ix = taps<n, K::rowX>([&](int i) HWY_ATTR { return hn::LoadU(df, tx + x + i); }, hn::Zero(df));
            const auto iy = taps<n, K::rowY>([&](int i) HWY_ATTR { return hn::LoadU(df, ty + x + i); }, hn::Zero(df));
            hn::StoreU(hn::Mul(ix, ix), df, oxx + x);
            hn::StoreU(hn::Mul(iy, iy), df, oyy + x);
            hn::StoreU(hn::Mul(ix, iy), df, oxy + x);
        }
        for (; x < dw; ++x) {
            const float ix = ref::taps<n, K::rowX>([&](int i) { return tx[x + i]; });
            const float iy = ref::taps<n, K::rowY>([&](int i) { return ty[x + i]; });
            oxx[x] = ix * ix, oyy[x] = iy * iy, oxy[x] = ix * iy;
        }
    }
}

// Window means and response of a w x h region from product planes of
// w + aw - 1 floats per row (and h + aw - 1 rows); cs: three lines of
// w + aw - 1 floats for the column sums.
void response(const float* HWY_RESTRICT pxx, const float* HWY_RESTRICT pyy, const float* HWY_RESTRICT pxy, int w,
              int h, int aw, float* HWY_RESTRICT cs, float k, float s, float* dst, int ds) {
    const DF df;
    const int pw = w + aw - 1;
    const float* planes[3] = {pxx, pyy, pxy};
    float* sums[3] = {cs, cs + pw, cs + 2 * pw};
    const float n = float(aw) * float(aw);
    const auto vn = hn::Set(df, n), vk = hn::Set(df, k), vs = hn::Set(df, s);
    for (int y = 0; y < h; ++y) {
        float* out = row(dst, ds, y);
        if (aw > 1) {
            for (int p = 0; p < 3; ++p) {
                const float* col = planes[p] + std::ptrdiff_t(y) * pw;
                int x = 0;
                for (; x + kN <= pw; x += kN) {
                    auto acc = hn::LoadU(df, col + x);
                    for (int j = 1; j < aw; ++j) acc = hn::Add(acc, hn::LoadU(df, col + std::ptrdiff_t(j) * pw + x));
                    hn::StoreU(acc, df, sums[p] + x);
                }
                for (; x < pw; ++x) sums[p][x] = ref::column_sum(col + x, pw, aw);
            }
        }
        const float* a = aw > 1 ? sums[0] : pxx + std::ptrdiff_t(y) * pw;
        const float* b = aw > 1 ? sums[1] : pyy + std::ptrdiff_t(y) * pw;
        const float* c = aw > 1 ? sums[2] : pxy + std::ptrdiff_t(y) * pw;
        int x = 0;
        for (; x + kN <= w; x += kN) {
            auto mean = [&](const float* line) HWY_ATTR {
                if (aw == 1) return hn::LoadU(df, line + x);
                auto acc = hn::LoadU(df, line + x);
                for (int i = 1; i < aw; ++i) acc = hn::Add(acc, hn::LoadU(df, line + x + i));
                return hn::Div(acc, vn);
            };
            const auto va = mean(a), vb = mean(b), vc = mean(c);
            const auto t = hn::Add(va, vb);
            const auto r = hn::Sub(hn::Sub(hn::Mul(va, vb), hn::Mul(t, hn::Mul(vk, t))), hn::Mul(vc, vc));
            hn::StoreU(hn::Mul(r, vs), df, out + x);
        }
        for (; x < w; ++x) {
            auto mean = [&](const float* line) { return aw == 1 ? line[x] : ref::row_sum(line + x, aw) / n; };
            out[x] = ref::corner(mean(a), mean(b), mean(c), k, s);
        }
    }
}

}  // namespace zeb::HWY_NAMESPACE::harris
HWY_AFTER_NAMESPACE();

#endif  // ZEB_FEATURE_HARRIS_KERNELS_
