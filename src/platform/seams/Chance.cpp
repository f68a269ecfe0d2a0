#include "Chance.h"

#include <QRandomGenerator>

#include <chrono>

namespace vmk {

Seam<int64_t()>& TickSeam()
{
    static Seam<int64_t()> seam([] {
        using namespace std::chrono;
        return int64_t(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
    });
    return seam;
}

int64_t TickMilliseconds()
{
    return TickSeam()();
}

Seam<QDateTime()>& NowSeam()
{
    static Seam<QDateTime()> seam([] { return QDateTime::currentDateTime(); });
    return seam;
}

QDateTime Now()
{
    return NowSeam()();
}

Seam<double()>& RandomSeam()
{
    static Seam<double()> seam([] { return QRandomGenerator::global()->generateDouble(); });
    return seam;
}

double RandomFraction()
{
    return RandomSeam()();
}

} // namespace vmk
