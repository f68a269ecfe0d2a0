#pragma once

#include <QString>
#include <QStringList>

namespace vmk {

/// The exit codes of a command.
enum ExitCode : int
{
    ExitClean = 0,
    ExitFaults = 1, ///< the command ran and found an error in a book
    ExitFailure = 2, ///< wrong usage, or a file could not be read or written
};

/// One command of `vmk`, such as "validate".
struct Command
{
    const char* name;
    const char* summary; ///< one line for the list of commands
    const char* help; ///< shown for --help
    int (*run)(const QStringList& arguments); ///< takes the arguments after the name; returns the exit code
};

extern const Command CleanCommand;
extern const Command ConvertCommand;
extern const Command DisplayCommand;
extern const Command FindCommand;
extern const Command ImagesCommand;
extern const Command RecoverCommand;
extern const Command SpellCommand;
extern const Command ValidateCommand;
extern const Command VersionsCommand;

} // namespace vmk
