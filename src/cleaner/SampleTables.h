#pragma once

#include "CleanUpTable.h"

#include <QString>

#include <vector>

/// The clean-up tables that come with the program.
namespace vmk {

struct SampleTable
{
    QString fileName;
    CleanUpTable table;
};

/// Russian typography, English typography, and traces of optical character recognition. The rows change text
/// between tags only: no tag, attribute, comment, identifier, address or style sheet.
[[nodiscard]] std::vector<SampleTable> SampleCleanUpTables();

/// Writes the tables into a folder, under the code page of the system. Existing files stay as they are.
/// \return false if a file cannot be written
bool WriteSampleCleanUpTables(const QString& folder);

} // namespace vmk
