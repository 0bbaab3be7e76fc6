// Kernels of the fixed 3x3 and 5x5 filters, compiled once per
// instruction-set path (see core/isa_expand.h). The vector body and the
// scalar tail evaluate the same expression tree, so every path gives the
// same bits. 8-bit sources are widened to 16-bit lanes: every sum these
// kernels form stays within -32640..32640, so 16-bit arithmetic is exact.

#define ZEB_AI inline __attribute__((always_inline))

typedef int16_t vs __attribute__((vector_size(ZEB_VEC_BYTES)));
typedef float vf __attribute__((vector_size(ZEB_VEC_BYTES)));

// Per source type: line element W, its vector V, the scalar accumulator A
// and the lanes per vector.
template <class S>
struct Lane;
template <>
struct Lane<uint8_t> {
    using W = int16_t;
    using V = vs;
    using A = int;
    static constexpr int n = ZEB_VEC_BYTES / 2;
};
template <>
struct Lane<float> {
    using W = float;
    using V = vf;
    using A = float;
    static constexpr int n = ZEB_VEC_BYTES / 4;
};

template <class V>
struct Elem {
    using type = V;
};
template <>
struct Elem<vs> {
    using type = int16_t;
};
template <>
struct Elem<vf> {
    using type = float;
};

// ---- loads and stores ----

