// SPDX-License-Identifier: Apache-2.0
// Watershed and gradient segmentation: labelled marker pixels flood the
// unlabelled ones through a priority queue with one first-in-first-out list
// per level (0..255), always served from the lowest non-empty level.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "core/checks.h"
#include "core/dispatch.h"

namespace zeb::impl {
namespace {

// One list per level, linked through next[] (one entry per pixel: a pixel
// is queued at most once).
struct BucketQueue {
    int32_t* next;
    int32_t* head;  // 256 heads, then 256 tails
    int32_t* tail;
    int active = 256;
    BucketQueue(int32_t* nextArr, int32_t* lists) : next(nextArr), head(lists), tail(lists + 256) {
        std::fill(head, head + 512, -1);
    }
    void push(int32_t i, int lvl) {
        next[i] = -1;
        if (tail[lvl] < 0)
            head[lvl] = i;
        else
            next[tail[lvl]] = i;
        tail[lvl] = i;
        active = std::min(active, lvl);
    }
    bool pop(int32_t& i) {
        while (active < 256 && head[active] < 0) ++active;
        if (active == 256) return false;
        i = head[active];
        head[active] = next[i];
        if (head[active] < 0) tail[active] = -1;
        return true;
    }
};

// The same order for images too small to hold the lists: entries in push
// order, the earliest of the lowest level served first.
struct ScanQueue {
    int32_t* idx;  // -1 once served
    uint8_t* lvl;
    int64_t n = 0, first = 0;
    void push(int32_t i, int l) {
        idx[n] = i, lvl[n] = uint8_t(l);
        ++n;
    }
    bool pop(int32_t& i) {
        while (first < n && idx[first] < 0) ++first;
        int64_t best = -1;
        for (int64_t k = first; k < n; ++k)
            if (idx[k] >= 0 && (best < 0 || lvl[k] < lvl[best])) best = k;
        if (best < 0) return false;
        i = idx[best];
        idx[best] = -1;
        return true;
    }
};

enum class Order { Source, Diff, DiffSeed };

constexpr int kDx[8] = {-1, 1, 0, 0, -1, 1, -1, 1}, kDy[8] = {0, 0, -1, 1, -1, -1, 1, 1};

template <class M>
struct Flood {
    const uint8_t* src;
    int ss;
    uint8_t* mk;
    int ms;
    int w, h;
    Order order;
    int nb;  // 4 or 8 neighbours
    bool boundary;
    M bval;           // the boundary value, a barrier on input
    uint8_t* queued;  // one byte per pixel
    uint8_t* ref;     // the seed value a pixel measures against (DiffSeed)

    uint8_t s(int x, int y) const { return src[std::ptrdiff_t(ss) * y + x]; }
    M& m(int x, int y) const { return reinterpret_cast<M*>(mk + std::ptrdiff_t(ms) * y)[x]; }
    bool labelled(M v) const { return v != 0 && v != bval; }
    bool inside(int x, int y) const { return unsigned(x) < unsigned(w) && unsigned(y) < unsigned(h); }

