// SPDX-License-Identifier: Apache-2.0
// Grey-scale dilation and erosion with a structuring element of values:
// state size, construction and release, and the 8u and 32f filters.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "morph/gray_morph_kernels.inl"
#include <hwy/foreach_target.h>  // IWYU pragma: keep
#include <hwy/highway.h>

#include "morph/gray_morph_kernels.inl"

#if HWY_ONCE
#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "core/border.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "core/simd_dispatch.h"

namespace zeb::impl {
namespace {

// Consecutive mask rows that keep the same columns with the same values
// form a group: their source rows are first reduced to one row by the
// column extreme (exact, as the offset is monotonic), and the group's
// elements are applied to that row once. A flat rectangle is one group.
//
// The state, from its first 32-byte boundary: this header, then (each on a
// 64-byte boundary) the kept elements of each group's first row (their row
// field is the group), the first mask row of each group and one past the
// last, two row pointers per mask row, one bordered source row of
// maxWidth + mw - 1 samples per mask row (a ring: source row r lives in
// slot (r + ay) mod mh), and as many scratch rows for the groups.
struct GrayHeader {
    int32_t type;  // zeb8u or zeb32f
    int32_t maxWidth;
    int32_t mw, mh, ax, ay;
    int32_t count;   // kept elements
    int32_t groups;  // row groups
};

struct Layout {
    GrayHeader* hdr;
    GrayElem* elems;
    int32_t* groupStart;
    const void** rows;
    unsigned char* ring;
    unsigned char* scratch;
    std::size_t ringRow;  // bytes per ring row, a multiple of 64
};

std::size_t ring_row_bytes(int32_t maxWidth, int32_t mw, std::size_t elem) {
    return ((std::size_t(maxWidth) + std::size_t(mw) - 1) * elem + 63) & ~std::size_t(63);
}

Layout layout(void* state, int32_t maxWidth, int32_t mw, int32_t mh, std::size_t elem) {
    unsigned char* base = align_up(static_cast<unsigned char*>(state), 32);
    Carver c(base + sizeof(GrayHeader));
    Layout l;
    l.hdr = reinterpret_cast<GrayHeader*>(base);
    l.elems = c.take<GrayElem>(std::size_t(mw) * std::size_t(mh));
    l.groupStart = c.take<int32_t>(std::size_t(mh) + 1);
    l.rows = c.take<const void*>(2 * std::size_t(mh));
    l.ringRow = ring_row_bytes(maxWidth, mw, elem);
    l.ring = c.take<unsigned char>(l.ringRow * std::size_t(mh));
    l.scratch = c.take<unsigned char>(l.ringRow * std::size_t(mh));
    return l;
}

// Bytes of a state, as layout() carves it: 32 for the alignment of the
// start, the header, and 64 bytes of slack before each array.
int64_t state_bytes(int32_t maxWidth, ZebiSize mask, std::size_t elem) {
    const int64_t n = int64_t(mask.width) * mask.height;  // < 2^62
    if (n > std::numeric_limits<int32_t>::max()) return -1;
    const int64_t rowBytes = int64_t(ring_row_bytes(maxWidth, mask.width, elem));
    int64_t ring = 0;
    if (__builtin_mul_overflow(rowBytes, int64_t(mask.height), &ring) || ring > (int64_t(1) << 40)) return -1;
    return 32 + int64_t(sizeof(GrayHeader)) + 64 + n * int64_t(sizeof(GrayElem)) + 64 + 4 * (int64_t(mask.height) + 1) +
           64 + 16 * int64_t(mask.height) + 64 + ring + 64 + ring;
}

template <class V>
constexpr std::size_t sample_size() {
    return std::is_same_v<V, Zeb32f> ? sizeof(Zeb32f) : sizeof(Zeb8u);
}

template <class V>
ZebStatus get_size(int roiWidth, const V* mask, ZebiSize maskSize, int* size) {
    if (any_null(mask, size)) return zebStsNullPtrErr;
    if (roiWidth < 1 || maskSize.width < 1 || maskSize.height < 1) return zebStsSizeErr;
    const int64_t bytes = state_bytes(roiWidth, maskSize, sample_size<V>());
    return bytes < 0 ? zebStsSizeErr : put_size(bytes, size);
}

// Element values: Zeb32s for 8u, Zeb32f for 32f. 8u values of -255 or
// less never change a saturated result and are dropped, as are 32f
// values of -infinity; 8u offsets beyond 255 saturate alike.
template <class V>
ZebStatus init(int roiWidth, const V* mask, ZebiSize maskSize, ZebiPoint anchor, void* state) {
    if (any_null(mask, state)) return zebStsNullPtrErr;
    if (roiWidth < 1 || maskSize.width < 1 || maskSize.height < 1) return zebStsSizeErr;
    if (state_bytes(roiWidth, maskSize, sample_size<V>()) < 0 ||
        state_bytes(roiWidth, maskSize, sample_size<V>()) > std::numeric_limits<int32_t>::max())
        return zebStsSizeErr;
    if (anchor.x < 0 || anchor.x >= maskSize.width || anchor.y < 0 || anchor.y >= maskSize.height)
        return zebStsAnchorErr;
    const Layout l = layout(state, roiWidth, maskSize.width, maskSize.height, sample_size<V>());
    auto at = [&](int i, int j) { return mask[std::size_t(j) * std::size_t(maskSize.width) + std::size_t(i)]; };
    auto keep = [](V v) {
        if constexpr (std::is_same_v<V, Zeb32f>) return v != -std::numeric_limits<float>::infinity();
        else return v > -255;
    };
    // Two rows act alike when they keep the same columns with the same
    // offsets (8u values beyond 255 act as 255).
    auto same_row = [&](int j, int k) {
        for (int i = 0; i < maskSize.width; ++i) {
            const V a = at(i, j), b = at(i, k);
            if (keep(a) != keep(b)) return false;
            if constexpr (std::is_same_v<V, Zeb32f>) {
                if (keep(a) && std::memcmp(&a, &b, sizeof a) != 0) return false;
            } else {
                if (keep(a) && std::min(a, Zeb32s(255)) != std::min(b, Zeb32s(255))) return false;
            }
        }
        return true;
    };
    int32_t count = 0, groups = 0;
    for (int j = 0; j < maskSize.height; ++j) {
        if (j > 0 && same_row(j, j - 1)) continue;
        l.groupStart[groups] = j;
        for (int i = 0; i < maskSize.width; ++i) {
            const V v = at(i, j);
            if (!keep(v)) continue;
            GrayElem e{groups, i, 0.f, 0, 0, {0, 0}};
            if constexpr (std::is_same_v<V, Zeb32f>) {
                e.value = v;
            } else {
                const int c = std::min(v, Zeb32s(255));
                e.add = uint8_t(c > 0 ? c : 0);
                e.sub = uint8_t(c < 0 ? -c : 0);
            }
            l.elems[count++] = e;
        }
        ++groups;
    }
    l.groupStart[groups] = maskSize.height;
    *l.hdr = GrayHeader{std::is_same_v<V, Zeb32f> ? int32_t(zeb32f) : int32_t(zeb8u), roiWidth, maskSize.width,
                        maskSize.height, anchor.x, anchor.y, count, groups};
    return zebStsNoErr;
}

template <class V>
ZebStatus init_alloc(int roiWidth, const V* mask, ZebiSize maskSize, ZebiPoint anchor, ZebiMorphGrayState** state) {
    if (any_null(mask, state)) return zebStsNullPtrErr;
    int bytes = 0;
    if (ZebStatus s = get_size(roiWidth, mask, maskSize, &bytes)) return s;
    if (anchor.x < 0 || anchor.x >= maskSize.width || anchor.y < 0 || anchor.y >= maskSize.height)
        return zebStsAnchorErr;
    void* p = alloc(bytes);
    if (!p) return zebStsMemAllocErr;
    (void)init(roiWidth, mask, maskSize, anchor, p);
    *state = static_cast<ZebiMorphGrayState*>(p);
    return zebStsNoErr;
}

template <class T, bool kDil>
ZebStatus filter(const T* src, int ss, T* dst, int ds, ZebiSize roi, ZebiBorderType bt, ZebiMorphGrayState* state) {
    if (any_null(src, dst, state)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    const StepReq rs = req<T>(ss, roi.width), rd = req<T>(ds, roi.width);
    if (ZebStatus s = first_error({min_steps({rs, rd}), even_steps({rs, rd})})) return s;
    const int32_t mode = bt & 0xf;
    if (mode != border::kRepl && mode != border::kInMem) return zebStsBorderErr;
    const GrayHeader h = *align_up(reinterpret_cast<const GrayHeader*>(state), 32);
    if (roi.width > h.maxWidth) return zebStsBadArgErr;

    const Layout l = layout(state, h.maxWidth, h.mw, h.mh, sizeof(T));
    const border::Spec spec = border::decode(mode == border::kInMem ? border::kInMem : border::kRepl);
    const int left = h.ax, right = h.mw - 1 - h.ax;
    auto slot = [&](int r) { return reinterpret_cast<T*>(l.ring + l.ringRow * std::size_t((r + h.ay) % h.mh)); };
    auto fill = [&](int r) {
        const T* s = border::source_row(src, ss, r, roi.height, spec);
        border::extend_row(s, roi.width, 1, left, right, spec, static_cast<const T*>(nullptr), slot(r));
    };
    const T start = kDil ? std::numeric_limits<T>::lowest() : std::numeric_limits<T>::max();
    const T init = std::is_same_v<T, float> ? (kDil ? -std::numeric_limits<float>::infinity()
                                                    : std::numeric_limits<float>::infinity())
                                            : start;
    const auto kernel = ZEB_DISPATCH(graymorph::filter_row<T, kDil>);
    const auto reduce = ZEB_DISPATCH(graymorph::column_extreme<T, kDil>);
    const T** src_rows = reinterpret_cast<const T**>(l.rows);
    const T** group_rows = src_rows + h.mh;
    const bool inMem = mode == border::kInMem;
    // Single-row groups read bordered copies of the source rows from the
    // ring (rows -ay .. mh - 2 - ay first; each output row adds the next
    // one). Groups of several rows reduce the source rows straight into
    // their scratch row: over the bordered width when the border is in
    // memory, else over the ROI with the edge columns replicated after.
    bool ring = false;
    for (int g = 0; g < h.groups; ++g) ring |= l.groupStart[g + 1] - l.groupStart[g] == 1;
    if (ring)
        for (int r = -h.ay; r < h.mh - 1 - h.ay; ++r) fill(r);
    for (int y = 0; y < roi.height; ++y) {
        if (ring) fill(y - h.ay + h.mh - 1);
        for (int g = 0; g < h.groups; ++g) {
            const int j0 = l.groupStart[g], n = l.groupStart[g + 1] - j0;
            if (n == 1) {
                group_rows[g] = slot(y - h.ay + j0);
                continue;
            }
            T* s = reinterpret_cast<T*>(l.scratch + l.ringRow * std::size_t(g));
            for (int k = 0; k < n; ++k) {
                const T* r = border::source_row(src, ss, y - h.ay + j0 + k, roi.height, spec);
                src_rows[k] = inMem ? r - left : r;
            }
            if (inMem) {
                reduce(src_rows, n, s, roi.width + h.mw - 1);
            } else {
                reduce(src_rows, n, s + left, roi.width);
                for (int x = 0; x < left; ++x) s[x] = s[left];
                for (int x = 0; x < right; ++x) s[left + roi.width + x] = s[left + roi.width - 1];
            }
            group_rows[g] = s;
        }
        kernel(group_rows, l.elems, h.count, init, row(dst, ds, y), roi.width);
    }
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiMorphGrayGetSize_8u_C1R(int roiWidth, const Zeb32s* mask, ZebiSize maskSize, int* size) {
    return get_size(roiWidth, mask, maskSize, size);
}
ZebStatus zebiMorphGrayGetSize_32f_C1R(int roiWidth, const Zeb32f* mask, ZebiSize maskSize, int* size) {
    return get_size(roiWidth, mask, maskSize, size);
}
ZebStatus zebiMorphGrayInit_8u_C1R(int roiWidth, const Zeb32s* mask, ZebiSize maskSize, ZebiPoint anchor,
                                   ZebiMorphGrayState* state) {
    return init(roiWidth, mask, maskSize, anchor, state);
}
ZebStatus zebiMorphGrayInit_32f_C1R(int roiWidth, const Zeb32f* mask, ZebiSize maskSize, ZebiPoint anchor,
                                    ZebiMorphGrayState* state) {
    return init(roiWidth, mask, maskSize, anchor, state);
}
ZebStatus zebiMorphGrayInitAlloc_8u_C1R(int roiWidth, const Zeb32s* mask, ZebiSize maskSize, ZebiPoint anchor,
                                        ZebiMorphGrayState** state) {
    return init_alloc(roiWidth, mask, maskSize, anchor, state);
}
ZebStatus zebiMorphGrayInitAlloc_32f_C1R(int roiWidth, const Zeb32f* mask, ZebiSize maskSize, ZebiPoint anchor,
                                         ZebiMorphGrayState** state) {
    return init_alloc(roiWidth, mask, maskSize, anchor, state);
}
ZebStatus zebiMorphGrayFree_8u_C1R(ZebiMorphGrayState* state) { return free_state(state); }
ZebStatus zebiMorphGrayFree_32f_C1R(ZebiMorphGrayState* state) { return free_state(state); }

ZebStatus zebiGrayDilateBorder_8u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                      ZebiMorphGrayState* state) {
    return filter<Zeb8u, true>(src, ss, dst, ds, roi, bt, state);
}
ZebStatus zebiGrayDilateBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                       ZebiBorderType bt, ZebiMorphGrayState* state) {
    return filter<Zeb32f, true>(src, ss, dst, ds, roi, bt, state);
}
ZebStatus zebiGrayErodeBorder_8u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, ZebiBorderType bt,
                                     ZebiMorphGrayState* state) {
    return filter<Zeb8u, false>(src, ss, dst, ds, roi, bt, state);
}
ZebStatus zebiGrayErodeBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                      ZebiBorderType bt, ZebiMorphGrayState* state) {
    return filter<Zeb32f, false>(src, ss, dst, ds, roi, bt, state);
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiMorphGrayGetSize_8u_C1R);
ZEB_EXPORT(zebiMorphGrayGetSize_32f_C1R);
ZEB_EXPORT(zebiMorphGrayInit_8u_C1R);
ZEB_EXPORT(zebiMorphGrayInit_32f_C1R);
ZEB_EXPORT(zebiMorphGrayInitAlloc_8u_C1R);
ZEB_EXPORT(zebiMorphGrayInitAlloc_32f_C1R);
ZEB_EXPORT(zebiMorphGrayFree_8u_C1R);
ZEB_EXPORT(zebiMorphGrayFree_32f_C1R);
ZEB_EXPORT(zebiGrayDilateBorder_8u_C1R);
ZEB_EXPORT(zebiGrayDilateBorder_32f_C1R);
ZEB_EXPORT(zebiGrayErodeBorder_8u_C1R);
ZEB_EXPORT(zebiGrayErodeBorder_32f_C1R);
#endif  // HWY_ONCE
