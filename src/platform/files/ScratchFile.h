#pragma once

#include "PosixFile.h"

#include <QString>

#include <string_view>

namespace vmk {

/// A new file that is written piece by piece and needs no protection against a crash.
class ScratchFile
{
public:
    /// Makes the file; fails if one exists at the path, or a link.
    explicit ScratchFile(const QString& path);

    /// Returns false if the file could not be made.
    explicit operator bool() const { return bool(handle); }
    /// Returns false if not every byte is written.
    [[nodiscard]] bool append(std::string_view bytes) { return WriteAll(handle.Get(), bytes); }

private:
    Descriptor handle;
};

} // namespace vmk
