#pragma once

#include "DisplayDocument.h"

#include <QByteArray>
#include <QString>

/// Editing the HTML source of a part of the display as text.
///
/// There are two documents: the display, and the editor, whose lines contain the source as plain text with a
/// marker at the end of each line.
namespace vmk {

/// The source of a part of the display.
struct Fragment
{
    /// The node index of the first display line, from 1; -1 if the fragment does not consist of whole lines.
    int firstNode = -1;
    int lastNode = -1;
    /// The HTML, with lines separated by CrLf.
    QString source;
};

/// The codes of a character as text.
struct ShownCodes
{
    QString ansi;
    QString unicode;

    bool operator==(const ShownCodes&) const = default;
};

/// Returns character 128 of the system's code page. It is shown at the end of each source line and is never
/// part of the book.
[[nodiscard]] QChar LineEndMarker();

/// Returns the page of an empty editor.
[[nodiscard]] QByteArray BlankFragmentPage();

/// Returns the selection of the display as a fragment; an empty fragment for a caret without a selection.
/// \param wholeLines  first extends a selection in lines to whole lines
[[nodiscard]] Fragment TakeFragment(DisplayDocument& display, bool wholeLines);

/// Replaces the text of the editor by a source, with a marker at the end of each line but the last.
void ShowFragment(DisplayDocument& editor, const QString& source);

/// Returns the text of the editor without the markers, with CrLf between lines. The same character is kept if
/// the user typed it or the book contains it.
[[nodiscard]] QString FragmentText(const DisplayDocument& editor);

/// Replaces the lines of the fragment, or the selection if the fragment does not consist of whole lines, by
/// an edited source. The source is read as HTML without a check. Does nothing if the display already contains
/// it. Sets the node indexes of `fragment` to -1.
void ApplyFragment(DisplayDocument& display, Fragment& fragment, const QString& source);

/// Colours the source in the editor: each "<" up to the next ">" in blue, each marker in grey. Takes one undo
/// step; the text is unchanged.
void PaintFragment(DisplayDocument& editor);

/// Returns the codes of the first character after the start of the editor's selection; empty at the end of
/// the text.
[[nodiscard]] ShownCodes CodesInFragment(DisplayDocument& editor);

/// Returns a page that shows a source in colours.
[[nodiscard]] QByteArray PaintedSourcePage(const QString& source);

} // namespace vmk
