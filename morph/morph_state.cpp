// SPDX-License-Identifier: Apache-2.0
// Dilation/erosion states: size queries, preparation in caller memory or in
// an allocated block, release. Preparation copies the mask, records each
// row's selected span, classifies the mask and lists the terms the kernels
// take their extremum over.
#include <algorithm>
#include <climits>

#include "core/checks.h"
#include "core/dispatch.h"
#include "morph/morph_state.h"

namespace zeb::morph {

void build_state(void* block, Kind kind, int ch, int roiWidth, const uint8_t* mask, ZebiSize maskSize,
                 ZebiPoint anchor, int64_t scratch) {
    const int mW = maskSize.width, mH = maskSize.height;
    const int64_t n = int64_t(mW) * mH;
    Header* h = header(block);
    std::memset(h, 0, sizeof(Header));
    h->magic = kMagic;
    h->kind = int32_t(kind);
    h->channels = ch;
    h->maxWidth = roiWidth;
    h->mW = mW, h->mH = mH, h->ax = anchor.x, h->ay = anchor.y;

    // Layout: rows table (first, last, next row with a selection, runs; four
    // int32 per mask row), general terms, run terms, mask copy, own scratch.
    int64_t off = (int64_t(sizeof(Header)) + 7) & ~int64_t(7);
    h->rowsOff = int32_t(off);
    off += 16 * int64_t(mH);
    h->termsOff = int32_t(off);
    Term* terms = at<Term>(h, h->termsOff);
    int32_t* first = at<int32_t>(h, h->rowsOff);
    int32_t* last = first + mH;
    int32_t* nextRow = last + mH;
    int32_t* runs = nextRow + mH;

    int nSel = 0, totalRuns = 0;
    for (int i = 0; i < mH; ++i) {
        first[i] = last[i] = -1;
        runs[i] = 0;
        const uint8_t* mr = mask + int64_t(i) * mW;
        for (int j = 0; j < mW; ++j) {
            if (!mr[j]) continue;
            if (first[i] < 0) first[i] = j;
            last[i] = j;
            terms[nSel++] = Term{i, j};
            if (j == 0 || !mr[j - 1]) ++runs[i];
        }
        totalRuns += runs[i];
    }
    for (int i = mH - 1, nxt = -1; i >= 0; --i) {
        nextRow[i] = nxt;
        if (first[i] >= 0) nxt = i;
    }
    off += 8 * int64_t(nSel);
    off = (off + 7) & ~int64_t(7);
    h->runTermsOff = int32_t(off);

    // Each run of length L is the extremum of two windows of p elements, p
    // the largest power of two not above L (one window when L = p).
    RunTerm* rt = at<RunTerm>(h, h->runTermsOff);
    int nRun = 0, levels = 1;
    for (int i = 0; i < mH; ++i) {
        const uint8_t* mr = mask + int64_t(i) * mW;
        for (int j = 0; j < mW;) {
            if (!mr[j]) {
                ++j;
                continue;
            }
            int e = j;
            while (e < mW && mr[e]) ++e;
            const int len = e - j;
            const int lvl = log2_levels(len) - 1;
            const int p = 1 << lvl;
            levels = std::max(levels, lvl + 1);
            rt[nRun++] = RunTerm{lvl, i, j, 0};
            if (len != p) rt[nRun++] = RunTerm{lvl, i, e - p, 0};
            j = e;
        }
    }
    off += 16 * int64_t(nRun);
    h->maskOff = int32_t(off);
    std::memcpy(at<uint8_t>(h, h->maskOff), mask, std::size_t(n));
    off += n;
    h->scratchOff = int32_t((off + 63) & ~int64_t(63));
    h->scratchBytes = int32_t(scratch);
    h->nSel = nSel;
    h->nRunTerms = nRun;
    h->levels = levels;

    // Classification.
    int firstRow = -1, lastRow = -1;
    bool rect = nSel > 0;
    for (int i = 0; i < mH; ++i) {
        if (first[i] < 0) continue;
        if (firstRow < 0) firstRow = i;
        else if (lastRow != i - 1 || first[i] != first[firstRow] || last[i] != last[firstRow]) rect = false;
        lastRow = i;
        if (runs[i] != 1) rect = false;
    }
    if (nSel == 0) {
        h->klass = kEmpty;
    } else if (rect) {
        h->klass = kRect;
        h->rx = first[firstRow] - anchor.x;
        h->ry = firstRow - anchor.y;
        h->rw = last[firstRow] - first[firstRow] + 1;
        h->rh = lastRow - firstRow + 1;
    } else {
        h->klass = (nRun + levels - 1 < nSel) ? kRuns : kGeneral;
    }
    (void)totalRuns;

    // Kernel path by type, channels and class. Packed 1-bit images take
    // the row paths on unpacked rows; float masks of a few elements are
    // cheaper element by element when pixels have several channels.
    switch (h->klass) {
        case kEmpty:
            h->path = kPathCopy;
            break;
        case kRect:
            h->path = kind == Kind::k1u ? kPathRuns : kPathRect;
            break;
        case kRuns: {
            const int minSel = ch == 1 ? 1 : ch == 3 ? 17 : 49;
            h->path = (kind == Kind::k32f && nSel < minSel) ? kPathGeneral : kPathRuns;
            break;
        }
        default:
            h->path = kPathGeneral;
    }
}

int64_t state_work(const Header* h, int W, bool inMem) {
    const int64_t P = pixel_bytes(Kind(h->kind), h->channels);
    switch (h->path) {
        case kPathRect:
            return rect_work(W, P, h->rw, h->rh, inMem);
        case kPathGeneral:
            return rows_work(W, P, h->mW, h->mH, 1, h->nSel);
        case kPathRuns:
            return rows_work(W, P, h->mW, h->mH, h->levels, h->nRunTerms);
        default:
            return 0;
    }
}

}  // namespace zeb::morph