ZEB_AI vs vload(const uint8_t* p) {
#if ZEB_VEC_BYTES == 32
    return (vs)_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
#else
    return (vs)_mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
#endif
}
ZEB_AI vs vload(const int16_t* p) {
    vs v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
ZEB_AI vf vload(const float* p) {
    vf v;
    std::memcpy(&v, p, sizeof v);
    return v;
}
template <class T, class V>
ZEB_AI void vstore(T* p, V v) {
    std::memcpy(p, &v, sizeof v);
}

// Stores of one whole result vector; the streaming forms need p aligned to
// the vector's byte size, which the row driver guarantees.
template <bool kStream, class T, class V>
ZEB_AI void put_store(T* p, V v) {
    if constexpr (!kStream) {
        std::memcpy(p, &v, sizeof v);
    } else if constexpr (sizeof v == 32) {
        _mm256_stream_si256(reinterpret_cast<__m256i*>(p), __m256i(v));
    } else if constexpr (sizeof v == 16) {
        _mm_stream_si128(reinterpret_cast<__m128i*>(p), __m128i(v));
    } else {
        long long q;
        std::memcpy(&q, &v, 8);
        _mm_stream_si64(reinterpret_cast<long long*>(p), q);
    }
}

ZEB_AI int sload(const uint8_t* p) { return *p; }
ZEB_AI int sload(const int16_t* p) { return *p; }
ZEB_AI float sload(const float* p) { return *p; }

// ---- sums over a table ----

template <int C, class V>
ZEB_AI V scaled(V v) {
    if constexpr (C == 1)
        return v;
    else if constexpr (C == -1)
        return -v;
    else
        return v * typename Elem<V>::type(C);
}

// Sum of Taps::c[i] * ld(i) over the non-zero coefficients in index order;
// the first product starts the sum.
template <class Taps, class V, int I, bool kStarted, class Ld>
ZEB_AI V dot_from(const Ld& ld, V acc) {
    if constexpr (I == Taps::n) {
        return acc;
    } else if constexpr (Taps::c[I] == 0) {
        return dot_from<Taps, V, I + 1, kStarted>(ld, acc);
    } else {
        const V p = scaled<Taps::c[I]>(V(ld(I)));
        if constexpr (kStarted)
            return dot_from<Taps, V, I + 1, true>(ld, V(acc + p));
        else
            return dot_from<Taps, V, I + 1, true>(ld, p);
    }
}
template <class Taps, class V, class Ld>
ZEB_AI V dot(const Ld& ld) {
    return dot_from<Taps, V, 0, false>(ld, V{});
}

// ---- column step: t(x) for x in -r .. w+r-1 ----

template <class D, int T, class S>
void column_line(const S* const* rows, typename Lane<S>::W* t, int w) {
    using L = Lane<S>;
    using C = Taps<D, T, false>;
    int x = 0;
    for (; x + L::n <= w; x += L::n) {
        const auto ld = [&](int i) { return vload(rows[i] + x); };
        vstore(t + x, dot<C, typename L::V>(ld));
    }
    for (; x < w; ++x) {
        const auto ld = [&](int i) { return typename L::A(sload(rows[i] + x)); };
        t[x] = typename L::W(dot<C, typename L::A>(ld));
    }
}

// Column lines of two consecutive output rows at once: rows[0 .. k] hold
// k + 1 source rows, the first line uses rows 0 .. k-1, the second 1 .. k,
// and every source vector is loaded once for both.
template <class D, int T, class S>
void column_line2(const S* const* rows, typename Lane<S>::W* ta, typename Lane<S>::W* tb, int w) {
    using L = Lane<S>;
    using V = typename L::V;
    using C = Taps<D, T, false>;
    // Local copies: the line stores cannot change them, so they stay in
    // registers.
    const S* rp[D::k + 1];
    for (int i = 0; i <= D::k; ++i) rp[i] = rows[i];
    int x = 0;
    for (; x + L::n <= w; x += L::n) {
        V v[D::k + 1];
        for (int i = 0; i <= D::k; ++i) v[i] = vload(rp[i] + x);
        const auto lda = [&](int i) { return v[i]; };
        const auto ldb = [&](int i) { return v[i + 1]; };
        vstore(ta + x, dot<C, V>(lda));
        vstore(tb + x, dot<C, V>(ldb));
    }
    for (; x < w; ++x) {
        const auto lda = [&](int i) { return typename L::A(sload(rows[i] + x)); };
        const auto ldb = [&](int i) { return typename L::A(sload(rows[i + 1] + x)); };
        ta[x] = typename L::W(dot<C, typename L::A>(lda));
        tb[x] = typename L::W(dot<C, typename L::A>(ldb));
    }
}

// The r columns beyond each side: read from memory when that side is in
// memory, the column sum of the border value for a constant border, else
// the column the border rule maps to (the column sums are already there).
template <class D, int T, class S, class Dst>
void column_edges(const S* const* rows, typename Lane<S>::W* t, const Job<S, Dst>& j) {
    using L = Lane<S>;
    using A = typename L::A;
    using C = Taps<D, T, false>;
    constexpr int r = D::k / 2;
    const int w = j.w;
    auto edge = [&](int x, bool inMem) {
        if (inMem) {
            const auto ld = [&](int i) { return A(sload(rows[i] + x)); };
            t[x] = typename L::W(dot<C, A>(ld));
        } else if (j.spec.mode == border::kConst) {
            const auto ld = [&](int) { return A(j.value); };
            t[x] = typename L::W(dot<C, A>(ld));
        } else {
            t[x] = t[border::map_index(x, w, j.spec.mode)];
        }
    };
    for (int x = -r; x < 0; ++x) edge(x, j.spec.left);
    for (int x = w; x < w + r; ++x) edge(x, j.spec.right);
}

// ---- row step and the result ----

template <Out O, class D, bool kStream>
ZEB_AI void put_vec(int16_t* p, vs v) {
    if constexpr (O == Out::S16Neg) v = -v;
    put_store<kStream>(p, v);
}
template <Out O, class D, bool kStream>
ZEB_AI void put_vec(float* p, vf v) {
    if constexpr (O == Out::F32Neg) v = -v;
    if constexpr (O == Out::F32Mean) v = v * (1.0f / float(cell_count<D>()));
    put_store<kStream>(p, v);
}
template <Out O, class D, bool kStream>
ZEB_AI void put_vec(uint8_t* p, vs v) {
    using M = MeanMagic<cell_count<D>()>;
    v = v + int16_t(cell_count<D>() / 2);
#if ZEB_VEC_BYTES == 32
    const __m256i q = _mm256_srli_epi16(_mm256_mulhi_epu16(__m256i(v), _mm256_set1_epi16(int16_t(M::mul))), M::shift);
    put_store<kStream>(p, _mm_packus_epi16(_mm256_castsi256_si128(q), _mm256_extracti128_si256(q, 1)));
#else
    const __m128i q = _mm_srli_epi16(_mm_mulhi_epu16(__m128i(v), _mm_set1_epi16(int16_t(M::mul))), M::shift);
    typedef int64_t v1q __attribute__((vector_size(8)));
    put_store<kStream>(p, v1q{_mm_cvtsi128_si64(_mm_packus_epi16(q, q))});
#endif
}

template <Out O, class D>
ZEB_AI void put_one(int16_t* p, int v) {
    *p = int16_t(O == Out::S16Neg ? -v : v);
}
template <Out O, class D>
ZEB_AI void put_one(float* p, float v) {
    if constexpr (O == Out::F32Neg) v = -v;
    if constexpr (O == Out::F32Mean) v = v * (1.0f / float(cell_count<D>()));
    *p = v;
}
template <Out O, class D>
ZEB_AI void put_one(uint8_t* p, int v) {
    *p = uint8_t((v + cell_count<D>() / 2) / cell_count<D>());
}

// out(x) = sum of the row taps over t0 (plus those of the second term over
// t1, a column line or the source row itself).
template <class D, Out O, bool kStream, class S, class P1, class Dst>
void output_row(const typename Lane<S>::W* t0, const P1* t1, Dst* out, int w) {
    using L = Lane<S>;
    using V = typename L::V;
    using A = typename L::A;
    constexpr int r = D::k / 2;
    using R0 = Taps<D, 0, true>;
    using R1 = Taps<D, D::terms - 1, true>;
    auto block = [&](int x) {
        const auto ld0 = [&](int i) { return vload(t0 + x + i - r); };
        V acc = dot<R0, V>(ld0);
        if constexpr (D::terms == 2) {
            const auto ld1 = [&](int i) { return vload(t1 + x + i - r); };
            acc = acc + dot<R1, V>(ld1);
        }
        put_vec<O, D, kStream>(out + x, acc);
    };
    auto scalar = [&](int x) {
        const auto ld0 = [&](int i) { return A(sload(t0 + x + i - r)); };
        A acc = dot<R0, A>(ld0);
        if constexpr (D::terms == 2) {
            const auto ld1 = [&](int i) { return A(sload(t1 + x + i - r)); };
            acc = acc + dot<R1, A>(ld1);
        }
        put_one<O, D>(out + x, acc);
    };
    drive_row<L::n * int(sizeof(Dst)), L::n>(out, w, scalar, block);
}

// ---- the whole image ----

template <class D, Out O, bool kStream, class S, class Dst>
void filter_image(const Job<S, Dst>& j) {
    using W = typename Lane<S>::W;
    constexpr int r = D::k / 2;
    constexpr bool kTwoLines = D::terms == 2 && !centre_only<D, 1>();
    constexpr bool k8s = O == Out::S8 || O == Out::S8Neg;
    constexpr Out kLine = O == Out::S8 ? Out::S16 : O == Out::S8Neg ? Out::S16Neg : O;
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
                output_row<D, kLine, kStream && !k8s, S>(l0, l1, o, j.w);
            else if constexpr (D::terms == 2)
                output_row<D, kLine, kStream && !k8s, S>(l0, rws[r], o, j.w);
            else
                output_row<D, kLine, kStream && !k8s, S>(l0, l0, o, j.w);
        };
        if constexpr (k8s) {
            emit(line);
            for (int x = 0; x < j.w; ++x) out[x] = Dst(div_round_8s(line[x], j.divisor));
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
    if constexpr (kStream) _mm_sfence();
}

#undef ZEB_AI
