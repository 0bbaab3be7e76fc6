// SPDX-License-Identifier: Apache-2.0
// Gaussian smoothing with borders: the kernel setup (kernel table) and its
// sizes, the filters of every type, and the older one-call 32f filter. The
// filtering is the row and column passes of the separable pipelines run
// strip by strip through a ring of filtered rows.
#include <cmath>
#include <limits>
#include <type_traits>

#include "core/border.h"
#include "core/checks.h"
#include "core/dispatch.h"
#include "filter/pipeline_common.h"
#include "filter/pipeline_dispatch.h"
#include "filter/pipeline_sizes.h"

struct ZebFilterGaussianSpec;

namespace zeb::impl {
namespace {

using pipe::StripBuffers;

// Header of a kernel setup block: five 32-bit fields, then the table at
// the first 16-byte boundary at or after byte 20.
constexpr int kHeaderBytes = 20;
enum Field { kLength = 0, kOffset = 1, kType = 2, kBorder = 3, kShift = 4 };

int32_t field(const void* spec, Field f) { return load_u<int32_t>(static_cast<const char*>(spec) + 4 * f); }
void set_field(void* spec, Field f, int32_t v) { std::memcpy(static_cast<char*>(spec) + 4 * f, &v, 4); }
unsigned char* table(void* spec) { return align_up(static_cast<unsigned char*>(spec) + kHeaderBytes, 16); }
const unsigned char* table(const void* spec) {
    return align_up(static_cast<const unsigned char*>(spec) + kHeaderBytes, 16);
}

bool known_type(int32_t t) { return t == zeb8u || t == zeb16u || t == zeb16s || t == zeb32f; }
bool bad_border(int32_t bt) {
    const int32_t m = bt & ~border::kAllSides;
    return m != border::kConst && m != border::kRepl && m != border::kInMem;
}

// Longer kernels never have a buffer size that fits an int (the row pass
// alone takes more than 32 bytes per tap). Up to this length, with any
// width, every term of the sizes stays below 2^62.
constexpr int64_t kMaxLength = int64_t(1) << 26;

// Buffer bytes for a length-k filter over w x h with ch channels: a block
// for border rows, the ring of filtered rows, the row- and column-pass
// areas, the row pointers. -1 when not representable.
int64_t buffer_bytes(ZebiSize roi, int64_t k, int32_t type, int ch) {
    if (k > kMaxLength) return -1;
    const int64_t w = roi.width, hp = roi.height < k ? roi.height : k;
    const bool c3 = ch == 3;
    auto r8 = [](int64_t v) { return (v + 7) / 8 * 8; };
    int64_t n;
    if (type == zeb32f) {
        const int64_t L = r8((w + k) * ch);
        n = 4 * k * L + 32 + 4 * (hp + k) * L + 64;
        n += (c3 ? pipeline_size::row_32f_c3(k) : pipeline_size::row_32f_c1(k)) + 32;
        n += pipeline_size::col_float_or_16u() + 32;
    } else {
        n = 2 * (hp + k) * r8((w + k) * ch) + 64 + 2 * (r8((w + k - 1) * ch) * (k & ~int64_t(1)) + 16);
        if (type == zeb8u)
            n += (c3 ? pipeline_size::row_8u16s_c3(k) : pipeline_size::row_8u16s_c1(k)) + 32 +
                 (c3 ? pipeline_size::col_16s_c3(w) : pipeline_size::col_16s_c1(w)) + 32;
        else if (type == zeb16u)
            n += (c3 ? pipeline_size::row_16u_c3(k) : pipeline_size::row_16u_c1(k)) + 32 +
                 pipeline_size::col_float_or_16u() + 32;
        else
            n += (c3 ? pipeline_size::row_16s_c3(k) : pipeline_size::row_16s_c1(k)) + 32 +
                 (c3 ? pipeline_size::col_16s_c3(w) : pipeline_size::col_16s_c1(w)) + 32;
    }
    return n + 8 * (hp + k) + 32;
}

int64_t spec_bytes(int64_t k, int32_t type) {
    const int64_t q = (k + 3) / 4;
    return type == zeb32f ? 16 * q + 32 : 8 * q + 36;
}

// g[i] = exp(-(x*x) / (sigma * (sigma + sigma))), x = i - k/2, in single
// precision; the sum of all of them is formed in index order.
float weight(int i, int k, float sigma) {
    const int x = i - k / 2;
    return std::exp(-float(x * x) / (sigma * (sigma + sigma)));
}
float weight_sum(int k, float sigma) {
    float sum = 0.f;
    for (int i = 0; i < k; ++i) sum = sum + weight(i, k, sigma);
    return sum;
}

// Float coefficients g[i] / sum, in place.
void float_table(int k, float sigma, float* c) {
    const float sum = weight_sum(k, sigma);
    for (int i = 0; i < k; ++i) c[i] = weight(i, k, sigma) / sum;
}

// Carves the filter's areas out of the work buffer (start aligned to 32):
// border-value row and its filtered row, the ring, the row ends of the row
// pass, the row pointers.
template <class S, class M>
StripBuffers carve(unsigned char* buf, int w, int h, int ch, int k) {
    StripBuffers b;
    unsigned char* p = align_up(buf, 32);
    const std::size_t n = std::size_t(w) * ch;
    auto take = [&](std::size_t bytes, std::size_t align) {
        p = align_up(p, align);
        unsigned char* r = p;
        p += bytes;
        return r;
    };
    b.strip = h < k ? h : k;
    b.ringRows = b.strip + k;
    b.pitch = std::ptrdiff_t((n * sizeof(M) + 15) / 16 * 16);
    b.constSrc = take(n * sizeof(S), 16);
    b.constRow = take(n * sizeof(M), 16);
    b.ring = take(std::size_t(b.pitch) * b.ringRows, 16);
    b.edge = take(std::size_t(2 * k - 2) * ch * sizeof(S), 16);
    b.ptrs = reinterpret_cast<const void**>(take(sizeof(void*) * std::size_t(b.ringRows), 8));
    return b;
}

template <class T>
void run(const T* src, int ss, T* dst, int ds, ZebiSize roi, int ch, int k, int32_t bt, const T* value,
         unsigned char* buf, const unsigned char* tab) {
    using M = std::conditional_t<std::is_same_v<T, uint8_t>, uint16_t, T>;
    pipe::run_gauss(pipe::GaussImage<T>{src, ss, dst, ds, roi.width, roi.height, ch, k, border::decode(bt), value,
                                        carve<T, M>(buf, roi.width, roi.height, ch, k), tab});
}

template <class T>
ZebStatus gauss_border(const T* src, int ss, T* dst, int ds, ZebiSize roi, const T* value,
                       const ZebFilterGaussianSpec* spec, Zeb8u* buf, int ch) {
    if (any_null(src, dst, buf, spec, value)) return zebStsNullPtrErr;
    const StepReq rs = req<T>(ss, roi.width, ch), rd = req<T>(ds, roi.width, ch);
    if (ZebStatus s = min_steps({rs, rd})) return s;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus s = even_steps({rs, rd})) return s;
    const int32_t k = field(spec, kLength);
    if (k < 3 || k % 2 == 0) return zebStsBadArgErr;
    if (bad_border(field(spec, kBorder))) return zebStsBorderErr;
    if (field(spec, kType) != pipe::data_type<T>()) return zebStsDataTypeErr;
    run(src, ss, dst, ds, roi, ch, k, field(spec, kBorder), value, buf, table(static_cast<const void*>(spec)));
    return zebStsNoErr;
}

}  // namespace

