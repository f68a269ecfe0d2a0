#pragma once

#include <QString>

namespace vmk {

/// Where the program and its user are at home.
struct ProgramPlace
{
    /// Full path of the executable.
    QString executable;
    /// The folder for the data of all programs of this user; it need not exist.
    QString userDataFolder;
};

/// The place of the running program; needs the application object.
[[nodiscard]] ProgramPlace RunningProgramPlace();

/// The folder that holds "VMK Office" and "sounds" as they came with the program, for reading only: the
/// executable's own in a portable folder, else that of the installation.
[[nodiscard]] QString InstalledDataFolder(const QString& executable);

/// Fixes all that the rest of the program takes for granted: screen measures, paths, the folders of the
/// workspace, the in-line tags. Runs first of all, once; reports nothing, so a folder that cannot be made
/// shows up as a failing file operation later.
///
/// The workspace stands beside the executable if that folder can be written and the program is not one
/// installed with its data elsewhere. Otherwise a folder of the user's own takes the place of the
/// executable's in `AppPath`; at the first start it is filled with what came with the program.
void InitGlobals();
void InitGlobals(const ProgramPlace& place);

/// Reads `InLineTagsFile` into `InLineTags` and `InLineTagCount`.
void ReadInLineTags();

} // namespace vmk