namespace zeb::impl {
namespace {

using morph::Kind;

ZebStatus border_get_size(Kind k, int ch, int roiWidth, ZebiSize maskSize, int* pSpecSize, int* pBufferSize) {
    if (any_null(pSpecSize, pBufferSize)) return zebStsNullPtrErr;
    if (roiWidth < 1 || bad_roi(maskSize)) return zebStsSizeErr;
    const int64_t P = morph::pixel_bytes(k, ch);
    const int64_t spec = morph::border_spec_size(roiWidth, P, maskSize.width, maskSize.height);
    const int64_t buf = morph::border_buffer_size(roiWidth, P, maskSize.width, maskSize.height);
    if (spec > INT_MAX) return zebStsSizeErr;  // spec > buf: both fit when spec does
    (void)put_size(buf, pBufferSize);
    return put_size(spec, pSpecSize);
}

ZebStatus border_init(Kind k, int ch, int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiMorphState* pSpec,
                      Zeb8u* pBuffer) {
    if (any_null(pMask, pSpec, pBuffer)) return zebStsNullPtrErr;
    if (roiWidth < 1 || bad_roi(maskSize)) return zebStsSizeErr;
    const ZebiPoint anchor{(maskSize.width - 1) / 2, (maskSize.height - 1) / 2};
    morph::build_state(pSpec, k, ch, roiWidth, pMask, maskSize, anchor, 0);
    return zebStsNoErr;
}

int64_t older_size(Kind k, int ch, int roiWidth, ZebiSize maskSize) {
    return morph::older_state_size(roiWidth, morph::pixel_bytes(k, ch), maskSize.width, maskSize.height);
}
int64_t older_scratch(Kind k, int ch, int roiWidth, ZebiSize maskSize) {
    return morph::minmax_buffer_size(roiWidth, morph::pixel_bytes(k, ch), maskSize.height) +
           morph::table_bytes(maskSize.width, maskSize.height);
}

ZebStatus older_get_size(Kind k, int ch, int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, int* pSize) {
    if (any_null(pMask, pSize)) return zebStsNullPtrErr;
    if (roiWidth < 1 || bad_roi(maskSize)) return zebStsSizeErr;
    return put_size(older_size(k, ch, roiWidth, maskSize), pSize);
}

bool bad_anchor(ZebiSize m, ZebiPoint a) { return a.x < 0 || a.x >= m.width || a.y < 0 || a.y >= m.height; }

ZebStatus older_init(Kind k, int ch, int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiPoint anchor,
                     ZebiMorphState* pState) {
    if (any_null(pMask, pState)) return zebStsNullPtrErr;
    if (roiWidth < 1 || bad_roi(maskSize)) return zebStsSizeErr;
    if (bad_anchor(maskSize, anchor)) return zebStsAnchorErr;
    morph::build_state(pState, k, ch, roiWidth, pMask, maskSize, anchor, older_scratch(k, ch, roiWidth, maskSize));
    return zebStsNoErr;
}

ZebStatus older_init_alloc(Kind k, int ch, int roiWidth, const Zeb8u* pMask, ZebiSize maskSize, ZebiPoint anchor,
                           ZebiMorphState** ppState) {
    if (any_null(pMask, ppState)) return zebStsNullPtrErr;
    if (roiWidth < 1 || bad_roi(maskSize)) return zebStsSizeErr;
    if (bad_anchor(maskSize, anchor)) return zebStsAnchorErr;
    const int64_t bytes = older_size(k, ch, roiWidth, maskSize);
    if (bytes > INT_MAX) return zebStsSizeErr;
    void* p = zeb::alloc(int32_t(bytes));
    if (!p) return zebStsMemAllocErr;
    morph::build_state(p, k, ch, roiWidth, pMask, maskSize, anchor, older_scratch(k, ch, roiWidth, maskSize));
    *ppState = static_cast<ZebiMorphState*>(p);
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiMorphologyBorderGetSize_1u_C1R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k1u, 1, w, m, s, b); }
ZebStatus zebiMorphologyBorderGetSize_8u_C1R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k8u, 1, w, m, s, b); }
ZebStatus zebiMorphologyBorderGetSize_8u_C3R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k8u, 3, w, m, s, b); }
ZebStatus zebiMorphologyBorderGetSize_8u_C4R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k8u, 4, w, m, s, b); }
ZebStatus zebiMorphologyBorderGetSize_16u_C1R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k16u, 1, w, m, s, b); }
ZebStatus zebiMorphologyBorderGetSize_16s_C1R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k16s, 1, w, m, s, b); }
ZebStatus zebiMorphologyBorderGetSize_32f_C1R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k32f, 1, w, m, s, b); }
ZebStatus zebiMorphologyBorderGetSize_32f_C3R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k32f, 3, w, m, s, b); }
ZebStatus zebiMorphologyBorderGetSize_32f_C4R(int w, ZebiSize m, int* s, int* b) { return border_get_size(Kind::k32f, 4, w, m, s, b); }

