// Kernels of the fixed 3x3 and 5x5 filters, compiled once per vector
// target (Highway's foreach_target re-includes this file). The vector body
// and the scalar head and tail evaluate the same expression tree, so every
// target gives the same bits. 8-bit sources are widened to 16-bit lanes:
// every sum these kernels form stays within -32640..32640, so 16-bit
// arithmetic is exact.
#if defined(ZEB_FILTER_FIXED_FILTER_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_FILTER_FIXED_FILTER_KERNELS_
#undef ZEB_FILTER_FIXED_FILTER_KERNELS_
#else
#define ZEB_FILTER_FIXED_FILTER_KERNELS_
#endif

#include "core/frame.h"
#include "core/simd-inl.h"
#include "filter/fixed_filter.h"
#include "filter/fixed_filter_ref.h"

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::fixed {

using namespace ::zeb::fixed;  // descriptors, Out, Taps, Job
namespace fref = ::zeb::fixed::ref;

// Per source type: the line element W (the lane type of every sum) and the
// scalar accumulator A of the reference.
template <class S>
struct Lane;
template <>
struct Lane<uint8_t> {
    using W = int16_t;
    using A = int;
};
template <>
struct Lane<float> {
    using W = float;
    using A = float;
};

// ---- loads ----

// One full vector of line elements from sources or lines.
HWY_INLINE hn::Vec<Vd<int16_t>> load_line(const uint8_t* HWY_RESTRICT p) {
    const Vd<int16_t> d;
    return hn::PromoteTo(d, hn::LoadU(hn::Rebind<uint8_t, decltype(d)>(), p));
}
HWY_INLINE hn::Vec<Vd<int16_t>> load_line(const int16_t* HWY_RESTRICT p) { return hn::LoadU(Vd<int16_t>(), p); }
HWY_INLINE hn::Vec<Vd<float>> load_line(const float* HWY_RESTRICT p) { return hn::LoadU(Vd<float>(), p); }

// ---- sums over a table ----

// v times the coefficient C. Integer powers of two shift (exact in the
// 16-bit range of these sums); floats multiply as the reference does.
template <int C, class V>
HWY_INLINE V scaled(V v) {
    using T = hn::TFromV<V>;
    constexpr int a = C < 0 ? -C : C;
    if constexpr (C == 1) {
        return v;
    } else if constexpr (C == -1) {
        return hn::Neg(v);
    } else if constexpr (!hwy::IsFloat<T>() && (a & (a - 1)) == 0) {
        constexpr int sh = a == 2 ? 1 : a == 4 ? 2 : a == 8 ? 3 : 4;
        static_assert((1 << sh) == a, "shift table");
        const V s = hn::ShiftLeft<sh>(v);
        return C < 0 ? hn::Neg(s) : s;
    } else {
        return hn::Mul(v, hn::Set(hn::DFromV<V>(), T(C)));
    }
}

// Sum of Taps::c[i] * ld(i) over the non-zero coefficients in index order;
// the first product starts the sum (fref::taps_sum, lane by lane).
template <class Taps, int I, bool kStarted, class V, class Ld>
HWY_INLINE V dot_from(const Ld& ld, V acc) {
    if constexpr (I == Taps::n) {
        return acc;
    } else if constexpr (Taps::c[I] == 0) {
        return dot_from<Taps, I + 1, kStarted>(ld, acc);
    } else {
        const V p = scaled<Taps::c[I]>(ld(I));
        if constexpr (kStarted)
            return dot_from<Taps, I + 1, true>(ld, hn::Add(acc, p));
        else
            return dot_from<Taps, I + 1, true>(ld, p);
    }
}
template <class Taps, class V, class Ld>
HWY_INLINE V dot(const Ld& ld) {
    return dot_from<Taps, 0, false>(ld, V{});
}

// ---- column step: t(x) for x in -r .. w+r-1 ----

template <class D, int T, class S>
void column_line(const S* const* rows, typename Lane<S>::W* HWY_RESTRICT t, int w) {
    using W = typename Lane<S>::W;
    using A = typename Lane<S>::A;
    using V = hn::Vec<Vd<W>>;
    using C = Taps<D, T, false>;
    constexpr int kN = int(hn::MaxLanes(Vd<W>()));
    int x = 0;
    for (; x + kN <= w; x += kN) {
        const auto ld = [&](int i) HWY_ATTR { return load_line(rows[i] + x); };
        hn::StoreU(dot<C, V>(ld), Vd<W>(), t + x);
    }
    for (; x < w; ++x) t[x] = W(fref::taps_sum<C, A>([&](int i) { return rows[i][x]; }));
}

// Column lines of two consecutive output rows at once: rows[0 .. k] hold
// k + 1 source rows, the first line uses rows 0 .. k-1, the second 1 .. k,
// and every source vector is loaded once for both.
template <class D, int T, class S>
void column_line2(const S* const* rows, typename Lane<S>::W* HWY_RESTRICT ta, typename Lane<S>::W* HWY_RESTRICT tb,
                  int w) {
    using W = typename Lane<S>::W;
    using A = typename Lane<S>::A;
    using V = hn::Vec<Vd<W>>;
    using C = Taps<D, T, false>;
    constexpr int kN = int(hn::MaxLanes(Vd<W>()));
    // Local copies: the line stores cannot change them, so they stay in
    // registers.
    const S* rp[D::k + 1];
    for (int i = 0; i <= D::k; ++i) rp[i] = rows[i];
    int x = 0;
    for (; x + kN <= w; x += kN) {
        V v[D::k + 1];
        for (int i = 0; i <= D::k; ++i) v[i] = load_line(rp[i] + x);
        const auto lda = [&](int i) HWY_ATTR { return v[i]; };
        const auto ldb = [&](int i) HWY_ATTR { return v[i + 1]; };
        hn::StoreU(dot<C, V>(lda), Vd<W>(), ta + x);
        hn::StoreU(dot<C, V>(ldb), Vd<W>(), tb + x);
    }
    for (; x < w; ++x) {
        ta[x] = W(fref::taps_sum<C, A>([&](int i) { return rp[i][x]; }));
        tb[x] = W(fref::taps_sum<C, A>([&](int i) { return rp[i + 1][x]; }));
    }
}

// The r columns beyond each side: read from memory when that side is in
// memory, the column sum of the border value for a constant border, else
// the column the border rule maps to (the column sums are already there).
template <class D, int T, class S, class Dst>
void column_edges(const S* const* rows, typename Lane<S>::W* t, const Job<S, Dst>& j) {
    using W = typename Lane<S>::W;
    using A = typename Lane<S>::A;
    using C = Taps<D, T, false>;
    constexpr int r = D::k / 2;
    const int w = j.w;
    auto edge = [&](int x, bool inMem) {
        if (inMem)
            t[x] = W(fref::taps_sum<C, A>([&](int i) { return rows[i][x]; }));
        else if (j.spec.mode == border::kConst)
            t[x] = W(fref::taps_sum<C, A>([&](int) { return j.value; }));
        else
            t[x] = t[border::map_index(x, w, j.spec.mode)];
    };
    for (int x = -r; x < 0; ++x) edge(x, j.spec.left);
    for (int x = w; x < w + r; ++x) edge(x, j.spec.right);
}

// ---- row step and the result ----

// The 8u mean of 16-bit sums: (sum + count / 2) / count by multiply-high.
template <class D, class V>
HWY_INLINE V mean_u8(V v) {
    using M = MeanMagic<cell_count<D>()>;
    const hn::DFromV<V> d;
    const hn::RebindToUnsigned<decltype(d)> du;
    const auto u = hn::BitCast(du, hn::Add(v, hn::Set(d, int16_t(cell_count<D>() / 2))));
    return hn::BitCast(d, hn::ShiftRight<M::shift>(hn::MulHigh(u, hn::Set(du, uint16_t(M::mul)))));
}

// Stores one block of results at the vector-aligned p: one vector of sums
// for 16-bit and float results, two (one vector of bytes) for the 8u mean.
template <Out O, class D, Store kStore, class V>
HWY_INLINE void put_block(int16_t* HWY_RESTRICT p, V v, V) {
    if constexpr (O == Out::S16Neg) v = hn::Neg(v);
    StoreKind<kStore>(v, Vd<int16_t>(), p);
}
template <Out O, class D, Store kStore, class V>
HWY_INLINE void put_block(float* HWY_RESTRICT p, V v, V) {
    if constexpr (O == Out::F32Neg) v = hn::Neg(v);
    if constexpr (O == Out::F32Mean) v = hn::Mul(v, hn::Set(Vd<float>(), 1.0f / float(cell_count<D>())));
    StoreKind<kStore>(v, Vd<float>(), p);
}
template <Out O, class D, Store kStore, class V>
HWY_INLINE void put_block(uint8_t* HWY_RESTRICT p, V lo, V hi) {
    const Vd<uint8_t> du8;
    const hn::Rebind<uint8_t, Vd<int16_t>> dh;
    const auto bytes = hn::Combine(du8, hn::DemoteTo(dh, mean_u8<D>(hi)), hn::DemoteTo(dh, mean_u8<D>(lo)));
    StoreKind<kStore>(bytes, du8, p);
}

// out(x) = sum of the row taps over t0 (plus those of the second term over
// t1, a column line or the source row itself).
template <class D, Out O, Store kStore, class S, class P1, class Dst>
void output_row(const typename Lane<S>::W* t0, const P1* t1, Dst* out, int w) {
    using W = typename Lane<S>::W;
    using A = typename Lane<S>::A;
    using V = hn::Vec<Vd<W>>;
    constexpr int r = D::k / 2;
    constexpr int kN = int(hn::MaxLanes(Vd<W>()));
    // A block is one vector of results; for bytes, two vectors of sums.
    constexpr int kSub = sizeof(Dst) == 1 ? 2 : 1;
    using R0 = Taps<D, 0, true>;
    using R1 = Taps<D, D::terms - 1, true>;
    auto sums = [&](int x) HWY_ATTR {
        const auto ld0 = [&](int i) HWY_ATTR { return load_line(t0 + x + i - r); };
        V acc = dot<R0, V>(ld0);
        if constexpr (D::terms == 2) {
            const auto ld1 = [&](int i) HWY_ATTR { return load_line(t1 + x + i - r); };
            acc = hn::Add(acc, dot<R1, V>(ld1));
        }
        return acc;
    };
    auto block = [&](int x) HWY_ATTR {
        if constexpr (kSub == 2)
            put_block<O, D, kStore>(out + x, sums(x), sums(x + kN));
        else
            put_block<O, D, kStore>(out + x, sums(x), V{});
    };
    auto scalar = [&](int x) {
        A acc = fref::taps_sum<R0, A>([&](int i) { return t0[x + i - r]; });
        if constexpr (D::terms == 2) acc = A(acc + fref::taps_sum<R1, A>([&](int i) { return t1[x + i - r]; }));
        fref::put<O, D>(out + x, acc);
    };
    drive_row<kVecBytes, kSub * kN>(out, w, scalar, block);
}

// ---- the whole image ----

template <class D, Out O, Store kStore, class S, class Dst>
void filter_image(const Job<S, Dst>& j) {
    using W = typename Lane<S>::W;
    constexpr int r = D::k / 2;
    constexpr bool kTwoLines = D::terms == 2 && !centre_only<D, 1>();
    constexpr bool k8s = O == Out::S8 || O == Out::S8Neg;
    constexpr Out kLine = O == Out::S8 ? Out::S16 : O == Out::S8Neg ? Out::S16Neg : O;
    // The 8u8s forms store through a 16-bit line, always cached.
    constexpr Store kLineStore = k8s ? Store::Cached : kStore;
    const int ext = j.w + 2 * r;

    Carver carve(j.buffer);
    S* constRow = carve.take<S>(ext);
    for (int i = 0; i < ext; ++i) constRow[i] = j.value;
    W* t0 = carve.take<W>(ext) + r;
    W* t1 = kTwoLines ? carve.take<W>(ext) + r : nullptr;
    int16_t* line = k8s ? carve.take<int16_t>(j.w) : nullptr;

    // Two output rows per step share their source rows; a second set of
    // lines holds the lower row's column sums.
    W* u0 = carve.take<W>(ext) + r;
    W* u1 = kTwoLines ? carve.take<W>(ext) + r : nullptr;

    const S* rows[6];
    auto fetch = [&](int y, int count) {
        for (int i = 0; i < count; ++i) {
            const S* p = border::source_row(j.src, j.srcStep, y - r + i, j.h, j.spec);
            rows[i] = p ? p : constRow + r;
        }
    };
    // The result of output row y from its lines.
    auto finish = [&](int y, const S* const* rws, W* l0, W* l1) {
        column_edges<D, 0>(rws, l0, j);
        if constexpr (kTwoLines) column_edges<D, 1>(rws, l1, j);
        Dst* out = row(j.dst, j.dstStep, y);
        auto emit = [&](auto* o) {
            if constexpr (kTwoLines)
                output_row<D, kLine, kLineStore, S>(l0, l1, o, j.w);
            else if constexpr (D::terms == 2)
                output_row<D, kLine, kLineStore, S>(l0, rws[r], o, j.w);
            else
                output_row<D, kLine, kLineStore, S>(l0, l0, o, j.w);
        };
        if constexpr (k8s) {
            emit(line);
            for (int x = 0; x < j.w; ++x) out[x] = Dst(fref::div_round_8s(line[x], j.divisor));
        } else {
            emit(out);
        }
    };
    int y = 0;
    for (; y + 1 < j.h; y += 2) {
        fetch(y, D::k + 1);
        column_line2<D, 0>(rows, t0, u0, j.w);
        if constexpr (kTwoLines) column_line2<D, 1>(rows, t1, u1, j.w);
        finish(y, rows, t0, t1);
        finish(y + 1, rows + 1, u0, u1);
    }
    if (y < j.h) {
        fetch(y, D::k);
        column_line<D, 0>(rows, t0, j.w);
        if constexpr (kTwoLines) column_line<D, 1>(rows, t1, j.w);
        finish(y, rows, t0, t1);
    }
    FinishStores<kStore>();
}

}  // namespace zeb::HWY_NAMESPACE::fixed
HWY_AFTER_NAMESPACE();

#endif  // ZEB_FILTER_FIXED_FILTER_KERNELS_
