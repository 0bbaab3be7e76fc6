// SPDX-License-Identifier: Apache-2.0
// Dilation and erosion with a prepared state (border interface and older
// replicate-only interface), and the image drivers of every mask class.
//
// Rectangles are separable: a row pass takes the extremum over the
// rectangle's width, a column pass over its height. Short sides are a
// direct extremum of shifted rows. Long rows use power-of-two doubling
// (the extremum over 2d elements is that of two overlapping windows of d),
// which costs log2(side) vector operations a pixel. Long columns use the
// block running extremum: rows are grouped in blocks of the side k; the
// window starting at row t is the suffix extremum of t's block from t
// joined with the prefix extremum of the next block up to t + k - 1,
// three operations a pixel whatever k. Other masks keep a ring of source
// rows extended by the mask width; the general path takes the extremum
// over every selected element, the run path over row runs, each run being
// two windows of a power-of-two table built once per source row.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "morph/dilate_erode_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "morph/dilate_erode_kernels.inl"

#if HWY_ONCE
#include <algorithm>
#include <climits>
#include <cstring>

#include "core/border.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"
#include "morph/morph_run.h"
#include "morph/morph_state.h"

namespace zeb::morph {
namespace {

// Rectangle sides up to these take the direct extremum of shifted rows.
constexpr int kDirectRow = 7;
constexpr int kDirectCol = 6;

template <class T, bool kMax>
struct Kernels {
    void (*pair)(const T*, const T*, T*, int) = ZEB_DISPATCH(morph::pair<T, kMax>);
    void (*list)(const T* const*, int, T*, int) = ZEB_DISPATCH(morph::list<T, kMax>);
    void (*step)(T*, T*, T*, int) = ZEB_DISPATCH(morph::step<T, kMax>);
};

// The row pass of the rectangle: out[x] = extremum of the row over
// [x + ox, x + ox + rw - 1], clamped to the row or read from memory.
template <class T, bool kMax>
struct RectRow {
    const Kernels<T, kMax>& k;
    int W, ch, ox, rw;
    bool inMem;
    T* tmp;  // W (clamped) or W + rw - 1 (in memory) pixels

