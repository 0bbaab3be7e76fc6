// Extremum kernels, compiled once per instruction-set path (see
// core/isa_expand.h). Values are compared as order-preserving keys
// (stats_ref.h); unselected lanes take the neutral key of each side. For
// floats the new value is the first operand of the vector minimum and
// maximum, which return the second operand when either is NaN, so NaN
// pixels are skipped as in the scalar definition.

#include "stats/vec_ops.inl"

// Folds the lanes of the running minimum and maximum into mn and mx. The
// vectors come by value, so the loop keeps them in registers.
template <class K, class W>
inline void reduce_keys(W vmn, W vmx, K& mn, K& mx) {
    K a[kVecBytes / sizeof(K)], b[kVecBytes / sizeof(K)];
    std::memcpy(a, &vmn, sizeof a);
    std::memcpy(b, &vmx, sizeof b);
    for (std::size_t i = 0; i < sizeof a / sizeof(K); ++i) {
        mn = a[i] < mn ? a[i] : mn;
        mx = b[i] > mx ? b[i] : mx;
    }
}

#if ZEB_VEC_BYTES == 32
typedef __m256 VF;
inline VF fld(const float* p) { return _mm256_loadu_ps(p); }
inline VF fset(float v) { return _mm256_set1_ps(v); }
inline VF fmin(VF a, VF b) { return _mm256_min_ps(a, b); }
inline VF fmax(VF a, VF b) { return _mm256_max_ps(a, b); }
inline VF fpick(VF sel, VF a, VF b) { return _mm256_blendv_ps(b, a, sel); }
inline VF fcast(V v) { return _mm256_castsi256_ps(v); }
#else
typedef __m128 VF;
inline VF fld(const float* p) { return _mm_loadu_ps(p); }
inline VF fset(float v) { return _mm_set1_ps(v); }
inline VF fmin(VF a, VF b) { return _mm_min_ps(a, b); }
inline VF fmax(VF a, VF b) { return _mm_max_ps(a, b); }
inline VF fpick(VF sel, VF a, VF b) { return _mm_or_ps(_mm_and_ps(sel, a), _mm_andnot_ps(sel, b)); }
inline VF fcast(V v) { return _mm_castsi128_ps(v); }
#endif

// Updates e with the selected pixels of a run.
template <class T, bool kMask>
void extrema_run(const T* p, const uint8_t* m, int n, Extrema<T>& e) {
    constexpr int kE = kVecBytes / int(sizeof(T));
    int x = 0;
    if (n >= kE) {
        if constexpr (std::is_same_v<T, float>) {
            VF mn = fset(e.mn), mx = fset(e.mx);
            V any = vzero();
            const VF hi = fset(Key<T>::hi), lo = fset(Key<T>::lo);
            for (; x + kE <= n; x += kE) {
                const VF v = fld(p + x);
                if constexpr (kMask) {
                    const V sel = vsel32(m + x);
                    any = vor(any, sel);
                    mn = fmin(fpick(fcast(sel), v, hi), mn);
                    mx = fmax(fpick(fcast(sel), v, lo), mx);
                } else {
                    mn = fmin(v, mn);
                    mx = fmax(v, mx);
                }
            }
            reduce_keys<float>(mn, mx, e.mn, e.mx);
            e.any = e.any || !kMask || hsum64(any) != 0;
        } else if constexpr (sizeof(T) == 1) {
            V mn = vset8(e.mn), mx = vset8(e.mx), any = vzero();
            const V flip = vset8(std::is_same_v<T, int8_t> ? 0x80 : 0), ones = vset8(-1);
            for (; x + kE <= n; x += kE) {
                const V k = vxor(vld(p + x), flip);
                if constexpr (kMask) {
                    const V sel = vsel8(m + x);
                    any = vor(any, sel);
                    mn = vminu8(mn, vor(k, vxor(sel, ones)));
                    mx = vmaxu8(mx, vand(k, sel));
                } else {
                    mn = vminu8(mn, k);
                    mx = vmaxu8(mx, k);
                }
            }
            reduce_keys<uint8_t>(mn, mx, e.mn, e.mx);
            e.any = e.any || !kMask || hsum64(any) != 0;
        } else {
            V mn = vset16(e.mn), mx = vset16(e.mx), any = vzero();
            const V flip = vset16(0x8000), khi = vset16(0x7fff);
            for (; x + kE <= n; x += kE) {
                const V k = vxor(vld(p + x), flip);
                if constexpr (kMask) {
                    const V sel = vsel16(m + x);
                    any = vor(any, sel);
                    mn = vmini16(mn, vor(vand(k, sel), vandnot(sel, khi)));
                    mx = vmaxi16(mx, vor(vand(k, sel), vandnot(sel, flip)));
                } else {
                    mn = vmini16(mn, k);
                    mx = vmaxi16(mx, k);
                }
            }
            reduce_keys<int16_t>(mn, mx, e.mn, e.mx);
            e.any = e.any || !kMask || hsum64(any) != 0;
        }
    }
    extrema(p + x, kMask ? m + x : nullptr, n - x, e);
}
