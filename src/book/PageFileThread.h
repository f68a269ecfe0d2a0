#pragma once

#include "DisplayValues.h"
#include "OutlinePage.h"

#include <QString>

#include <memory>
#include <thread>

namespace vmk {

/// Writes the page of an outlined book to its file while the book is shown already.
class PageFileThread
{
public:
    /// Makes the file and begins to write it. A page that is being written is abandoned first. If the disk is
    /// full, the file ends early: only other programs read it.
    /// \return false if the file cannot be made
    bool write(const QString& path, std::shared_ptr<OutlinedText> book, const DisplayValues& values);
    /// Abandons the page that is being written; the file is closed afterwards.
    void stop();
    /// Waits until the page is written.
    void wait();

private:
    std::jthread thread;
};

} // namespace vmk
