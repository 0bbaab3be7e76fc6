// SPDX-License-Identifier: Apache-2.0
// Fast marching: distances from the zero pixels of an 8-bit image by the
// unit-speed eikonal update, fixed in order of increasing value.
//
// States live in the destination while marching: a fixed pixel holds its
// value (>= 0), any other pixel the negated tentative value (-infinity
// before any fixed neighbour reached it). The narrow band is a binary
// min-heap of (value, pixel) pairs in the work buffer; a pixel whose value
// drops is pushed again and its older entries are skipped when they come
// up (they no longer match the destination). A full heap first drops its
// stale entries, once enough have piled up to pay; if it is still full,
// the new candidate stays in the destination only and the smallest such
// value is remembered: before the
// heap would hand out a larger one, the candidates are gathered again from
// the destination, keeping the heap's capacity of the smallest. So the
// order of fixing, and every result, is that of an unbounded heap.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "core/checks.h"
#include "core/dispatch.h"
#include "region/distance_ref.h"

namespace zeb::impl {
namespace {

struct Entry {
    float key;
    uint32_t pixel;  // y * width + x
};
// Heap order with the smallest value on top (std heap functions keep the
// largest by their comparison on top).
inline bool later(const Entry& p, const Entry& q) { return p.key > q.key; }
inline bool earlier(const Entry& p, const Entry& q) { return p.key < q.key; }

constexpr float kInf = std::numeric_limits<float>::infinity();

class March {
public:
    March(float* d, int ds, int w, int h, float radius, Entry* heap, std::size_t cap)
        : d_(d), ds_(ds), w_(w), h_(h), radius_(radius), heap_(heap), cap_(cap) {}

    float& at(int x, int y) const { return row(d_, ds_, y)[x]; }
    static bool fixed(float v) { return !std::signbit(v); }

    // A pixel that is not fixed: its value from the fixed neighbours; it
    // joins the band when the value drops and stays within the radius.
    void update(int x, int y) {
        float& cell = at(x, y);
        if (fixed(cell)) return;
        float a = kInf, b = kInf;
        if (x > 0 && fixed(at(x - 1, y))) a = at(x - 1, y);
        if (x + 1 < w_ && fixed(at(x + 1, y))) a = std::min(a, at(x + 1, y));
        if (y > 0 && fixed(at(x, y - 1))) b = at(x, y - 1);
        if (y + 1 < h_ && fixed(at(x, y + 1))) b = std::min(b, at(x, y + 1));
        const float t = ref::eikonal(a, b);
        if (!(t < -cell)) return;
        if (-cell <= radius_) ++stale_;  // its earlier entry, if still held, is stale now
        cell = -t;
        if (t <= radius_) push({t, uint32_t(y) * uint32_t(w_) + uint32_t(x)});
    }

    void neighbours(int x, int y) {
        if (x > 0) update(x - 1, y);
        if (x + 1 < w_) update(x + 1, y);
        if (y > 0) update(x, y - 1);
        if (y + 1 < h_) update(x, y + 1);
    }

    void run() {
        for (;;) {
            if (size_ == 0 || heap_[0].key > dropped_) {
                if (dropped_ == kInf) return;
                regather();
                if (size_ == 0) return;
            }
            std::pop_heap(heap_, heap_ + size_, later);
            const Entry e = heap_[--size_];
            const int x = int(e.pixel % uint32_t(w_)), y = int(e.pixel / uint32_t(w_));
            float& cell = at(x, y);
            if (fixed(cell) || -cell != e.key) continue;  // stale
            cell = e.key;
            neighbours(x, y);
        }
    }

private:
    bool current(const Entry& e) const {
        const float v = at(int(e.pixel % uint32_t(w_)), int(e.pixel / uint32_t(w_)));
        return !fixed(v) && -v == e.key;
    }

    void push(Entry e) {
        if (size_ == cap_ && stale_ >= cap_ / 4) {
            stale_ = 0;
            size_ = std::size_t(std::remove_if(heap_, heap_ + size_, [&](const Entry& q) { return !current(q); }) -
                                heap_);
            std::make_heap(heap_, heap_ + size_, later);
        }
        if (size_ == cap_) {
            dropped_ = std::min(dropped_, e.key);
            return;
        }
        heap_[size_++] = e;
        std::push_heap(heap_, heap_ + size_, later);
    }

