#pragma once

#include "Seam.h"

#include <QString>

#include <cstdint>
#include <memory>

/// Long work that the user can cancel.
namespace vmk {

/// Finds the Escape key while the program works. The program does not react to other input meanwhile: it is
/// kept, and delivered in its order after the end of the watch.
class EscapeWatch
{
public:
    EscapeWatch() = default;
    EscapeWatch(const EscapeWatch&) = delete;
    EscapeWatch& operator=(const EscapeWatch&) = delete;
    virtual ~EscapeWatch() = default;

    /// Returns true if Escape was pressed since the last call. Windows are painted; timers wait.
    [[nodiscard]] virtual bool takeEscape() = 0;
};

/// Begins a watch. Without a window, returns null: no key can be pressed.
[[nodiscard]] Seam<std::unique_ptr<EscapeWatch>()>& EscapeWatchSeam();

/// Work that Escape cancels, from the constructor to the destructor. Within another such work, it is a part
/// of that work.
class CancellableWork
{
public:
    /// \param working    shown in the status bar if the work takes longer than a moment
    /// \param cancelled  shown if it was cancelled
    CancellableWork(QString working, QString cancelled);
    ~CancellableWork();
    CancellableWork(const CancellableWork&) = delete;
    CancellableWork& operator=(const CancellableWork&) = delete;

    /// Returns whether the work under way was cancelled; false without one. The work asks it often, at points
    /// where nothing is half done: the windows may be painted.
    [[nodiscard]] static bool isCancelled();
    /// The same without a look for the key.
    [[nodiscard]] static bool wasCancelled();
    /// Cancels the work under way, for example because it cannot be completed any more.
    static void cancel();

private:
    void lookForKey();

    QString workingText;
    QString cancelledText;
    std::unique_ptr<EscapeWatch> watch;
    std::int64_t nextLook;
    bool isLooking = false;
    bool cancelledByUser = false;
};

} // namespace vmk
