#pragma once

#include "DisplayDocument.h"

#include <QByteArray>
#include <QString>

/// The HTML source of a part of the display as text that the user edits, and the way back.
///
/// Two documents take part: the display, and the editor, whose lines hold the source as plain text with a
/// marker at the end of each line.
namespace vmk {

/// A part of the display as it was taken.
struct Fragment
{
    /// Node index of the first display line, from 1; -1 when the fragment is no whole run of lines.
    int firstNode = -1;
    int lastNode = -1;
    /// The HTML, lines separated by CrLf.
    QString source;
};

/// The text that the user sees for one character.
struct ShownCodes
{
    QString ansi;
    QString unicode;

    bool operator==(const ShownCodes&) const = default;
};

/// Character 128 of the system's code page: it is shown at the end of each source line and is never part of
/// the book.
[[nodiscard]] QChar LineEndMarker();

/// The page of an empty editor.
[[nodiscard]] QByteArray BlankFragmentPage();

/// Takes the selection of the display; a bare caret gives an empty fragment.
/// @param wholeLines grows the selection to whole lines first, where it is in lines
[[nodiscard]] Fragment TakeFragment(DisplayDocument& display, bool wholeLines);

/// Replaces the text of the editor by a source, with a marker at the end of each line but the last.
void ShowFragment(DisplayDocument& editor, const QString& source);

/// The text of the editor without the markers; CrLf between lines. A character that looks like the marker but
/// was typed by the user, or comes from the book, stays.
[[nodiscard]] QString FragmentText(const DisplayDocument& editor);

/// Puts an edited source in place of the fragment, or of the selection for one that is no run of lines. The
/// source is taken as HTML as it stands. Nothing happens when it is what the display holds already.
/// Afterwards `fragment` is no run of lines any more.
void ApplyFragment(DisplayDocument& display, Fragment& fragment, const QString& source);

/// Colours the source in the editor: each "<" up to the next ">" in blue, each marker in grey. One undo step;
/// the text stays the same.
void PaintFragment(DisplayDocument& editor);

/// The codes of the first character after the start of the editor's selection; empty at the end of the text.
[[nodiscard]] ShownCodes CodesInFragment(DisplayDocument& editor);

/// A page that shows a source in colours, for reading.
[[nodiscard]] QByteArray PaintedSourcePage(const QString& source);

} // namespace vmk
