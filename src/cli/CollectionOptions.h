#pragma once

#include "BookWalk.h"

#include <QString>
#include <QStringList>

namespace vmk {

class CommandLine;

/// The options that the commands for whole collections have in common.
struct CollectionOptions
{
    QStringList inputs; ///< books, folders, archives and members, as the user named them
    QString listFile; ///< --files-from; empty for none
    bool nulSeparated = false; ///< -0
    int jobs = 0; ///< --jobs; 0: as many as the machine has processors
    bool json = false;
    QString resultFile; ///< --resume; empty: standard output
    QString outFolder; ///< --out-dir; empty for none

    /// Takes the current option if it is one of these, except --out-dir. Returns false if it is another one.
    [[nodiscard]] bool take(CommandLine& line);
    /// Records an error in `line` if the options do not fit each other.
    void check(CommandLine& line) const;
    /// Makes the folder for results. Returns false, after a line on standard error, on failure.
    [[nodiscard]] bool makeOutFolder() const;

    /// Whether the input contains a folder, an archive or a list, and thus any number of books.
    [[nodiscard]] bool isCollection() const;
    /// Whether the input is one file or one member of an archive.
    [[nodiscard]] bool isOneBook() const { return inputs.size() == 1 && !isCollection(); }
    /// The number of processes for the books.
    [[nodiscard]] int workers() const;
    [[nodiscard]] BookInput input() const;
};

} // namespace vmk
