#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace vmk {

/// A search for plain text in a document, line by line, without copying the text.
class TextSearch
{
public:
    /// \param sought          not empty; CrLf, CR and LF in it match a line break
    /// \param caseMatters     if false, letters match in any case
    /// \param wholeWordsOnly  finds only matches without a letter, digit or underscore next to them
    /// \param marksMatch      a non-breaking space in `sought` also matches U+007F, its mark in the display
    TextSearch(const QString& sought, bool caseMatters, bool wholeWordsOnly, bool marksMatch = false);

    using Hit = std::pair<Position, Position>;

    /// Returns the first match that begins at or after `from`.
    [[nodiscard]] std::optional<Hit> findForward(const DisplayDocument& document, Position from) const;
    /// Returns the last match that ends at or before `from`.
    [[nodiscard]] std::optional<Hit> findBackward(const DisplayDocument& document, Position from) const;

private:
    [[nodiscard]] char16_t key(char16_t c) const;
    [[nodiscard]] int indexIn(const QString& text, int from) const;
    [[nodiscard]] int lastIndexIn(const QString& text, int from) const;
    [[nodiscard]] bool equalAt(const QString& text, int offset, const QString& piece) const;
    [[nodiscard]] std::optional<Hit> acrossBreaks(const DisplayDocument& document, int line) const;
    [[nodiscard]] bool isSeparateWord(const DisplayDocument& document, const Hit& hit) const;

    std::vector<QString> pieces; ///< Between the line breaks, each character as its `key`.
    bool matchCase;
    bool wholeWord;
    bool nbspMarks;
    bool literal; ///< Each character is its own key.
};

} // namespace vmk
