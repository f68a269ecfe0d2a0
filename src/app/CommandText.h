#pragma once

#include <QString>
#include <QStringList>

namespace vmk {

enum class StartCourse
{
    OpenWindow, ///< the main window with nothing loaded
    LoadBook,
    ValidateBook
};

/// What the command line asks for.
struct StartOrder
{
    StartCourse course = StartCourse::OpenWindow;
    /// Path of the book as written; empty for `OpenWindow`, and possibly else.
    QString path;

    bool operator==(const StartOrder&) const = default;
};

/// The command line as one text: the arguments without the program's name, joined by single blanks.
///
/// The shell has already taken its own quotes off, so an argument with blanks stands in the text as it is:
/// `vellumark "my book.fb2" -L` gives `my book.fb2 -L`. A double quote that reaches the program was meant
/// for it and stays.
[[nodiscard]] QString CommandText(const QStringList& arguments);

/// Reads the command text. The only options are `-L` and `-V` behind the path; the last one counts, and
/// exactly one blank before it is taken off with it, so that of two blanks one stays at the path's end.
/// A text in double quotes is a path without them; a quoted path with an option behind it keeps its quotes.
[[nodiscard]] StartOrder ReadCommandText(const QString& text);

} // namespace vmk
