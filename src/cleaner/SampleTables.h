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

/// Returns the tables for Russian typography, English typography, and traces of optical character
/// recognition. Their rows change only text between tags: no tag, attribute, comment, identifier, address or
/// style sheet.
[[nodiscard]] std::vector<SampleTable> SampleCleanUpTables();

/// Writes the tables into a folder, with the signature of the system's code page. Existing files are
/// unchanged.
/// \return false if a file cannot be written
bool WriteSampleCleanUpTables(const QString& folder);

} // namespace vmk
