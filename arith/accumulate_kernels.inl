// SPDX-License-Identifier: Apache-2.0
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
inline constexpr int kVecs = 4;  // the masked forms spread one vector of mask bytes over four

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
            if constexpr (kMask) ZeroBytesToFloatMasks4(df, rm + x, keep);
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
