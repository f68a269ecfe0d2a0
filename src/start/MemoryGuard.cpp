#include "MemoryGuard.h"

#include "Boxes.h"
#include "MainWindowSeams.h"
#include "ProcessEnd.h"
#include "UnsavedText.h"

#include <QCoreApplication>
#include <QString>
#include <QThread>

#include <cstddef>
#include <memory>
#include <new>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// Memory for the report, freed when there is no more.
constexpr std::size_t ReserveBytes = std::size_t(2) * 1024 * 1024;

std::unique_ptr<std::byte[]>& Reserve()
{
    static std::unique_ptr<std::byte[]> reserve(new std::byte[ReserveBytes]);
    return reserve;
}

void EndWithoutLoss()
{
    try {
        KeepUnsavedText();
    } catch (const std::bad_alloc&) {
        // The journal has the text.
    }
    EndProcess();
}

void ReportShortMemory(std::size_t undoSteps)
{
    Reserve().reset();
    SetPointer(Pointer::Default);
    RestoreBookSeam()(undoSteps);
    StopBox(u"There is not enough memory. The last operation was undone."_s, u"Vellumark"_s);
    Reserve().reset(new (std::nothrow) std::byte[ReserveBytes]);
}

} // namespace

bool GuardMemory(const std::function<bool()>& deliver)
{
    // Other threads have no steps to undo and show no boxes; each of them handles a failure itself.
    if (qApp && QThread::currentThread() != qApp->thread())
        return deliver();
    static bool reporting = false;
    static_cast<void>(Reserve());
    std::size_t undoSteps = 0;
    try {
        undoSteps = UndoStepsSeam()(); // NOLINT(clang-analyzer-deadcode.DeadStores): read after an exception
        return deliver();
    } catch (const std::bad_alloc&) {
        // Within the report itself, the outer call ends the program.
        if (reporting)
            throw;
    }
    reporting = true;
    try {
        ReportShortMemory(undoSteps);
    } catch (const std::bad_alloc&) {
        EndWithoutLoss();
    }
    reporting = false;
    return true;
}

} // namespace vmk
