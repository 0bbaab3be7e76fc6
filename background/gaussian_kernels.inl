// SPDX-License-Identifier: Apache-2.0
// Fixed-size Gaussian-mixture kernels, compiled once per vector target
// (Highway's foreach_target re-includes this file). Each pixel walks its
// own few components in order; the arithmetic is plain IEEE in a fixed
// order, so every target gives the same bits.
#if defined(ZEB_BACKGROUND_GAUSSIAN_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_BACKGROUND_GAUSSIAN_KERNELS_
#undef ZEB_BACKGROUND_GAUSSIAN_KERNELS_
#else
#define ZEB_BACKGROUND_GAUSSIAN_KERNELS_
#endif

#include <climits>
#include <cmath>
#include <utility>

#include "background/gaussian_state.h"
#include "core/frame.h"
#include "core/simd-inl.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::gmm {

using gauss_state::Component;
using gauss_state::kSlots;
using gauss_state::State;

// Classifies and learns one frame; C channels per pixel. Matching: the
// squared colour distance against C x threshold^2 x var.
template <int C>
void update(const uint8_t* src, int ss, uint8_t* dst, int ds, State* st, double rate) {
    const int w = st->width, h = st->height, K = st->numGauss;
    const float a = float(rate);
    const float vT = float(st->matchThreshold * st->matchThreshold) * float(C);
    const float minVar = float(st->noiseSigma * st->noiseSigma);
    const double T = st->backgroundRatio, w0 = st->initialWeight;
    const float var0 = float(st->initialVariance);
    for (int y = 0; y < h; ++y) {
        const uint8_t* in = row(src, ss, y);
        uint8_t* out = row(dst, ds, y);
        for (int x = 0; x < w; ++x) {
            const std::size_t p = std::size_t(y) * std::size_t(w) + std::size_t(x);
            Component* c = st->comps + p * kSlots;
            int used = st->used[p];
            float px[3] = {0.f, 0.f, 0.f};
            for (int ch = 0; ch < C; ++ch) px[ch] = float(in[C * x + ch]);
            int hit = -1;
            for (int k = 0; k < used; ++k) {
                float diff[3] = {0.f, 0.f, 0.f}, d2 = 0.f;
                for (int ch = 0; ch < C; ++ch) {
                    diff[ch] = px[ch] - c[k].mean[ch];
                    d2 += diff[ch] * diff[ch];
                }
                if (!(d2 < vT * c[k].var)) continue;
                c[k].weight += rate * (1.0 - c[k].weight);
                for (int ch = 0; ch < C; ++ch) c[k].mean[ch] += a * diff[ch];
                const float v = c[k].var + a * (d2 * (1.f / float(C)) - c[k].var);
                c[k].var = v < minVar ? minVar : v;
                c[k].key = float(c[k].weight) / std::sqrt(c[k].var);
                if (c[k].count < INT_MAX) ++c[k].count;
                int j = k;
                for (; j > 0 && c[j - 1].key < c[j].key; --j) std::swap(c[j - 1], c[j]);
                hit = j;
                break;
            }
            if (hit < 0) {
                // A new component in the next free slot, else in place of the last.
                hit = used < K ? used++ : K - 1;
                Component& n = c[hit];
                n.weight = w0;
                n.count = 1;
                n.var = var0;
                for (int ch = 0; ch < 3; ++ch) n.mean[ch] = px[ch];
                n.key = float(w0) / std::sqrt(var0);
            }
            double total = 0.0;
            for (int k = 0; k < used; ++k) total += c[k].weight;
            const double scale = 1.0 / total;
            const float fscale = float(scale);
            double cum = 0.0;
            int background = used;  // components [0, background) form the background
            for (int k = 0; k < used; ++k) {
                c[k].weight *= scale;
                c[k].key *= fscale;
                cum += c[k].weight;
                if (cum > T && background == used) background = k + 1;
            }
            st->used[p] = uint8_t(used);
            const uint8_t m = hit >= background ? 255 : 0;
            st->lastMask[p] = m;
            out[x] = m;
        }
    }
}

}  // namespace zeb::HWY_NAMESPACE::gmm
HWY_AFTER_NAMESPACE();

#endif  // ZEB_BACKGROUND_GAUSSIAN_KERNELS_