ZebStatus zebiMorphologyBorderInit_1u_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k1u, 1, w, k, m, s, b); }
ZebStatus zebiMorphologyBorderInit_8u_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k8u, 1, w, k, m, s, b); }
ZebStatus zebiMorphologyBorderInit_8u_C3R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k8u, 3, w, k, m, s, b); }
ZebStatus zebiMorphologyBorderInit_8u_C4R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k8u, 4, w, k, m, s, b); }
ZebStatus zebiMorphologyBorderInit_16u_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k16u, 1, w, k, m, s, b); }
ZebStatus zebiMorphologyBorderInit_16s_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k16s, 1, w, k, m, s, b); }
ZebStatus zebiMorphologyBorderInit_32f_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k32f, 1, w, k, m, s, b); }
ZebStatus zebiMorphologyBorderInit_32f_C3R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k32f, 3, w, k, m, s, b); }
ZebStatus zebiMorphologyBorderInit_32f_C4R(int w, const Zeb8u* k, ZebiSize m, ZebiMorphState* s, Zeb8u* b) { return border_init(Kind::k32f, 4, w, k, m, s, b); }

ZebStatus zebiMorphologyGetSize_8u_C1R(int w, const Zeb8u* k, ZebiSize m, int* s) { return older_get_size(Kind::k8u, 1, w, k, m, s); }
ZebStatus zebiMorphologyGetSize_8u_C3R(int w, const Zeb8u* k, ZebiSize m, int* s) { return older_get_size(Kind::k8u, 3, w, k, m, s); }
ZebStatus zebiMorphologyGetSize_8u_C4R(int w, const Zeb8u* k, ZebiSize m, int* s) { return older_get_size(Kind::k8u, 4, w, k, m, s); }
ZebStatus zebiMorphologyGetSize_32f_C1R(int w, const Zeb8u* k, ZebiSize m, int* s) { return older_get_size(Kind::k32f, 1, w, k, m, s); }
ZebStatus zebiMorphologyGetSize_32f_C3R(int w, const Zeb8u* k, ZebiSize m, int* s) { return older_get_size(Kind::k32f, 3, w, k, m, s); }
ZebStatus zebiMorphologyGetSize_32f_C4R(int w, const Zeb8u* k, ZebiSize m, int* s) { return older_get_size(Kind::k32f, 4, w, k, m, s); }

ZebStatus zebiMorphologyInit_8u_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState* s) { return older_init(Kind::k8u, 1, w, k, m, a, s); }
ZebStatus zebiMorphologyInit_8u_C3R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState* s) { return older_init(Kind::k8u, 3, w, k, m, a, s); }
ZebStatus zebiMorphologyInit_8u_C4R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState* s) { return older_init(Kind::k8u, 4, w, k, m, a, s); }
ZebStatus zebiMorphologyInit_32f_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState* s) { return older_init(Kind::k32f, 1, w, k, m, a, s); }
ZebStatus zebiMorphologyInit_32f_C3R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState* s) { return older_init(Kind::k32f, 3, w, k, m, a, s); }
ZebStatus zebiMorphologyInit_32f_C4R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState* s) { return older_init(Kind::k32f, 4, w, k, m, a, s); }