    void operator()(const T* s, T* out) const {
        const int n = W * ch;
        const T* ptrs[kDirectRow];
        if (inMem) {
            if (rw <= kDirectRow) {
                for (int j = 0; j < rw; ++j) ptrs[j] = s + std::ptrdiff_t(ox + j) * ch;
                k.list(ptrs, rw, out, n);
                return;
            }
            const int len = W + rw - 1;
            std::memcpy(tmp, s + std::ptrdiff_t(ox) * ch, sizeof(T) * std::size_t(len) * ch);
            int d = 1;
            for (; 2 * d <= rw; d *= 2) k.pair(tmp, tmp + d * ch, tmp, (len - 2 * d + 1) * ch);
            k.pair(tmp, tmp + (rw - d) * ch, out, n);
            return;
        }
        // Interior: windows wholly inside the row.
        const int xa = std::max(0, -ox), xb = std::min(W - 1, W - rw - ox);
        if (xb >= xa) {
            const int m = (xb - xa + 1) * ch;
            if (rw <= kDirectRow) {
                for (int j = 0; j < rw; ++j) ptrs[j] = s + std::ptrdiff_t(xa + ox + j) * ch;
                k.list(ptrs, rw, out + std::ptrdiff_t(xa) * ch, m);
            } else {
                std::memcpy(tmp, s, sizeof(T) * std::size_t(n));
                int d = 1;
                for (; 2 * d <= rw; d *= 2) k.pair(tmp, tmp + d * ch, tmp, (W - 2 * d + 1) * ch);
                k.pair(tmp + std::ptrdiff_t(xa + ox) * ch, tmp + std::ptrdiff_t(xa + ox + rw - d) * ch,
                       out + std::ptrdiff_t(xa) * ch, m);
            }
        }
        // Edges: running extrema from each end of the row.
        for (int c = 0; c < ch; ++c) {
            T acc{};
            int x = 0;
            for (int done = -1; x < W && x + ox < 0; ++x) {
                const int hi = std::clamp(x + ox + rw - 1, 0, W - 1);
                while (done < hi) {
                    ++done;
                    acc = done == 0 ? s[c] : ref::ext<kMax>(acc, s[std::ptrdiff_t(done) * ch + c]);
                }
                out[std::ptrdiff_t(x) * ch + c] = acc;
            }
            for (int x2 = W - 1, done = W; x2 >= x && x2 + ox + rw - 1 > W - 1; --x2) {
                const int lo = std::min(x2 + ox, W - 1);
                while (done > lo) {
                    --done;
                    acc = done == W - 1 ? s[std::ptrdiff_t(done) * ch + c]
                                        : ref::ext<kMax>(acc, s[std::ptrdiff_t(done) * ch + c]);
                }
                out[std::ptrdiff_t(x2) * ch + c] = acc;
            }
        }
    }
};

template <class T, bool kMax>
void rect_image(const T* src, int ss, T* dst, int ds, int W, int H, const Header* h, bool inMem, void* work) {
    const Kernels<T, kMax> k;
    const int ch = h->channels, n = W * ch, kh = h->rh, oy = h->ry;
    const int64_t rowBytes = r32(int64_t(n) * int64_t(sizeof(T)));
    const std::ptrdiff_t rs = std::ptrdiff_t(rowBytes / int64_t(sizeof(T)));
    unsigned char* cur = align_up(static_cast<unsigned char*>(work), 32);
    T* ring = reinterpret_cast<T*>(cur);
    T* tmp = reinterpret_cast<T*>(cur + kh * rowBytes);
    const RectRow<T, kMax> rows{k, W, ch, h->rx, h->rw, inMem, tmp};
    const std::size_t rowLen = sizeof(T) * std::size_t(n);

    auto srcy = [&](int v) { return inMem ? v + oy : std::clamp(v + oy, 0, H - 1); };
    auto drow = [&](int t) { return row(dst, ds, t); };
    auto rg = [&](int j) { return ring + j * rs; };
    // R[v], the row pass of virtual row v, into out; a replicated row equal
    // to R[v - 1] (held at prev) is copied.
    auto make = [&](int v, T* out, const T* prev) {
        if (prev && v > 0 && srcy(v) == srcy(v - 1))
            std::memcpy(out, prev, rowLen);
        else
            rows(row(src, ss, srcy(v)), out);
    };

    if (kh == 1) {
        for (int t = 0; t < H; ++t) rows(row(src, ss, srcy(t)), drow(t));
        return;
    }
    if (kh <= kDirectCol) {
        const T* ptrs[kDirectCol];
        for (int v = 0; v < kh - 1; ++v) make(v, rg(v), v ? rg(v - 1) : nullptr);
        for (int t = 0; t < H; ++t) {
            const int v = t + kh - 1;
            make(v, rg(v % kh), rg((v - 1) % kh));
            for (int i = 0; i < kh; ++i) ptrs[i] = rg((t + i) % kh);
            k.list(ptrs, kh, drow(t), n);
        }
        return;
    }
    // Block running extremum over blocks of kh rows. The ring holds the
    // suffix extrema of the current block; the prefix of the next block
    // advances in the destination rows themselves.
    for (int j = 0; j < kh; ++j) make(j, rg(j), j ? rg(j - 1) : nullptr);
    for (int j = kh - 2; j >= 0; --j) k.pair(rg(j), rg(j + 1), rg(j), n);
    std::memcpy(drow(0), rg(0), rowLen);
    for (int base = 0;; base += kh) {
        for (int j = 0; j < kh; ++j) {
            const int t = base + j + 1;
            if (t >= H) {
                if (j >= 1) k.pair(drow(t - 1), rg(j), drow(t - 1), n);
                return;
            }
            make(base + kh + j, drow(t), rg((j + kh - 1) % kh));
            if (j == 0)
                std::memcpy(rg(0), drow(t), rowLen);
            else
                k.step(drow(t - 1), drow(t), rg(j), n);
        }
        for (int j = kh - 2; j >= 0; --j) k.pair(rg(j), rg(j + 1), rg(j), n);
    }
}

inline uint8_t get_bit(const uint8_t* r, int x) { return uint8_t((r[x >> 3] >> (7 - (x & 7))) & 1); }

// Packs W bytes (0 or 1) into a 1-bit row, keeping the bits past W.
void pack_bits(const uint8_t* b, uint8_t* d, int W) {
    const int full = W / 8, rem = W % 8;
    for (int i = 0; i < full; ++i) {
        uint8_t v = 0;
        for (int k = 0; k < 8; ++k) v = uint8_t(v | ((b[8 * i + k] & 1) << (7 - k)));
        d[i] = v;
    }
    if (rem) {
        uint8_t v = 0;
        for (int k = 0; k < rem; ++k) v = uint8_t(v | ((b[8 * full + k] & 1) << (7 - k)));
        const uint8_t keep = uint8_t(0xff >> rem);
        d[full] = uint8_t((d[full] & keep) | v);
    }
}

// The general and run paths over a ring of extended source rows; with
// kBits the rows are unpacked from 1-bit pixels and the result packed.
template <class T, bool kMax, bool kBits>
void rows_image(const void* srcv, int ss, void* dstv, int ds, int W, int H, const Header* h, bool inMem, void* work) {
    const Kernels<T, kMax> k;
    const int ch = h->channels, mW = h->mW, mH = h->mH, ax = h->ax, ay = h->ay;
    const bool runs = h->path == kPathRuns;
    const int L = runs ? h->levels : 1;
    const int Wx = W + mW - 1, nx = Wx * ch, n = W * ch;
    const std::ptrdiff_t E = std::ptrdiff_t(r32(int64_t(nx) * int64_t(sizeof(T))) / int64_t(sizeof(T)));
    unsigned char* cur = align_up(static_cast<unsigned char*>(work), 32);
    T* ring = reinterpret_cast<T*>(cur);
    cur += int64_t(mH) * L * E * int64_t(sizeof(T));
    T* outRow = reinterpret_cast<T*>(cur);
    cur += r32(int64_t(n) * int64_t(sizeof(T)));
    const T** ptrs = reinterpret_cast<const T**>(cur);
    const int cnt = runs ? h->nRunTerms : h->nSel;
    const Term* gt = at<const Term>(h, h->termsOff);
    const RunTerm* rt = at<const RunTerm>(h, h->runTermsOff);

    auto slot = [&](int v) { return ring + std::ptrdiff_t(v % mH) * L * E; };
    auto srcy = [&](int v) { return inMem ? v - ay : std::clamp(v - ay, 0, H - 1); };
    auto build = [&](int v) {
        T* s = slot(v);
        if (!inMem && v > 0 && srcy(v) == srcy(v - 1)) {
            if (mH > 1) std::memcpy(s, slot(v - 1), sizeof(T) * std::size_t(L * E));
            return;
        }
        if constexpr (kBits) {
            const uint8_t* r = row(static_cast<const uint8_t*>(srcv), ss, srcy(v));
            for (int x = 0; x < Wx; ++x) s[x] = get_bit(r, inMem ? x - ax : std::clamp(x - ax, 0, W - 1));
        } else {
            const T* r = row(static_cast<const T*>(srcv), ss, srcy(v));
            if (inMem) {
                std::memcpy(s, r - std::ptrdiff_t(ax) * ch, sizeof(T) * std::size_t(nx));
            } else {
                std::memcpy(s + std::ptrdiff_t(ax) * ch, r, sizeof(T) * std::size_t(n));
                for (int x = 0; x < ax; ++x) std::memcpy(s + std::ptrdiff_t(x) * ch, r, sizeof(T) * std::size_t(ch));
                for (int x = W + ax; x < Wx; ++x)
                    std::memcpy(s + std::ptrdiff_t(x) * ch, r + std::ptrdiff_t(W - 1) * ch, sizeof(T) * std::size_t(ch));
            }
        }
        for (int l = 1; l < L; ++l) {
            const int d = 1 << (l - 1);
            k.pair(s + (l - 1) * E, s + (l - 1) * E + std::ptrdiff_t(d) * ch, s + l * E, (Wx - 2 * d + 1) * ch);
        }
    };

    for (int v = 0; v < mH - 1; ++v) build(v);
    for (int t = 0; t < H; ++t) {
        build(t + mH - 1);
        if (runs)
            for (int q = 0; q < cnt; ++q) ptrs[q] = slot(t + rt[q].row) + rt[q].level * E + std::ptrdiff_t(rt[q].col) * ch;
        else
            for (int q = 0; q < cnt; ++q) ptrs[q] = slot(t + gt[q].row) + std::ptrdiff_t(gt[q].col) * ch;
        if constexpr (kBits) {
            k.list(ptrs, cnt, outRow, n);
            pack_bits(outRow, row(static_cast<uint8_t*>(dstv), ds, t), W);
        } else {
            k.list(ptrs, cnt, row(static_cast<T*>(dstv), ds, t), n);
        }
    }
}

}  // namespace

template <class T>
void run(bool kMax, const T* src, int ss, T* dst, int ds, int W, int H, const Header* h, bool inMem, void* work) {
    switch (h->path) {
        case kPathCopy:
            for (int y = 0; y < H; ++y)
                std::memcpy(row(dst, ds, y), row(src, ss, y), sizeof(T) * std::size_t(W) * std::size_t(h->channels));
            return;
        case kPathRect:
            return kMax ? rect_image<T, true>(src, ss, dst, ds, W, H, h, inMem, work)
                        : rect_image<T, false>(src, ss, dst, ds, W, H, h, inMem, work);
        default:
            return kMax ? rows_image<T, true, false>(src, ss, dst, ds, W, H, h, inMem, work)
                        : rows_image<T, false, false>(src, ss, dst, ds, W, H, h, inMem, work);
    }
}
template void run<uint8_t>(bool, const uint8_t*, int, uint8_t*, int, int, int, const Header*, bool, void*);
template void run<uint16_t>(bool, const uint16_t*, int, uint16_t*, int, int, int, const Header*, bool, void*);
template void run<int16_t>(bool, const int16_t*, int, int16_t*, int, int, int, const Header*, bool, void*);
template void run<float>(bool, const float*, int, float*, int, int, int, const Header*, bool, void*);

void run_bits(bool kMax, const uint8_t* src, int ss, uint8_t* dst, int ds, int W, int H, const Header* h, bool inMem,
              void* work) {
    if (h->path == kPathCopy) {
        uint8_t* tmp = align_up(static_cast<uint8_t*>(work), 32);
        for (int y = 0; y < H; ++y) {
            const uint8_t* r = row(src, ss, y);
            for (int x = 0; x < W; ++x) tmp[x] = get_bit(r, x);
            pack_bits(tmp, row(dst, ds, y), W);
        }
        return;
    }
    if (kMax)
        rows_image<uint8_t, true, true>(src, ss, dst, ds, W, H, h, inMem, work);
    else
        rows_image<uint8_t, false, true>(src, ss, dst, ds, W, H, h, inMem, work);
}

}  // namespace zeb::morph

