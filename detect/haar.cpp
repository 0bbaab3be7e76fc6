// SPDX-License-Identifier: Apache-2.0
// Haar cascade stages: building the classifier object, its window size,
// tilting features after the fact, and applying one stage to every masked
// pixel of an integral image.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/frame.h"
#include "detect/haar_object.h"

namespace zeb::impl {
namespace {

using haar::Classifier;
using haar::Object;
using haar::Rect;

// Sums of caller coordinates wrap instead of overflowing.
inline int32_t add32(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }
inline int32_t sub32(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }

template <class V>
bool first_weight_is_minus_one(V w) {
    if constexpr (std::is_same_v<V, float>)
        return std::trunc(w) == -1.0f;
    else
        return w == -1;
}

// Corner points of an upright rectangle: bottom-right, bottom-left,
// top-right, top-left.
template <class V>
void set_upright(Rect<V>& r, ZebiRect f) {
    const int32_t x1 = add32(f.x, f.width), y1 = add32(f.y, f.height);
    r.p[0] = {x1, y1};
    r.p[1] = {f.x, y1};
    r.p[2] = {x1, f.y};
    r.p[3] = {f.x, f.y};
}

// Corner points of a rectangle turned by 45 degrees in tilted-table
// coordinates: bottom, left, right and top corner.
template <class V>
void set_tilted(Rect<V>& r, ZebiRect f) {
    r.p[0] = {sub32(add32(f.x, f.width), f.height), add32(add32(f.y, f.width), f.height)};
    r.p[1] = {sub32(f.x, f.height), add32(f.y, f.height)};
    r.p[2] = {add32(f.x, f.width), add32(f.y, f.width)};
    r.p[3] = {f.x, f.y};
}

bool bad_rect(ZebiRect f, bool tilted) {
    return f.x < 0 || f.y < 0 || f.width < 1 || f.height < 1 || (tilted && int64_t(f.x) + 1 < f.height);
}

template <class V>
ZebStatus build(Object<V>** pp, const ZebiRect* feature, const V* weight, const V* threshold, const V* val1,
                const V* val2, const int* num, int length, bool tilted) {
    if (any_null(pp, feature, weight, threshold, val1, val2, num)) return zebStsNullPtrErr;
    if (length < 0) return zebStsSizeErr;
    int64_t total = 0;
    for (int i = 0; i < length; ++i) {
        if (num[i] < 1) return zebStsSizeErr;
        total += num[i];
    }
    if (!tilted)
        for (int64_t k = 0; k < total; ++k)
            if (bad_rect(feature[k], false)) return zebStsBadArgErr;
    const int64_t bytes = 32 * int64_t(length) + 36 * total + 56;
    if (bytes > std::numeric_limits<int32_t>::max()) return zebStsMemAllocErr;
    auto* obj = static_cast<Object<V>*>(alloc(int32_t(bytes)));
    if (obj == nullptr) return zebStsMemAllocErr;
    if (tilted)
        for (int64_t k = 0; k < total; ++k)
            if (bad_rect(feature[k], true)) {
                release(obj);
                *pp = nullptr;
                return zebStsBadArgErr;
            }

    auto* classifiers = reinterpret_cast<Classifier<V>*>(reinterpret_cast<unsigned char*>(obj) + sizeof(Object<V>));
    auto* rects = reinterpret_cast<Rect<V>*>(classifiers + length);
    obj->nClassifiers = length;
    obj->nRects = int32_t(total);
    obj->classifiers = classifiers;
    obj->state = 0;
    obj->nLaid = int32_t(total);
    obj->flag = 1;
    if (length > 0)
        std::memcpy(obj->window, &feature[0], sizeof obj->window);
    else
        std::fill(obj->window, obj->window + 4, 0);
    int32_t* win = obj->window;

    // Upright: two-rectangle classifiers, then three-rectangle ones, then
    // the rest, each group in input order. Tilted: input order.
    int placed = 0;
    Rect<V>* next = rects;
    auto place = [&](int i, int64_t first) {
        Classifier<V>& c = classifiers[placed++];
        c.nRects = num[i];
        c.rects = next;
        c.threshold = threshold[i];
        c.val1 = val1[i];
        c.val2 = val2[i];
        c.identity = int32_t(uint32_t(i) * 256u + (tilted ? 1u : 0u));
        for (int k = 0; k < num[i]; ++k) {
            const ZebiRect f = feature[first + k];
            Rect<V>& r = *next++;
            if (tilted)
                set_tilted(r, f);
            else
                set_upright(r, f);
            r.weight = weight[first + k];
            win[0] = std::min(win[0], f.x);
            win[1] = std::min(win[1], f.y);
            if (int64_t(win[0]) + win[2] < int64_t(f.x) + f.width) win[2] = add32(f.x, f.width);
            if (int64_t(win[1]) + win[3] < int64_t(f.y) + f.height) win[3] = add32(f.y, f.height);
        }
        if (!first_weight_is_minus_one(weight[first])) obj->flag = 0;
    };
    auto pass = [&](auto select) {
        int64_t first = 0;
        for (int i = 0; i < length; first += num[i], ++i)
            if (select(num[i])) place(i, first);
    };
    if (tilted) {
        pass([](int) { return true; });
        obj->nTwo = obj->nTwoThree = 0;
    } else {
        pass([](int n) { return n == 2; });
        obj->nTwo = placed;
        pass([](int n) { return n == 3; });
        obj->nTwoThree = placed;
        pass([](int n) { return n != 2 && n != 3; });
    }
    *pp = obj;
    return zebStsNoErr;
}

template <class V>
ZebStatus window_size(const Object<V>* obj, ZebiSize* size) {
    if (any_null(obj, size)) return zebStsNullPtrErr;
    int32_t w = 0, h = 0;
    for (int i = 0; i < obj->nClassifiers; ++i) {
        const Classifier<V>& c = obj->classifiers[i];
        for (int k = 0; k < c.nRects; ++k) {
            w = std::max(w, c.rects[k].p[2].x);
            h = std::max(h, c.rects[k].p[0].y);
        }
    }
    *size = {w, h};
    return zebStsNoErr;
}

template <class V>
ZebStatus free_object(Object<V>* obj) {
    if (obj == nullptr) return zebStsNullPtrErr;
    release(obj);
    return zebStsNoErr;
}

// Rewrites the marked classifiers' rectangles from upright to tilted
// corner points. Each rectangle is read back from its top-left and
// bottom-right corners.
template <class V>
ZebStatus tilt_features(const Zeb8u* mask, int flag, Object<V>* obj) {
    if (any_null(mask, obj)) return zebStsNullPtrErr;
    if (obj->state & 1) return zebStsBadArgErr;
    for (int i = 0; i < obj->nClassifiers; ++i) {
        if (mask[i] == 0) continue;
        for (int j = 0; j < obj->nClassifiers; ++j) {
            Classifier<V>& c = obj->classifiers[j];
            if (c.identity / 256 != i) continue;
            c.identity = 1;
            for (int k = 0; k < c.nRects; ++k) {
                Rect<V>& r = c.rects[k];
                ZebiRect f{r.p[3].x, r.p[3].y, sub32(r.p[0].x, r.p[3].x), sub32(r.p[0].y, r.p[3].y)};
                if (flag != 0) std::swap(f.width, f.height);
                set_tilted(r, f);
            }
            break;
        }
    }
    return zebStsNoErr;
}

// ---- Applying a stage ----

// The per-call copy of the object: corner offsets in table elements, in
// separate 64-byte aligned arrays.
template <class V>
struct Prepared {
    std::ptrdiff_t* off;  // four per rectangle
    V* weight;            // one per rectangle
    V* threshold;         // one per classifier
    V* val1;
    V* val2;
    uint8_t* tilted;  // one per classifier: reads the tilted table
    int nTwo, nTwoThree;
};

template <class V>
int64_t prepared_bytes(const Object<V>* obj) {
    const int64_t r = obj->nLaid, n = obj->nClassifiers;
    return r * 4 * int64_t(sizeof(std::ptrdiff_t)) + r * int64_t(sizeof(V)) + 3 * n * int64_t(sizeof(V)) + n +
           6 * 64;
}

template <class V>
Prepared<V> prepare(const Object<V>* obj, void* block, std::ptrdiff_t upStride, std::ptrdiff_t tiltStride,
                    bool mixed) {
    Carver carve(block);
    const int n = obj->nClassifiers;
    Prepared<V> p{carve.take<std::ptrdiff_t>(std::size_t(obj->nLaid) * 4), carve.take<V>(std::size_t(obj->nLaid)),
                  carve.take<V>(std::size_t(n)),  carve.take<V>(std::size_t(n)),
                  carve.take<V>(std::size_t(n)),  carve.take<uint8_t>(std::size_t(n)),
                  0,                              0};
    int rect = 0;
    for (int i = 0; i < n; ++i) {
        const Classifier<V>& c = obj->classifiers[i];
        const bool tilted = mixed && (c.identity & 1);
        const std::ptrdiff_t stride = tilted ? tiltStride : upStride;
        p.threshold[i] = c.threshold;
        p.val1[i] = c.val1;
        p.val2[i] = c.val2;
        p.tilted[i] = tilted;
        for (int k = 0; k < c.nRects; ++k, ++rect) {
            for (int j = 0; j < 4; ++j)
                p.off[4 * rect + j] = std::ptrdiff_t(c.rects[k].p[j].y) * stride + c.rects[k].p[j].x;
            p.weight[rect] = c.rects[k].weight;
        }
    }
    // The unrolled groups hold only classifiers of exactly two and three
    // rectangles.
    int i = 0;
    while (i < std::min(obj->nTwo, n) && obj->classifiers[i].nRects == 2) ++i;
    p.nTwo = i;
    while (i < std::min(obj->nTwoThree, n) && obj->classifiers[i].nRects == 3) ++i;
    p.nTwoThree = i;
    return p;
}

// Table lanes: integer tables wrap in uint32_t.
template <class T>
using Lane = std::conditional_t<std::is_same_v<T, Zeb32s>, uint32_t, T>;

// One rectangle's corner combination at base, in the table's type.
template <class T>
inline T corner_sum(const T* base, const std::ptrdiff_t* o) {
    return T(T(T(base[o[0]] - base[o[1]]) - base[o[2]]) + base[o[3]]);
}

template <class T>
inline auto feature(const T* base, const std::ptrdiff_t* o) {
    if constexpr (std::is_same_v<T, float>)
        return corner_sum(base, o);
    else
        return int32_t(corner_sum(base, o));
}

// Accumulation of weighted features: single precision, or wrapping 32-bit
// integers for the scaled integer form.
inline float acc(float s, float w, float f) { return s + w * f; }
inline float acc(float s, float w, int32_t f) { return s + w * float(f); }
inline int32_t acc(int32_t s, int32_t w, int32_t f) { return int32_t(uint32_t(s) + uint32_t(w) * uint32_t(f)); }

// threshold_c * sigma > s: in single precision, or for the scaled
// integer form the 64-bit product scaled by 2^-scaleFactor (rounding half
// up) against s.
struct FloatCompare {
    bool operator()(float thr, float sigma, float s) const { return thr * sigma > s; }
};
struct ScaledCompare {
    int sf;
    bool operator()(int32_t thr, int32_t sigma, int32_t s) const {
        const int64_t prod = int64_t(thr) * sigma;
        if (sf > 0) {
            const int n = std::min(sf, 62);
            return ((prod + (int64_t(1) << (n - 1))) >> n) > s;
        }
        const int n = std::min(-sf, 64);
        return (static_cast<__int128>(prod) << n) > s;
    }
};

template <int kRects, class T, class V, class Cmp>
inline V classify(const T* base, const Prepared<V>& p, int i, int rect, V sigma, const Cmp& cmp, int nRects) {
    V s = 0;
    const int n = kRects > 0 ? kRects : nRects;
    for (int k = 0; k < n; ++k) s = acc(s, p.weight[rect + k], feature(base, p.off + 4 * (rect + k)));
    return cmp(p.threshold[i], sigma, s) ? p.val1[i] : p.val2[i];
}

inline float add_stage(float a, float b) { return a + b; }
inline int32_t add_stage(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }

template <class T, class N, class V, class Cmp>
ZebStatus apply(const T* src, int ss, const T* tilt, int ts, const N* norm, int ns, Zeb8u* mask, int ms, ZebiSize roi,
                int* positive, V threshold, Object<V>* obj, bool mixed, const Cmp& cmp) {
    if (any_null(src, norm, mask, positive, obj) || (mixed && tilt == nullptr)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<T>(ss, roi.width), rt = mixed ? req<T>(ts, roi.width) : rs,
                  rn = req<N>(ns, roi.width), rm = req<Zeb8u>(ms, roi.width);
    if (ZebStatus s = first_error({min_steps({rs, rt, rn, rm}), even_steps({rs, rt, rn})})) return s;
    const int64_t bytes = prepared_bytes(obj);
    void* block = bytes > std::numeric_limits<int32_t>::max() ? nullptr : alloc(int32_t(bytes));
    if (block == nullptr) return zebStsMemAllocErr;
    using L = Lane<T>;
    const std::ptrdiff_t upStride = ss / int(sizeof(T)), tiltStride = mixed ? ts / int(sizeof(T)) : 0;
    const Prepared<V> p = prepare(obj, block, upStride, tiltStride, mixed);
    const int n = obj->nClassifiers;
    // The tilted table's origin is one row down and one column right.
    const L* upBase = reinterpret_cast<const L*>(src);
    const L* tiltBase = mixed ? reinterpret_cast<const L*>(tilt) + tiltStride + 1 : upBase;

    int count = 0;
    for (int y = 0; y < roi.height; ++y) {
        Zeb8u* m = row(mask, ms, y);
        const N* sig = row(norm, ns, y);
        const L* up = upBase + std::ptrdiff_t(y) * upStride;
        const L* tl = tiltBase + std::ptrdiff_t(y) * tiltStride;
        for (int x = 0; x < roi.width; ++x) {
            if (m[x] == 0) continue;
            const V sigma = V(sig[x]);
            V stage = 0;
            int i = 0, rect = 0;
            for (; i < p.nTwo; ++i, rect += 2)
                stage = add_stage(stage, classify<2>((p.tilted[i] ? tl : up) + x, p, i, rect, sigma, cmp, 2));
            for (; i < p.nTwoThree; ++i, rect += 3)
                stage = add_stage(stage, classify<3>((p.tilted[i] ? tl : up) + x, p, i, rect, sigma, cmp, 3));
            for (; i < n; ++i) {
                const int nr = obj->classifiers[i].nRects;
                stage = add_stage(stage, classify<0>((p.tilted[i] ? tl : up) + x, p, i, rect, sigma, cmp, nr));
                rect += nr;
            }
            if (threshold > stage)
                m[x] = 0;
            else
                ++count;
        }
    }
    release(block);
    *positive = count;
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiHaarClassifierInitAlloc_32f(ZebiHaarClassifier_32f** ppState, const ZebiRect* pFeature,
                                          const Zeb32f* pWeight, const Zeb32f* pThreshold, const Zeb32f* pVal1,
                                          const Zeb32f* pVal2, const int* pNum, int length) {
    return build(reinterpret_cast<Object<Zeb32f>**>(ppState), pFeature, pWeight, pThreshold, pVal1, pVal2, pNum,
                 length, false);
}
ZebStatus zebiHaarClassifierInitAlloc_32s(ZebiHaarClassifier_32s** ppState, const ZebiRect* pFeature,
                                          const Zeb32s* pWeight, const Zeb32s* pThreshold, const Zeb32s* pVal1,
                                          const Zeb32s* pVal2, const int* pNum, int length) {
    return build(reinterpret_cast<Object<Zeb32s>**>(ppState), pFeature, pWeight, pThreshold, pVal1, pVal2, pNum,
                 length, false);
}
ZebStatus zebiTiltedHaarClassifierInitAlloc_32f(ZebiHaarClassifier_32f** ppState, const ZebiRect* pFeature,
                                                const Zeb32f* pWeight, const Zeb32f* pThreshold, const Zeb32f* pVal1,
                                                const Zeb32f* pVal2, const int* pNum, int length) {
    return build(reinterpret_cast<Object<Zeb32f>**>(ppState), pFeature, pWeight, pThreshold, pVal1, pVal2, pNum,
                 length, true);
}
ZebStatus zebiTiltedHaarClassifierInitAlloc_32s(ZebiHaarClassifier_32s** ppState, const ZebiRect* pFeature,
                                                const Zeb32s* pWeight, const Zeb32s* pThreshold, const Zeb32s* pVal1,
                                                const Zeb32s* pVal2, const int* pNum, int length) {
    return build(reinterpret_cast<Object<Zeb32s>**>(ppState), pFeature, pWeight, pThreshold, pVal1, pVal2, pNum,
                 length, true);
}

ZebStatus zebiGetHaarClassifierSize_32f(const ZebiHaarClassifier_32f* pState, ZebiSize* pSize) {
    return window_size<Zeb32f>(pState, pSize);
}
ZebStatus zebiGetHaarClassifierSize_32s(const ZebiHaarClassifier_32s* pState, ZebiSize* pSize) {
    return window_size<Zeb32s>(pState, pSize);
}
ZebStatus zebiHaarClassifierFree_32f(ZebiHaarClassifier_32f* pState) { return free_object<Zeb32f>(pState); }
ZebStatus zebiHaarClassifierFree_32s(ZebiHaarClassifier_32s* pState) { return free_object<Zeb32s>(pState); }
ZebStatus zebiTiltHaarFeatures_32f(const Zeb8u* pMask, int flag, ZebiHaarClassifier_32f* pState) {
    return tilt_features<Zeb32f>(pMask, flag, pState);
}
ZebStatus zebiTiltHaarFeatures_32s(const Zeb8u* pMask, int flag, ZebiHaarClassifier_32s* pState) {
    return tilt_features<Zeb32s>(pMask, flag, pState);
}

ZebStatus zebiApplyHaarClassifier_32f_C1R(const Zeb32f* pSrc, int srcStep, const Zeb32f* pNorm, int normStep,
                                          Zeb8u* pMask, int maskStep, ZebiSize roiSize, int* pPositive,
                                          Zeb32f threshold, ZebiHaarClassifier_32f* pState) {
    return apply<Zeb32f>(pSrc, srcStep, nullptr, 0, pNorm, normStep, pMask, maskStep, roiSize, pPositive, threshold,
                         pState, false, FloatCompare{});
}
ZebStatus zebiApplyHaarClassifier_32s32f_C1R(const Zeb32s* pSrc, int srcStep, const Zeb32f* pNorm, int normStep,
                                             Zeb8u* pMask, int maskStep, ZebiSize roiSize, int* pPositive,
                                             Zeb32f threshold, ZebiHaarClassifier_32f* pState) {
    return apply<Zeb32s>(pSrc, srcStep, nullptr, 0, pNorm, normStep, pMask, maskStep, roiSize, pPositive, threshold,
                         pState, false, FloatCompare{});
}
ZebStatus zebiApplyHaarClassifier_32s_C1RSfs(const Zeb32s* pSrc, int srcStep, const Zeb32s* pNorm, int normStep,
                                             Zeb8u* pMask, int maskStep, ZebiSize roiSize, int* pPositive,
                                             Zeb32s threshold, ZebiHaarClassifier_32s* pState, int scaleFactor) {
    return apply<Zeb32s>(pSrc, srcStep, nullptr, 0, pNorm, normStep, pMask, maskStep, roiSize, pPositive, threshold,
                         pState, false, ScaledCompare{scaleFactor});
}
ZebStatus zebiApplyMixedHaarClassifier_32f_C1R(const Zeb32f* pSrc, int srcStep, const Zeb32f* pTilt, int tiltStep,
                                               const Zeb32f* pNorm, int normStep, Zeb8u* pMask, int maskStep,
                                               ZebiSize roiSize, int* pPositive, Zeb32f threshold,
                                               ZebiHaarClassifier_32f* pState) {
    return apply<Zeb32f>(pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive,
                         threshold, pState, true, FloatCompare{});
}
ZebStatus zebiApplyMixedHaarClassifier_32s32f_C1R(const Zeb32s* pSrc, int srcStep, const Zeb32s* pTilt, int tiltStep,
                                                  const Zeb32f* pNorm, int normStep, Zeb8u* pMask, int maskStep,
                                                  ZebiSize roiSize, int* pPositive, Zeb32f threshold,
                                                  ZebiHaarClassifier_32f* pState) {
    return apply<Zeb32s>(pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive,
                         threshold, pState, true, FloatCompare{});
}
ZebStatus zebiApplyMixedHaarClassifier_32s_C1RSfs(const Zeb32s* pSrc, int srcStep, const Zeb32s* pTilt, int tiltStep,
                                                  const Zeb32s* pNorm, int normStep, Zeb8u* pMask, int maskStep,
                                                  ZebiSize roiSize, int* pPositive, Zeb32s threshold,
                                                  ZebiHaarClassifier_32s* pState, int scaleFactor) {
    return apply<Zeb32s>(pSrc, srcStep, pTilt, tiltStep, pNorm, normStep, pMask, maskStep, roiSize, pPositive,
                         threshold, pState, true, ScaledCompare{scaleFactor});
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiHaarClassifierInitAlloc_32f);
ZEB_EXPORT(zebiHaarClassifierInitAlloc_32s);
ZEB_EXPORT(zebiTiltedHaarClassifierInitAlloc_32f);
ZEB_EXPORT(zebiTiltedHaarClassifierInitAlloc_32s);
ZEB_EXPORT(zebiGetHaarClassifierSize_32f);
ZEB_EXPORT(zebiGetHaarClassifierSize_32s);
ZEB_EXPORT(zebiHaarClassifierFree_32f);
ZEB_EXPORT(zebiHaarClassifierFree_32s);
ZEB_EXPORT(zebiTiltHaarFeatures_32f);
ZEB_EXPORT(zebiTiltHaarFeatures_32s);
ZEB_EXPORT(zebiApplyHaarClassifier_32f_C1R);
ZEB_EXPORT(zebiApplyHaarClassifier_32s32f_C1R);
ZEB_EXPORT(zebiApplyHaarClassifier_32s_C1RSfs);
ZEB_EXPORT(zebiApplyMixedHaarClassifier_32f_C1R);
ZEB_EXPORT(zebiApplyMixedHaarClassifier_32s32f_C1R);
ZEB_EXPORT(zebiApplyMixedHaarClassifier_32s_C1RSfs);
