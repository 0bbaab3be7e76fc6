// Sobel first derivatives with borders: Horiz (d/dy), Vert (d/dx) and
// NegVert (-d/dx), 3x3 and 5x5, for 8u16s, 8u8s and 32f, with their
// buffer-size queries.
#include "filter/sobel_exports.h"

namespace zeb::ZEB_VNS {

ZEB_SOBEL_FAMILY(SobelHoriz, fixed::SobelHoriz3, fixed::SobelHoriz5, fixed::Out::S16, fixed::Out::S8, fixed::Out::F32)
ZEB_SOBEL_FAMILY(SobelVert, fixed::SobelVert3, fixed::SobelVert5, fixed::Out::S16, fixed::Out::S8, fixed::Out::F32)
// NegVert runs the Vert tables and negates the exact (or correctly
// rounded) sum, so it is the exact negation of Vert.
ZEB_SOBEL_FAMILY(SobelNegVert, fixed::SobelVert3, fixed::SobelVert5, fixed::Out::S16Neg, fixed::Out::S8Neg,
                 fixed::Out::F32Neg)

}  // namespace zeb::ZEB_VNS

ZEB_SOBEL_EXPORTS(SobelHoriz)
ZEB_SOBEL_EXPORTS(SobelVert)
ZEB_SOBEL_EXPORTS(SobelNegVert)
