#include "BookSeams.h"

namespace vmk {

Seam<void(const QString&, bool)>& CaptionSeam()
{
    static Seam<void(const QString&, bool)> seam([](const QString&, bool) {});
    return seam;
}

Seam<void(const QString&, bool)>& NavigateSeam()
{
    static Seam<void(const QString&, bool)> seam([](const QString&, bool) {});
    return seam;
}

Seam<bool()>& IsBookEmptySeam()
{
    static Seam<bool()> seam([] { return true; });
    return seam;
}

bool IsBookEmpty()
{
    return IsBookEmptySeam()();
}

Seam<std::string(AngleMarks)>& DisplayTextSeam()
{
    static Seam<std::string(AngleMarks)> seam([](AngleMarks) { return std::string(); });
    return seam;
}

Seam<std::optional<DisplayValues>()>& PreviewValuesSeam()
{
    static Seam<std::optional<DisplayValues>()> seam([] { return std::nullopt; });
    return seam;
}

} // namespace vmk
