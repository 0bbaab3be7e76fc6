// Accumulation kernels, compiled once per instruction-set path (see
// core/isa_expand.h). One float vector holds kLanes accumulator elements.

inline constexpr int kLanes = ZEB_VEC_BYTES / 4;
typedef float vf __attribute__((vector_size(ZEB_VEC_BYTES)));
typedef int32_t vi __attribute__((vector_size(ZEB_VEC_BYTES)));

template <class T>
inline __attribute__((always_inline)) vf load_as_f(const T* p) {
    typedef T vt __attribute__((vector_size(kLanes * sizeof(T))));
    vt t;
    std::memcpy(&t, p, sizeof t);
    if constexpr (std::is_same_v<T, float>)
        return t;
    else
        return __builtin_convertvector(__builtin_convertvector(t, vi), vf);
}

// All ones where the mask byte is non-zero.
inline __attribute__((always_inline)) vi mask_lanes(const uint8_t* m) {
    typedef uint8_t vb __attribute__((vector_size(kLanes)));
    vb t;
    std::memcpy(&t, m, sizeof t);
    return __builtin_convertvector(t, vi) != 0;
}

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
    auto block = [&](int x) {
        vf a;
        std::memcpy(&a, in + x, sizeof a);
        const vf b = kTwo ? load_as_f(s2 + x) : vf{};
        vf r = Op::apply(a, load_as_f(s1 + x), b, va);
        if constexpr (kMask) {
            const vi sel = mask_lanes(m + x);
            r = vf(((vi)r & sel) | ((vi)a & ~sel));
        }
        store_f<kStore>(out + x, r);
    };
    drive_row<ZEB_VEC_BYTES, kLanes>(out, w, scalar, block);
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