ZebStatus zebiFilterGaussianGetBufferSize(ZebiSize roi, Zeb32u kernelSize, ZebDataType type, int ch, int* specSize,
                                          int* bufSize) {
    if (any_null(specSize, bufSize)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (kernelSize <= 2 || kernelSize % 2 == 0) return zebStsBadArgErr;
    if (!known_type(type)) return zebStsDataTypeErr;
    if (ch != 1 && ch != 3) return zebStsChannelErr;
    // Both sizes fit, or neither is written.
    const int64_t n = buffer_bytes(roi, kernelSize, type, ch);
    int spec = 0;
    if (ZebStatus s = put_size(spec_bytes(kernelSize, type), &spec)) return s;
    if (ZebStatus s = put_size(n, bufSize)) return s;
    *specSize = spec;
    return zebStsNoErr;
}

ZebStatus zebiFilterGaussianInit(ZebiSize roi, Zeb32u kernelSize, Zeb32f sigma, ZebiBorderType bt, ZebDataType type,
                                 int ch, ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    if (any_null(spec, buf)) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (kernelSize < 3 || kernelSize % 2 == 0) return zebStsBadArgErr;
    if (!known_type(type)) return zebStsDataTypeErr;
    if (ch != 1 && ch != 3) return zebStsChannelErr;
    if (!(sigma > 0.f)) return zebStsBadArgErr;
    if (bad_border(bt)) return zebStsBorderErr;
    // A negative length (odd, so it passed as unsigned) builds no table.
    const int32_t k = int32_t(kernelSize);
    if (k > kMaxLength) return zebStsSizeErr;  // no buffer size exists for it
    set_field(spec, kLength, k);
    set_field(spec, kOffset, kHeaderBytes);
    set_field(spec, kType, type);
    set_field(spec, kBorder, bt);
    set_field(spec, kShift, type == zeb8u ? 12 : type == zeb32f ? 0 : 15);
    unsigned char* tab = table(static_cast<void*>(spec));
    if (k < 1) return zebStsNoErr;
    if (type == zeb32f) {
        float_table(k, sigma, reinterpret_cast<float*>(tab));
        return zebStsNoErr;
    }
    // Fixed point: floor(g / sum * one + 0.5), the product in single
    // precision, the half added in double, each coefficient on its own.
    const float one = type == zeb8u ? 4096.0f : 32768.0f;
    const float sum = weight_sum(k, sigma);
    for (int i = 0; i < k; ++i) {
        const float q = weight(i, k, sigma) / sum * one;
        const uint16_t c = uint16_t(int32_t(std::floor(double(q) + 0.5)));
        std::memcpy(tab + 2 * i, &c, 2);
    }
    return zebStsNoErr;
}

ZebStatus zebiFilterGaussianBorder_8u_C1R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi, Zeb8u value,
                                          const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    return gauss_border<Zeb8u>(src, ss, dst, ds, roi, &value, spec, buf, 1);
}
ZebStatus zebiFilterGaussianBorder_8u_C3R(const Zeb8u* src, int ss, Zeb8u* dst, int ds, ZebiSize roi,
                                          const Zeb8u* value, const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    return gauss_border<Zeb8u>(src, ss, dst, ds, roi, value, spec, buf, 3);
}
ZebStatus zebiFilterGaussianBorder_16u_C1R(const Zeb16u* src, int ss, Zeb16u* dst, int ds, ZebiSize roi, Zeb16u value,
                                           const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    return gauss_border<Zeb16u>(src, ss, dst, ds, roi, &value, spec, buf, 1);
}
ZebStatus zebiFilterGaussianBorder_16u_C3R(const Zeb16u* src, int ss, Zeb16u* dst, int ds, ZebiSize roi,
                                           const Zeb16u* value, const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    return gauss_border<Zeb16u>(src, ss, dst, ds, roi, value, spec, buf, 3);
}
ZebStatus zebiFilterGaussianBorder_16s_C1R(const Zeb16s* src, int ss, Zeb16s* dst, int ds, ZebiSize roi, Zeb16s value,
                                           const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    return gauss_border<Zeb16s>(src, ss, dst, ds, roi, &value, spec, buf, 1);
}
ZebStatus zebiFilterGaussianBorder_16s_C3R(const Zeb16s* src, int ss, Zeb16s* dst, int ds, ZebiSize roi,
                                           const Zeb16s* value, const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    return gauss_border<Zeb16s>(src, ss, dst, ds, roi, value, spec, buf, 3);
}
ZebStatus zebiFilterGaussianBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi, Zeb32f value,
                                           const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    return gauss_border<Zeb32f>(src, ss, dst, ds, roi, &value, spec, buf, 1);
}
ZebStatus zebiFilterGaussianBorder_32f_C3R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi,
                                           const Zeb32f* value, const ZebFilterGaussianSpec* spec, Zeb8u* buf) {
    return gauss_border<Zeb32f>(src, ss, dst, ds, roi, value, spec, buf, 3);
}

