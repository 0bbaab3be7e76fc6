// SPDX-License-Identifier: Apache-2.0
// Adaptive Gaussian-mixture kernels, compiled once per vector target
// (Highway's foreach_target re-includes this file). Every pixel runs its
// own short list of components, so the work is per pixel; the row of
// source bytes is widened to floats with vector code first. All float
// operations are plain IEEE operations in a fixed order: every target
// gives the same bits.
#if defined(ZEB_BACKGROUND_FGMM_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_BACKGROUND_FGMM_KERNELS_
#undef ZEB_BACKGROUND_FGMM_KERNELS_
#else
#define ZEB_BACKGROUND_FGMM_KERNELS_
#endif

#include <algorithm>
#include <cmath>

#include "background/background_ref.h"
#include "background/fgmm_state.h"
#include "core/frame.h"
#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::fgmm {

// n source bytes to floats.
HWY_INLINE void widen_row(const uint8_t* HWY_RESTRICT s, float* HWY_RESTRICT d, int n) {
    const Vd<float> df;
    const int kN = int(hn::Lanes(df));
    int i = 0;
    for (; i + kN <= n; i += kN) hn::StoreU(LoadAsF32(s + i), df, d + i);
    for (; i < n; ++i) d[i] = float(s[i]);
}

// Moves component i into slot i - 1 and that one into slot i.
HWY_INLINE void swap_up(float* wv, float* mu, int i) {
    std::swap(wv[2 * i], wv[2 * i - 2]);
    std::swap(wv[2 * i + 1], wv[2 * i - 1]);
    for (int c = 0; c < 3; ++c) std::swap(mu[3 * i + c], mu[3 * i - 3 + c]);
}

// Whether pixel p is a darker copy of one of the background components.
HWY_INLINE bool is_shadow(const float* p, const float* wv, const float* mu, int k, const ZebFGMMModel& m) {
    float total = 0.f;
    for (int j = 0; j < k; ++j) {
        const float* u = mu + 3 * j;
        const float num = p[0] * u[0] + p[1] * u[1] + p[2] * u[2];
        const float den = u[0] * u[0] + u[1] * u[1] + u[2] * u[2];
        if (den == 0.f) return false;
        if (num <= den && num >= m.shadowRatio * den) {
            const float s = num / den;
            float d2 = 0.f;
            for (int c = 0; c < 3; ++c) {
                const float d = s * u[c] - p[c];
                d2 += d * d;
            }
            if (d2 < m.varThreshold * wv[2 * j + 1] * s * s) return true;
        }
        total += wv[2 * j];
        if (total > m.backgroundRatio) return false;
    }
    return false;
}

// Classifies and learns one frame of w x h pixels.
void foreground(const uint8_t* src, int ss, uint8_t* dst, int ds, fgmm_state::Header* st, float alpha) {
    const ZebFGMMModel& m = st->model;
    const int w = st->width, h = st->height, n = st->n;
    const float a = alpha, a1 = 1.f - a, prune = -a * m.complexityPrior;
    float* px = st->row;
    for (int y = 0; y < h; ++y) {
        widen_row(row(src, ss, y), px, 3 * w);
        uint8_t* out = row(dst, ds, y);
        const std::size_t base = std::size_t(y) * std::size_t(w);
        for (int x = 0; x < w; ++x) {
            const float* p = px + 3 * x;
            float* wv = st->wv + (base + std::size_t(x)) * 2 * std::size_t(n);
            float* mu = st->means + (base + std::size_t(x)) * 3 * std::size_t(n);
            uint8_t& count = st->counts[base + std::size_t(x)];
            const int k = count;
            int kept = k;
            bool background = false, absorbed = false;
            float total = 0.f;
            for (int j = 0; j < k; ++j) {
                float wj = a1 * wv[2 * j] + prune;
                int moved = 0;
                if (!absorbed) {
                    const float var = wv[2 * j + 1];
                    float* u = mu + 3 * j;
                    const float d0 = u[0] - p[0], d1 = u[1] - p[1], d2 = u[2] - p[2];
                    const float dist2 = d0 * d0 + d1 * d1 + d2 * d2;
                    if (total < m.backgroundRatio && dist2 < m.varThreshold * var) background = true;
                    if (dist2 < m.varThresholdGen * var) {
                        absorbed = true;
                        wj += a;
                        const float r = a / wj;
                        u[0] -= r * d0, u[1] -= r * d1, u[2] -= r * d2;
                        wv[2 * j + 1] = std::min(std::max(var + r * (dist2 - var), m.varMin), m.varMax);
                        for (int i = j; i > 0 && !(wj < wv[2 * i - 2]); --i, ++moved) swap_up(wv, mu, i);
                    }
                }
                if (wj < -prune) {
                    wj = 0.f;
                    --kept;
                }
                wv[2 * (j - moved)] = wj;
                total += wj;
            }
            if (total > 0.f) {
                const float inv = 1.f / total;
                for (int j = 0; j < k; ++j) wv[2 * j] *= inv;
            }
            int used = kept;
            if (!absorbed && a > 0.f) {
                const int j = used == n ? n - 1 : used++;
                if (used == 1) {
                    wv[2 * j] = 1.f;
                } else {
                    wv[2 * j] = a;
                    for (int i = 0; i < used - 1; ++i) wv[2 * i] *= a1;
                }
                mu[3 * j] = p[0], mu[3 * j + 1] = p[1], mu[3 * j + 2] = p[2];
                wv[2 * j + 1] = m.varInit;
                for (int i = used - 1; i > 0 && !(a < wv[2 * i - 2]); --i) swap_up(wv, mu, i);
            }
            count = uint8_t(used);
            out[x] = background ? 0 : (m.detectShadows && is_shadow(p, wv, mu, used, m)) ? m.shadowValue : 255;
        }
    }
}

// The background image: weighted means of the leading components.
void background(uint8_t* dst, int ds, const fgmm_state::Header* st) {
    const int w = st->width, h = st->height, n = st->n;
    const float ratio = st->model.backgroundRatio;
    for (int y = 0; y < h; ++y) {
        uint8_t* out = row(dst, ds, y);
        for (int x = 0; x < w; ++x) {
            const std::size_t p = std::size_t(y) * std::size_t(w) + std::size_t(x);
            const float* wv = st->wv + p * 2 * std::size_t(n);
            const float* mu = st->means + p * 3 * std::size_t(n);
            const int k = st->counts[p];
            float total = 0.f, s0 = 0.f, s1 = 0.f, s2 = 0.f;
            for (int j = 0; j < k; ++j) {
                const float wj = wv[2 * j];
                total += wj;
                s0 += mu[3 * j] * wj, s1 += mu[3 * j + 1] * wj, s2 += mu[3 * j + 2] * wj;
                if (total > ratio) break;
            }
            if (!(total > 0.f)) {
                out[3 * x] = out[3 * x + 1] = out[3 * x + 2] = 0;
                continue;
            }
            const float inv = 1.f / total;
            out[3 * x] = ref::bg_channel(s0, inv);
            out[3 * x + 1] = ref::bg_channel(s1, inv);
            out[3 * x + 2] = ref::bg_channel(s2, inv);
        }
    }
}

}  // namespace zeb::HWY_NAMESPACE::fgmm
HWY_AFTER_NAMESPACE();

#endif  // ZEB_BACKGROUND_FGMM_KERNELS_
