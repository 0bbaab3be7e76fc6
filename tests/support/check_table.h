// SPDX-License-Identifier: Apache-2.0
// Table-driven argument-check tests with canaries.
//
// A check test describes one export by
//   - an argument record of its own (any struct: pointers, steps, the ROI,
//     parameters, arrays of row pointers, a prepared filter block ...),
//   - `valid`: builds a call that succeeds, taking every piece of memory
//     the call may touch from the Arena it is given,
//   - `call`: calls the export through variant v's table entry,
//   - `cases`: named mutations of the valid call, each with the status it
//     must return. Where two arguments are bad at once, the expected status
//     says which check comes first.
// zt::checks::run(table) runs the valid call and every case through both
// variant table entries. For a case that must fail it runs twice, on blocks
// filled with a pattern and then with its complement, and proves that every
// byte of every block (destinations, work buffers, prepared filter and state
// blocks, outputs of scalar results, the sources too) is unchanged: no
// value a kernel could write equals both fills.
//
//     struct A { const Zeb8u *a, *b; Zeb8u* d; int as, bs, ds; ZebiSize roi; };
//     zt::checks::Table<A> t{"zebiAbsDiff_8u_C1R",
//         [](zt::checks::Arena& m) {
//             auto a = m.image<Zeb8u>("a", 9, 4), b = m.image<Zeb8u>("b", 9, 4),
//                  d = m.image<Zeb8u>("dst", 9, 4);
//             return A{a.ptr, b.ptr, d.ptr, a.step, b.step, d.step, {9, 4}};
//         },
//         [](int v, A& x) { return zeb_tbl_zebiAbsDiff_8u_C1R[v](x.a, x.as, x.b, x.bs, x.d, x.ds, x.roi); },
//         {{"null dst, width 0", [](A& x) { x.d = nullptr, x.roi.width = 0; }, zebStsNullPtrErr},
//          {"short step, width 0", [](A& x) { x.as -= 1, x.roi.width = 0; }, zebStsSizeErr}}};
//     zt::checks::run(t);
//
// Work buffers and prepared filter blocks: allocate them in `valid` with
// m.block(name, bytes) at exactly the size the query returned (against a
// guard page), and prepare the filter there (an Init call); a case may
// then corrupt bytes of it through the pointer it keeps in its record. The
// canaries are taken after the mutation, so the corrupted block must stay
// as the case left it. Scalar outputs (a mean, an index) are blocks too:
// m.array<double>("mean", 1).
//
// Families whose expected statuses differ per member (8-bit steps never
// fail the parity check, say) build one table per member, choosing each
// case's status from the member's properties.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "harness.h"

namespace zt::checks {

// The memory of one run of a case: named guarded blocks, filled with a
// canary pattern (or its complement) as they are made.
class Arena {
public:
    explicit Arena(bool complement) : flip_(complement ? 0xff : 0x00) {}

    // A block of exactly `bytes` bytes between guard pages.
    unsigned char* block(const std::string& name, std::size_t bytes) {
        blocks_.push_back({name, std::make_unique<Guarded>(bytes), {}});
        unsigned char* p = blocks_.back().mem->data();
        const std::size_t salt = blocks_.size() * 0x9e37u;
        for (std::size_t i = 0; i < bytes; ++i) p[i] = uint8_t(((i * 131u + salt) >> 3) ^ (i * 7u) ^ flip_);
        return p;
    }

    template <class T>
    T* array(const std::string& name, std::size_t count) {
        return reinterpret_cast<T*>(block(name, count * sizeof(T)));
    }

    // An image block of w x h pixels of ch channels. The step is the exact
    // row length (the boundary the step checks test); the block holds rows
    // of up to `room` more bytes, so that a case may lengthen the step by
    // that much and still succeed.
    template <class T>
    struct ImageArg {
        T* ptr;
        int step;
    };
    template <class T>
    ImageArg<T> image(const std::string& name, int w, int h, int ch = 1, int room = 0) {
        const std::size_t row = std::size_t(w) * ch * sizeof(T);
        return {reinterpret_cast<T*>(block(name, (row + std::size_t(room)) * std::size_t(h - 1) + row)), int(row)};
    }

    // Remembers every block's bytes as they are now.
    void snapshot() {
        for (Entry& e : blocks_) e.before.assign(e.mem->data(), e.mem->data() + e.mem->size());
    }

    // One line per block whose bytes differ from the snapshot, naming the
    // block, the first changed offset and the number of changed bytes.
    std::string changes() const {
        std::ostringstream out;
        for (const Entry& e : blocks_) {
            std::size_t first = e.before.size(), n = 0;
            for (std::size_t i = 0; i < e.before.size(); ++i)
                if (e.mem->data()[i] != e.before[i]) {
                    if (n++ == 0) first = i;
                }
            if (n)
                out << "  block \"" << e.name << "\" (" << e.before.size() << " bytes): " << n
                    << " byte(s) changed, first at offset " << first << " (" << int(e.before[first]) << " -> "
                    << int(e.mem->data()[first]) << ")\n";
        }
        return out.str();
    }

private:
    struct Entry {
        std::string name;
        std::unique_ptr<Guarded> mem;
        std::vector<uint8_t> before;
    };
    uint8_t flip_;
    std::vector<Entry> blocks_;
};

template <class Args>
struct Case {
    std::string name;
    std::function<void(Args&)> mutate;
    ZebStatus want;
};

template <class Args>
struct Table {
    std::string name;                             // the export, for messages
    std::function<Args(Arena&)> valid;            // a call that succeeds
    std::function<ZebStatus(int, Args&)> call;    // through variant v's table entry
    std::vector<Case<Args>> cases;
    ZebStatus validStatus = zebStsNoErr;          // what the valid call returns
};

namespace detail {

template <class Args>
void run_one(const Table<Args>& t, const std::string& what, const std::function<void(Args&)>& mutate,
             ZebStatus want) {
    for (int v = 0; v < 2; ++v)
        for (int pass = 0; pass < (want < 0 ? 2 : 1); ++pass) {
            Arena arena(pass == 1);
            Args args = t.valid(arena);
            if (mutate) mutate(args);
            arena.snapshot();
            const ZebStatus got = t.call(v, args);
            EXPECT_EQ(got, want) << t.name << " variant " << (v ? "n8" : "u8") << ": " << what;
            if (want < 0) {
                const std::string changed = arena.changes();
                if (!changed.empty())
                    ADD_FAILURE() << t.name << " variant " << (v ? "n8" : "u8") << ": " << what << " returned "
                                  << got << " but wrote\n"
                                  << changed;
            }
        }
}

}  // namespace detail

// Runs the valid call and every case of the table through both variants.
template <class Args>
void run(const Table<Args>& t) {
    detail::run_one<Args>(t, "valid call", {}, t.validStatus);
    for (const Case<Args>& c : t.cases) detail::run_one<Args>(t, c.name, c.mutate, c.want);
}

}  // namespace zt::checks
