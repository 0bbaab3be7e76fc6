// Results of the row and column passes: both variants on every vector
// target against the per-sample definitions (bit for bit), over widths,
// pads, kernel lengths, anchors, borders and channel counts, with every
// row buffer and work buffer ending at a guard page; OpenCV's sepFilter2D
// as the independent oracle on photographs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include "harness.h"

ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_16s_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_16s_C3R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_Low_16s_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_Low_16s_C3R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_16u_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_16u_C3R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_8u16s_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_8u16s_C3R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_32f_C1R);
ZEB_TEST_TABLE(zebiFilterRowBorderPipeline_32f_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_Low_16s_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_Low_16s_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s8u_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s8u_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s8s_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16s8s_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16u_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_16u_C3R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_32f_C1R);
ZEB_TEST_TABLE(zebiFilterColumnPipeline_32f_C3R);

namespace {

using zt::Image;

// ---- definitions ----

template <class T>
float lo_of() {
    return float(std::numeric_limits<T>::lowest());
}
template <class T>
float hi_of() {
    return float(std::numeric_limits<T>::max());
}

// Pixel p (which may lie outside 0..w-1) of a source row under border bt.
template <class S>
S ext(const S* row, int w, int ch, int p, int c, int bt, const S* value) {
    if (p >= 0 && p < w) return row[p * ch + c];
    if (bt == 6) return row[p * ch + c];
    if (bt == 1) return row[std::clamp(p, 0, w - 1) * ch + c];
    return value[c];
}

// Whether the row pass sums exact integers: 16s and 8u16s with no
// coefficient -32768 and sum|k| * max|sample| below 2^31.
template <class S, class D>
bool exact_path(const std::vector<int16_t>& k) {
    if (!std::is_same_v<D, int16_t>) return false;
    int64_t t = 0;
    for (int16_t v : k) {
        if (v == -32768) return false;
        t += std::abs(int(v));
    }
    return t * (std::is_same_v<S, uint8_t> ? 255 : 32768) <= INT32_MAX;
}

template <class S, class D, class K>
D row_definition(const S* row, int w, int ch, int x, int c, const std::vector<K>& kern, int a, int bt,
                 const S* value, int divisor) {
    const int k = int(kern.size());
    auto px = [&](int i) { return ext(row, w, ch, x - a + i, c, bt, value); };
    if constexpr (std::is_same_v<K, float>) {
        float acc = kern[0] * px(0);
        for (int i = 1; i < k; ++i) acc = acc + kern[i] * px(i);
        return acc;
    } else {
        const float r = 1.0f / float(divisor);
        float v;
        if (exact_path<S, D>(kern)) {
            int64_t s = 0;
            for (int i = 0; i < k; ++i) s += int64_t(kern[i]) * px(i);
            v = float(int32_t(s)) * r;
        } else {
            v = (float(kern[0]) * r) * float(px(0));
            for (int i = 1; i < k; ++i) v = v + (float(kern[i]) * r) * float(px(i));
        }
        return D(std::trunc(std::clamp(v, lo_of<D>(), hi_of<D>())));
    }
}

// ---- row pass ----

template <class S, class D, class K>
struct RowMember {
    std::string name;
    int ch;
    std::function<ZebStatus(int, const S*, int, D* const*, ZebiSize, const K*, int, int, int, const S*, int, Zeb8u*)>
        call;
    std::function<ZebStatus(ZebiSize, int, int*)> size;
};

// One-channel members take the border value by value, three-channel ones
// by pointer.
template <int ch, class V>
auto value_arg(const V* val) {
    if constexpr (ch == 1)
        return val[0];
    else
        return val;
}

#define ROW_CH(name, S, D, K, sz, ch)                                                                            \
    RowMember<S, D, K> {                                                                                         \
        #name, ch,                                                                                               \
            [](int v, const S* s, int ss, D* const* d, ZebiSize r, auto k, int n, int a, int bt, const S* val,   \
               int div, Zeb8u* b) {                                                                              \
                if constexpr (std::is_same_v<decltype(k), const float*>)                                         \
                    return zeb_tbl_##name[v](s, ss, d, r, k, n, a, bt, value_arg<ch>(val), b);                   \
                else                                                                                             \
                    return zeb_tbl_##name[v](s, ss, d, r, k, n, a, bt, value_arg<ch>(val), div, b);              \
            },                                                                                                   \
            [](ZebiSize r, int n, int* p) { return sz(r, n, p); }                                                \
    }
#define ROW_C1(name, S, D, K, sz) ROW_CH(name, S, D, K, sz, 1)
#define ROW_C3(name, S, D, K, sz) ROW_CH(name, S, D, K, sz, 3)

template <class K>
std::vector<K> random_kernel(int k, int magnitude) {
    std::vector<K> v(k);
    for (K& c : v) {
        if constexpr (std::is_same_v<K, float>)
            c = std::uniform_real_distribution<float>(-1.f, 1.f)(zt::rng());
        else
            c = K(std::uniform_int_distribution<int>(-magnitude, magnitude)(zt::rng()));
    }
    return v;
}

// One call of a row pass on a w x h ROI, compared with the definition.
// For border 6 the source holds k-1 extra pixels around the ROI; every
// destination row and the work buffer end at guard pages.
template <class S, class D, class K>
void check_row(const RowMember<S, D, K>& m, int variant, int w, int pad, const std::vector<K>& kern, int a, int bt,
               int divisor) {
    const int h = 2, ch = m.ch, k = int(kern.size());
    const int left = bt == 6 ? a : 0, right = bt == 6 ? k - 1 - a : 0;
    Image<S> src(w + left + right, h, ch, pad);
    const S* roi = src.ptr() + left * ch;
    std::vector<std::unique_ptr<zt::Guarded>> rows;
    std::vector<D*> ptrs;
    for (int y = 0; y < h; ++y) {
        rows.push_back(std::make_unique<zt::Guarded>(sizeof(D) * w * ch));
        ptrs.push_back(reinterpret_cast<D*>(rows.back()->data()));
    }
    int size = 0;
    ASSERT_EQ(m.size({w, h}, k, &size), 0);
    zt::Guarded buf(size);
    const S value[3] = {zt::random_value<S>(), zt::random_value<S>(), zt::random_value<S>()};
    ASSERT_EQ(m.call(variant, roi, src.step(), ptrs.data(), {w, h}, kern.data(), k, a, bt, value, divisor,
                     buf.data()),
              0)
        << m.name;
    for (int y = 0; y < h; ++y) {
        const S* r = reinterpret_cast<const S*>(reinterpret_cast<const char*>(roi) + std::ptrdiff_t(y) * src.step());
        for (int x = 0; x < w; ++x)
            for (int c = 0; c < ch; ++c) {
                const D want = row_definition<S, D>(r, w, ch, x, c, kern, a, bt, value, divisor);
                const D got = ptrs[y][x * ch + c];
                ASSERT_EQ(std::memcmp(&want, &got, sizeof(D)), 0)
                    << m.name << " variant " << variant << " w=" << w << " pad=" << pad << " k=" << k << " a=" << a
                    << " bt=" << bt << " div=" << divisor << " x=" << x << " c=" << c << " want " << +want
                    << " got " << +got;
            }
    }
}

template <class S, class D, class K>
void sweep_row(const RowMember<S, D, K>& m, int magnitude, const std::vector<int>& divisors) {
    for (int v = 0; v < 2; ++v)
        for (int k : {1, 2, 3, 4, 5, 7, 12}) {
            for (int w : zt::test_widths()) {
                const int pad = zt::test_pads(sizeof(S))[(w + k) % 4];
                const std::vector<K> kern = random_kernel<K>(k, magnitude);
                for (int a : {0, k / 2, k - 1})
                    for (int bt : {0, 1, 6}) check_row(m, v, w, pad, kern, a, bt, divisors[(w + a + bt) % divisors.size()]);
            }
        }
}

ZT_TARGET_SUITE(PipelineRow);
ZT_TARGET_SUITE(PipelineColumn);
ZT_TARGET_SUITE(PipelineOpenCV);

TEST_P(PipelineRow, FloatMatchesDefinition) {
    sweep_row(ROW_C1(zebiFilterRowBorderPipeline_32f_C1R, Zeb32f, Zeb32f, Zeb32f, zebiFilterRowBorderPipelineGetBufferSize_32f_C1R), 0, {1});
    sweep_row(ROW_C3(zebiFilterRowBorderPipeline_32f_C3R, Zeb32f, Zeb32f, Zeb32f, zebiFilterRowBorderPipelineGetBufferSize_32f_C3R), 0, {1});
}

// Small kernels keep the exact integer path; large ones with -32768 or big
// magnitudes switch to single precision; divisors of both signs.
TEST_P(PipelineRow, SixteenBitSignedMatchesDefinition) {
    for (int mag : {300, 32767}) {
        sweep_row(ROW_C1(zebiFilterRowBorderPipeline_16s_C1R, Zeb16s, Zeb16s, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_16s_C1R), mag, {1, 3, -7, 1000});
        sweep_row(ROW_C3(zebiFilterRowBorderPipeline_16s_C3R, Zeb16s, Zeb16s, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_16s_C3R), mag, {1, -2, 9});
        sweep_row(ROW_C1(zebiFilterRowBorderPipeline_Low_16s_C1R, Zeb16s, Zeb16s, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C1R), mag, {1, 5});
        sweep_row(ROW_C3(zebiFilterRowBorderPipeline_Low_16s_C3R, Zeb16s, Zeb16s, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_Low_16s_C3R), mag, {3});
    }
}

// Magnitude 5 keeps short kernels within the byte-pair shortcut of 8u
// sources (power-of-two divisors), 20 and more leave it.
TEST_P(PipelineRow, EightBitAndUnsignedMatchDefinition) {
    for (int mag : {5, 20, 32767}) {
        sweep_row(ROW_C1(zebiFilterRowBorderPipeline_8u16s_C1R, Zeb8u, Zeb16s, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R), mag, {1, 4, -3, -8});
        sweep_row(ROW_C3(zebiFilterRowBorderPipeline_8u16s_C3R, Zeb8u, Zeb16s, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R), mag, {1, 16, 5});
        sweep_row(ROW_C1(zebiFilterRowBorderPipeline_16u_C1R, Zeb16u, Zeb16u, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_16u_C1R), mag, {1, 3, 256});
        sweep_row(ROW_C3(zebiFilterRowBorderPipeline_16u_C3R, Zeb16u, Zeb16u, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_16u_C3R), mag, {2});
    }
}

// A coefficient of -32768 forces single precision for the whole call even
// when the kernel is short; long kernels of small coefficients take the
// integer paths whatever their length.
TEST_P(PipelineRow, SwitchesBetweenIntegerAndSinglePrecision) {
    const auto m16 = ROW_C1(zebiFilterRowBorderPipeline_16s_C1R, Zeb16s, Zeb16s, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_16s_C1R);
    const auto m8 = ROW_C1(zebiFilterRowBorderPipeline_8u16s_C1R, Zeb8u, Zeb16s, Zeb16s, zebiFilterRowBorderPipelineGetBufferSize_8u16s_C1R);
    for (int v = 0; v < 2; ++v) {
        for (int w : zt::test_widths()) {
            check_row(m16, v, w, 0, std::vector<Zeb16s>{-32768, 3, 1}, 1, 1, 7);
            check_row(m16, v, w, 0, std::vector<Zeb16s>{1, -32768, 2, 5, 1}, 2, 0, -3);
        }
        for (int k : {128, 129, 150}) {
            std::vector<Zeb16s> kern(k, 0);
            kern[0] = 3, kern[k / 2] = -5, kern[k - 1] = 7;
            for (int w : {40, 200}) check_row(m8, v, w, 0, kern, k / 2, 1, 2);
        }
    }
}

// ---- column pass ----

template <class S, class D, class K>
struct ColMember {
    std::string name;
    int ch;
    std::function<ZebStatus(int, const S* const*, D*, int, ZebiSize, const K*, int, int, Zeb8u*)> call;
    std::function<ZebStatus(ZebiSize, int, int*)> size;
};

#define COL(name, szname, S, D, K, ch)                                                                        \
    ColMember<S, D, K> {                                                                                     \
        #name, ch,                                                                                           \
            [](int v, const S* const* s, D* d, int ds, ZebiSize r, auto k, int n, int div, Zeb8u* b) {   \
                if constexpr (std::is_same_v<decltype(k), const float*>)                                     \
                    return zeb_tbl_##name[v](s, d, ds, r, k, n, b);                                          \
                else                                                                                         \
                    return zeb_tbl_##name[v](s, d, ds, r, k, n, div, b);                                     \
            },                                                                                               \
            [](ZebiSize r, int n, int* p) { return szname(r, n, p); }                                        \
    }

template <class S, class D, class K>
D col_definition(const S* const* rows, int e, int n, const std::vector<K>& kern, int divisor) {
    const int k = int(kern.size());
    if constexpr (std::is_same_v<K, float>) {
        float acc = kern[0] * rows[0][e];
        for (int j = 1; j < k; ++j) acc = acc + kern[j] * rows[j][e];
        return acc;
    } else {
        const float r = 1.0f / float(divisor);
        float v = (float(kern[0]) * r) * float(rows[0][e]);
        for (int j = 1; j < k; ++j) v = v + (float(kern[j]) * r) * float(rows[j][e]);
        v = std::clamp(v, lo_of<D>(), hi_of<D>());
        const bool tail = std::is_same_v<S, int16_t> && e >= n - n % 16;
        return D(tail ? std::trunc(v) : std::nearbyint(v));
    }
}

template <class S, class D, class K>
void check_column(const ColMember<S, D, K>& m, int variant, int w, int h, int pad, const std::vector<K>& kern,
                  int divisor) {
    const int ch = m.ch, k = int(kern.size()), n = w * ch;
    // Source rows in scrambled order, each against its own guard page.
    std::vector<std::unique_ptr<zt::Guarded>> blocks;
    std::vector<const S*> rows;
    for (int j = 0; j < h + k - 1; ++j) {
        blocks.push_back(std::make_unique<zt::Guarded>(sizeof(S) * n));
        S* r = reinterpret_cast<S*>(blocks.back()->data());
        for (int e = 0; e < n; ++e) r[e] = zt::random_value<S>();
        rows.push_back(r);
    }
    if (h + k - 1 > 2) std::swap(rows[0], rows[2]);
    Image<D> dst(w, h, ch, pad);
    int size = 0;
    ASSERT_EQ(m.size({w, h}, k, &size), 0);
    zt::Guarded buf(size);
    ASSERT_EQ(m.call(variant, rows.data(), dst.ptr(), dst.step(), {w, h}, kern.data(), k, divisor, buf.data()), 0);
    for (int y = 0; y < h; ++y)
        for (int e = 0; e < n; ++e) {
            const D want = col_definition<S, D>(rows.data() + y, e, n, kern, divisor);
            const D got = dst.row(y)[e];
            ASSERT_EQ(std::memcmp(&want, &got, sizeof(D)), 0)
                << m.name << " variant " << variant << " w=" << w << " k=" << k << " div=" << divisor << " e=" << e
                << " want " << +want << " got " << +got;
        }
}

template <class S, class D, class K>
void sweep_column(const ColMember<S, D, K>& m, int magnitude, const std::vector<int>& divisors) {
    for (int v = 0; v < 2; ++v)
        for (int k : {1, 2, 3, 5, 6, 9, 35})
            for (int w : zt::test_widths()) {
                const int pad = zt::test_pads(sizeof(D))[(w + k) % 4];
                check_column(m, v, w, 3, pad, random_kernel<K>(k, magnitude), divisors[(w + k) % divisors.size()]);
            }
}

TEST_P(PipelineColumn, AllMembersMatchDefinition) {
    sweep_column(COL(zebiFilterColumnPipeline_32f_C1R, zebiFilterColumnPipelineGetBufferSize_32f_C1R, Zeb32f, Zeb32f,
                     Zeb32f, 1), 0, {1});
    sweep_column(COL(zebiFilterColumnPipeline_32f_C3R, zebiFilterColumnPipelineGetBufferSize_32f_C3R, Zeb32f, Zeb32f,
                     Zeb32f, 3), 0, {1});
    // Magnitude 5 with power-of-two divisors keeps the sums exact in single
    // precision (integer shortcut); the others do not.
    for (int mag : {5, 40, 32767}) {
        sweep_column(COL(zebiFilterColumnPipeline_16s_C1R, zebiFilterColumnPipelineGetBufferSize_16s_C1R, Zeb16s,
                         Zeb16s, Zeb16s, 1), mag, {1, 7, -300, -4, 64});
        sweep_column(COL(zebiFilterColumnPipeline_16s_C3R, zebiFilterColumnPipelineGetBufferSize_16s_C3R, Zeb16s,
                         Zeb16s, Zeb16s, 3), mag, {3, 100});
        sweep_column(COL(zebiFilterColumnPipeline_Low_16s_C1R, zebiFilterColumnPipelineGetBufferSize_Low_16s_C1R,
                         Zeb16s, Zeb16s, Zeb16s, 1), mag, {5});
        sweep_column(COL(zebiFilterColumnPipeline_Low_16s_C3R, zebiFilterColumnPipelineGetBufferSize_Low_16s_C3R,
                         Zeb16s, Zeb16s, Zeb16s, 3), mag, {-9});
        sweep_column(COL(zebiFilterColumnPipeline_16s8u_C1R, zebiFilterColumnPipelineGetBufferSize_16s8u_C1R, Zeb16s,
                         Zeb8u, Zeb16s, 1), mag, {64, 1000, 30000, 2, -16});
        sweep_column(COL(zebiFilterColumnPipeline_16s8u_C3R, zebiFilterColumnPipelineGetBufferSize_16s8u_C3R, Zeb16s,
                         Zeb8u, Zeb16s, 3), mag, {256});
        sweep_column(COL(zebiFilterColumnPipeline_16s8s_C1R, zebiFilterColumnPipelineGetBufferSize_16s8s_C1R, Zeb16s,
                         Zeb8s, Zeb16s, 1), mag, {128, -2000, 1, -2});
        sweep_column(COL(zebiFilterColumnPipeline_16s8s_C3R, zebiFilterColumnPipelineGetBufferSize_16s8s_C3R, Zeb16s,
                         Zeb8s, Zeb16s, 3), mag, {512});
        sweep_column(COL(zebiFilterColumnPipeline_16u_C1R, zebiFilterColumnPipelineGetBufferSize_16u_C1R, Zeb16u,
                         Zeb16u, Zeb16s, 1), mag, {1, 3, 40000});
        sweep_column(COL(zebiFilterColumnPipeline_16u_C3R, zebiFilterColumnPipelineGetBufferSize_16u_C3R, Zeb16u,
                         Zeb16u, Zeb16s, 3), mag, {-7});
    }
}

// ---- OpenCV ----

// Runs a row pass over the whole image with replicated or zero borders,
// then builds the vertical border by pointer (replicate: repeated first and
// last rows; constant 0: a row filtered from a zero row) and runs the
// column pass.
template <class S, class M, class D, class RowFn, class ColFn>
void pipeline_image(const Image<S>& src, Image<D>& dst, int kx, int ky, int bt, RowFn rowFn, ColFn colFn) {
    const int w = src.width(), h = src.height(), ch = src.channels(), ay = ky / 2;
    std::vector<std::vector<M>> mid(h + 1, std::vector<M>(std::size_t(w) * ch));
    std::vector<M*> midPtrs;
    for (int y = 0; y < h; ++y) midPtrs.push_back(mid[y].data());
    ASSERT_EQ(rowFn(src.ptr(), src.step(), midPtrs.data(), src.size()), 0);
    Image<S> zero(w, 1, ch);
    zero.fill(S(0));
    M* zeroRow = mid[h].data();
    ASSERT_EQ(rowFn(zero.ptr(), zero.step(), &zeroRow, ZebiSize{w, 1}), 0);
    std::vector<const M*> ptrs;
    for (int j = -ay; j < h + ky - 1 - ay; ++j) {
        if (j >= 0 && j < h)
            ptrs.push_back(mid[j].data());
        else
            ptrs.push_back(bt == 1 ? mid[std::clamp(j, 0, h - 1)].data() : zeroRow);
    }
    ASSERT_EQ(colFn(ptrs.data(), dst.ptr(), dst.step(), dst.size()), 0);
    (void)kx;
}

// A photograph (grey for one channel) as a guarded image of type T.
template <class T>
Image<T> photo(const char* file, int ch) {
    cv::Mat m = cv::imread(std::string("/usr/share/doc/opencv-doc/examples/data/") + file,
                           ch == 1 ? cv::IMREAD_GRAYSCALE : cv::IMREAD_COLOR);
    EXPECT_FALSE(m.empty()) << file;
    if (m.empty()) m = cv::Mat(64, 64, CV_8UC(ch), cv::Scalar::all(77));
    Image<T> img(m.cols, m.rows, ch, 4 * int(sizeof(T)));
    m.convertTo(img.mat(), zt::CvDepth<T>::v);
    return img;
}

// Random kernels of length 3, 5 and 9 on photographs, constant 0 and
// replicated borders. Both compute single-precision products, OpenCV in its
// own order of summation: sums of k*k products of pixels up to 255 agree
// to far better than 1e-2.
TEST_P(PipelineOpenCV, FloatPipelineAgreesWithSepFilter2D) {
    for (int ch : {1, 3})
        for (int k : {3, 5, 9}) {
            const Image<Zeb32f> src = photo<Zeb32f>(ch == 1 ? "building.jpg" : "fruits.jpg", ch);
            Image<Zeb32f> dst(src.width(), src.height(), ch);
            const std::vector<Zeb32f> kx = random_kernel<Zeb32f>(k, 0), ky = random_kernel<Zeb32f>(k, 0);
            int rs = 0, cs = 0;
            ASSERT_EQ(zebiFilterRowBorderPipelineGetBufferSize_32f_C3R(src.size(), k, &rs), 0);
            ASSERT_EQ(zebiFilterColumnPipelineGetBufferSize_32f_C3R(src.size(), k, &cs), 0);
            zt::Guarded rb(rs), cb(cs);
            for (int bt : {0, 1}) {
                const Zeb32f zero[3] = {0, 0, 0};
                auto rowFn = [&](const Zeb32f* s, int ss, Zeb32f* const* d, ZebiSize r) {
                    return ch == 1 ? zebiFilterRowBorderPipeline_32f_C1R(s, ss, d, r, kx.data(), k, k / 2, bt, 0.f, rb.data())
                                   : zebiFilterRowBorderPipeline_32f_C3R(s, ss, d, r, kx.data(), k, k / 2, bt, zero, rb.data());
                };
                auto colFn = [&](const Zeb32f* const* s, Zeb32f* d, int ds, ZebiSize r) {
                    return ch == 1 ? zebiFilterColumnPipeline_32f_C1R(s, d, ds, r, ky.data(), k, cb.data())
                                   : zebiFilterColumnPipeline_32f_C3R(s, d, ds, r, ky.data(), k, cb.data());
                };
                pipeline_image<Zeb32f, Zeb32f>(src, dst, k, k, bt, rowFn, colFn);
                cv::Mat want;
                cv::sepFilter2D(src.mat(), want, CV_32F, cv::Mat(kx), cv::Mat(ky), cv::Point(-1, -1), 0,
                                bt == 1 ? cv::BORDER_REPLICATE : cv::BORDER_CONSTANT);
                EXPECT_LT(cv::norm(want, dst.mat(), cv::NORM_INF), 1e-2) << "ch=" << ch << " k=" << k << " bt=" << bt;
            }
        }
}

// 8u photographs, integer row pass into 16s, column pass to 8u: binomial
// 5x5 (row divisor 1 keeps the intermediate exact, column divisor 256),
// against OpenCV's 8u filter with the same normalised kernels; one unit
// apart at most (the two round halves differently).
TEST_P(PipelineOpenCV, EightBitPipelineWithinOneOfSepFilter2D) {
    const std::vector<Zeb16s> kern = {1, 4, 6, 4, 1};
    const cv::Mat kcv = (cv::Mat_<float>(5, 1) << 1 / 16.f, 4 / 16.f, 6 / 16.f, 4 / 16.f, 1 / 16.f);
    for (int ch : {1, 3}) {
        const Image<Zeb8u> src = photo<Zeb8u>(ch == 1 ? "baboon.jpg" : "fruits.jpg", ch);
        Image<Zeb8u> dst(src.width(), src.height(), ch, 1);
        int rs = 0, cs = 0;
        ASSERT_EQ(zebiFilterRowBorderPipelineGetBufferSize_8u16s_C3R(src.size(), 5, &rs), 0);
        ASSERT_EQ(zebiFilterColumnPipelineGetBufferSize_16s8u_C3R(src.size(), 5, &cs), 0);
        zt::Guarded rb(rs), cb(cs);
        for (int bt : {0, 1}) {
            const Zeb8u zero[3] = {0, 0, 0};
            auto rowFn = [&](const Zeb8u* s, int ss, Zeb16s* const* d, ZebiSize r) {
                return ch == 1 ? zebiFilterRowBorderPipeline_8u16s_C1R(s, ss, d, r, kern.data(), 5, 2, bt, 0, 1, rb.data())
                               : zebiFilterRowBorderPipeline_8u16s_C3R(s, ss, d, r, kern.data(), 5, 2, bt, zero, 1, rb.data());
            };
            auto colFn = [&](const Zeb16s* const* s, Zeb8u* d, int ds, ZebiSize r) {
                return ch == 1 ? zebiFilterColumnPipeline_16s8u_C1R(s, d, ds, r, kern.data(), 5, 256, cb.data())
                               : zebiFilterColumnPipeline_16s8u_C3R(s, d, ds, r, kern.data(), 5, 256, cb.data());
            };
            pipeline_image<Zeb8u, Zeb16s>(src, dst, 5, 5, bt, rowFn, colFn);
            cv::Mat want;
            cv::sepFilter2D(src.mat(), want, CV_8U, kcv, kcv, cv::Point(-1, -1), 0,
                            bt == 1 ? cv::BORDER_REPLICATE : cv::BORDER_CONSTANT);
            EXPECT_LE(cv::norm(want, dst.mat(), cv::NORM_INF), 1) << "ch=" << ch << " bt=" << bt;
        }
    }
}

}  // namespace
