#pragma once

#include "SettingsRecord.h"

namespace vmk {

/// The position and size of the main window on the screen, in twips.
struct FormPlace
{
    float left = 0;
    float top = 0;
    float width = 0;
    float height = 0;
};

/// Sets every setting of the record to its default.
void SetRecordDefaults();

/// Sets every setting to its default and then, unless `useDefaults`, reads the file `IniFilePath` if it
/// exists. A damaged file is reported in a box and deleted; the defaults remain. Afterwards `LastFile` is
/// empty or an existing file, and `SchemaFile` is an existing file or the default one.
void ReadSettings(bool useDefaults);

/// Writes all settings to the file `IniFilePath`. `LastFile` becomes the open book.
/// \param form  the geometry of the main window. If it is maximised (`MainFormWindowState`), its inner part
///              is stored, so that the frame is not outside the screen after a restart.
/// \return false if the file could not be written; the old one is then unchanged
bool WriteSettings(const FormPlace& form);

} // namespace vmk
