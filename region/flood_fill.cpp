// SPDX-License-Identifier: Apache-2.0
// Flood fills: equality, fixed range and floating range, 4- and
// 8-connectivity, one and three channels, on the span fill of span_fill.h.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "region/span_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "region/span_kernels.inl"

#if HWY_ONCE
#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"
#include "region/span_fill.h"

namespace zeb::impl {
namespace {

using region::Span;

template <class T, int C>
struct Pixels {
    uint8_t* base;
    int step;
    T* at(int x, int y) const { return reinterpret_cast<T*>(base + std::ptrdiff_t(step) * y) + x * C; }
};

// Equality and range: the test looks at the pixel alone ([lo, hi] per
// channel, lo == hi for equality), and pixels are filled as they are
// accepted. A filled pixel fails the test again unless newVal itself
// passes it; only then does the test read the byte map. The map is always
// written, for the rescan after a full stack. One-channel runs are found
// with the vector scans.
template <class T, int C>
struct FixedPolicy {
    using RunRight = int (*)(const T*, int, int, T, T);
    Pixels<T, C> img;
    uint8_t* map;
    int w;
    T lo[C], hi[C], nv[C];
    bool readMap;
    RunRight inRight, outRight;
    int (*inLeft)(const T*, int, int, T, T);
    int (*mapIn)(const uint8_t*, int, int, uint8_t, uint8_t);   // run of zeros
    int (*mapOut)(const uint8_t*, int, int, uint8_t, uint8_t);  // first zero
    int (*mapInLeft)(const uint8_t*, int, int, uint8_t, uint8_t);
    const uint8_t* mrow(int y) const { return map + std::ptrdiff_t(y) * w; }

    bool test(const T* p) const {
        for (int c = 0; c < C; ++c)
            if (!(lo[c] <= p[c] && p[c] <= hi[c])) return false;
        return true;
    }
    bool ok(int x, int y, int, int) const {
        return !(readMap && map[std::ptrdiff_t(y) * w + x]) && test(img.at(x, y));
    }
    void take(int x, int y) {
        map[std::ptrdiff_t(y) * w + x] = 1;
        T* p = img.at(x, y);
        for (int c = 0; c < C; ++c) p[c] = nv[c];
    }
    bool taken(int x, int y) const { return map[std::ptrdiff_t(y) * w + x] != 0; }
    void take_span(int l, int r, int y) {
        T* p = img.at(l, y);
        for (int i = 0; i < (r - l + 1); ++i)
            for (int c = 0; c < C; ++c) p[i * C + c] = nv[c];
        std::memset(map + std::ptrdiff_t(y) * w + l, 1, size_t(r - l + 1));
    }
    // A run ends at the first pixel outside the range or, when the map is
    // read, at the first pixel already filled.
    int extend_right(int x, int y) {
        if constexpr (C == 1) {
            int e = inRight(img.at(0, y), x + 1, w, lo[0], hi[0]);
            if (readMap) e = mapIn(mrow(y), x + 1, e, 0, 0);
            if (e - 1 > x) take_span(x + 1, e - 1, y);
            return e - 1;
        }
        while (x + 1 < w && ok(x + 1, y, 0, 0)) take(++x, y);
        return x;
    }
    int extend_left(int x, int y) {
        if constexpr (C == 1) {
            int b = inLeft(img.at(0, y), x - 1, 0, lo[0], hi[0]);
            if (readMap) b = mapInLeft(mrow(y), x - 1, b + 1, 0, 0);
            if (b + 1 < x) take_span(b + 1, x - 1, y);
            return b + 1;
        }
        while (x > 0 && ok(x - 1, y, 0, 0)) take(--x, y);
        return x;
    }
    int find(int a, int b, int y) {
        if constexpr (C == 1) {
            for (;;) {
                a = outRight(img.at(0, y), a, b + 1, lo[0], hi[0]);
                if (a > b || !readMap || !mrow(y)[a]) return a;
                a = mapOut(mrow(y), a, b + 1, 0, 0);  // past the filled run
            }
        }
        while (a <= b && !ok(a, y, 0, 0)) ++a;
        return a;
    }
};

// Gradient: the image stays as it was during the traversal; accepted pixels
// are marked in a framed byte map and written afterwards.
template <class T, int C, bool k8>
struct GradPolicy {
    Pixels<T, C> img;
    uint8_t* map;  // (w + 2) x (h + 2), pixel (x, y) at (x + 1, y + 1)
    int mw;
    T lo[C], hi[C];
    uint8_t& m(int x, int y) const { return map[std::ptrdiff_t(y + 1) * mw + x + 1]; }
    bool ok(int x, int y, int rx, int ry) const {
        if (m(x, y)) return false;
        const T *q = img.at(x, y), *p = img.at(rx, ry);
        for (int c = 0; c < C; ++c) {
            if constexpr (std::is_floating_point_v<T>) {
                if (!(p[c] - lo[c] <= q[c] && q[c] <= p[c] + hi[c])) return false;
            } else {
                const uint32_t d = uint32_t(int64_t(q[c]) - int64_t(p[c]) + int64_t(lo[c]));
                if (d > uint32_t(int64_t(lo[c]) + int64_t(hi[c]))) return false;
            }
        }
        return true;
    }
    void take(int x, int y) { m(x, y) = 1; }
    bool taken(int x, int y) const { return m(x, y) != 0; }