// ---- older one-call interface ----

ZebStatus zebiFilterGaussGetBufferSize_32f_C1R(ZebiSize roi, int k, int* size) {
    if (!size) return zebStsNullPtrErr;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (k < 3 || k % 2 == 0) return zebStsBadArgErr;
    if (k > kMaxLength) return zebStsSizeErr;
    const int64_t s = int64_t(roi.width) + k, kk = k;
    int64_t n = 32 * ((s + 7) / 8) * kk + 16 * ((kk + 3) / 4) + 32 + 16 * ((s + 3) / 4) * 2 * kk + 64;
    n += pipeline_size::row_32f_c1(k) + 32 + pipeline_size::col_float_or_16u() + 32 + 8 * 2 * kk + 32;
    return put_size(n, size);
}

ZebStatus zebiFilterGaussBorder_32f_C1R(const Zeb32f* src, int ss, Zeb32f* dst, int ds, ZebiSize roi, int k,
                                        Zeb32f sigma, ZebiBorderType bt, Zeb32f value, Zeb8u* buf) {
    if (any_null(src, dst, buf)) return zebStsNullPtrErr;
    const StepReq rs = req<Zeb32f>(ss, roi.width), rd = req<Zeb32f>(ds, roi.width);
    if (ZebStatus s = min_steps({rs, rd})) return s;
    if (bad_roi(roi)) return zebStsSizeErr;
    if (ZebStatus s = even_steps({rs, rd})) return s;
    if (k < 3 || k % 2 == 0 || !(sigma > 0.f)) return zebStsBadArgErr;
    if (bad_border(bt)) return zebStsBorderErr;
    if (k > kMaxLength) return zebStsSizeErr;
    // The coefficient table first, then the filter's own areas.
    float* c = reinterpret_cast<float*>(align_up(buf, 32));
    float_table(k, sigma, c);
    run(src, ss, dst, ds, roi, 1, k, bt, &value, reinterpret_cast<unsigned char*>(c + k),
        reinterpret_cast<const unsigned char*>(c));
    return zebStsNoErr;
}

}  // namespace zeb::impl

ZEB_EXPORT(zebiFilterGaussianGetBufferSize);
ZEB_EXPORT(zebiFilterGaussianInit);
ZEB_EXPORT(zebiFilterGaussianBorder_8u_C1R);
ZEB_EXPORT(zebiFilterGaussianBorder_8u_C3R);
ZEB_EXPORT(zebiFilterGaussianBorder_16u_C1R);
ZEB_EXPORT(zebiFilterGaussianBorder_16u_C3R);
ZEB_EXPORT(zebiFilterGaussianBorder_16s_C1R);
ZEB_EXPORT(zebiFilterGaussianBorder_16s_C3R);
ZEB_EXPORT(zebiFilterGaussianBorder_32f_C1R);
ZEB_EXPORT(zebiFilterGaussianBorder_32f_C3R);
ZEB_EXPORT(zebiFilterGaussBorder_32f_C1R);
ZEB_EXPORT(zebiFilterGaussGetBufferSize_32f_C1R);
