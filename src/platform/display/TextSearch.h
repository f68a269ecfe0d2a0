#pragma once

#include "DisplayDocument.h"

#include <QString>

#include <optional>
#include <utility>
#include <vector>

namespace vmk {

/// A search for plain text in a document, line by line, without any copy of the text.
class TextSearch
{
public:
    /// @param sought not empty; CrLf, CR and LF in it match a line break.
    /// @param caseMatters otherwise letters are equal to their other case.
    /// @param wholeWordsOnly only hits with no letter, digit or underscore beside them.
    TextSearch(const QString& sought, bool caseMatters, bool wholeWordsOnly);

    using Hit = std::pair<Position, Position>;

    /// The first hit that begins at `from` or behind.
    [[nodiscard]] std::optional<Hit> findForward(const DisplayDocument& document, Position from) const;
    /// The last hit that ends at `from` or in front.
    [[nodiscard]] std::optional<Hit> findBackward(const DisplayDocument& document, Position from) const;

private:
    [[nodiscard]] int indexIn(const QString& text, int from) const;
    [[nodiscard]] int lastIndexIn(const QString& text, int from) const;
    [[nodiscard]] bool equalAt(const QString& text, int offset, const QString& piece) const;
    [[nodiscard]] std::optional<Hit> acrossBreaks(const DisplayDocument& document, int line) const;
    [[nodiscard]] bool standsAlone(const DisplayDocument& document, const Hit& hit) const;

    std::vector<QString> pieces; ///< Between the line breaks; folded unless case matters.
    bool matchCase;
    bool wholeWord;
};

} // namespace vmk