    // One-channel runs with the vector scans; the reference of pixel i is
    // r[i + shift].
    using Right = int (*)(const T*, const T*, int, const uint8_t*, int, int, T, T);
    Right accRight, rejRight;
    int (*accLeft)(const T*, const T*, int, const uint8_t*, int, int, T, T);
    int (*find8)(const T*, const T*, const uint8_t*, int, int, T, T);
    uint8_t* mrow(int y) const { return map + std::ptrdiff_t(y + 1) * mw + 1; }
    void mark(int l, int r, int y) { std::memset(mrow(y) + l, 1, size_t(r - l + 1)); }
    int extend_right(int x, int y) {
        if constexpr (C == 1) {
            const T* q = img.at(0, y);
            const int e = accRight(q, q, -1, mrow(y), x + 1, mw - 2, lo[0], hi[0]);
            if (e - 1 > x) mark(x + 1, e - 1, y);
            return e - 1;
        }
        while (x + 2 < mw && ok(x + 1, y, x, y)) take(++x, y);
        return x;
    }
    int extend_left(int x, int y) {
        if constexpr (C == 1) {
            const T* q = img.at(0, y);
            const int b = accLeft(q, q, 1, mrow(y), x - 1, 0, lo[0], hi[0]);
            if (b + 1 < x) mark(b + 1, x - 1, y);
            return b + 1;
        }
        while (x > 0 && ok(x - 1, y, x, y)) take(--x, y);
        return x;
    }
    // Candidates of row y next to the span [xl, xr] of row ry. With
    // 4-connectivity a pixel is tested against the span pixel above or
    // below it; with 8-connectivity against each span pixel it touches
    // (the two diagonal ones and the one above or below).
    bool ok8(int x, int y, int ry, int xl, int xr) const {
        for (int rx = std::max(x - 1, xl); rx <= std::min(x + 1, xr); ++rx)
            if (ok(x, y, rx, ry)) return true;
        return false;
    }
    int find_ref(int a, int b, int y, int ry, int xl, int xr) {
        if constexpr (k8) {
            // Columns whose three neighbours all lie in the span go whole.
            const int lo8 = std::max(a, xl + 1), hi8 = std::min(b, xr - 1);
            for (; a <= b && a < lo8; ++a)
                if (ok8(a, y, ry, xl, xr)) return a;
            if constexpr (C == 1) {
                if (a <= hi8) {
                    a = find8(img.at(0, y), img.at(0, ry), mrow(y), a, hi8 + 1, lo[0], hi[0]);
                    if (a <= hi8) return a;
                }
            }
            for (; a <= b; ++a)
                if (ok8(a, y, ry, xl, xr)) return a;
            return a;
        }
        const int mid = std::min(b, xr);
        if (a <= mid) {
            if constexpr (C == 1) {
                a = rejRight(img.at(0, y), img.at(0, ry), 0, mrow(y), a, mid + 1, lo[0], hi[0]);
                if (a <= mid) return a;
            } else {
                for (; a <= mid; ++a)
                    if (ok(a, y, a, ry)) return a;
            }
        }
        for (; a <= b; ++a)
            if (ok(a, y, xr, ry)) return a;
        return a;
    }
};

template <class T, int C>
ZebStatus check(const T* img, int step, ZebiSize roi, ZebiPoint seed, const void* region, const void* buf) {
    if (any_null(img, region, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq r = req<T>(step, roi.width, C);
    if (ZebStatus s = first_error({min_steps({r}), even_steps({r})})) return s;
    if (seed.x < 0 || seed.y < 0 || seed.x >= roi.width || seed.y >= roi.height) return zebStsNotSupportedModeErr;
    return zebStsNoErr;
}

template <class T, int C>
void put_record(const region::FillResult& f, const T* nv, ZebConnectedComp* out) {
    ZebConnectedComp rc{};
    rc.area = double(f.area);
    for (int c = 0; c < C; ++c) rc.value[c] = double(nv[c]);
    rc.rect = {f.x0, f.y0, f.x1 - f.x0 + 1, f.y1 - f.y0 + 1};
    *out = rc;
}

inline uint8_t* align8(uint8_t* p) {
    return reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(p) + 7) & ~uintptr_t(7));
}
inline int64_t round8(int64_t n) { return (n + 7) & ~int64_t(7); }

// Equality and range fills, after the checks, for the pixels in [lo, hi].
// The buffer is 6 w h + 32 bytes: the byte map, then the span stack.
template <class T, int C, bool k8>
void fixed_fill(T* img, int step, ZebiSize roi, ZebiPoint seed, const T* nv, const T* lo, const T* hi,
                ZebConnectedComp* region, uint8_t* buf) {
    const int64_t px = int64_t(roi.width) * roi.height;
    uint8_t* map = align8(buf);
    std::memset(map, 0, size_t(px));
    int64_t cap;
    const int64_t left = 6 * px + 32 - (map - buf) - round8(px);
    Span* stack = region::stack_at(map + round8(px), left, &cap);
    FixedPolicy<T, C> p{{reinterpret_cast<uint8_t*>(img), step},
                        map,
                        roi.width,
                        {},
                        {},
                        {},
                        false,
                        ZEB_DISPATCH(span::run_right<T, true>),
                        ZEB_DISPATCH(span::run_right<T, false>),
                        ZEB_DISPATCH(span::run_left<T>),
                        ZEB_DISPATCH(span::run_right<uint8_t, true>),
                        ZEB_DISPATCH(span::run_right<uint8_t, false>),
                        ZEB_DISPATCH(span::run_left<uint8_t>)};
    for (int c = 0; c < C; ++c) p.lo[c] = lo[c], p.hi[c] = hi[c], p.nv[c] = nv[c];
    p.readMap = p.test(nv);
    const region::FillResult f =
        region::SpanFill<FixedPolicy<T, C>, k8>(p, roi.width, roi.height, stack, cap).run(seed.x, seed.y);
    put_record<T, C>(f, nv, region);
}

template <class T, int C>
bool same_value(const T* a, const T* b) {
    for (int c = 0; c < C; ++c)
        if (!(a[c] == b[c])) return false;
    return true;
}

template <class T, int C, bool k8>
ZebStatus fill_equal(T* img, int step, ZebiSize roi, ZebiPoint seed, const T* nv, ZebConnectedComp* region,
                     uint8_t* buf) {
    if (C == 3 && nv == nullptr) return zebStsNullPtrErr;
    if (ZebStatus s = check<T, C>(img, step, roi, seed, region, buf)) return s;
    const T* s = Pixels<T, C>{reinterpret_cast<uint8_t*>(img), step}.at(seed.x, seed.y);
    T v[C];
    for (int c = 0; c < C; ++c) v[c] = s[c];
    if (same_value<T, C>(v, nv)) return zebStsNoErr;
    fixed_fill<T, C, k8>(img, step, roi, seed, nv, v, v, region, buf);
    return zebStsNoErr;
}

template <class T, int C, bool k8>
ZebStatus fill_range(T* img, int step, ZebiSize roi, ZebiPoint seed, const T* nv, const T* lo, const T* hi,
                     ZebConnectedComp* region, uint8_t* buf) {
    if (C == 3 && any_null(nv, lo, hi)) return zebStsNullPtrErr;
    if (ZebStatus s = check<T, C>(img, step, roi, seed, region, buf)) return s;
    const T* s = Pixels<T, C>{reinterpret_cast<uint8_t*>(img), step}.at(seed.x, seed.y);
    if (same_value<T, C>(s, nv)) return zebStsNoErr;
    T l[C], h[C];
    for (int c = 0; c < C; ++c) {
        if constexpr (std::is_floating_point_v<T>) {
            l[c] = s[c] - lo[c], h[c] = s[c] + hi[c];
        } else {
            l[c] = T(std::max<int64_t>(int64_t(s[c]) - lo[c], 0));
            h[c] = T(std::min<int64_t>(int64_t(s[c]) + hi[c], std::numeric_limits<T>::max()));
        }
    }
    fixed_fill<T, C, k8>(img, step, roi, seed, nv, l, h, region, buf);
    return zebStsNoErr;
}

// Gradient fills. The buffer is (w + 2)(h + 2) + 16 w h + 64 bytes: the
// framed map, then the span stack.
template <class T, int C, bool k8>
ZebStatus fill_grad(T* img, int step, ZebiSize roi, ZebiPoint seed, const T* nv, const T* lo, const T* hi,
                    ZebConnectedComp* region, uint8_t* buf) {
    if (C == 3 && any_null(nv, lo, hi)) return zebStsNullPtrErr;
    if (ZebStatus s = check<T, C>(img, step, roi, seed, region, buf)) return s;
    const int w = roi.width, h = roi.height, mw = w + 2;
    const int64_t px = int64_t(w) * h, mapBytes = int64_t(mw) * (h + 2);
    uint8_t* map = align8(buf);
    std::memset(map, 0, size_t(mapBytes));
    std::memset(map, 1, size_t(mw));
    std::memset(map + (mapBytes - mw), 1, size_t(mw));
    for (int y = 1; y <= h; ++y) map[std::ptrdiff_t(y) * mw] = map[std::ptrdiff_t(y) * mw + mw - 1] = 1;
    int64_t cap;
    const int64_t left = mapBytes + 16 * px + 64 - (map - buf) - round8(mapBytes);
    Span* stack = region::stack_at(map + round8(mapBytes), left, &cap);
    GradPolicy<T, C, k8> p{{reinterpret_cast<uint8_t*>(img), step},
                       map,
                       mw,
                       {},
                       {},
                       ZEB_DISPATCH(span::grad_right<T, true>),
                       ZEB_DISPATCH(span::grad_right<T, false>),
                       ZEB_DISPATCH(span::grad_left<T>),
                       ZEB_DISPATCH(span::grad_find8<T>)};
    for (int c = 0; c < C; ++c) p.lo[c] = lo[c], p.hi[c] = hi[c];
    const region::FillResult f = region::SpanFill<GradPolicy<T, C, k8>, k8>(p, w, h, stack, cap).run(seed.x, seed.y);
    for (int y = f.y0; y <= f.y1; ++y) {
        const uint8_t* mr = p.mrow(y);
        T* q = p.img.at(0, y);
        for (int x = f.x0; x <= f.x1; ++x)
            for (int c = 0; c < C; ++c) q[x * C + c] = mr[x] ? nv[c] : q[x * C + c];
    }
    put_record<T, C>(f, nv, region);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiFloodFillGetSize(ZebiSize roi, int* size) {
    if (size == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return put_size(6 * int64_t(roi.width) * roi.height + 32, size);
}
ZebStatus zebiFloodFillGetSize_Grad(ZebiSize roi, int* size) {
    if (size == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const int64_t w = roi.width, h = roi.height;
    return put_size((w + 2) * (h + 2) + 16 * w * h + 64, size);
}

ZebStatus zebiFloodFill_4Con_8u_C1IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb8u nv, ZebConnectedComp* rc,
                 Zeb8u* buf) {
    return fill_equal<Zeb8u, 1, false>(img, step, roi, seed, &nv, rc, buf);
}
ZebStatus zebiFloodFill_4Con_8u_C3IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb8u nv[3],
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_equal<Zeb8u, 3, false>(img, step, roi, seed, nv, rc, buf);
}
ZebStatus zebiFloodFill_4Con_16u_C1IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb16u nv, ZebConnectedComp* rc,
                 Zeb8u* buf) {
    return fill_equal<Zeb16u, 1, false>(img, step, roi, seed, &nv, rc, buf);
}
ZebStatus zebiFloodFill_4Con_16u_C3IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb16u nv[3],
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_equal<Zeb16u, 3, false>(img, step, roi, seed, nv, rc, buf);
}
ZebStatus zebiFloodFill_4Con_32s_C1IR(Zeb32s* img, int step, ZebiSize roi, ZebiPoint seed, Zeb32s nv, ZebConnectedComp* rc,
                 Zeb8u* buf) {
    return fill_equal<Zeb32s, 1, false>(img, step, roi, seed, &nv, rc, buf);
}
ZebStatus zebiFloodFill_4Con_32f_C1IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, Zeb32f nv, ZebConnectedComp* rc,
                 Zeb8u* buf) {
    return fill_equal<Zeb32f, 1, false>(img, step, roi, seed, &nv, rc, buf);
}
ZebStatus zebiFloodFill_4Con_32f_C3IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb32f nv[3],
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_equal<Zeb32f, 3, false>(img, step, roi, seed, nv, rc, buf);
}
ZebStatus zebiFloodFill_8Con_8u_C1IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb8u nv, ZebConnectedComp* rc,
                 Zeb8u* buf) {
    return fill_equal<Zeb8u, 1, true>(img, step, roi, seed, &nv, rc, buf);
}
ZebStatus zebiFloodFill_8Con_8u_C3IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb8u nv[3],
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_equal<Zeb8u, 3, true>(img, step, roi, seed, nv, rc, buf);
}
ZebStatus zebiFloodFill_8Con_16u_C1IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb16u nv, ZebConnectedComp* rc,
                 Zeb8u* buf) {
    return fill_equal<Zeb16u, 1, true>(img, step, roi, seed, &nv, rc, buf);
}
ZebStatus zebiFloodFill_8Con_16u_C3IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb16u nv[3],
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_equal<Zeb16u, 3, true>(img, step, roi, seed, nv, rc, buf);
}
ZebStatus zebiFloodFill_8Con_32s_C1IR(Zeb32s* img, int step, ZebiSize roi, ZebiPoint seed, Zeb32s nv, ZebConnectedComp* rc,
                 Zeb8u* buf) {
    return fill_equal<Zeb32s, 1, true>(img, step, roi, seed, &nv, rc, buf);
}
ZebStatus zebiFloodFill_8Con_32f_C1IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, Zeb32f nv, ZebConnectedComp* rc,
                 Zeb8u* buf) {
    return fill_equal<Zeb32f, 1, true>(img, step, roi, seed, &nv, rc, buf);
}
ZebStatus zebiFloodFill_8Con_32f_C3IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb32f nv[3],
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_equal<Zeb32f, 3, true>(img, step, roi, seed, nv, rc, buf);
}
ZebStatus zebiFloodFill_Range4Con_8u_C1IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb8u nv, Zeb8u lo, Zeb8u hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb8u, 1, false>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Range4Con_8u_C3IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb8u nv[3],
                 const Zeb8u lo[3], const Zeb8u hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb8u, 3, false>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Range4Con_16u_C1IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb16u nv, Zeb16u lo, Zeb16u hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb16u, 1, false>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Range4Con_16u_C3IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb16u nv[3],
                 const Zeb16u lo[3], const Zeb16u hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb16u, 3, false>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Range4Con_32f_C1IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, Zeb32f nv, Zeb32f lo, Zeb32f hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb32f, 1, false>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Range4Con_32f_C3IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb32f nv[3],
                 const Zeb32f lo[3], const Zeb32f hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb32f, 3, false>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Range8Con_8u_C1IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb8u nv, Zeb8u lo, Zeb8u hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb8u, 1, true>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Range8Con_8u_C3IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb8u nv[3],
                 const Zeb8u lo[3], const Zeb8u hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb8u, 3, true>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Range8Con_16u_C1IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb16u nv, Zeb16u lo, Zeb16u hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb16u, 1, true>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Range8Con_16u_C3IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb16u nv[3],
                 const Zeb16u lo[3], const Zeb16u hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb16u, 3, true>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Range8Con_32f_C1IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, Zeb32f nv, Zeb32f lo, Zeb32f hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb32f, 1, true>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Range8Con_32f_C3IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb32f nv[3],
                 const Zeb32f lo[3], const Zeb32f hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_range<Zeb32f, 3, true>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad4Con_8u_C1IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb8u nv, Zeb8u lo, Zeb8u hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb8u, 1, false>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad4Con_8u_C3IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb8u nv[3],
                 const Zeb8u lo[3], const Zeb8u hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb8u, 3, false>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad4Con_16u_C1IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb16u nv, Zeb16u lo, Zeb16u hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb16u, 1, false>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad4Con_16u_C3IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb16u nv[3],
                 const Zeb16u lo[3], const Zeb16u hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb16u, 3, false>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad4Con_32f_C1IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, Zeb32f nv, Zeb32f lo, Zeb32f hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb32f, 1, false>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad4Con_32f_C3IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb32f nv[3],
                 const Zeb32f lo[3], const Zeb32f hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb32f, 3, false>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad8Con_8u_C1IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb8u nv, Zeb8u lo, Zeb8u hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb8u, 1, true>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad8Con_8u_C3IR(Zeb8u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb8u nv[3],
                 const Zeb8u lo[3], const Zeb8u hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb8u, 3, true>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad8Con_16u_C1IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, Zeb16u nv, Zeb16u lo, Zeb16u hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb16u, 1, true>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad8Con_16u_C3IR(Zeb16u* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb16u nv[3],
                 const Zeb16u lo[3], const Zeb16u hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb16u, 3, true>(img, step, roi, seed, nv, lo, hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad8Con_32f_C1IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, Zeb32f nv, Zeb32f lo, Zeb32f hi,
                 ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb32f, 1, true>(img, step, roi, seed, &nv, &lo, &hi, rc, buf);
}
ZebStatus zebiFloodFill_Grad8Con_32f_C3IR(Zeb32f* img, int step, ZebiSize roi, ZebiPoint seed, const Zeb32f nv[3],
                 const Zeb32f lo[3], const Zeb32f hi[3], ZebConnectedComp* rc, Zeb8u* buf) {
    return fill_grad<Zeb32f, 3, true>(img, step, roi, seed, nv, lo, hi, rc, buf);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFloodFillGetSize);
ZEB_EXPORT(zebiFloodFillGetSize_Grad);
ZEB_EXPORT(zebiFloodFill_4Con_8u_C1IR);
ZEB_EXPORT(zebiFloodFill_4Con_8u_C3IR);
ZEB_EXPORT(zebiFloodFill_4Con_16u_C1IR);
ZEB_EXPORT(zebiFloodFill_4Con_16u_C3IR);
ZEB_EXPORT(zebiFloodFill_4Con_32s_C1IR);
ZEB_EXPORT(zebiFloodFill_4Con_32f_C1IR);
ZEB_EXPORT(zebiFloodFill_4Con_32f_C3IR);
ZEB_EXPORT(zebiFloodFill_8Con_8u_C1IR);
ZEB_EXPORT(zebiFloodFill_8Con_8u_C3IR);
ZEB_EXPORT(zebiFloodFill_8Con_16u_C1IR);
ZEB_EXPORT(zebiFloodFill_8Con_16u_C3IR);
ZEB_EXPORT(zebiFloodFill_8Con_32s_C1IR);
ZEB_EXPORT(zebiFloodFill_8Con_32f_C1IR);
ZEB_EXPORT(zebiFloodFill_8Con_32f_C3IR);
ZEB_EXPORT(zebiFloodFill_Range4Con_8u_C1IR);
ZEB_EXPORT(zebiFloodFill_Range4Con_8u_C3IR);
ZEB_EXPORT(zebiFloodFill_Range4Con_16u_C1IR);
ZEB_EXPORT(zebiFloodFill_Range4Con_16u_C3IR);
ZEB_EXPORT(zebiFloodFill_Range4Con_32f_C1IR);
ZEB_EXPORT(zebiFloodFill_Range4Con_32f_C3IR);
ZEB_EXPORT(zebiFloodFill_Range8Con_8u_C1IR);
ZEB_EXPORT(zebiFloodFill_Range8Con_8u_C3IR);
ZEB_EXPORT(zebiFloodFill_Range8Con_16u_C1IR);
ZEB_EXPORT(zebiFloodFill_Range8Con_16u_C3IR);
ZEB_EXPORT(zebiFloodFill_Range8Con_32f_C1IR);
ZEB_EXPORT(zebiFloodFill_Range8Con_32f_C3IR);
ZEB_EXPORT(zebiFloodFill_Grad4Con_8u_C1IR);
ZEB_EXPORT(zebiFloodFill_Grad4Con_8u_C3IR);
ZEB_EXPORT(zebiFloodFill_Grad4Con_16u_C1IR);
ZEB_EXPORT(zebiFloodFill_Grad4Con_16u_C3IR);
ZEB_EXPORT(zebiFloodFill_Grad4Con_32f_C1IR);
ZEB_EXPORT(zebiFloodFill_Grad4Con_32f_C3IR);
ZEB_EXPORT(zebiFloodFill_Grad8Con_8u_C1IR);
ZEB_EXPORT(zebiFloodFill_Grad8Con_8u_C3IR);
ZEB_EXPORT(zebiFloodFill_Grad8Con_16u_C1IR);
ZEB_EXPORT(zebiFloodFill_Grad8Con_16u_C3IR);
ZEB_EXPORT(zebiFloodFill_Grad8Con_32f_C1IR);
ZEB_EXPORT(zebiFloodFill_Grad8Con_32f_C3IR);
#endif  // HWY_ONCE
