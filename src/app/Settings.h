#pragma once

#include "SettingsRecord.h"

namespace vmk {

/// The main window's place on the screen, in twips.
struct FormPlace
{
    float left = 0;
    float top = 0;
    float width = 0;
    float height = 0;
};

/// Gives every setting its default and then, unless `useDefaults`, reads the file `IniFilePath` if it
/// exists. A damaged file is reported by a box and deleted; the defaults stand. Afterwards `LastFile` is
/// empty unless it exists, and `SchemaFile` exists or is the default one.
void ReadSettings(bool useDefaults);

/// Writes all settings to the file `IniFilePath`, with `form` as the place of the main window: its inner
/// part if it is maximised (`MainFormWindowState`), so that a restart does not come back with the frame off
/// the screen. `LastFile` becomes the open book. False if the file could not be written; the old one then
/// stands.
bool WriteSettings(const FormPlace& form);

} // namespace vmk
