#pragma once

#include "HtmlCharacters.h"

#include <QStringView>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace vmk {

[[nodiscard]] constexpr bool IsHtmlLetter(char32_t c)
{
    return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z');
}

/// The characters that end the name of an element. A quote in a name would hide the text after the end tag.
[[nodiscard]] constexpr bool EndsHtmlName(char32_t c)
{
    return IsHtmlSpace(c) || c == U'/' || c == U'>' || c == U'=' || c == U'"' || c == U'\'';
}

/// Finds the ends of tags, comments and elements in a text of HTML. Remembers results, so that a text is
/// searched a limited number of times, whatever it contains.
/// \tparam Char  `char` for UTF-8, `char16_t` for UTF-16
template <class Char>
class HtmlScanner
{
public:
    using View = std::basic_string_view<Char>;
    static constexpr std::size_t None = View::npos;

    explicit HtmlScanner(View html)
        : input(html)
    {
    }

    struct TagEnd
    {
        std::size_t end = None; ///< The position of the `>`; `None` if there is none.
        Char strayQuote = {}; ///< The quote that the tag does not close; 0 if there is none.
    };

    /// Finds the `>` that ends the tag whose name is at `start`. A `>` inside a quoted value does not count,
    /// unless the quote is not closed within a reasonable length.
    [[nodiscard]] TagEnd tagEnd(std::size_t start);
    /// The position of the first `>` from `from` on, or `None`.
    [[nodiscard]] std::size_t bracket(std::size_t from);
    /// The position after the next `-->` from `from` on, or `None`.
    [[nodiscard]] std::size_t commentEnd(std::size_t from);
    /// The position of the next `</name` from `from` on, or `None`. The positions of consecutive calls for a
    /// name must not decrease.
    /// \param name  in upper case
    [[nodiscard]] std::size_t endTag(QStringView name, std::size_t from);
    /// True if there is a `{` between two positions; consecutive positions must not decrease.
    [[nodiscard]] bool hasBrace(std::size_t from, std::size_t to);

private:
    /// The maximum length of a quoted attribute value with a `>`; beyond it, the quote counts as unclosed.
    static constexpr std::size_t LongestQuotedValue = 4096;
    /// The maximum length of all texts that are searched after the first `>` of their tags, for each
    /// character of the text before them.
    static constexpr std::size_t LookAheadPerCharacter = 8;

    [[nodiscard]] std::size_t findEndTag(QStringView name, std::size_t from) const;
    [[nodiscard]] bool isEndTag(QStringView name, std::size_t at) const;

    View input;
    bool noBracket = false;
    bool noCommentEnd = false;
    std::size_t lookAhead = 0;
    std::size_t nextBrace = 0; ///< The first `{` after some earlier position; 0 if not searched yet.

    struct FoundEndTag
    {
        QStringView name;
        std::size_t at = 0;
    };
    std::array<FoundEndTag, 4> endTags; ///< The last result for each name; few elements need one.
};

template <class Char>
std::size_t HtmlScanner<Char>::bracket(std::size_t from)
{
    const std::size_t found = noBracket ? None : input.find(Char('>'), from);
    noBracket = found == None;
    return found;
}

template <class Char>
std::size_t HtmlScanner<Char>::commentEnd(std::size_t from)
{
    constexpr std::array<Char, 3> End = {Char('-'), Char('-'), Char('>')};
    const std::size_t found = noCommentEnd ? None : input.find(View(End.data(), End.size()), from);
    noCommentEnd = found == None;
    return found == None ? None : found + End.size();
}

template <class Char>
auto HtmlScanner<Char>::tagEnd(std::size_t start) -> TagEnd
{
    const std::size_t first = bracket(start);
    if (first == None)
        return {};
    const bool mayLookAhead = lookAhead <= LongestQuotedValue + LookAheadPerCharacter * start;
    const std::size_t limit = mayLookAhead ? std::min(input.size(), first + LongestQuotedValue)
                                           : std::min(input.size(), first + 1);
    Char quote = Char('"');
    std::size_t i = start;
    while (i < limit) {
        if (input[i] == Char('>'))
            return {i, {}};
        if (input[i] != Char('=')) {
            ++i;
            continue;
        }
        for (++i; i < limit && IsHtmlSpace(char32_t(input[i]));)
            ++i;
        if (i < limit && (input[i] == Char('"') || input[i] == Char('\''))) {
            if (i < first)
                quote = input[i];
            const std::size_t close = input.substr(0, limit).find(input[i], i + 1);
            if (close == None)
                break;
            i = close + 1;
        }
    }
    lookAhead += limit - first;
    return {first, quote};
}

template <class Char>
bool HtmlScanner<Char>::isEndTag(QStringView name, std::size_t at) const
{
    const auto length = std::size_t(name.size());
    if (input[at + 1] != Char('/') || input.size() - at - 2 < length)
        return false;
    for (std::size_t k = 0; k < length; ++k) {
        const auto c = char32_t(input[at + 2 + k]);
        if (!IsHtmlLetter(c) || (c & ~0x20U) != name[qsizetype(k)].unicode())
            return false;
    }
    const std::size_t after = at + 2 + length;
    return after == input.size() || EndsHtmlName(char32_t(input[after]));
}

template <class Char>
std::size_t HtmlScanner<Char>::findEndTag(QStringView name, std::size_t from) const
{
    for (std::size_t i = input.find(Char('<'), from); i != None && i + 2 < input.size();
         i = input.find(Char('<'), i + 1)) {
        if (isEndTag(name, i))
            return i;
    }
    return None;
}

template <class Char>
std::size_t HtmlScanner<Char>::endTag(QStringView name, std::size_t from)
{
    const auto known = std::find_if(endTags.begin(), endTags.end(), [name](const FoundEndTag& found) {
        return found.name.isEmpty() || found.name == name;
    });
    if (known == endTags.end())
        return findEndTag(name, from);
    if (known->name.isEmpty() || known->at < from)
        *known = {name, findEndTag(name, from)};
    return known->at;
}

template <class Char>
bool HtmlScanner<Char>::hasBrace(std::size_t from, std::size_t to)
{
    if (nextBrace == 0 || nextBrace < from) {
        nextBrace = input.find(Char('{'), from);
    }
    return nextBrace < to;
}

} // namespace vmk
