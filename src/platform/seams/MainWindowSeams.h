#pragma once

#include "Seam.h"

#include <QString>

#include <cstddef>

/// Calls from the lower layers to the main window. Without a window they do nothing.
namespace vmk {

/// Creates and opens the main window if it is not open. Set by `main`.
[[nodiscard]] Seam<void()>& OpenMainWindowSeam();

/// Passes a book to the main window. Without a window, returns false.
/// \param path     the file of the book
/// \param opening  true if the book comes from the command line
/// \return true if the book is being loaded
[[nodiscard]] Seam<bool(const QString& path, bool opening)>& LoadBookSeam();

/// Offers the text of an interrupted session to the user, in the open main window. Without a window, returns
/// false. \return true if the text is being shown
[[nodiscard]] Seam<bool()>& OfferRecoverySeam();

/// Sets the first panel of `StatusMsg`; the text is visible before the call returns.
[[nodiscard]] Seam<void(const QString& text)>& StatusSeam();
void ShowStatus(const QString& text);

/// Sets a panel of `Status`, counted from 1.
[[nodiscard]] Seam<void(int panel, const QString& text)>& StatusPanelSeam();
void ShowStatusPanel(int panel, const QString& text);

/// The number of steps of the open book that can be undone; 0 without a window.
[[nodiscard]] Seam<std::size_t()>& UndoStepsSeam();
/// Restores the open book and its view after memory ran out: reverts the steps after the first `undoSteps`,
/// and lays the page out again.
[[nodiscard]] Seam<void(std::size_t undoSteps)>& RestoreBookSeam();

/// The shapes of the mouse pointer.
enum class Pointer
{
    Default,
    Hourglass
};

/// Sets the mouse pointer for the whole program.
[[nodiscard]] Seam<void(Pointer pointer)>& PointerSeam();
void SetPointer(Pointer pointer);

/// Shows the hourglass for its scope, then the default pointer, whatever the pointer was before.
class HourglassScope
{
public:
    HourglassScope() { SetPointer(Pointer::Hourglass); }
    HourglassScope(const HourglassScope&) = delete;
    HourglassScope& operator=(const HourglassScope&) = delete;
    ~HourglassScope() { SetPointer(Pointer::Default); }
};

/// Processes pending events of the user interface. Without a window, those of the application object, if one
/// exists.
[[nodiscard]] Seam<void()>& ProcessEventsSeam();
void ProcessEvents();

} // namespace vmk
