#pragma once

#include <QStringList>

namespace vmk {

/// What a command ends with, for the shell.
enum ExitCode : int
{
    ExitClean = 0,
    ExitFaults = 1, ///< the command ran and found something wrong with a book
    ExitFailure = 2, ///< wrong use, or something could not be read or written
};

/// One word of `vmk`, such as "validate".
struct Command
{
    const char* name;
    const char* summary; ///< one line for the list of commands
    const char* help; ///< shown for --help
    int (*run)(const QStringList& arguments); ///< arguments behind the name; gives the exit code
};

extern const Command ConvertCommand;
extern const Command DisplayCommand;
extern const Command ValidateCommand;

} // namespace vmk
