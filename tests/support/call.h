// SPDX-License-Identifier: Apache-2.0
// Calls an export generically from lists of images and a ROI, so that one
// table-driven test serves every member of a family. Arguments are filled
// in order: a pointer takes the next image pointer, an int right after a
// pointer is that image's step, the ZebiSize is the ROI, and anything after
// it takes the given parameter values.
#pragma once

#include <tuple>
#include <type_traits>
#include <vector>

#include "zebcv.h"

namespace zt {

struct CallArgs {
    std::vector<void*> ptrs;
    std::vector<int> steps;
    ZebiSize roi{};
    double param = 0.5;  // value of any trailing int or float parameter
};

namespace detail {
struct Cursor {
    const CallArgs& a;
    std::size_t p = 0, s = 0;
    bool afterPtr = false;
};
template <class A>
A take(Cursor& c) {
    if constexpr (std::is_pointer_v<A>) {
        c.afterPtr = true;
        return static_cast<A>(c.a.ptrs.at(c.p++));
    } else if constexpr (std::is_same_v<A, ZebiSize>) {
        c.afterPtr = false;
        return c.a.roi;
    } else if (c.afterPtr && std::is_same_v<A, int>) {
        c.afterPtr = false;
        return A(c.a.steps.at(c.s++));
    } else {
        return A(c.a.param);
    }
}
}  // namespace detail

template <class... A>
ZebStatus call(ZebStatus (*f)(A...), const CallArgs& args) {
    detail::Cursor c{args};
    std::tuple<A...> t{detail::take<A>(c)...};  // braces: left to right
    return std::apply(f, t);
}

}  // namespace zt