    template <class Q>
    void run(Q& q) {
        // Seeds: unlabelled pixels next to a labelled one, in raster order.
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                if (m(x, y) != 0) continue;
                int best = 256, bestRef = 0;
                for (int k = 0; k < nb; ++k) {
                    const int nx = x + kDx[k], ny = y + kDy[k];
                    if (!inside(nx, ny) || !labelled(m(nx, ny))) continue;
                    const int lvl = order == Order::Source ? s(x, y) : std::abs(int(s(x, y)) - int(s(nx, ny)));
                    if (lvl < best) best = lvl, bestRef = s(nx, ny);
                }
                if (best == 256) continue;
                const int64_t i = int64_t(y) * w + x;
                queued[i] = 1;
                if (order == Order::DiffSeed) ref[i] = uint8_t(bestRef);
                q.push(int32_t(i), best);
            }
        int32_t i;
        while (q.pop(i)) {
            const int x = int(i % w), y = int(i / w);
            M lab = 0;
            bool meet = false;
            for (int k = 0; k < nb; ++k) {
                const int nx = x + kDx[k], ny = y + kDy[k];
                if (!inside(nx, ny)) continue;
                const M t = m(nx, ny);
                if (!labelled(t)) continue;
                if (lab == 0)
                    lab = t;
                else if (t != lab)
                    meet = true;
            }
            if (meet && boundary) {
                m(x, y) = bval;
                continue;
            }
            m(x, y) = lab;
            const int base = order == Order::DiffSeed ? ref[i] : s(x, y);
            for (int k = 0; k < nb; ++k) {
                const int nx = x + kDx[k], ny = y + kDy[k];
                if (!inside(nx, ny)) continue;
                const int64_t j = int64_t(ny) * w + nx;
                if (queued[j] || m(nx, ny) != 0) continue;
                queued[j] = 1;
                const int v = s(nx, ny);
                if (order == Order::DiffSeed) ref[j] = uint8_t(base);
                q.push(int32_t(j), order == Order::Source ? v : std::abs(v - base));
            }
        }
    }
};

inline uint8_t* align32(uint8_t* p) {
    return reinterpret_cast<uint8_t*>((reinterpret_cast<uintptr_t>(p) + 31) & ~uintptr_t(31));
}
// Planes inside the buffer keep 4-byte boundaries: the sizes leave no room
// for more on the smallest images.
inline int64_t round4(int64_t n) { return (n + 3) & ~int64_t(3); }

int64_t watershed_bytes(int64_t w, int64_t h) {
    const int64_t r = (2 * w + 31) & ~int64_t(31);
    return std::max(16 * w * h + 2 * (w + 2) * (h + 2) + 48, 2 * r * (h + 1) + h + 4 * h * r + 66);
}

// Runs the flood with its state in `bytes` bytes of buf: the queue links
// (or, when the lists do not fit, the scan queue's entries), the queued
// map and the reference plane.
template <class M>
void flood_in(Flood<M>& f, uint8_t* buf, int64_t bytes) {
    const int64_t px = int64_t(f.w) * f.h;
    uint8_t* a = align32(buf);
    const int64_t usable = bytes - (a - buf);
    uint8_t* queued = a + round4(4 * px);
    f.queued = queued;
    f.ref = queued + round4(px);
    std::memset(queued, 0, size_t(px));
    uint8_t* rest = f.ref + round4(px);
    if (4 * px + 2 * round4(px) + 512 * int64_t(sizeof(int32_t)) <= usable) {
        BucketQueue q(reinterpret_cast<int32_t*>(a), reinterpret_cast<int32_t*>(rest));
        f.run(q);
    } else {
        ScanQueue q{reinterpret_cast<int32_t*>(a), rest};
        f.run(q);
    }
}

template <class M>
ZebStatus watershed(const uint8_t* src, int ss, M* mk, int ms, ZebiSize roi, int norm, int flag, uint8_t* buf) {
    if (any_null(src, mk, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<uint8_t>(ss, roi.width), rm = req<M>(ms, roi.width);
    if (ZebStatus s = first_error({min_steps({rs, rm}), even_steps({rm})})) return s;
    Order order;
    if (flag & zebSegmentSource) {
        if (norm != 0 && norm != 1) return zebStsBadArgErr;
        order = Order::Source;
    } else if (flag & zebSegmentDiff) {
        if (norm < 0 || norm > 3) return zebStsBadArgErr;
        order = norm >= 2 ? Order::DiffSeed : Order::Diff;
    } else {
        return zebStsBadArgErr;
    }
    Flood<M> f{src, ss, reinterpret_cast<uint8_t*>(mk), ms, roi.width, roi.height, order, (norm & 1) ? 4 : 8,
               !(flag & zebSegmentNoBoundary), std::numeric_limits<M>::max(), nullptr, nullptr};
    flood_in(f, buf, watershed_bytes(roi.width, roi.height));
    return zebStsNoErr;
}

ZebStatus watershed_size(ZebiSize roi, int* size) {
    if (size == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return put_size(watershed_bytes(roi.width, roi.height), size);
}

// The 3x3 morphological gradient (max - min, edge pixels repeated; for
// three channels the largest channel's).
template <int C>
void morph_gradient(const uint8_t* src, int ss, int w, int h, uint8_t* g) {
    for (int y = 0; y < h; ++y) {
        const uint8_t* rows[3] = {src + std::ptrdiff_t(ss) * std::max(y - 1, 0), src + std::ptrdiff_t(ss) * y,
                                  src + std::ptrdiff_t(ss) * std::min(y + 1, h - 1)};
        for (int x = 0; x < w; ++x) {
            const int xs[3] = {std::max(x - 1, 0), x, std::min(x + 1, w - 1)};
            int best = 0;
            for (int c = 0; c < C; ++c) {
                int lo = 255, hi = 0;
                for (const uint8_t* r : rows)
                    for (int xx : xs) lo = std::min<int>(lo, r[xx * C + c]), hi = std::max<int>(hi, r[xx * C + c]);
                best = std::max(best, hi - lo);
            }
            g[int64_t(y) * w + x] = uint8_t(best);
        }
    }
}

int64_t gradient_bytes(int64_t w, int64_t h) { return 17 * w * h + 115; }

template <int C>
ZebStatus segment_gradient(const uint8_t* src, int ss, uint8_t* mk, int ms, ZebiSize roi, int flag, uint8_t* buf) {
    if (any_null(src, mk, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus s = min_steps({req<uint8_t>(ss, roi.width, C), req<uint8_t>(ms, roi.width)})) return s;
    if (flag != 0 && flag != 1) return zebStsBadArgErr;
    const int64_t px = int64_t(roi.width) * roi.height;
    uint8_t* g = align32(buf);
    morph_gradient<C>(src, ss, roi.width, roi.height, g);
    Flood<uint8_t> f{g, roi.width, mk, ms, roi.width, roi.height, Order::Source, 4, flag == 1, 255, nullptr,
                     nullptr};
    const int64_t used = (g - buf) + round4(px);
    flood_in(f, buf + used, gradient_bytes(roi.width, roi.height) - used);
    return zebStsNoErr;
}

ZebStatus gradient_size(ZebiSize roi, int* size) {
    if (size == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return put_size(gradient_bytes(roi.width, roi.height), size);
}

}  // namespace

ZebStatus zebiSegmentWatershedGetBufferSize_8u_C1R(ZebiSize roi, int* size) { return watershed_size(roi, size); }
ZebStatus zebiSegmentWatershedGetBufferSize_8u16u_C1R(ZebiSize roi, int* size) {
    return watershed_size(roi, size);
}
ZebStatus zebiSegmentWatershed_8u_C1IR(const Zeb8u* src, int ss, Zeb8u* mk, int ms, ZebiSize roi, ZebiNorm norm,
                                       int flag, Zeb8u* buf) {
    return watershed(src, ss, mk, ms, roi, norm, flag, buf);
}
ZebStatus zebiSegmentWatershed_8u16u_C1IR(const Zeb8u* src, int ss, Zeb16u* mk, int ms, ZebiSize roi,
                                          ZebiNorm norm, int flag, Zeb8u* buf) {
    return watershed(src, ss, mk, ms, roi, norm, flag, buf);
}
ZebStatus zebiSegmentGradientGetBufferSize_8u_C1R(ZebiSize roi, int* size) { return gradient_size(roi, size); }
ZebStatus zebiSegmentGradientGetBufferSize_8u_C3R(ZebiSize roi, int* size) { return gradient_size(roi, size); }
ZebStatus zebiSegmentGradient_8u_C1IR(const Zeb8u* src, int ss, Zeb8u* mk, int ms, ZebiSize roi, int flag,
                                      Zeb8u* buf) {
    return segment_gradient<1>(src, ss, mk, ms, roi, flag, buf);
}
ZebStatus zebiSegmentGradient_8u_C3IR(const Zeb8u* src, int ss, Zeb8u* mk, int ms, ZebiSize roi, int flag,
                                      Zeb8u* buf) {
    return segment_gradient<3>(src, ss, mk, ms, roi, flag, buf);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiSegmentWatershedGetBufferSize_8u_C1R);
ZEB_EXPORT(zebiSegmentWatershedGetBufferSize_8u16u_C1R);
ZEB_EXPORT(zebiSegmentWatershed_8u_C1IR);
ZEB_EXPORT(zebiSegmentWatershed_8u16u_C1IR);
ZEB_EXPORT(zebiSegmentGradientGetBufferSize_8u_C1R);
ZEB_EXPORT(zebiSegmentGradientGetBufferSize_8u_C3R);
ZEB_EXPORT(zebiSegmentGradient_8u_C1IR);
ZEB_EXPORT(zebiSegmentGradient_8u_C3IR);