namespace zeb::impl {
namespace {

using morph::Header;

// Border interface. bv is the border value (unused by the accepted modes);
// array forms pass the array, which must not be null.
template <class T>
ZebStatus border_op(bool kMax, const T* s, int ss, T* d, int ds, ZebiSize roi, ZebiBorderType bt, const void* bv,
                    const ZebiMorphState* spec, Zeb8u* buf, int ch) {
    if (any_null(s, d, spec, buf, bv)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<T>(ss, roi.width, ch), rd = req<T>(ds, roi.width, ch);
    if (ZebStatus st = first_error({min_steps({rs, rd}), even_steps({rs, rd})})) return st;
    const int mode = bt & 0xf;
    if (mode != border::kRepl && mode != border::kInMem) return zebStsBorderErr;
    const Header* h = morph::header(spec);
    if (roi.width > h->maxWidth) return zebStsBadArgErr;
    morph::run<T>(kMax, s, ss, d, ds, roi.width, roi.height, h, mode == border::kInMem, buf);
    return zebStsNoErr;
}

ZebStatus border_bits(bool kMax, const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize roi, ZebiBorderType bt,
                      const ZebiMorphState* spec, Zeb8u* buf) {
    if (any_null(s, d, spec, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const int64_t rowBytes = (int64_t(roi.width) + 7) / 8;
    if (ZebStatus st = min_steps({StepReq{ss, rowBytes, 1}, StepReq{ds, rowBytes, 1}})) return st;
    const int mode = bt & 0xf;
    if (mode != border::kRepl && mode != border::kInMem) return zebStsBorderErr;
    const Header* h = morph::header(spec);
    if (roi.width > h->maxWidth) return zebStsBadArgErr;
    morph::run_bits(kMax, s, ss, d, ds, roi.width, roi.height, h, mode == border::kInMem, buf);
    return zebStsNoErr;
}

// Older interface: replicated border only; scratch from the state when it
// is large enough, else allocated for the call.
template <class T>
ZebStatus older_op(bool kMax, const T* s, int ss, T* d, int ds, ZebiSize roi, ZebiBorderType bt, ZebiMorphState* st,
                   int ch) {
    if (any_null(s, d, st)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<T>(ss, roi.width, ch), rd = req<T>(ds, roi.width, ch);
    if (ZebStatus e = first_error({min_steps({rs, rd}), even_steps({rs, rd})})) return e;
    if (bt != border::kRepl) return zebStsBadArgErr;
    const Header* h = morph::header(st);
    if (roi.width > h->maxWidth) return zebStsBadArgErr;
    const int64_t need = morph::state_work(h, roi.width, false);
    if (need <= h->scratchBytes) {
        morph::run<T>(kMax, s, ss, d, ds, roi.width, roi.height, h, false, morph::at<unsigned char>(h, h->scratchOff));
        return zebStsNoErr;
    }
    void* p = need > INT_MAX ? nullptr : zeb::alloc(int32_t(need));
    if (!p) return zebStsMemAllocErr;
    morph::run<T>(kMax, s, ss, d, ds, roi.width, roi.height, h, false, p);
    zeb::release(p);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiDilateBorder_1u_C1R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, Zeb8u, const ZebiMorphState* p, Zeb8u* w) { return border_bits(true, s, ss, d, ds, r, b, p, w); }
ZebStatus zebiDilateBorder_8u_C1R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, Zeb8u v, const ZebiMorphState* p, Zeb8u* w) { return border_op(true, s, ss, d, ds, r, b, &v, p, w, 1); }
ZebStatus zebiDilateBorder_8u_C3R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, const Zeb8u v[3], const ZebiMorphState* p, Zeb8u* w) { return border_op(true, s, ss, d, ds, r, b, v, p, w, 3); }
ZebStatus zebiDilateBorder_8u_C4R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, const Zeb8u v[4], const ZebiMorphState* p, Zeb8u* w) { return border_op(true, s, ss, d, ds, r, b, v, p, w, 4); }
ZebStatus zebiDilateBorder_16u_C1R(const Zeb16u* s, int ss, Zeb16u* d, int ds, ZebiSize r, ZebiBorderType b, Zeb16u v, const ZebiMorphState* p, Zeb8u* w) { return border_op(true, s, ss, d, ds, r, b, &v, p, w, 1); }
ZebStatus zebiDilateBorder_16s_C1R(const Zeb16s* s, int ss, Zeb16s* d, int ds, ZebiSize r, ZebiBorderType b, Zeb16s v, const ZebiMorphState* p, Zeb8u* w) { return border_op(true, s, ss, d, ds, r, b, &v, p, w, 1); }
ZebStatus zebiDilateBorder_32f_C1R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, Zeb32f v, const ZebiMorphState* p, Zeb8u* w) { return border_op(true, s, ss, d, ds, r, b, &v, p, w, 1); }
ZebStatus zebiDilateBorder_32f_C3R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, const Zeb32f v[3], const ZebiMorphState* p, Zeb8u* w) { return border_op(true, s, ss, d, ds, r, b, v, p, w, 3); }
ZebStatus zebiDilateBorder_32f_C4R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, const Zeb32f v[4], const ZebiMorphState* p, Zeb8u* w) { return border_op(true, s, ss, d, ds, r, b, v, p, w, 4); }

