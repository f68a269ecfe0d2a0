#pragma once

#include <QString>

namespace vmk {

/// The location of the program and of its user's data.
struct ProgramPlace
{
    /// Full path of the executable.
    QString executable;
    /// The folder for the data of all programs of this user; it may not exist yet.
    QString userDataFolder;
};

/// Returns the location of the running program. Requires the application object.
[[nodiscard]] ProgramPlace RunningProgramPlace();

/// Returns the read-only folder with the supplied "VMK Office" and "sounds": the executable's own folder in a
/// portable installation, otherwise the data folder of the installation.
[[nodiscard]] QString InstalledDataFolder(const QString& executable);

/// Returns the folder "VMK Office" of the workspace that a program at that location uses. The folder need not
/// exist; nothing is created.
[[nodiscard]] QString WorkspaceFolder(const ProgramPlace& place);

/// Initializes the variables on which the rest of the program depends: screen measures, paths, the folders of
/// the workspace, the in-line tags. Called once, first of all. Reports nothing: a folder that cannot be
/// created appears later as a failing file operation.
///
/// The workspace is in the executable's folder if that is writable and the program is not installed with its
/// data elsewhere. Otherwise `AppPath` is a folder of the user; at the first start the supplied files are
/// copied into it.
void InitGlobals();
void InitGlobals(const ProgramPlace& place);

/// Reads `InLineTagsFile` into `InLineTags` and `InLineTagCount`.
void ReadInLineTags();

} // namespace vmk
