#pragma once

#include "DisplayLines.h"

#include <QString>

#include <vector>

namespace vmk {

/// Replaces texts in a line from front to back, in one pass over the line. The result is the same as that of
/// `ReplaceLineContent` and `WrapContent` for one text after the other.
class LineRewriter
{
public:
    /// \param line must live as long as this
    explicit LineRewriter(const Line& line);

    /// Replaces the text between two offsets of the original line.
    /// \param from not in front of the last call's `to`
    /// \param to greater than `from`
    /// \param inserted without line breaks
    void replace(int from, int to, const QString& inserted);
    /// Puts an element around the last characters written.
    /// \param count 1 to `length()`
    void wrapLast(int count, TagId tag);
    /// How many characters are written: up to the end of the last text put in.
    [[nodiscard]] int length() const { return int(text.size()); }
    /// The whole line.
    [[nodiscard]] Line take();

private:
    void copyMark(const Mark& mark);
    void endElements(std::size_t shared);

    const Line& source;
    int sourceOffset = 0;
    std::size_t sourceMark = 0;
    QString text; ///< Of the new line, as far as it is written.
    std::vector<Mark> marks;
    std::vector<TagId> open; ///< The elements open at the end of `text`, outermost first.
};

} // namespace vmk
