#pragma once

#include "FileState.h"

#include <QString>

#include <cstdint>
#include <string_view>

/// What this program last read from or wrote to the file of the open book.
namespace vmk {

struct BookOnDisk
{
    QString path; ///< empty if no book was read or written
    FileState state;
    std::uint64_t checksum = 0; ///< of the content
    bool wasSaved = false; ///< by this program, otherwise loaded
};

/// The file of the open book.
extern BookOnDisk OpenBookOnDisk;

/// Remembers a book that was loaded.
/// \param before  the state of the file before it was read
void NoteBookLoaded(const QString& path, const FileState& before, std::string_view bytes);
/// Remembers a book that was saved.
void NoteBookSaved(const QString& path, std::string_view bytes);

/// Returns true if another program has changed the content of a file since this program loaded or saved it.
/// False for a file that no longer exists, and for every other file.
[[nodiscard]] bool WasChangedByOthers(const QString& path);

/// Returns whether a save may replace a file: if another program has changed it, asks the user.
[[nodiscard]] bool MayReplaceBook(const QString& path);

} // namespace vmk
