// SPDX-License-Identifier: Apache-2.0
// The scanline flood fill shared by the flood fills and marker labelling.
//
// A region grows span by span: a span is a maximal run of accepted pixels
// on one row. Each span found is filled at once and pushed with the span it
// was found from (its parent) and the direction back to the parent's row;
// popping it scans the row away from the parent in full and, on the
// parent's row, only the parts outside the parent, which is already filled.
//
// The acceptance test, the marking and the question "is this pixel filled"
// belong to a policy P:
//   bool ok(int x, int y, int rx, int ry)  (x, y) is a candidate, tested
//                                          against the accepted reference
//                                          pixel (rx, ry) where that matters;
//   void take(int x, int y)                fill (or mark) the pixel;
//   bool taken(int x, int y)               whether the pixel was filled by
//                                          this fill (the rescan below).
// ok must be false for pixels already taken, so nothing is filled twice.
// A policy may also offer whole-run forms, which the fill then uses instead
// of the pixel-by-pixel loops:
//   int extend_right(int x, int y)   take the candidates right of the taken
//                                    pixel x, return the last one taken;
//   int extend_left(int x, int y)    likewise leftwards, the first taken;
//   int find(int a, int b, int y)    the first candidate in [a, b] of row y
//                                    (b + 1 for none), for policies whose
//                                    test does not depend on the reference;
//   int find_ref(int a, int b, int y, int ry, int xl, int xr)
//                                    the same for a test against the span
//                                    [xl, xr] of row ry.
//
// The stack lives in the caller's buffer and is never overrun. A span that
// finds the stack full is dropped; once the stack drains, a rescan of the
// bounding box finds every filled pixel with an unfilled candidate
// neighbour and starts from there again, until a rescan drops nothing.
#pragma once

#include <algorithm>
#include <cstdint>

namespace zeb::region {

struct Span {
    int32_t y, xl, xr, pl, pr, dir;
};

struct FillResult {
    int64_t area = 0;
    int x0 = 0, y0 = 0, x1 = -1, y1 = -1;  // bounding box, inclusive
};

template <class P, bool k8>
class SpanFill {
public:
    SpanFill(P& p, int w, int h, Span* stack, int64_t capacity)
        : p_(p), w_(w), h_(h), stack_(stack), cap_(capacity) {}

    FillResult run(int sx, int sy) {
        r_.x0 = r_.x1 = sx;
        r_.y0 = r_.y1 = sy;
        p_.take(sx, sy);
        const int r = right(sx, sy), l = left(sx, sy);
        found(sy, l, r);
        if (h_ == 1) return r_;
        push({sy, l, r, r + 1, r, sy == h_ - 1 ? -1 : 1});
        drain();
        while (dropped_) {
            dropped_ = false;
            rescan();
        }
        return r_;
    }

private:
    void found(int y, int l, int r) {
        r_.area += r - l + 1;
        r_.x0 = std::min(r_.x0, l), r_.x1 = std::max(r_.x1, r);
        r_.y0 = std::min(r_.y0, y), r_.y1 = std::max(r_.y1, y);
    }

    void push(const Span& s) {
        if (sp_ < cap_)
            stack_[sp_++] = s;
        else
            dropped_ = true;
    }

    int right(int x, int y) {
        if constexpr (requires { p_.extend_right(x, y); }) {
            return p_.extend_right(x, y);
        } else {
            while (x + 1 < w_ && p_.ok(x + 1, y, x, y)) p_.take(++x, y);
            return x;
        }
    }
    int left(int x, int y) {
        if constexpr (requires { p_.extend_left(x, y); }) {
            return p_.extend_left(x, y);
        } else {
            while (x > 0 && p_.ok(x - 1, y, x, y)) p_.take(--x, y);
            return x;
        }
    }

    // Fills the span through (x, y), a candidate already tested, and pushes
    // it with parent [pl, pr] on the row y + dir.
    int grow(int x, int y, int pl, int pr, int dir) {
        p_.take(x, y);
        const int l = left(x, y), r = right(x, y);
        found(y, l, r);
        push({y, l, r, pl, pr, dir});
        return r;
    }

    // Scans [a, b] of row ny for candidates next to the span [xl, xr] of
    // row y; the reference is the span pixel in the same column (the end
    // pixel for the diagonal steps past its ends).
    void scan(int ny, int a, int b, int y, int xl, int xr, int dir) {
        if constexpr (requires { p_.find_ref(a, b, ny, y, xl, xr); }) {
            for (int x = p_.find_ref(a, b, ny, y, xl, xr); x <= b; x = p_.find_ref(x, b, ny, y, xl, xr))
                x = grow(x, ny, xl, xr, dir) + 1;
            return;
        } else if constexpr (requires { p_.find(a, b, ny); }) {
            for (int x = p_.find(a, b, ny); x <= b; x = p_.find(x, b, ny)) x = grow(x, ny, xl, xr, dir) + 1;
            return;
        }
        for (int x = a; x <= b;) {
            if (p_.ok(x, ny, std::clamp(x, xl, xr), y))
                x = grow(x, ny, xl, xr, dir) + 1;
            else
                ++x;
        }
    }

    void drain() {
        constexpr int k = k8 ? 1 : 0;
        while (sp_ > 0) {
            const Span s = stack_[--sp_];
            const int a = std::max(s.xl - k, 0), b = std::min(s.xr + k, w_ - 1);
            const int away = s.y - s.dir, back = s.y + s.dir;
            if (away >= 0 && away < h_) scan(away, a, b, s.y, s.xl, s.xr, s.dir);
            if (back >= 0 && back < h_) {
                scan(back, a, std::min(b, s.pl - 1), s.y, s.xl, s.xr, -s.dir);
                scan(back, std::max(a, s.pr + 1), b, s.y, s.xl, s.xr, -s.dir);
            }
        }
    }

    // Restarts from every filled pixel that has an unfilled candidate
    // neighbour: the work of the spans dropped on a full stack.
    void rescan() {
        constexpr int kNb = k8 ? 8 : 4;
        static constexpr int dx[8] = {-1, 1, 0, 0, -1, 1, -1, 1}, dy[8] = {0, 0, -1, 1, -1, -1, 1, 1};
        for (int y = r_.y0; y <= r_.y1; ++y)
            for (int x = r_.x0; x <= r_.x1; ++x) {
                if (!p_.taken(x, y)) continue;
                for (int n = 0; n < kNb; ++n) {
                    const int nx = x + dx[n], ny = y + dy[n];
                    if (nx < 0 || ny < 0 || nx >= w_ || ny >= h_ || !p_.ok(nx, ny, x, y)) continue;
                    // The empty parent [0, -1] has both neighbouring rows
                    // of the new span scanned in full.
                    grow(nx, ny, 0, -1, 1);
                    drain();
                }
            }
    }

    P& p_;
    int w_, h_;
    Span* stack_;
    int64_t cap_, sp_ = 0;
    bool dropped_ = false;
    FillResult r_;
};

// The stack that fits `bytes` bytes of a buffer from `p` on, its start
// rounded up to 8 bytes.
inline Span* stack_at(uint8_t* p, int64_t bytes, int64_t* capacity) {
    const uintptr_t a = (reinterpret_cast<uintptr_t>(p) + 7) & ~uintptr_t(7);
    const int64_t lost = int64_t(a - reinterpret_cast<uintptr_t>(p));
    *capacity = bytes > lost ? (bytes - lost) / int64_t(sizeof(Span)) : 0;
    return reinterpret_cast<Span*>(a);
}

}  // namespace zeb::region
