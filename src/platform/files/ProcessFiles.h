#pragma once

/// Process-wide setup, called first in `main`, before any file is opened.
namespace vmk {

/// Opens the standard handles that the caller has closed. Otherwise the next opened file would get the number
/// of such a handle, and printed text would be written into a book. Writing to a handle opened here fails.
void HoldStandardHandles();

/// Makes a write beyond the file size limit fail like any other write instead of ending the process.
void SurviveFileSizeLimit();

/// The same for a write to a pipe without a reader.
void SurviveBrokenPipes();

} // namespace vmk
