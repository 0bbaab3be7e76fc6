// SPDX-License-Identifier: Apache-2.0
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

#include <algorithm>
#include <cstdint>
#include <type_traits>

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
// the first product starts the sum (fref::taps_sum, lane by lane). ld is
// called with std::integral_constant<int, i>, so it may use i at compile
// time.
template <class Taps, int I, bool kStarted, class V, class Ld>
HWY_INLINE V dot_from(const Ld& ld, V acc) {
    if constexpr (I == Taps::n) {
        return acc;
    } else if constexpr (Taps::c[I] == 0) {
        return dot_from<Taps, I + 1, kStarted>(ld, acc);
    } else {
        const V p = scaled<Taps::c[I]>(ld(std::integral_constant<int, I>{}));
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

// t(x) for x in x0 .. x1-1 of one line from the k source rows rows[0..k-1].
template <class D, int T, class S>
void column_line(const S* const* rows, typename Lane<S>::W* HWY_RESTRICT t, int x0, int x1) {
    using W = typename Lane<S>::W;
    using A = typename Lane<S>::A;
    using V = hn::Vec<Vd<W>>;
    using C = Taps<D, T, false>;
    constexpr int kN = int(hn::MaxLanes(Vd<W>()));
    int x = x0;
    for (; x + kN <= x1; x += kN) {
        const auto ld = [&](int i) HWY_ATTR { return load_line(rows[i] + x); };
        hn::StoreU(dot<C, V>(ld), Vd<W>(), t + x);
    }
    for (; x < x1; ++x) t[x] = W(fref::taps_sum<C, A>([&](int i) { return rows[i][x]; }));
}

// The same for the lines of two consecutive output rows at once: rows[0 .. k]
// hold k + 1 source rows, the first line uses rows 0 .. k-1, the second
// 1 .. k, and every source vector is loaded once for both.
template <class D, int T, class S>
void column_line2(const S* const* rows, typename Lane<S>::W* HWY_RESTRICT ta, typename Lane<S>::W* HWY_RESTRICT tb,
                  int x0, int x1) {
    using W = typename Lane<S>::W;
    using A = typename Lane<S>::A;
    using V = hn::Vec<Vd<W>>;
    using C = Taps<D, T, false>;
    constexpr int kN = int(hn::MaxLanes(Vd<W>()));
    // Local copies: the line stores cannot change them, so they stay in
    // registers.
    const S* rp[D::k + 1];
    for (int i = 0; i <= D::k; ++i) rp[i] = rows[i];
    int x = x0;
    for (; x + kN <= x1; x += kN) {
        V v[D::k + 1];
        for (int i = 0; i <= D::k; ++i) v[i] = load_line(rp[i] + x);
        const auto lda = [&](int i) HWY_ATTR { return v[i]; };
        const auto ldb = [&](int i) HWY_ATTR { return v[i + 1]; };
        hn::StoreU(dot<C, V>(lda), Vd<W>(), ta + x);
        hn::StoreU(dot<C, V>(ldb), Vd<W>(), tb + x);
    }
    for (; x < x1; ++x) {
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
HWY_INLINE void put_block(int16_t* HWY_RESTRICT p, const V* v) {
    StoreKind<kStore>(O == Out::S16Neg ? hn::Neg(v[0]) : v[0], Vd<int16_t>(), p);
}
template <Out O, class D, Store kStore, class V>
HWY_INLINE void put_block(float* HWY_RESTRICT p, const V* v) {
    V f = v[0];
    if constexpr (O == Out::F32Neg) f = hn::Neg(f);
    if constexpr (O == Out::F32Mean) f = hn::Mul(f, hn::Set(Vd<float>(), 1.0f / float(cell_count<D>())));
    StoreKind<kStore>(f, Vd<float>(), p);
}
template <Out O, class D, Store kStore, class V>
HWY_INLINE void put_block(uint8_t* HWY_RESTRICT p, const V* v) {
    const Vd<uint8_t> du8;
    const hn::Rebind<uint8_t, Vd<int16_t>> dh;
    const auto bytes = hn::Combine(du8, hn::DemoteTo(dh, mean_u8<D>(v[1])), hn::DemoteTo(dh, mean_u8<D>(v[0])));
    StoreKind<kStore>(bytes, du8, p);
}

// Results per store: one vector of sums, two for bytes.
template <class Dst>
inline constexpr int kSub = sizeof(Dst) == 1 ? 2 : 1;

// out(x) for x in x0 .. x1-1 (out + x0 on a vector boundary, or x0 == 0):
// the sum of the row taps over t0, plus those of the second term over t1
// (a column line or the source row itself).
template <class D, Out O, Store kStore, class S, class P1, class Dst>
void output_range(const typename Lane<S>::W* t0, const P1* t1, Dst* out, int x0, int x1) {
    using W = typename Lane<S>::W;
    using A = typename Lane<S>::A;
    using V = hn::Vec<Vd<W>>;
    constexpr int r = D::k / 2;
    constexpr int kN = int(hn::MaxLanes(Vd<W>()));
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
        x += x0;
        V acc[kSub<Dst>];
        for (int s = 0; s < kSub<Dst>; ++s) acc[s] = sums(x + s * kN);
        put_block<O, D, kStore>(out + x, acc);
    };
    auto scalar = [&](int x) {
        x += x0;
        A acc = fref::taps_sum<R0, A>([&](int i) { return t0[x + i - r]; });
        if constexpr (D::terms == 2) acc = A(acc + fref::taps_sum<R1, A>([&](int i) { return t1[x + i - r]; }));
        fref::put<O, D>(out + x, acc);
    };
    drive_row<kVecBytes, kSub<Dst> * kN>(out + x0, x1 - x0, scalar, block);
}

// Tap loaders of the sliding body. RowsAt: source row i at x, widened to
// line elements. Shifted: the row of column sums read at offset i - r,
// from the vectors before, at and after x.
template <class S>
struct RowsAt {
    const S* const* rows;
    int x;
    template <int I>
    HWY_INLINE auto operator()(std::integral_constant<int, I>) const {
        return load_line(rows[I] + x);
    }
};

template <int r, class V>
struct Shifted {
    V prev, cur, next;
    template <int I>
    HWY_INLINE V operator()(std::integral_constant<int, I>) const {
        constexpr int o = I - r;
        const hn::DFromV<V> d;
        if constexpr (o < 0)
            return ShiftInPrev<-o>(d, cur, prev);
        else if constexpr (o > 0)
            return ShiftInNext<o>(d, cur, next);
        else
            return cur;
    }
};

// Where the sliding body of an output row runs: out + head is the first
// vector boundary, blocks at head, head + block, ... up to end (exclusive)
// read their source rows one vector beyond the block, all inside the row.
// end == head when the row is too short for the body.
struct Span {
    int head, end;
};

template <class S, class Dst>
Span slide_span(const Dst* out, int w) {
    constexpr int kN = int(hn::MaxLanes(Vd<typename Lane<S>::W>()));
    constexpr int kBlock = kSub<Dst> * kN;
    const auto addr = reinterpret_cast<std::uintptr_t>(out);
    const int head = int(((kVecBytes - addr % kVecBytes) % kVecBytes) / sizeof(Dst));
    const int blocks = head + kBlock + kN <= w ? (w - kN - head) / kBlock : 0;
    return {head, head + blocks * kBlock};
}

// The sliding body: per vector of outputs, each term's column sums are
// formed once from the source rows one vector ahead, and the row taps read
// them shifted by lanes from three consecutive vectors (prev, cur, next)
// instead of from a line. The sums are the same expression as on the
// line, so the bits are too. rws[0..k-1] are the rows of this output row;
// the lines hold at least positions head-r .. head-1 (for prev).
template <class D, Out O, Store kStore, class S, class Dst>
void slide_body(const S* const* rws, const typename Lane<S>::W* l0, const typename Lane<S>::W* l1, Dst* out,
                Span sp) {
    using W = typename Lane<S>::W;
    using V = hn::Vec<Vd<W>>;
    const Vd<W> d;
    constexpr int r = D::k / 2;
    constexpr int kN = int(hn::MaxLanes(Vd<W>()));
    constexpr int kT = D::terms;
    const S* rp[D::k];
    for (int i = 0; i < D::k; ++i) rp[i] = rws[i];
    using C0 = Taps<D, 0, false>;
    using C1 = Taps<D, kT - 1, false>;
    using R0 = Taps<D, 0, true>;
    using R1 = Taps<D, kT - 1, true>;
    // A centre-only second term has no line: its row taps must then be the
    // centre alone, so that its prev vector is never read.
    constexpr bool kCentre = kT == 2 && centre_only<D, 1>();
    static_assert(!kCentre || (Taps<D, 1, true>::c[0] == 0 && Taps<D, 1, true>::c[D::k - 1] == 0 &&
                               (r == 1 || (Taps<D, 1, true>::c[1] == 0 && Taps<D, 1, true>::c[3] == 0))),
                  "a centre-only term reads the centre column only");
    // Term 0 and term 1 (the same as term 0 for one-term filters, unused).
    V p0 = hn::LoadU(d, l0 + sp.head - kN), c0 = dot<C0, V>(RowsAt<S>{rp, sp.head});
    V p1 = kCentre || kT == 1 ? hn::Zero(d) : hn::LoadU(d, l1 + sp.head - kN);
    V c1 = kT == 2 ? dot<C1, V>(RowsAt<S>{rp, sp.head}) : hn::Zero(d);
    for (int x = sp.head; x < sp.end; x += kSub<Dst> * kN) {
        V acc[kSub<Dst>];
        for (int s = 0; s < kSub<Dst>; ++s) {
            const int xn = x + (s + 1) * kN;
            const V n0 = dot<C0, V>(RowsAt<S>{rp, xn});
            acc[s] = dot<R0, V>(Shifted<r, V>{p0, c0, n0});
            p0 = c0;
            c0 = n0;
            if constexpr (kT == 2) {
                const V n1 = dot<C1, V>(RowsAt<S>{rp, xn});
                acc[s] = hn::Add(acc[s], dot<R1, V>(Shifted<r, V>{p1, c1, n1}));
                p1 = c1;
                c1 = n1;
            }
        }
        put_block<O, D, kStore>(out + x, acc);
    }
}

// ---- the whole image ----

template <class D, Out O, Store kStore, class S, class Dst>
void filter_image(const Job<S, Dst>& j) {
    using W = typename Lane<S>::W;
    constexpr int r = D::k / 2;
    constexpr int kN = int(hn::MaxLanes(Vd<W>()));
    constexpr bool kCentre = D::terms == 2 && centre_only<D, 1>();
    constexpr bool kTwoLines = D::terms == 2 && !kCentre;
    constexpr bool k8s = O == Out::S8 || O == Out::S8Neg;
    constexpr Out kLine = O == Out::S8 ? Out::S16 : O == Out::S8Neg ? Out::S16Neg : O;
    // The 8u8s forms store through a 16-bit line, always cached.
    constexpr Store kLineStore = k8s ? Store::Cached : kStore;
    using Res = std::conditional_t<k8s, int16_t, Dst>;
    const int w = j.w, ext = w + 2 * r;

    Carver carve(j.buffer);
    S* constRow = carve.take<S>(ext);
    for (int i = 0; i < ext; ++i) constRow[i] = j.value;
    // Line element 0 sits on a 64-byte boundary; the padding before it
    // holds the r edge columns and lets the sliding body read one vector
    // before any position of the line.
    constexpr int kPad = 64 / int(sizeof(W));
    static_assert(kPad >= kN && kPad > r, "line padding");
    auto take_line = [&] { return carve.take<W>(std::size_t(w + r + kPad)) + kPad; };
    // Lines of the upper (t) and lower (u) row of a pair, per term.
    W* t[2] = {take_line(), kTwoLines ? take_line() : nullptr};
    W* u[2] = {take_line(), kTwoLines ? take_line() : nullptr};
    int16_t* line = k8s ? carve.take<int16_t>(w) : nullptr;

    const S* rows[6];
    auto fetch = [&](int y, int count) {
        for (int i = 0; i < count; ++i) {
            const S* p = border::source_row(j.src, j.srcStep, y - r + i, j.h, j.spec);
            rows[i] = p ? p : constRow + r;
        }
    };
    auto out_row = [&](int y) -> Res* {
        if constexpr (k8s)
            return line;
        else
            return row(j.dst, j.dstStep, y);
    };
    // The column lines of the positions a pair of rows (or the last row)
    // reads from lines: all of them when a row has no sliding body,
    // otherwise the head (and one vector more, which also covers what the
    // mirror edges read) and the tail.
    auto lines = [&](int count, Span a, Span b) {
        auto compute = [&](int x0, int x1) {
            if (count == 2) {
                column_line2<D, 0>(rows, t[0], u[0], x0, x1);
                if constexpr (kTwoLines) column_line2<D, 1>(rows, t[1], u[1], x0, x1);
            } else {
                column_line<D, 0>(rows, t[0], x0, x1);
                if constexpr (kTwoLines) column_line<D, 1>(rows, t[1], x0, x1);
            }
        };
        if (a.end == a.head || b.end == b.head) {
            compute(0, w);
        } else {
            const int hl = std::min(w, std::max(a.head, b.head) + kN);
            const int tl = std::max(hl, std::min(a.end, b.end) - kN);
            compute(0, hl);
            compute(tl, w);
        }
    };
    // Output row y from its source rows and lines.
    auto finish = [&](int y, const S* const* rws, W* const* l, Span sp) {
        column_edges<D, 0>(rws, l[0], j);
        if constexpr (kTwoLines) column_edges<D, 1>(rws, l[1], j);
        Res* out = out_row(y);
        const auto* second = [&] {
            if constexpr (kTwoLines)
                return static_cast<const W*>(l[1]);
            else if constexpr (kCentre)
                return rws[r];
            else
                return static_cast<const W*>(l[0]);
        }();
        if (sp.end > sp.head) {
            output_range<D, kLine, kLineStore, S>(l[0], second, out, 0, sp.head);
            // A centre-only second term has no line of its own.
            slide_body<D, kLine, kLineStore, S>(rws, l[0], kTwoLines ? l[1] : l[0], out, sp);
            output_range<D, kLine, kLineStore, S>(l[0], second, out, sp.end, w);
        } else {
            output_range<D, kLine, kLineStore, S>(l[0], second, out, 0, w);
        }
        if constexpr (k8s) {
            Dst* o = row(j.dst, j.dstStep, y);
            for (int x = 0; x < w; ++x) o[x] = Dst(fref::div_round_8s(line[x], j.divisor));
        }
    };
    auto span = [&](int y) { return slide_span<S>(out_row(y), w); };
    int y = 0;
    for (; y + 1 < j.h; y += 2) {
        fetch(y, D::k + 1);
        const Span a = span(y), b = span(y + 1);
        lines(2, a, b);
        finish(y, rows, t, a);
        finish(y + 1, rows + 1, u, b);
    }
    if (y < j.h) {
        fetch(y, D::k);
        const Span a = span(y);
        lines(1, a, a);
        finish(y, rows, t, a);
    }
    FinishStores<kStore>();
}

}  // namespace zeb::HWY_NAMESPACE::fixed
HWY_AFTER_NAMESPACE();

#endif  // ZEB_FILTER_FIXED_FILTER_KERNELS_