ZebStatus zebiMorphologyInitAlloc_8u_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState** s) { return older_init_alloc(Kind::k8u, 1, w, k, m, a, s); }
ZebStatus zebiMorphologyInitAlloc_8u_C3R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState** s) { return older_init_alloc(Kind::k8u, 3, w, k, m, a, s); }
ZebStatus zebiMorphologyInitAlloc_8u_C4R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState** s) { return older_init_alloc(Kind::k8u, 4, w, k, m, a, s); }
ZebStatus zebiMorphologyInitAlloc_32f_C1R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState** s) { return older_init_alloc(Kind::k32f, 1, w, k, m, a, s); }
ZebStatus zebiMorphologyInitAlloc_32f_C3R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState** s) { return older_init_alloc(Kind::k32f, 3, w, k, m, a, s); }
ZebStatus zebiMorphologyInitAlloc_32f_C4R(int w, const Zeb8u* k, ZebiSize m, ZebiPoint a, ZebiMorphState** s) { return older_init_alloc(Kind::k32f, 4, w, k, m, a, s); }

ZebStatus zebiMorphologyFree(ZebiMorphState* pState) { return free_state(pState); }

}  // namespace zeb::impl

ZEB_EXPORT(zebiMorphologyBorderGetSize_1u_C1R);
ZEB_EXPORT(zebiMorphologyBorderGetSize_8u_C1R);
ZEB_EXPORT(zebiMorphologyBorderGetSize_8u_C3R);
ZEB_EXPORT(zebiMorphologyBorderGetSize_8u_C4R);
ZEB_EXPORT(zebiMorphologyBorderGetSize_16u_C1R);
ZEB_EXPORT(zebiMorphologyBorderGetSize_16s_C1R);
ZEB_EXPORT(zebiMorphologyBorderGetSize_32f_C1R);
ZEB_EXPORT(zebiMorphologyBorderGetSize_32f_C3R);
ZEB_EXPORT(zebiMorphologyBorderGetSize_32f_C4R);
ZEB_EXPORT(zebiMorphologyBorderInit_1u_C1R);
ZEB_EXPORT(zebiMorphologyBorderInit_8u_C1R);
ZEB_EXPORT(zebiMorphologyBorderInit_8u_C3R);
ZEB_EXPORT(zebiMorphologyBorderInit_8u_C4R);
ZEB_EXPORT(zebiMorphologyBorderInit_16u_C1R);
ZEB_EXPORT(zebiMorphologyBorderInit_16s_C1R);
ZEB_EXPORT(zebiMorphologyBorderInit_32f_C1R);
ZEB_EXPORT(zebiMorphologyBorderInit_32f_C3R);
ZEB_EXPORT(zebiMorphologyBorderInit_32f_C4R);
ZEB_EXPORT(zebiMorphologyGetSize_8u_C1R);
ZEB_EXPORT(zebiMorphologyGetSize_8u_C3R);
ZEB_EXPORT(zebiMorphologyGetSize_8u_C4R);
ZEB_EXPORT(zebiMorphologyGetSize_32f_C1R);
ZEB_EXPORT(zebiMorphologyGetSize_32f_C3R);
ZEB_EXPORT(zebiMorphologyGetSize_32f_C4R);
ZEB_EXPORT(zebiMorphologyInit_8u_C1R);
ZEB_EXPORT(zebiMorphologyInit_8u_C3R);
ZEB_EXPORT(zebiMorphologyInit_8u_C4R);
ZEB_EXPORT(zebiMorphologyInit_32f_C1R);
ZEB_EXPORT(zebiMorphologyInit_32f_C3R);
ZEB_EXPORT(zebiMorphologyInit_32f_C4R);
ZEB_EXPORT(zebiMorphologyInitAlloc_8u_C1R);
ZEB_EXPORT(zebiMorphologyInitAlloc_8u_C3R);
ZEB_EXPORT(zebiMorphologyInitAlloc_8u_C4R);
ZEB_EXPORT(zebiMorphologyInitAlloc_32f_C1R);
ZEB_EXPORT(zebiMorphologyInitAlloc_32f_C3R);
ZEB_EXPORT(zebiMorphologyInitAlloc_32f_C4R);
ZEB_EXPORT(zebiMorphologyFree);
