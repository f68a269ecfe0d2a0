#pragma once

#include "Seam.h"

#include <QString>

/// What the low layers say to the main window. Nothing happens without one.
namespace vmk {

/// Writes the first panel of `StatusMsg`, shown before the call returns.
[[nodiscard]] Seam<void(const QString& text)>& StatusSeam();
void ShowStatus(const QString& text);

/// Writes a panel of `Status`, counted from 1.
[[nodiscard]] Seam<void(int panel, const QString& text)>& StatusPanelSeam();
void ShowStatusPanel(int panel, const QString& text);

enum class Pointer
{
    Default,
    Hourglass
};

/// The mouse pointer over the whole program.
[[nodiscard]] Seam<void(Pointer pointer)>& PointerSeam();
void SetPointer(Pointer pointer);

/// The hourglass for its scope; the default pointer afterwards, whatever stood before.
class HourglassScope
{
public:
    HourglassScope() { SetPointer(Pointer::Hourglass); }
    HourglassScope(const HourglassScope&) = delete;
    HourglassScope& operator=(const HourglassScope&) = delete;
    ~HourglassScope() { SetPointer(Pointer::Default); }
};

/// Lets the interface handle what has come in. Without a window: the events of the application object, if
/// there is one.
[[nodiscard]] Seam<void()>& ProcessEventsSeam();
void ProcessEvents();

} // namespace vmk
