#include "ScreenMeasures.h"

namespace vmk {

Seam<ScreenMeasures()>& ScreenMeasuresSeam()
{
    static Seam<ScreenMeasures()> seam([] { return ScreenMeasures(); });
    return seam;
}

} // namespace vmk
