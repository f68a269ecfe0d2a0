#pragma once

#include "DisplayDocument.h"
#include "TextRange.h"

#include <QString>

namespace vmk {

/// A run of replacements through a document, from front to back. Each replacement and each mark is one step
/// of undo.
class ReplaceRun
{
public:
    /// \param from where the run begins; nothing in front of it is replaced
    ReplaceRun(DisplayDocument& edited, Position from);

    /// Replaces the text between two places, both at `position()` or after it; `position()` is the end of the
    /// new text then. CrLf, CR and LF in it are line breaks.
    void replace(Position from, Position to, const QString& text);
    /// Gives a background colour to the `length` characters in front of `position()`.
    /// \param color as HTML has it, "#rrggbb"
    void mark(int length, QStringView color);

    /// The end of the last replacement, or where the run began.
    [[nodiscard]] Position position() const { return present.end(); }
    /// Goes on from here; no place in front of it is replaced any more.
    void moveTo(Position place);
    /// The start of the last replacement.
    [[nodiscard]] const TextRange& lastText() const { return last; }

private:
    DisplayDocument& document;
    TextRange present; ///< Empty.
    TextRange last;
};

} // namespace vmk