    // Rebuilds the heap from the destination: the cap_ smallest candidates
    // within the radius (a max-heap while selecting), the smallest of the
    // rest remembered.
    void regather() {
        size_ = 0;
        stale_ = 0;
        dropped_ = kInf;
        for (int y = 0; y < h_; ++y) {
            const float* r = row(d_, ds_, y);
            for (int x = 0; x < w_; ++x) {
                const float t = -r[x];
                if (fixed(r[x]) || !(t <= radius_)) continue;
                Entry e{t, uint32_t(y) * uint32_t(w_) + uint32_t(x)};
                if (size_ < cap_) {
                    heap_[size_++] = e;
                    std::push_heap(heap_, heap_ + size_, earlier);
                } else if (cap_ > 0 && t < heap_[0].key) {
                    dropped_ = std::min(dropped_, heap_[0].key);
                    std::pop_heap(heap_, heap_ + size_, earlier);
                    heap_[size_ - 1] = e;
                    std::push_heap(heap_, heap_ + size_, earlier);
                } else {
                    dropped_ = std::min(dropped_, t);
                }
            }
        }
        std::make_heap(heap_, heap_ + size_, later);
    }

    float* d_;
    int ds_, w_, h_;
    float radius_;
    Entry* heap_;
    std::size_t cap_, size_ = 0;
    std::size_t stale_ = 0;  // entries made stale since the last clean-up (an upper bound)
    float dropped_ = kInf;  // the smallest candidate left out of a full heap
};

int64_t buffer_bytes(ZebiSize roi) {
    const int64_t r32 = (int64_t(roi.width) + 31) & ~int64_t(31);
    return (r32 + 5) * (int64_t(roi.height) + 34) + 40;
}

}  // namespace

ZebStatus zebiFastMarchingGetBufferSize_8u32f_C1R(ZebiSize roi, int* pBufferSize) {
    if (pBufferSize == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    return put_size(buffer_bytes(roi), pBufferSize);
}

ZebStatus zebiFastMarching_8u32f_C1R(const Zeb8u* pSrc, int srcStep, Zeb32f* pDst, int dstStep, ZebiSize roi,
                                     Zeb32f radius, Zeb8u* pBuffer) {
    if (any_null(pSrc, pDst, pBuffer)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<Zeb8u>(srcStep, roi.width), rd = req<Zeb32f>(dstStep, roi.width);
    if (ZebStatus st = first_error({min_steps({rs, rd}), even_steps({rd})})) return st;
    if (!(radius >= 0)) return zebStsBadArgErr;
    const int w = roi.width, h = roi.height;
    for (int y = 0; y < h; ++y) {
        const Zeb8u* s = row(pSrc, srcStep, y);
        float* d = row(pDst, dstStep, y);
        for (int x = 0; x < w; ++x) d[x] = s[x] == 0 ? 0.0f : -kInf;
    }
    if (radius > 0) {
        // The buffer holds at least (width + 5) * (height + 34) + 40 bytes,
        // room for about an eighth of the pixels as band entries.
        Entry* heap = reinterpret_cast<Entry*>(align_up(pBuffer, 32));
        const std::size_t cap = (std::size_t(buffer_bytes(roi)) - 32) / sizeof(Entry);
        March m(pDst, dstStep, w, h, radius, heap, cap);
        for (int y = 0; y < h; ++y) {
            const Zeb8u* s = row(pSrc, srcStep, y);
            for (int x = 0; x < w; ++x)
                if (s[x] == 0) m.neighbours(x, y);
        }
        m.run();
    }
    const float far = ref::far_value<float>();
    for (int y = 0; y < h; ++y) {
        float* d = row(pDst, dstStep, y);
        for (int x = 0; x < w; ++x)
            if (std::signbit(d[x])) d[x] = far;
    }
    return zebStsNoErr;
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFastMarchingGetBufferSize_8u32f_C1R);
ZEB_EXPORT(zebiFastMarching_8u32f_C1R);
