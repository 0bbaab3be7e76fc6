// SPDX-License-Identifier: Apache-2.0
// Flood fills: equality, fixed range and floating range, 4- and
// 8-connectivity, one and three channels, on the span fill of span_fill.h.
#include <cstring>
#include <limits>
#include <type_traits>

#include "core/checks.h"
#include "core/dispatch.h"
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

// Equality and range: the test looks at the pixel alone; pixels are filled
// as they are accepted and a byte map keeps them from being accepted again.
template <class T, int C, class Test>
struct FixedPolicy {
    Pixels<T, C> img;
    uint8_t* map;
    int w;
    Test test;
    T nv[C];
    bool ok(int x, int y, int, int) const { return !map[std::ptrdiff_t(y) * w + x] && test(img.at(x, y)); }
    void take(int x, int y) {
        map[std::ptrdiff_t(y) * w + x] = 1;
        T* p = img.at(x, y);
        for (int c = 0; c < C; ++c) p[c] = nv[c];
    }
    bool taken(int x, int y) const { return map[std::ptrdiff_t(y) * w + x] != 0; }
};

template <class T, int C>
struct Equal {
    T s[C];
    bool operator()(const T* p) const {
        for (int c = 0; c < C; ++c)
            if (!(p[c] == s[c])) return false;
        return true;
    }
};

template <class T, int C>
struct InRange {
    T lo[C], hi[C];
    bool operator()(const T* p) const {
        for (int c = 0; c < C; ++c)
            if (!(lo[c] <= p[c] && p[c] <= hi[c])) return false;
        return true;
    }
};

// Gradient: the image stays as it was during the traversal; accepted pixels
// are marked in a framed byte map and written afterwards.
template <class T, int C>
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

// Equality and range fills, after the checks. The buffer is 6 w h + 32
// bytes: the byte map, then the span stack.
template <class T, int C, bool k8, class Test>
void fixed_fill(T* img, int step, ZebiSize roi, ZebiPoint seed, const T* nv, const Test& test,
                ZebConnectedComp* region, uint8_t* buf) {
    const int64_t px = int64_t(roi.width) * roi.height;
    uint8_t* map = align8(buf);
    std::memset(map, 0, size_t(px));
    int64_t cap;
    const int64_t left = 6 * px + 32 - (map - buf) - round8(px);
    Span* stack = region::stack_at(map + round8(px), left, &cap);
    FixedPolicy<T, C, Test> p{{reinterpret_cast<uint8_t*>(img), step}, map, roi.width, test, {}};
    for (int c = 0; c < C; ++c) p.nv[c] = nv[c];
    const region::FillResult f = region::SpanFill<decltype(p), k8>(p, roi.width, roi.height, stack, cap)
                                     .run(seed.x, seed.y);
    put_record<T, C>(f, nv, region);
}

template <class T, int C, bool k8>
ZebStatus fill_equal(T* img, int step, ZebiSize roi, ZebiPoint seed, const T* nv, ZebConnectedComp* region,
                     uint8_t* buf) {
    if (C == 3 && nv == nullptr) return zebStsNullPtrErr;
    if (ZebStatus s = check<T, C>(img, step, roi, seed, region, buf)) return s;
    Equal<T, C> e;
    const T* s = Pixels<T, C>{reinterpret_cast<uint8_t*>(img), step}.at(seed.x, seed.y);
    for (int c = 0; c < C; ++c) e.s[c] = s[c];
    if (Equal<T, C>{e}(nv)) return zebStsNoErr;
    fixed_fill<T, C, k8>(img, step, roi, seed, nv, e, region, buf);
    return zebStsNoErr;
}

template <class T, int C, bool k8>
ZebStatus fill_range(T* img, int step, ZebiSize roi, ZebiPoint seed, const T* nv, const T* lo, const T* hi,
                     ZebConnectedComp* region, uint8_t* buf) {
    if (C == 3 && any_null(nv, lo, hi)) return zebStsNullPtrErr;
    if (ZebStatus s = check<T, C>(img, step, roi, seed, region, buf)) return s;
    const T* s = Pixels<T, C>{reinterpret_cast<uint8_t*>(img), step}.at(seed.x, seed.y);
    Equal<T, C> same;
    for (int c = 0; c < C; ++c) same.s[c] = s[c];
    if (same(nv)) return zebStsNoErr;
    InRange<T, C> r;
    for (int c = 0; c < C; ++c) {
        if constexpr (std::is_floating_point_v<T>) {
            r.lo[c] = s[c] - lo[c], r.hi[c] = s[c] + hi[c];
        } else {
            r.lo[c] = T(std::max<int64_t>(int64_t(s[c]) - lo[c], 0));
            r.hi[c] = T(std::min<int64_t>(int64_t(s[c]) + hi[c], std::numeric_limits<T>::max()));
        }
    }
    fixed_fill<T, C, k8>(img, step, roi, seed, nv, r, region, buf);
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
    GradPolicy<T, C> p{{reinterpret_cast<uint8_t*>(img), step}, map, mw, {}, {}};
    for (int c = 0; c < C; ++c) p.lo[c] = lo[c], p.hi[c] = hi[c];
    const region::FillResult f = region::SpanFill<GradPolicy<T, C>, k8>(p, w, h, stack, cap).run(seed.x, seed.y);
    for (int y = f.y0; y <= f.y1; ++y)
        for (int x = f.x0; x <= f.x1; ++x)
            if (p.m(x, y)) {
                T* q = p.img.at(x, y);
                for (int c = 0; c < C; ++c) q[c] = nv[c];
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
