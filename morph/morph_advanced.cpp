// SPDX-License-Identifier: Apache-2.0
// Opening, closing, top-hat, black-hat and morphological gradient, run as
// dilations and erosions of one mask in sequence, with their state sizes,
// construction and release.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "morph/morph_advanced_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "morph/morph_advanced_kernels.inl"

#if HWY_ONCE
#include <cstring>

#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

// The dilation and erosion entries this file runs.
namespace zeb::impl {
decltype(::zebiDilateBorder_1u_C1R) zebiDilateBorder_1u_C1R;
decltype(::zebiDilateBorder_8u_C1R) zebiDilateBorder_8u_C1R;
decltype(::zebiDilateBorder_8u_C3R) zebiDilateBorder_8u_C3R;
decltype(::zebiDilateBorder_8u_C4R) zebiDilateBorder_8u_C4R;
decltype(::zebiDilateBorder_16u_C1R) zebiDilateBorder_16u_C1R;
decltype(::zebiDilateBorder_16s_C1R) zebiDilateBorder_16s_C1R;
decltype(::zebiDilateBorder_32f_C1R) zebiDilateBorder_32f_C1R;
decltype(::zebiDilateBorder_32f_C3R) zebiDilateBorder_32f_C3R;
decltype(::zebiDilateBorder_32f_C4R) zebiDilateBorder_32f_C4R;
decltype(::zebiErodeBorder_1u_C1R) zebiErodeBorder_1u_C1R;
decltype(::zebiErodeBorder_8u_C1R) zebiErodeBorder_8u_C1R;
decltype(::zebiErodeBorder_8u_C3R) zebiErodeBorder_8u_C3R;
decltype(::zebiErodeBorder_8u_C4R) zebiErodeBorder_8u_C4R;
decltype(::zebiErodeBorder_16u_C1R) zebiErodeBorder_16u_C1R;
decltype(::zebiErodeBorder_16s_C1R) zebiErodeBorder_16s_C1R;
decltype(::zebiErodeBorder_32f_C1R) zebiErodeBorder_32f_C1R;
decltype(::zebiErodeBorder_32f_C3R) zebiErodeBorder_32f_C3R;
decltype(::zebiErodeBorder_32f_C4R) zebiErodeBorder_32f_C4R;
decltype(::zebiMorphologyBorderGetSize_1u_C1R) zebiMorphologyBorderGetSize_1u_C1R;
decltype(::zebiMorphologyBorderGetSize_8u_C1R) zebiMorphologyBorderGetSize_8u_C1R;
decltype(::zebiMorphologyBorderGetSize_8u_C3R) zebiMorphologyBorderGetSize_8u_C3R;
decltype(::zebiMorphologyBorderGetSize_8u_C4R) zebiMorphologyBorderGetSize_8u_C4R;
decltype(::zebiMorphologyBorderGetSize_16u_C1R) zebiMorphologyBorderGetSize_16u_C1R;
decltype(::zebiMorphologyBorderGetSize_16s_C1R) zebiMorphologyBorderGetSize_16s_C1R;
decltype(::zebiMorphologyBorderGetSize_32f_C1R) zebiMorphologyBorderGetSize_32f_C1R;
decltype(::zebiMorphologyBorderGetSize_32f_C3R) zebiMorphologyBorderGetSize_32f_C3R;
decltype(::zebiMorphologyBorderGetSize_32f_C4R) zebiMorphologyBorderGetSize_32f_C4R;
decltype(::zebiMorphologyBorderInit_1u_C1R) zebiMorphologyBorderInit_1u_C1R;
decltype(::zebiMorphologyBorderInit_8u_C1R) zebiMorphologyBorderInit_8u_C1R;
decltype(::zebiMorphologyBorderInit_8u_C3R) zebiMorphologyBorderInit_8u_C3R;
decltype(::zebiMorphologyBorderInit_8u_C4R) zebiMorphologyBorderInit_8u_C4R;
decltype(::zebiMorphologyBorderInit_16u_C1R) zebiMorphologyBorderInit_16u_C1R;
decltype(::zebiMorphologyBorderInit_16s_C1R) zebiMorphologyBorderInit_16s_C1R;
decltype(::zebiMorphologyBorderInit_32f_C1R) zebiMorphologyBorderInit_32f_C1R;
decltype(::zebiMorphologyBorderInit_32f_C3R) zebiMorphologyBorderInit_32f_C3R;
decltype(::zebiMorphologyBorderInit_32f_C4R) zebiMorphologyBorderInit_32f_C4R;
}  // namespace zeb::impl

