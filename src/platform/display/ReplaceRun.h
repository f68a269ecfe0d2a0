#pragma once

#include "InLineRun.h"
#include "TextRange.h"

#include <QString>
#include <QStringView>

#include <vector>

namespace vmk {

/// A run of replacements through a document, from its front to its back. Each replacement and each mark is
/// one step of undo.
///
/// Replacements within lines are gathered and made together by `flush`, so that a line costs the same with
/// one hit as with thousands. Until then the document, and all places in it, are as they were at the last
/// `flush`; the text after `position()` is the same either way.
class ReplaceRun
{
public:
    /// \param from where the run begins; nothing in front of it is replaced
    ReplaceRun(DisplayDocument& edited, Position from);
    ~ReplaceRun() { flush(); }
    ReplaceRun(const ReplaceRun&) = delete;
    ReplaceRun& operator=(const ReplaceRun&) = delete;

    /// Replaces the text between two different positions, both at `position()` or after it.
    /// \param text CrLf, CR and LF in it are line breaks
    void replace(Position from, Position to, const QString& text);
    /// Sets the background colour of the last characters up to the end of the last new text.
    /// \param length  the number of characters; a line break is one
    /// \param color   as in HTML, "#rrggbb"
    void mark(int length, QStringView color);

    /// The position where the search continues: after the last replaced text, or the start of the run.
    [[nodiscard]] Position position() const;
    /// Continues from another position of the document, as it is after a `flush`.
    void moveTo(Position place);
    /// Makes the gathered replacements in the document.
    void flush();
    /// The last inserted text; valid after a `flush`.
    [[nodiscard]] const TextRange& lastText() const { return last; }

private:
    DisplayDocument& document;
    TextRange present; ///< The position after the last `flush`; empty.
    TextRange last;
    std::vector<InLineStep> gathered;
    Position gatheredTo; ///< After the last text replaced, in the document as it still is.
    int shift = 0; ///< How much longer the gathered replacements make its line up to there.
    int lastLength = 0; ///< Of the last text gathered.
};

} // namespace vmk
