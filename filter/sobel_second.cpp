// Sobel second and cross derivatives with borders: HorizSecond (d2/dy2),
// VertSecond (d2/dx2) and Cross (d2/dxdy), 3x3 and 5x5, for 8u16s, 8u8s and
// 32f, with their buffer-size queries.
#include "filter/sobel_exports.h"

namespace zeb::ZEB_VNS {

ZEB_SOBEL_FAMILY(SobelHorizSecond, fixed::SobelHorizSecond3, fixed::SobelHorizSecond5, fixed::Out::S16,
                 fixed::Out::S8, fixed::Out::F32)
ZEB_SOBEL_FAMILY(SobelVertSecond, fixed::SobelVertSecond3, fixed::SobelVertSecond5, fixed::Out::S16,
                 fixed::Out::S8, fixed::Out::F32)
ZEB_SOBEL_FAMILY(SobelCross, fixed::SobelCross3, fixed::SobelCross5, fixed::Out::S16, fixed::Out::S8,
                 fixed::Out::F32)

}  // namespace zeb::ZEB_VNS

ZEB_SOBEL_EXPORTS(SobelHorizSecond)
ZEB_SOBEL_EXPORTS(SobelVertSecond)
ZEB_SOBEL_EXPORTS(SobelCross)
