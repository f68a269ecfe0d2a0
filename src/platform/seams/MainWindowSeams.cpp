#include "MainWindowSeams.h"

#include <QCoreApplication>

namespace vmk {

Seam<void()>& OpenMainWindowSeam()
{
    static Seam<void()> seam([] {});
    return seam;
}

Seam<bool(const QString&, bool)>& LoadBookSeam()
{
    static Seam<bool(const QString&, bool)> seam([](const QString&, bool) { return false; });
    return seam;
}

Seam<bool()>& OfferRecoverySeam()
{
    static Seam<bool()> seam([] { return false; });
    return seam;
}

Seam<std::size_t()>& UndoStepsSeam()
{
    static Seam<std::size_t()> seam([] { return std::size_t(0); });
    return seam;
}

Seam<void(std::size_t)>& RestoreBookSeam()
{
    static Seam<void(std::size_t)> seam([](std::size_t) {});
    return seam;
}

Seam<void(const QString&)>& StatusSeam()
{
    static Seam<void(const QString&)> seam([](const QString&) {});
    return seam;
}

void ShowStatus(const QString& text)
{
    StatusSeam()(text);
}

Seam<void(int, const QString&)>& StatusPanelSeam()
{
    static Seam<void(int, const QString&)> seam([](int, const QString&) {});
    return seam;
}

void ShowStatusPanel(int panel, const QString& text)
{
    StatusPanelSeam()(panel, text);
}

Seam<void(Pointer)>& PointerSeam()
{
    static Seam<void(Pointer)> seam([](Pointer) {});
    return seam;
}

void SetPointer(Pointer pointer)
{
    PointerSeam()(pointer);
}

Seam<void()>& ProcessEventsSeam()
{
    static Seam<void()> seam([] {
        if (QCoreApplication::instance())
            QCoreApplication::processEvents();
    });
    return seam;
}

void ProcessEvents()
{
    ProcessEventsSeam()();
}

} // namespace vmk