namespace zeb::impl {
namespace {

// One pixel layout: sample type T, kCh interleaved channels, or (kBits)
// one bit per pixel packed eight to a byte, most significant bit first.
// BV is how the dilation and erosion take their border value.
template <class T, int kCh, bool kBits, class BV>
struct Member {
    using Op = ZebStatus (*)(const T*, int, T*, int, ZebiSize, ZebiBorderType, BV, const ZebiMorphState*, Zeb8u*);
    static constexpr int kChannels = kCh;
    static constexpr bool kIsBits = kBits;
    Op dilate, erode;
    ZebStatus (*getSize)(int, ZebiSize, int*, int*);
    ZebStatus (*init)(int, const Zeb8u*, ZebiSize, ZebiMorphState*, Zeb8u*);

    // Bytes of a row of w pixels.
    static int64_t row_bytes(int64_t w) { return kBits ? (w + 7) / 8 : w * kCh * int64_t(sizeof(T)); }
    // Columns the in-memory intermediate image reaches left of the ROI:
    // the anchor's, rounded up to whole bytes for bit images.
    static int left_margin(int ax) { return kBits ? (ax + 7) / 8 * 8 : ax; }
    // The sample at pixel column x (a multiple of 8 for bit images).
    static const T* at(const T* p, int step, int x, int y) {
        return row(p, step, y) + (kBits ? x / 8 : std::ptrdiff_t(x) * kCh);
    }
    static T* at(T* p, int step, int x, int y) { return const_cast<T*>(at(static_cast<const T*>(p), step, x, y)); }
    // The width the dilation and erosion states are made for: bit images
    // take at least 8, so that the in-memory intermediate image can be
    // made in strips that start on whole bytes.
    static int state_width(int w) { return kBits && w < 8 ? 8 : w; }
};

// The state: this header (unaligned, 32 bytes), then two prepared
// dilation/erosion states of the same mask, specBytes each.
struct AdvHeader {
    int32_t width, height;  // the largest ROI served
    int32_t mw, mh, ax, ay;
    int32_t specBytes;
    int32_t bufBytes;  // the dilation/erosion work-buffer size
};
static_assert(sizeof(AdvHeader) == 32);

int64_t r32(int64_t n) { return (n + 31) & ~int64_t(31); }

// Room for the intermediate image with the rows and columns the mask
// reaches around the ROI (bit images: up to 7 more columns on the left).
template <class M>
int64_t intermediate_bytes(ZebiSize roi, ZebiSize mask) {
    const int64_t w = int64_t(roi.width) + mask.width - 1 + (M::kIsBits ? 7 : 0);
    return r32(M::row_bytes(w)) * (int64_t(roi.height) + mask.height - 1);
}

template <class M>
ZebStatus get_size(const M& m, ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    if (any_null(specSize, bufSize)) return zebStsNullPtrErr;
    if (bad_roi(roi) || mask.width < 1 || mask.height < 1) return zebStsSizeErr;
    int s = 0, b = 0;
    if (ZebStatus st = m.getSize(M::state_width(roi.width), mask, &s, &b)) return st;
    const int64_t spec = 2 * int64_t(s) + 32, buf = 2 * int64_t(b) + intermediate_bytes<M>(roi, mask);
    if (spec > INT32_MAX || buf > INT32_MAX) return zebStsSizeErr;
    *specSize = int32_t(spec);
    *bufSize = int32_t(buf);
    return zebStsNoErr;
}

template <class M>
ZebStatus init(const M& m, ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec, Zeb8u* buf) {
    if (any_null(mask, spec, buf)) return zebStsNullPtrErr;
    int specBytes = 0, bufBytes = 0;
    if (ZebStatus st = get_size(m, roi, maskSize, &specBytes, &bufBytes)) return st;
    int s = 0, b = 0;
    (void)m.getSize(M::state_width(roi.width), maskSize, &s, &b);
    auto* base = reinterpret_cast<unsigned char*>(spec);
    const int sw = M::state_width(roi.width);
    if (ZebStatus st = m.init(sw, mask, maskSize, reinterpret_cast<ZebiMorphState*>(base + 32), buf)) return st;
    (void)m.init(sw, mask, maskSize, reinterpret_cast<ZebiMorphState*>(base + 32 + s), buf);
    const AdvHeader h{roi.width, roi.height, maskSize.width, maskSize.height, (maskSize.width - 1) / 2,
                      (maskSize.height - 1) / 2, s, b};
    std::memcpy(base, &h, sizeof h);
    return zebStsNoErr;
}

template <class M>
ZebStatus init_alloc(const M& m, ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState** spec) {
    if (any_null(mask, spec)) return zebStsNullPtrErr;
    int specBytes = 0, bufBytes = 0;
    if (ZebStatus st = get_size(m, roi, maskSize, &specBytes, &bufBytes)) return st;
    void* p = alloc(specBytes);
    if (!p) return zebStsMemAllocErr;
    // Preparing a state reads no work buffer; the block itself stands in
    // for the non-null buffer pointer the preparation asks for.
    (void)init(m, roi, mask, maskSize, static_cast<ZebiMorphAdvState*>(p), static_cast<Zeb8u*>(p));
    *spec = static_cast<ZebiMorphAdvState*>(p);
    return zebStsNoErr;
}

enum class Kind { Open, Close, Tophat, Blackhat, Gradient };

template <class T, int kCh, bool kBits>
void subtract(const T* a, int as, T* d, int ds, int w, int h, bool aFirst) {
    if constexpr (kBits) {
        if (aFirst) ZEB_DISPATCH(morphadv::subtract_bits<true>)(a, as, d, ds, w, h);
        else ZEB_DISPATCH(morphadv::subtract_bits<false>)(a, as, d, ds, w, h);
    } else {
        if (aFirst) ZEB_DISPATCH(morphadv::subtract<T, true>)(a, as, d, ds, w * kCh, h);
        else ZEB_DISPATCH(morphadv::subtract<T, false>)(a, as, d, ds, w * kCh, h);
    }
}

template <class M, class T, class BV>
ZebStatus run(const M& m, Kind kind, const T* src, int ss, T* dst, int ds, ZebiSize roi, ZebiBorderType bt, BV bv,
              const ZebiMorphAdvState* spec, Zeb8u* buf) {
    constexpr bool kArray = std::is_pointer_v<BV>;
    if (any_null(src, dst, spec, buf)) return zebStsNullPtrErr;
    if constexpr (kArray)
        if (bv == nullptr) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const int64_t rowBytes = M::row_bytes(roi.width);
    const StepReq rs{ss, rowBytes, int32_t(sizeof(T))}, rd{ds, rowBytes, int32_t(sizeof(T))};
    if (ZebStatus s = first_error({min_steps({rs, rd}), even_steps({rs, rd})})) return s;
    const int32_t mode = bt & 0xf;
    if (mode != 1 && mode != 6) return zebStsBorderErr;
    AdvHeader h;
    std::memcpy(&h, spec, sizeof h);
    if (roi.width > h.width || roi.height > h.height) return zebStsBadArgErr;

    const auto* base = reinterpret_cast<const unsigned char*>(spec);
    const auto* dilState = reinterpret_cast<const ZebiMorphState*>(base + 32);
    const auto* eroState = reinterpret_cast<const ZebiMorphState*>(base + 32 + h.specBytes);
    Zeb8u* work = buf;
    T* tmp = reinterpret_cast<T*>(align_up(buf + h.bufBytes, 32));

    if (kind == Kind::Gradient) {
        const int ts = int(r32(M::row_bytes(roi.width)));
        (void)m.dilate(src, ss, dst, ds, roi, bt, bv, dilState, work);
        (void)m.erode(src, ss, tmp, ts, roi, bt, bv, eroState, work);
        subtract<T, M::kChannels, M::kIsBits>(tmp, ts, dst, ds, roi.width, roi.height, false);
        return zebStsNoErr;
    }
    const bool openFirst = kind == Kind::Open || kind == Kind::Tophat;
    const auto first = openFirst ? m.erode : m.dilate;
    const auto second = openFirst ? m.dilate : m.erode;
    const ZebiMorphState* firstState = openFirst ? eroState : dilState;
    const ZebiMorphState* secondState = openFirst ? dilState : eroState;
    if (mode == 1) {
        // The second operation replicates the intermediate's own edges.
        const int ts = int(r32(M::row_bytes(roi.width)));
        (void)first(src, ss, tmp, ts, roi, bt, bv, firstState, work);
        (void)second(tmp, ts, dst, ds, roi, bt, bv, secondState, work);
    } else {
        // In memory: the intermediate covers every pixel the second
        // operation reads around the ROI, made from the source pixels
        // around it, in column strips no wider than the states serve.
        const int lx = M::left_margin(h.ax), rx = h.mw - 1 - h.ax;
        const int iw = lx + roi.width + rx, ih = roi.height + h.mh - 1;
        const int ts = int(r32(M::row_bytes(iw)));
        const int sw = M::state_width(h.width), strip = M::kIsBits ? sw / 8 * 8 : sw;
        for (int x = 0; x < iw; x += strip) {
            const int w = iw - x < strip ? iw - x : strip;
            (void)first(M::at(src, ss, x - lx, -h.ay), ss, M::at(tmp, ts, x, 0), ts, {w, ih}, bt, bv, firstState,
                        work);
        }
        (void)second(M::at(static_cast<const T*>(tmp), ts, lx, h.ay), ts, dst, ds, roi, bt, bv, secondState, work);
    }
    if (kind == Kind::Tophat) subtract<T, M::kChannels, M::kIsBits>(src, ss, dst, ds, roi.width, roi.height, true);
    if (kind == Kind::Blackhat) subtract<T, M::kChannels, M::kIsBits>(src, ss, dst, ds, roi.width, roi.height, false);
    return zebStsNoErr;
}

const Member<Zeb8u, 1, true, Zeb8u> k1uC1R{zebiDilateBorder_1u_C1R, zebiErodeBorder_1u_C1R,
                                           zebiMorphologyBorderGetSize_1u_C1R, zebiMorphologyBorderInit_1u_C1R};
const Member<Zeb8u, 1, false, Zeb8u> k8uC1R{zebiDilateBorder_8u_C1R, zebiErodeBorder_8u_C1R,
                                            zebiMorphologyBorderGetSize_8u_C1R, zebiMorphologyBorderInit_8u_C1R};
const Member<Zeb8u, 3, false, const Zeb8u*> k8uC3R{zebiDilateBorder_8u_C3R, zebiErodeBorder_8u_C3R,
                                                   zebiMorphologyBorderGetSize_8u_C3R,
                                                   zebiMorphologyBorderInit_8u_C3R};
const Member<Zeb8u, 4, false, const Zeb8u*> k8uC4R{zebiDilateBorder_8u_C4R, zebiErodeBorder_8u_C4R,
                                                   zebiMorphologyBorderGetSize_8u_C4R,
                                                   zebiMorphologyBorderInit_8u_C4R};
const Member<Zeb16u, 1, false, Zeb16u> k16uC1R{zebiDilateBorder_16u_C1R, zebiErodeBorder_16u_C1R,
                                               zebiMorphologyBorderGetSize_16u_C1R, zebiMorphologyBorderInit_16u_C1R};
const Member<Zeb16s, 1, false, Zeb16s> k16sC1R{zebiDilateBorder_16s_C1R, zebiErodeBorder_16s_C1R,
                                               zebiMorphologyBorderGetSize_16s_C1R, zebiMorphologyBorderInit_16s_C1R};
const Member<Zeb32f, 1, false, Zeb32f> k32fC1R{zebiDilateBorder_32f_C1R, zebiErodeBorder_32f_C1R,
                                               zebiMorphologyBorderGetSize_32f_C1R, zebiMorphologyBorderInit_32f_C1R};
const Member<Zeb32f, 3, false, const Zeb32f*> k32fC3R{zebiDilateBorder_32f_C3R, zebiErodeBorder_32f_C3R,
                                                      zebiMorphologyBorderGetSize_32f_C3R,
                                                      zebiMorphologyBorderInit_32f_C3R};
const Member<Zeb32f, 4, false, const Zeb32f*> k32fC4R{zebiDilateBorder_32f_C4R, zebiErodeBorder_32f_C4R,
                                                      zebiMorphologyBorderGetSize_32f_C4R,
                                                      zebiMorphologyBorderInit_32f_C4R};

}  // namespace

ZebStatus zebiMorphAdvGetSize_1u_C1R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k1uC1R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_1u_C1R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                  Zeb8u* buf) {
    return init(k1uC1R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphOpenBorder_1u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                     Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k1uC1R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_1u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                      Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k1uC1R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_1u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                       Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k1uC1R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_1u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                         ZebiBorderType bt, Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k1uC1R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_1u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                         ZebiBorderType bt, Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k1uC1R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvGetSize_8u_C1R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k8uC1R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_8u_C1R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                  Zeb8u* buf) {
    return init(k8uC1R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphAdvInitAlloc_8u_C1R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState** spec) {
    return init_alloc(k8uC1R, roi, mask, maskSize, spec);
}
ZebStatus zebiMorphOpenBorder_8u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                     Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC1R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_8u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                      Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC1R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_8u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                       Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC1R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_8u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                         ZebiBorderType bt, Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC1R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_8u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                         ZebiBorderType bt, Zeb8u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC1R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvGetSize_8u_C3R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k8uC3R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_8u_C3R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                  Zeb8u* buf) {
    return init(k8uC3R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphAdvInitAlloc_8u_C3R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState** spec) {
    return init_alloc(k8uC3R, roi, mask, maskSize, spec);
}
ZebStatus zebiMorphOpenBorder_8u_C3R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                     const Zeb8u* bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC3R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_8u_C3R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                      const Zeb8u* bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC3R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_8u_C3R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                       const Zeb8u* bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC3R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_8u_C3R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                         ZebiBorderType bt, const Zeb8u* bv, const ZebiMorphAdvState* spec,
                                         Zeb8u* buf) {
    return run(k8uC3R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_8u_C3R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                         ZebiBorderType bt, const Zeb8u* bv, const ZebiMorphAdvState* spec,
                                         Zeb8u* buf) {
    return run(k8uC3R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvGetSize_8u_C4R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k8uC4R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_8u_C4R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                  Zeb8u* buf) {
    return init(k8uC4R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphAdvInitAlloc_8u_C4R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState** spec) {
    return init_alloc(k8uC4R, roi, mask, maskSize, spec);
}
ZebStatus zebiMorphOpenBorder_8u_C4R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                     const Zeb8u* bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC4R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_8u_C4R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                      const Zeb8u* bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC4R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_8u_C4R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                       const Zeb8u* bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k8uC4R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_8u_C4R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                         ZebiBorderType bt, const Zeb8u* bv, const ZebiMorphAdvState* spec,
                                         Zeb8u* buf) {
    return run(k8uC4R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_8u_C4R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                         ZebiBorderType bt, const Zeb8u* bv, const ZebiMorphAdvState* spec,
                                         Zeb8u* buf) {
    return run(k8uC4R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvGetSize_16u_C1R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k16uC1R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_16u_C1R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                   Zeb8u* buf) {
    return init(k16uC1R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphOpenBorder_16u_C1R(const Zeb16u* src, int ss, Zeb16u* dst, int ds, ZebiSize roi,
                                      ZebiBorderType bt, Zeb16u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16uC1R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_16u_C1R(const Zeb16u* src, int ss, Zeb16u* dst, int ds, ZebiSize roi,
                                       ZebiBorderType bt, Zeb16u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16uC1R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_16u_C1R(const Zeb16u* src, int ss, Zeb16u* dst, int ds, ZebiSize roi,
                                        ZebiBorderType bt, Zeb16u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16uC1R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_16u_C1R(const Zeb16u* src, int ss, Zeb16u* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, Zeb16u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16uC1R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_16u_C1R(const Zeb16u* src, int ss, Zeb16u* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, Zeb16u bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16uC1R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvGetSize_16s_C1R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k16sC1R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_16s_C1R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                   Zeb8u* buf) {
    return init(k16sC1R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphOpenBorder_16s_C1R(const Zeb16s* src, int ss, Zeb16s* dst, int ds, ZebiSize roi,
                                      ZebiBorderType bt, Zeb16s bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16sC1R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_16s_C1R(const Zeb16s* src, int ss, Zeb16s* dst, int ds, ZebiSize roi,
                                       ZebiBorderType bt, Zeb16s bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16sC1R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_16s_C1R(const Zeb16s* src, int ss, Zeb16s* dst, int ds, ZebiSize roi,
                                        ZebiBorderType bt, Zeb16s bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16sC1R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_16s_C1R(const Zeb16s* src, int ss, Zeb16s* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, Zeb16s bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16sC1R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_16s_C1R(const Zeb16s* src, int ss, Zeb16s* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, Zeb16s bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k16sC1R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvGetSize_32f_C1R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k32fC1R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_32f_C1R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                   Zeb8u* buf) {
    return init(k32fC1R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphAdvInitAlloc_32f_C1R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize,
                                        ZebiMorphAdvState** spec) {
    return init_alloc(k32fC1R, roi, mask, maskSize, spec);
}
ZebStatus zebiMorphOpenBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                      ZebiBorderType bt, Zeb32f bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k32fC1R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                       ZebiBorderType bt, Zeb32f bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k32fC1R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                        ZebiBorderType bt, Zeb32f bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k32fC1R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, Zeb32f bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k32fC1R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, Zeb32f bv, const ZebiMorphAdvState* spec, Zeb8u* buf) {
    return run(k32fC1R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvGetSize_32f_C3R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k32fC3R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_32f_C3R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                   Zeb8u* buf) {
    return init(k32fC3R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphAdvInitAlloc_32f_C3R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize,
                                        ZebiMorphAdvState** spec) {
    return init_alloc(k32fC3R, roi, mask, maskSize, spec);
}
ZebStatus zebiMorphOpenBorder_32f_C3R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                      ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                      Zeb8u* buf) {
    return run(k32fC3R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_32f_C3R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                       ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                       Zeb8u* buf) {
    return run(k32fC3R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_32f_C3R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                        ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                        Zeb8u* buf) {
    return run(k32fC3R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_32f_C3R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                          Zeb8u* buf) {
    return run(k32fC3R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_32f_C3R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                          Zeb8u* buf) {
    return run(k32fC3R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvGetSize_32f_C4R(ZebiSize roi, ZebiSize mask, int* specSize, int* bufSize) {
    return get_size(k32fC4R, roi, mask, specSize, bufSize);
}
ZebStatus zebiMorphAdvInit_32f_C4R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize, ZebiMorphAdvState* spec,
                                   Zeb8u* buf) {
    return init(k32fC4R, roi, mask, maskSize, spec, buf);
}
ZebStatus zebiMorphAdvInitAlloc_32f_C4R(ZebiSize roi, const Zeb8u* mask, ZebiSize maskSize,
                                        ZebiMorphAdvState** spec) {
    return init_alloc(k32fC4R, roi, mask, maskSize, spec);
}
ZebStatus zebiMorphOpenBorder_32f_C4R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                      ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                      Zeb8u* buf) {
    return run(k32fC4R, Kind::Open, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphCloseBorder_32f_C4R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                       ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                       Zeb8u* buf) {
    return run(k32fC4R, Kind::Close, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphTophatBorder_32f_C4R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                        ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                        Zeb8u* buf) {
    return run(k32fC4R, Kind::Tophat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphBlackhatBorder_32f_C4R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                          Zeb8u* buf) {
    return run(k32fC4R, Kind::Blackhat, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphGradientBorder_32f_C4R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                          ZebiBorderType bt, const Zeb32f* bv, const ZebiMorphAdvState* spec,
                                          Zeb8u* buf) {
    return run(k32fC4R, Kind::Gradient, src, ss, dst, ds, roi, bt, bv, spec, buf);
}
ZebStatus zebiMorphAdvFree(ZebiMorphAdvState* spec) { return free_state(spec); }

}  // namespace zeb::impl

ZEB_EXPORT(zebiMorphAdvGetSize_1u_C1R);
ZEB_EXPORT(zebiMorphAdvInit_1u_C1R);
ZEB_EXPORT(zebiMorphOpenBorder_1u_C1R);
ZEB_EXPORT(zebiMorphCloseBorder_1u_C1R);
ZEB_EXPORT(zebiMorphTophatBorder_1u_C1R);
ZEB_EXPORT(zebiMorphBlackhatBorder_1u_C1R);
ZEB_EXPORT(zebiMorphGradientBorder_1u_C1R);
ZEB_EXPORT(zebiMorphAdvGetSize_8u_C1R);
ZEB_EXPORT(zebiMorphAdvInit_8u_C1R);
ZEB_EXPORT(zebiMorphAdvInitAlloc_8u_C1R);
ZEB_EXPORT(zebiMorphOpenBorder_8u_C1R);
ZEB_EXPORT(zebiMorphCloseBorder_8u_C1R);
ZEB_EXPORT(zebiMorphTophatBorder_8u_C1R);
ZEB_EXPORT(zebiMorphBlackhatBorder_8u_C1R);
ZEB_EXPORT(zebiMorphGradientBorder_8u_C1R);
ZEB_EXPORT(zebiMorphAdvGetSize_8u_C3R);
ZEB_EXPORT(zebiMorphAdvInit_8u_C3R);
ZEB_EXPORT(zebiMorphAdvInitAlloc_8u_C3R);
ZEB_EXPORT(zebiMorphOpenBorder_8u_C3R);
ZEB_EXPORT(zebiMorphCloseBorder_8u_C3R);
ZEB_EXPORT(zebiMorphTophatBorder_8u_C3R);
ZEB_EXPORT(zebiMorphBlackhatBorder_8u_C3R);
ZEB_EXPORT(zebiMorphGradientBorder_8u_C3R);
ZEB_EXPORT(zebiMorphAdvGetSize_8u_C4R);
ZEB_EXPORT(zebiMorphAdvInit_8u_C4R);
ZEB_EXPORT(zebiMorphAdvInitAlloc_8u_C4R);
ZEB_EXPORT(zebiMorphOpenBorder_8u_C4R);
ZEB_EXPORT(zebiMorphCloseBorder_8u_C4R);
ZEB_EXPORT(zebiMorphTophatBorder_8u_C4R);
ZEB_EXPORT(zebiMorphBlackhatBorder_8u_C4R);
ZEB_EXPORT(zebiMorphGradientBorder_8u_C4R);
ZEB_EXPORT(zebiMorphAdvGetSize_16u_C1R);
ZEB_EXPORT(zebiMorphAdvInit_16u_C1R);
ZEB_EXPORT(zebiMorphOpenBorder_16u_C1R);
ZEB_EXPORT(zebiMorphCloseBorder_16u_C1R);
ZEB_EXPORT(zebiMorphTophatBorder_16u_C1R);
ZEB_EXPORT(zebiMorphBlackhatBorder_16u_C1R);
ZEB_EXPORT(zebiMorphGradientBorder_16u_C1R);
ZEB_EXPORT(zebiMorphAdvGetSize_16s_C1R);
ZEB_EXPORT(zebiMorphAdvInit_16s_C1R);
ZEB_EXPORT(zebiMorphOpenBorder_16s_C1R);
ZEB_EXPORT(zebiMorphCloseBorder_16s_C1R);
ZEB_EXPORT(zebiMorphTophatBorder_16s_C1R);
ZEB_EXPORT(zebiMorphBlackhatBorder_16s_C1R);
ZEB_EXPORT(zebiMorphGradientBorder_16s_C1R);
ZEB_EXPORT(zebiMorphAdvGetSize_32f_C1R);
ZEB_EXPORT(zebiMorphAdvInit_32f_C1R);
ZEB_EXPORT(zebiMorphAdvInitAlloc_32f_C1R);
ZEB_EXPORT(zebiMorphOpenBorder_32f_C1R);
ZEB_EXPORT(zebiMorphCloseBorder_32f_C1R);
ZEB_EXPORT(zebiMorphTophatBorder_32f_C1R);
ZEB_EXPORT(zebiMorphBlackhatBorder_32f_C1R);
ZEB_EXPORT(zebiMorphGradientBorder_32f_C1R);
ZEB_EXPORT(zebiMorphAdvGetSize_32f_C3R);
ZEB_EXPORT(zebiMorphAdvInit_32f_C3R);
ZEB_EXPORT(zebiMorphAdvInitAlloc_32f_C3R);
ZEB_EXPORT(zebiMorphOpenBorder_32f_C3R);
ZEB_EXPORT(zebiMorphCloseBorder_32f_C3R);
ZEB_EXPORT(zebiMorphTophatBorder_32f_C3R);
ZEB_EXPORT(zebiMorphBlackhatBorder_32f_C3R);
ZEB_EXPORT(zebiMorphGradientBorder_32f_C3R);
ZEB_EXPORT(zebiMorphAdvGetSize_32f_C4R);
ZEB_EXPORT(zebiMorphAdvInit_32f_C4R);
ZEB_EXPORT(zebiMorphAdvInitAlloc_32f_C4R);
ZEB_EXPORT(zebiMorphOpenBorder_32f_C4R);
ZEB_EXPORT(zebiMorphCloseBorder_32f_C4R);
ZEB_EXPORT(zebiMorphTophatBorder_32f_C4R);
ZEB_EXPORT(zebiMorphBlackhatBorder_32f_C4R);
ZEB_EXPORT(zebiMorphGradientBorder_32f_C4R);
ZEB_EXPORT(zebiMorphAdvFree);
#endif  // HWY_ONCE