ZebStatus zebiErodeBorder_1u_C1R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, Zeb8u, const ZebiMorphState* p, Zeb8u* w) { return border_bits(false, s, ss, d, ds, r, b, p, w); }
ZebStatus zebiErodeBorder_8u_C1R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, Zeb8u v, const ZebiMorphState* p, Zeb8u* w) { return border_op(false, s, ss, d, ds, r, b, &v, p, w, 1); }
ZebStatus zebiErodeBorder_8u_C3R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, const Zeb8u v[3], const ZebiMorphState* p, Zeb8u* w) { return border_op(false, s, ss, d, ds, r, b, v, p, w, 3); }
ZebStatus zebiErodeBorder_8u_C4R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, const Zeb8u v[4], const ZebiMorphState* p, Zeb8u* w) { return border_op(false, s, ss, d, ds, r, b, v, p, w, 4); }
ZebStatus zebiErodeBorder_16u_C1R(const Zeb16u* s, int ss, Zeb16u* d, int ds, ZebiSize r, ZebiBorderType b, Zeb16u v, const ZebiMorphState* p, Zeb8u* w) { return border_op(false, s, ss, d, ds, r, b, &v, p, w, 1); }
ZebStatus zebiErodeBorder_16s_C1R(const Zeb16s* s, int ss, Zeb16s* d, int ds, ZebiSize r, ZebiBorderType b, Zeb16s v, const ZebiMorphState* p, Zeb8u* w) { return border_op(false, s, ss, d, ds, r, b, &v, p, w, 1); }
ZebStatus zebiErodeBorder_32f_C1R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, Zeb32f v, const ZebiMorphState* p, Zeb8u* w) { return border_op(false, s, ss, d, ds, r, b, &v, p, w, 1); }
ZebStatus zebiErodeBorder_32f_C3R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, const Zeb32f v[3], const ZebiMorphState* p, Zeb8u* w) { return border_op(false, s, ss, d, ds, r, b, v, p, w, 3); }
ZebStatus zebiErodeBorder_32f_C4R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, const Zeb32f v[4], const ZebiMorphState* p, Zeb8u* w) { return border_op(false, s, ss, d, ds, r, b, v, p, w, 4); }

