// Accumulation kernels, compiled once per instruction-set path (see
// core/isa_expand.h). One float vector holds kLanes accumulator elements.

inline constexpr int kLanes = ZEB_VEC_BYTES / 4;
typedef float vf __attribute__((vector_size(ZEB_VEC_BYTES)));
typedef int32_t vi __attribute__((vector_size(ZEB_VEC_BYTES)));

// kLanes source elements widened exactly to floats.
template <class T>
inline __attribute__((always_inline)) vf load_as_f(const T* p) {
    if constexpr (std::is_same_v<T, float>) {
        vf v;
        std::memcpy(&v, p, sizeof v);
        return v;
    } else {
#if ZEB_VEC_BYTES == 32
        __m256i i;
        if constexpr (std::is_same_v<T, uint8_t>)
            i = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
        else if constexpr (std::is_same_v<T, int8_t>)
            i = _mm256_cvtepi8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
        else
            i = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
        return _mm256_cvtepi32_ps(i);
#else
        const __m128i z = _mm_setzero_si128();
        __m128i i;
        if constexpr (std::is_same_v<T, uint8_t>) {
            i = _mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(load_u<int32_t>(p)), z), z);
        } else if constexpr (std::is_same_v<T, int8_t>) {
            const __m128i b = _mm_cvtsi32_si128(load_u<int32_t>(p));
            i = _mm_srai_epi32(_mm_unpacklo_epi16(_mm_unpacklo_epi8(b, b), _mm_unpacklo_epi8(b, b)), 24);
        } else {
            i = _mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), z);
        }
        return _mm_cvtepi32_ps(i);
#endif
    }
}

// Where the mask byte is zero the old value stays: keep(m) is all ones in
// those lanes, select(r, a, keep) takes a there and r elsewhere.
#if ZEB_VEC_BYTES == 32
inline __attribute__((always_inline)) vf keep_lanes(const uint8_t* m) {
    const __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(m));
    return _mm256_castsi256_ps(_mm256_cvtepi8_epi32(_mm_cmpeq_epi8(b, _mm_setzero_si128())));
}
inline __attribute__((always_inline)) vf select(vf r, vf a, vf keep) { return _mm256_blendv_ps(r, a, keep); }
#else
inline __attribute__((always_inline)) vf keep_lanes(const uint8_t* m) {
    const __m128i e = _mm_cmpeq_epi8(_mm_cvtsi32_si128(load_u<int32_t>(m)), _mm_setzero_si128());
    return _mm_castsi128_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(e, e), _mm_unpacklo_epi8(e, e)));
}
inline __attribute__((always_inline)) vf select(vf r, vf a, vf keep) {
    return _mm_or_ps(_mm_and_ps(keep, a), _mm_andnot_ps(keep, r));
}
#endif

template <Store kStore>
inline __attribute__((always_inline)) void store_f(float* p, vf v) {
    if constexpr (kStore == Store::Stream) {
#if ZEB_VEC_BYTES == 32
        _mm256_stream_ps(p, v);
#else
        _mm_stream_ps(p, v);
#endif
    } else {
        std::memcpy(__builtin_assume_aligned(p, ZEB_VEC_BYTES), &v, sizeof v);
    }
}

// One row: out[x] = Op(in[x], s1[x], s2[x], alpha), kept where the mask is
// zero. in and out are the same row for the in-place forms.
template <class Op, class T, bool kTwo, bool kMask, Store kStore>
void accumulate_row(const T* s1, const T* s2, const uint8_t* m, const float* in, float* out, int w,
                    float alpha) {
    const vf va = vf{} + alpha;
    auto scalar = [&](int x) {
        if (kMask && m[x] == 0) {
            out[x] = in[x];
            return;
        }
        const float b = kTwo ? ref::to_f(s2[x]) : 0.f;
        out[x] = Op::apply(in[x], ref::to_f(s1[x]), b, alpha);
    };
    // kUnroll independent vectors per step keep enough loads in flight.
    auto block = [&](int x0) {
        for (int k = 0; k < kUnroll; ++k) {
            const int x = x0 + k * kLanes;
            vf a;
            std::memcpy(&a, in + x, sizeof a);
            const vf b = kTwo ? load_as_f(s2 + x) : vf{};
            vf r = Op::apply(a, load_as_f(s1 + x), b, va);
            if constexpr (kMask) r = select(r, a, keep_lanes(m + x));
            store_f<kStore>(out + x, r);
        }
    };
    drive_row<ZEB_VEC_BYTES, kUnroll * kLanes>(out, w, scalar, block);
}

template <class Op, class T, bool kTwo, bool kMask, Store kStore>
void accumulate_image(const AccumArgs<T>& a, ZebiSize roi, float alpha) {
    for (int y = 0; y < roi.height; ++y) {
        accumulate_row<Op, T, kTwo, kMask, kStore>(
            row(a.s1, a.s1Step, y), kTwo ? row(a.s2, a.s2Step, y) : nullptr,
            kMask ? row(a.mask, a.maskStep, y) : nullptr, row(a.in, a.inStep, y), row(a.out, a.outStep, y),
            roi.width, alpha);
    }
    if constexpr (kStore == Store::Stream) _mm_sfence();
}
