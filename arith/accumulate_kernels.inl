// Accumulation kernels, compiled once per vector target (Highway's
// foreach_target re-includes this file). The vector bodies repeat the
// scalar definitions of arith/arith_ref.h operation for operation (no fused
// multiply-add, no reassociation), so the two agree bit for bit.
#if defined(ZEB_ARITH_ACCUMULATE_KERNELS_) == defined(HWY_TARGET_TOGGLE)
#ifdef ZEB_ARITH_ACCUMULATE_KERNELS_
#undef ZEB_ARITH_ACCUMULATE_KERNELS_
#else
#define ZEB_ARITH_ACCUMULATE_KERNELS_
#endif

#include "arith/accumulate_args.h"
#include "arith/arith_ref.h"
#include "core/frame.h"
#include "core/simd-inl.h"

#include <type_traits>

HWY_BEFORE_NAMESPACE();
namespace zeb::HWY_NAMESPACE::accum {

using zeb::accum::Images;

// Float vectors per block: four independent load-compute-store chains.
inline constexpr int kVecs = 4;

// The vector form of ref::Op, operation for operation.
template <class Op, class V>
HWY_INLINE V Apply(V a, V s1, V s2, V alpha) {
    if constexpr (std::is_same_v<Op, ref::Add>)
        return hn::Add(a, s1);
    else if constexpr (std::is_same_v<Op, ref::Square>)
        return hn::Add(a, hn::Mul(s1, s1));
    else if constexpr (std::is_same_v<Op, ref::Product>)
        return hn::Add(a, hn::Mul(s1, s2));
    else
        return hn::Add(hn::Mul(hn::Sub(s1, a), alpha), a);
}

// The kept lanes (mask byte zero) of the kVecs float vectors of one block,
// from its kVecs * kN mask bytes: one byte comparison for the whole block,
// then spread to float lanes.
template <class DF>
HWY_INLINE void BlockKeep(DF df, const uint8_t* HWY_RESTRICT m, hn::Mask<DF>* HWY_RESTRICT keep) {
    constexpr int kN = int(hn::MaxLanes(df));
    static_assert(kVecs == 4 && kVecs * kN == kVecBytes, "a block's mask bytes fill one byte vector");
    const hn::Repartition<uint8_t, DF> d8;
    const auto zero = hn::Eq(hn::LoadU(d8, m), hn::Zero(d8));
#if HWY_TARGET == HWY_AVX3
    // One bit per byte: each float vector takes its 16 bits.
    const uint64_t bits = zero.raw;
    for (int k = 0; k < kVecs; ++k) keep[k] = hn::Mask<DF>{static_cast<__mmask16>(bits >> (kN * k))};
#elif HWY_TARGET == HWY_AVX2
    // Sign-extend each quarter of the byte mask to 32-bit lanes.
    const __m256i e = hn::VecFromMask(d8, zero).raw;
    const __m128i lo = _mm256_castsi256_si128(e), hi = _mm256_extracti128_si256(e, 1);
    const __m128i q[kVecs] = {lo, _mm_unpackhi_epi64(lo, lo), hi, _mm_unpackhi_epi64(hi, hi)};
    for (int k = 0; k < kVecs; ++k) keep[k] = hn::MaskFromVec(hn::Vec256<float>{_mm256_castsi256_ps(_mm256_cvtepi8_epi32(q[k]))});
#else
    // Double each byte twice: 16 bytes give four vectors of 32-bit lanes.
    const hn::Repartition<uint16_t, DF> d16;
    const auto e = hn::VecFromMask(d8, zero);
    const auto w0 = hn::BitCast(d16, hn::InterleaveLower(e, e)), w1 = hn::BitCast(d16, hn::InterleaveUpper(d8, e, e));
    keep[0] = hn::MaskFromVec(hn::BitCast(df, hn::InterleaveLower(w0, w0)));
    keep[1] = hn::MaskFromVec(hn::BitCast(df, hn::InterleaveUpper(d16, w0, w0)));
    keep[2] = hn::MaskFromVec(hn::BitCast(df, hn::InterleaveLower(w1, w1)));
    keep[3] = hn::MaskFromVec(hn::BitCast(df, hn::InterleaveUpper(d16, w1, w1)));
#endif
}

// out = Op(in, s1, s2, alpha) over a w x h region, kept where the mask byte
// is zero. Rows run through drive_row: blocks of kVecs vectors with aligned
// stores to out, scalar head and tail.
template <class Op, class T, bool kTwo, bool kMask, Store kStore>
void image(const Images<T>& a, int w, int h, float alpha) {
    const Vd<float> df;
    constexpr int kN = int(hn::MaxLanes(df));
    const auto va = hn::Set(df, alpha);
    const auto none = hn::Zero(df);
    for (int y = 0; y < h; ++y) {
        const T* HWY_RESTRICT r1 = row(a.s1, a.s1Step, y);
        const T* HWY_RESTRICT r2 = kTwo ? row(a.s2, a.s2Step, y) : nullptr;
        const uint8_t* HWY_RESTRICT rm = kMask ? row(a.mask, a.maskStep, y) : nullptr;
        const float* ri = row(a.in, a.inStep, y);
        float* ro = row(a.out, a.outStep, y);
        auto scalar = [&](int x) {
            if (kMask && rm[x] == 0) {
                ro[x] = ri[x];
                return;
            }
            const float b = kTwo ? ref::to_f(r2[x]) : 0.f;
            ro[x] = Op::apply(ri[x], ref::to_f(r1[x]), b, alpha);
        };
        auto block = [&](int x) HWY_ATTR {
            hn::Mask<Vd<float>> keep[kVecs];
            if constexpr (kMask) BlockKeep(df, rm + x, keep);
            for (int k = 0; k < kVecs; ++k) {
                const int o = x + k * kN;
                const auto acc = hn::LoadU(df, ri + o);
                const auto b = kTwo ? LoadAsF32(r2 + o) : none;
                auto r = Apply<Op>(acc, LoadAsF32(r1 + o), b, va);
                if constexpr (kMask) r = hn::IfThenElse(keep[k], acc, r);
                StoreKind<kStore>(r, df, ro + o);
            }
        };
        drive_row<kVecBytes, kVecs * kN>(ro, w, scalar, block);
    }
    FinishStores<kStore>();
}

}  // namespace zeb::HWY_NAMESPACE::accum
HWY_AFTER_NAMESPACE();

#endif  // ZEB_ARITH_ACCUMULATE_KERNELS_