ZebStatus zebiDilateBorderReplicate_8u_C1R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(true, s, ss, d, ds, r, b, p, 1); }
ZebStatus zebiDilateBorderReplicate_8u_C3R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(true, s, ss, d, ds, r, b, p, 3); }
ZebStatus zebiDilateBorderReplicate_8u_C4R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(true, s, ss, d, ds, r, b, p, 4); }
ZebStatus zebiDilateBorderReplicate_32f_C1R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(true, s, ss, d, ds, r, b, p, 1); }
ZebStatus zebiDilateBorderReplicate_32f_C3R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(true, s, ss, d, ds, r, b, p, 3); }
ZebStatus zebiDilateBorderReplicate_32f_C4R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(true, s, ss, d, ds, r, b, p, 4); }
ZebStatus zebiErodeBorderReplicate_8u_C1R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(false, s, ss, d, ds, r, b, p, 1); }
ZebStatus zebiErodeBorderReplicate_8u_C3R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(false, s, ss, d, ds, r, b, p, 3); }
ZebStatus zebiErodeBorderReplicate_8u_C4R(const Zeb8u* s, int ss, Zeb8u* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(false, s, ss, d, ds, r, b, p, 4); }
ZebStatus zebiErodeBorderReplicate_32f_C1R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(false, s, ss, d, ds, r, b, p, 1); }
ZebStatus zebiErodeBorderReplicate_32f_C3R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(false, s, ss, d, ds, r, b, p, 3); }
ZebStatus zebiErodeBorderReplicate_32f_C4R(const Zeb32f* s, int ss, Zeb32f* d, int ds, ZebiSize r, ZebiBorderType b, ZebiMorphState* p) { return older_op(false, s, ss, d, ds, r, b, p, 4); }

}  // namespace zeb::impl

