#pragma once

#include <QString>
#include <QStringList>

namespace vmk {

enum class StartCourse
{
    OpenWindow, ///< the main window without a book
    LoadBook,
    ValidateBook
};

/// The action that the command line requests.
struct StartOrder
{
    StartCourse course = StartCourse::OpenWindow;
    /// Path of the book as written; empty for `OpenWindow`, and possibly empty otherwise.
    QString path;

    bool operator==(const StartOrder&) const = default;
};

/// Returns the command line as one text: the arguments without the program's name, joined by single blanks.
///
/// The shell has already removed its own quotes, so that an argument with blanks appears in the text without
/// quotes: `vellumark "my book.fb2" -L` becomes `my book.fb2 -L`. A double quote that reaches the program was
/// intended for it and is kept.
[[nodiscard]] QString CommandText(const QStringList& arguments);

/// Parses the command text. The only options are `-L` and `-V` after the path; the last one counts. Exactly
/// one blank before it is removed with it, so that one of two blanks remains at the end of the path. A text
/// in double quotes is a path without them; a quoted path followed by an option keeps its quotes.
[[nodiscard]] StartOrder ReadCommandText(const QString& text);

} // namespace vmk
