// SPDX-License-Identifier: Apache-2.0
// Per-pixel colour and colour co-occurrence statistics: a reference
// background image, the previous frame, and per pixel two short tables of
// quantised features with their probabilities, classified by the Bayes
// rule and cleaned of small regions; classification and learning are
// separate calls.
#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/frame.h"

namespace zeb::impl {
namespace {

// One table entry: the feature (C quantised channels for colour, 2C for
// co-occurrence: previous then current) and its probabilities.
struct Entry {
    float pv;   // P(v)
    float pvb;  // P(v, background)
    float v[6];
};
static_assert(sizeof(Entry) == 32);

struct State {
    Entry* tables;      // per pixel: valueEntries colour entries, then coocEntries
    float* ref;         // reference background, C floats per pixel
    uint8_t* prev;      // previous frame, C bytes per pixel
    int32_t* queue;     // region scratch of the classification, one int per pixel
    int32_t width, height, channels, frames;
    int32_t valueLevels, coocLevels, valueEntries, coocEntries;
    float statRate, refRate, absorbLevel, tolerance, minArea;
    float change;       // a channel difference above this is a change
    uint8_t reserved[48];
};
static_assert(sizeof(State) == 136);

template <class T>
T or_default(T v, T d) {
    return v > T(0) ? v : d;
}

inline float quant(uint8_t v, int levels) { return float((int(v) * levels) >> 8); }

// The pixel's feature: colour (C values) or co-occurrence (2C values).
template <int C>
struct Feature {
    float v[2 * C];
    bool moving;
    int len() const { return moving ? 2 * C : C; }
};

template <int C>
bool exceeds(const uint8_t* a, const uint8_t* b, float thr) {
    for (int c = 0; c < C; ++c)
        if (float(std::abs(int(a[c]) - int(b[c]))) > thr) return true;
    return false;
}

template <int C>
Feature<C> feature_of(const State& s, const uint8_t* px, const uint8_t* prev) {
    Feature<C> f{};
    f.moving = exceeds<C>(px, prev, s.change);
    for (int c = 0; c < C; ++c) {
        if (f.moving) {
            f.v[c] = quant(prev[c], s.coocLevels);
            f.v[C + c] = quant(px[c], s.coocLevels);
        } else {
            f.v[c] = quant(px[c], s.valueLevels);
        }
    }
    return f;
}

template <int C>
bool matches(const Entry& e, const Feature<C>& f, float tol) {
    if (!(e.pv > 0.f)) return false;  // an empty slot
    for (int i = 0; i < f.len(); ++i)
        if (std::fabs(e.v[i] - f.v[i]) > tol) return false;
    return true;
}

// The table of a pixel for a feature kind, and its length.
inline Entry* table(const State& s, std::size_t p, bool moving, int& len) {
    Entry* t = s.tables + p * std::size_t(s.valueEntries + s.coocEntries);
    len = moving ? s.coocEntries : s.valueEntries;
    return moving ? t + s.valueEntries : t;
}

// Clears the 8-connected regions of 255 smaller than minArea pixels.
void drop_small_regions(const State& s, uint8_t* dst, int ds) {
    const int w = s.width, h = s.height;
    if (s.minArea <= 1.f) return;
    auto at = [&](int idx) -> uint8_t& { return row(dst, ds, idx / w)[idx % w]; };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            if (row(dst, ds, y)[x] != 255) continue;
            int head = 0, tail = 0;
            s.queue[tail++] = y * w + x;
            row(dst, ds, y)[x] = 1;  // visited
            while (head < tail) {
                const int q = s.queue[head++], qy = q / w, qx = q % w;
                for (int dy = -1; dy <= 1; ++dy)
                    for (int dx = -1; dx <= 1; ++dx) {
                        const int ny = qy + dy, nx = qx + dx;
                        if (ny < 0 || ny >= h || nx < 0 || nx >= w) continue;
                        uint8_t& m = row(dst, ds, ny)[nx];
                        if (m != 255) continue;
                        m = 1;
                        s.queue[tail++] = ny * w + nx;
                    }
            }
            const uint8_t v = float(tail) < s.minArea ? 0 : 254;
            for (int i = 0; i < tail; ++i) at(s.queue[i]) = v;
        }
    for (int y = 0; y < h; ++y) {
        uint8_t* r = row(dst, ds, y);
        for (int x = 0; x < w; ++x) r[x] = r[x] == 254 ? 255 : r[x];
    }
}

template <int C>
void classify_frame(const State& s, const uint8_t* src, int ss, uint8_t* dst, int ds) {
    const float tol = s.tolerance;
    for (int y = 0; y < s.height; ++y) {
        const uint8_t* in = row(src, ss, y);
        uint8_t* out = row(dst, ds, y);
        for (int x = 0; x < s.width; ++x) {
            const std::size_t p = std::size_t(y) * std::size_t(s.width) + std::size_t(x);
            const uint8_t* px = in + C * x;
            bool near = true;
            for (int c = 0; c < C; ++c)
                if (std::fabs(float(px[c]) - s.ref[p * C + c]) > s.change) near = false;
            if (near) {
                out[x] = 0;
                continue;
            }
            const Feature<C> f = feature_of<C>(s, px, s.prev + p * C);
            int len = 0;
            const Entry* t = table(s, p, f.moving, len);
            float pv = 0.f, pvb = 0.f;
            for (int i = 0; i < len; ++i)
                if (matches(t[i], f, tol)) pv += t[i].pv, pvb += t[i].pvb;
            out[x] = 2.f * pvb > pv ? 0 : 255;
        }
    }
    drop_small_regions(s, dst, ds);
}

template <int C>
void learn_frame(State& s, const uint8_t* src, int ss, const uint8_t* mask, int ms) {
    const float a = s.statRate, keep = 1.f - a, tol = s.tolerance;
    for (int y = 0; y < s.height; ++y) {
        const uint8_t* in = row(src, ss, y);
        const uint8_t* mk = row(mask, ms, y);
        for (int x = 0; x < s.width; ++x) {
            const std::size_t p = std::size_t(y) * std::size_t(s.width) + std::size_t(x);
            const uint8_t* px = in + C * x;
            uint8_t* prev = s.prev + p * C;
            float* ref = s.ref + p * C;
            const bool bg = mk[x] == 0;
            const Feature<C> f = feature_of<C>(s, px, prev);
            int len = 0;
            Entry* t = table(s, p, f.moving, len);
            int hit = -1;
            for (int i = 0; i < len; ++i) {
                if (hit < 0 && matches(t[i], f, tol)) hit = i;
                t[i].pv *= keep;
                t[i].pvb *= keep;
            }
            if (hit < 0) {
                hit = len - 1;
                t[hit] = Entry{};
                for (int i = 0; i < f.len(); ++i) t[hit].v[i] = f.v[i];
            }
            t[hit].pv += a;
            if (bg) t[hit].pvb += a;
            for (; hit > 0 && t[hit - 1].pv < t[hit].pv; --hit) std::swap(t[hit - 1], t[hit]);
            if (bg) {
                for (int c = 0; c < C; ++c) ref[c] += s.refRate * (float(px[c]) - ref[c]);
            } else if (t[hit].pv >= s.absorbLevel) {
                // A feature seen this often is part of the scene.
                t[hit].pvb = t[hit].pv;
                if (!f.moving)
                    for (int c = 0; c < C; ++c) ref[c] = float(px[c]);
            }
            for (int c = 0; c < C; ++c) prev[c] = px[c];
        }
    }
    if (s.frames < INT_MAX) ++s.frames;
}

template <int C, class S>
ZebStatus init_alloc(const Zeb8u* src, int ss, ZebiSize roi, const ZebForegroundHistogramModel* model, S** out) {
    if (any_null(src, model, out)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus s = min_steps({req<Zeb8u>(ss, roi.width, C)})) return s;
    if (model->valueLevels > 256 || model->coocLevels > 256 || model->valueEntries > 64 || model->coocEntries > 64)
        return zebStsBadArgErr;
    State cfg{};
    cfg.width = roi.width;
    cfg.height = roi.height;
    cfg.channels = C;
    cfg.frames = 1;
    cfg.valueLevels = std::max(or_default(model->valueLevels, 64), 2);
    cfg.coocLevels = std::max(or_default(model->coocLevels, 32), 2);
    cfg.valueEntries = or_default(model->valueEntries, 4);
    cfg.coocEntries = or_default(model->coocEntries, 4);
    cfg.statRate = std::min(or_default(model->statRate, 0.005f), 1.f);
    cfg.refRate = std::min(or_default(model->refRate, 0.1f), 1.f);
    cfg.absorbLevel = or_default(model->absorbLevel, 0.5f);
    cfg.tolerance = or_default(model->tolerance, 2.0f);
    cfg.minArea = or_default(model->minArea, 15.0f);
    cfg.change = cfg.tolerance * 256.f / float(cfg.valueLevels);

    const int64_t px = int64_t(roi.width) * roi.height;
    const int64_t tableBytes = px * (cfg.valueEntries + cfg.coocEntries) * int64_t(sizeof(Entry));
    const int64_t refBytes = px * C * 4, prevBytes = px * C, queueBytes = px * 4;
    State* st = nullptr;
    void *tables = nullptr, *ref = nullptr, *prev = nullptr, *queue = nullptr;
    if (tableBytes <= INT_MAX && refBytes <= INT_MAX && queueBytes <= INT_MAX) {
        st = static_cast<State*>(alloc(int32_t(sizeof(State))));
        tables = st ? alloc(int32_t(tableBytes)) : nullptr;
        ref = tables ? alloc(int32_t(refBytes)) : nullptr;
        prev = ref ? alloc(int32_t(prevBytes)) : nullptr;
        queue = prev ? alloc(int32_t(queueBytes)) : nullptr;
    }
    if (!queue) {
        release(prev), release(ref), release(tables), release(st);
        return zebStsMemAllocErr;
    }
    std::memcpy(static_cast<void*>(st), &cfg, sizeof(State));
    std::memset(tables, 0, std::size_t(tableBytes));
    st->tables = static_cast<Entry*>(tables);
    st->ref = static_cast<float*>(ref);
    st->prev = static_cast<uint8_t*>(prev);
    st->queue = static_cast<int32_t*>(queue);
    // The first frame is the background: its colours start as learned
    // background features.
    for (int y = 0; y < roi.height; ++y) {
        const Zeb8u* in = row(src, ss, y);
        for (int x = 0; x < roi.width; ++x) {
            const std::size_t p = std::size_t(y) * std::size_t(roi.width) + std::size_t(x);
            int len = 0;
            Entry* t = table(*st, p, false, len);
            t[0].pv = t[0].pvb = st->statRate;
            for (int c = 0; c < C; ++c) {
                const uint8_t v = in[C * x + c];
                st->ref[p * C + c] = float(v);
                st->prev[p * C + c] = v;
                t[0].v[c] = quant(v, st->valueLevels);
            }
        }
    }
    *out = reinterpret_cast<S*>(st);
    return zebStsNoErr;
}

template <class S>
const State* checked(const Zeb8u* src, int ss, const Zeb8u* img, int is, ZebiSize roi, S* state, int C,
                     ZebStatus& status) {
    status = zebStsNoErr;
    if (any_null(src, img, state)) {
        status = zebStsNullPtrErr;
    } else if (bad_roi(roi)) {
        status = zebStsSizeErr;
    } else if (ZebStatus s = min_steps({req<Zeb8u>(ss, roi.width, C), req<Zeb8u>(is, roi.width)})) {
        status = s;
    } else {
        const State* st = reinterpret_cast<const State*>(state);
        if (st->width != roi.width || st->height != roi.height) status = zebStsSizeErr;
        else return st;
    }
    return nullptr;
}

template <int C, class S>
ZebStatus classify(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, const S* state) {
    ZebStatus status;
    const State* st = checked(src, ss, dst, ds, roi, state, C, status);
    if (st) classify_frame<C>(*st, src, ss, dst, ds);
    return status;
}

template <int C, class S>
ZebStatus update(const Zeb8u* src, int ss, const Zeb8u* mask, int ms, ZebiSize roi, S* state) {
    ZebStatus status;
    const State* st = checked(src, ss, mask, ms, roi, state, C, status);
    if (st) learn_frame<C>(*const_cast<State*>(st), src, ss, mask, ms);
    return status;
}

template <class S>
ZebStatus free_state(S* state) {
    if (!state) return zebStsNullPtrErr;
    State* st = reinterpret_cast<State*>(state);
    release(st->queue), release(st->prev), release(st->ref), release(st->tables), release(st);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiForegroundHistogramInitAlloc_8u_C1R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize,
                                                  const ZebForegroundHistogramModel* pModel,
                                                  ZebForegroundHistogramState_8u_C1R** ppState) {
    return init_alloc<1>(pSrc, srcStep, roiSize, pModel, ppState);
}
ZebStatus zebiForegroundHistogramInitAlloc_8u_C3R(const Zeb8u* pSrc, int srcStep, ZebiSize roiSize,
                                                  const ZebForegroundHistogramModel* pModel,
                                                  ZebForegroundHistogramState_8u_C3R** ppState) {
    return init_alloc<3>(pSrc, srcStep, roiSize, pModel, ppState);
}
ZebStatus zebiForegroundHistogram_8u_C1R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                         const ZebForegroundHistogramState_8u_C1R* pState) {
    return classify<1>(pSrc, srcStep, pDst, dstStep, roiSize, pState);
}
ZebStatus zebiForegroundHistogram_8u_C3R(const Zeb8u* pSrc, int srcStep, Zeb8u* pDst, int dstStep, ZebiSize roiSize,
                                         const ZebForegroundHistogramState_8u_C3R* pState) {
    return classify<3>(pSrc, srcStep, pDst, dstStep, roiSize, pState);
}
ZebStatus zebiForegroundHistogramUpdate_8u_C1R(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                               ZebiSize roiSize, ZebForegroundHistogramState_8u_C1R* pState) {
    return update<1>(pSrc, srcStep, pMask, maskStep, roiSize, pState);
}
ZebStatus zebiForegroundHistogramUpdate_8u_C3R(const Zeb8u* pSrc, int srcStep, const Zeb8u* pMask, int maskStep,
                                               ZebiSize roiSize, ZebForegroundHistogramState_8u_C3R* pState) {
    return update<3>(pSrc, srcStep, pMask, maskStep, roiSize, pState);
}
// One operation for both layouts.
ZebStatus zebiForegroundHistogramFree_8u_C1R(ZebForegroundHistogramState_8u_C1R* pState) { return free_state(pState); }
ZebStatus zebiForegroundHistogramFree_8u_C3R(ZebForegroundHistogramState_8u_C3R* pState) { return free_state(pState); }

}  // namespace zeb::impl

ZEB_EXPORT(zebiForegroundHistogramInitAlloc_8u_C1R);
ZEB_EXPORT(zebiForegroundHistogramInitAlloc_8u_C3R);
ZEB_EXPORT(zebiForegroundHistogram_8u_C1R);
ZEB_EXPORT(zebiForegroundHistogram_8u_C3R);
ZEB_EXPORT(zebiForegroundHistogramUpdate_8u_C1R);
ZEB_EXPORT(zebiForegroundHistogramUpdate_8u_C3R);
ZEB_EXPORT(zebiForegroundHistogramFree_8u_C1R);
ZEB_EXPORT(zebiForegroundHistogramFree_8u_C3R);