ZEB_EXPORT(zebiDilateBorder_1u_C1R);
ZEB_EXPORT(zebiDilateBorder_8u_C1R);
ZEB_EXPORT(zebiDilateBorder_8u_C3R);
ZEB_EXPORT(zebiDilateBorder_8u_C4R);
ZEB_EXPORT(zebiDilateBorder_16u_C1R);
ZEB_EXPORT(zebiDilateBorder_16s_C1R);
ZEB_EXPORT(zebiDilateBorder_32f_C1R);
ZEB_EXPORT(zebiDilateBorder_32f_C3R);
ZEB_EXPORT(zebiDilateBorder_32f_C4R);
ZEB_EXPORT(zebiErodeBorder_1u_C1R);
ZEB_EXPORT(zebiErodeBorder_8u_C1R);
ZEB_EXPORT(zebiErodeBorder_8u_C3R);
ZEB_EXPORT(zebiErodeBorder_8u_C4R);
ZEB_EXPORT(zebiErodeBorder_16u_C1R);
ZEB_EXPORT(zebiErodeBorder_16s_C1R);
ZEB_EXPORT(zebiErodeBorder_32f_C1R);
ZEB_EXPORT(zebiErodeBorder_32f_C3R);
ZEB_EXPORT(zebiErodeBorder_32f_C4R);
ZEB_EXPORT(zebiDilateBorderReplicate_8u_C1R);
ZEB_EXPORT(zebiDilateBorderReplicate_8u_C3R);
ZEB_EXPORT(zebiDilateBorderReplicate_8u_C4R);
ZEB_EXPORT(zebiDilateBorderReplicate_32f_C1R);
ZEB_EXPORT(zebiDilateBorderReplicate_32f_C3R);
ZEB_EXPORT(zebiDilateBorderReplicate_32f_C4R);
ZEB_EXPORT(zebiErodeBorderReplicate_8u_C1R);
ZEB_EXPORT(zebiErodeBorderReplicate_8u_C3R);
ZEB_EXPORT(zebiErodeBorderReplicate_8u_C4R);
ZEB_EXPORT(zebiErodeBorderReplicate_32f_C1R);
ZEB_EXPORT(zebiErodeBorderReplicate_32f_C3R);
ZEB_EXPORT(zebiErodeBorderReplicate_32f_C4R);
#endif  // HWY_ONCE
