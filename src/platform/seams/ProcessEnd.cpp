#include "ProcessEnd.h"

#include <QCoreApplication>

namespace vmk {

Seam<void()>& EndProcessSeam()
{
    static Seam<void()> seam([] { QCoreApplication::exit(0); });
    return seam;
}

void EndProcess()
{
    EndProcessSeam()();
}

} // namespace vmk
