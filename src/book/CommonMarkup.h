#pragma once

#include "DisplayCharacters.h"
#include "ElementFacts.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace vmk {

[[nodiscard]] constexpr bool IsXmlWhite(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

[[nodiscard]] constexpr bool IsTagNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

[[nodiscard]] constexpr bool IsTagNameByte(char c)
{
    return IsTagNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == ':';
}

/// One tag or comment.
struct CommonToken
{
    enum class Kind
    {
        Declaration,
        Comment,
        Start,
        Empty,
        End
    };

    Kind kind = Kind::Declaration;
    std::size_t start = 0; ///< in the text, in bytes
    std::size_t end = 0;
    const ElementFacts* facts = &NoElement;
    bool isBare = false; ///< without attributes and white space
    bool hasLines = false; ///< a comment of several lines
};

/// What a text contains besides characters that the display shows as they are.
struct TextFeatures
{
    bool hasLines = false; ///< line ends or tabs
    bool hasAngles = false; ///< ">"
};

/// Reads the tags, comments and texts of a book in common form (`BookOutline`), and checks that a parser
/// accepts them. Every function returns false if they are not in this form.
class CommonMarkup
{
public:
    /// \param showsNbsp  non-breaking spaces are visible in the display
    CommonMarkup(std::string_view source, const InLineTagSet& inLineTags, bool showsNbsp)
        : text(source)
        , showNbsp(showsNbsp)
        , elements(inLineTags)
    {
    }

    /// Reads the tag or comment whose "<" is at `at`.
    /// \param depth   the number of open elements
    /// \param around  the innermost of them; null before the root
    [[nodiscard]] bool readToken(std::size_t at, std::size_t depth, const ElementFacts* around,
                                 CommonToken& token);
    /// Checks a text that is not blank.
    [[nodiscard]] bool checkText(std::size_t at, std::size_t end, TextFeatures& features);

    /// The characters read so far that the display guards.
    ProtectedCharacters met;

private:
    struct Attribute
    {
        std::string_view name;
        std::string_view value;
    };
    struct Prefix
    {
        std::string_view name;
        std::size_t depth; ///< of the element that declares it
    };

    [[nodiscard]] bool readComment(std::size_t at, CommonToken& token);
    [[nodiscard]] bool readEndTag(std::size_t at, const ElementFacts& element, CommonToken& token) const;
    [[nodiscard]] bool readAttributes(std::size_t at, CommonToken& token);
    [[nodiscard]] bool readAttribute(std::size_t& at);
    [[nodiscard]] bool readWhiteInTag(std::size_t& at) const;
    [[nodiscard]] std::size_t nameEnd(std::size_t at) const;
    [[nodiscard]] bool isKnownPrefix(std::string_view name) const;
    [[nodiscard]] bool checkAttributes(std::size_t depth);
    [[nodiscard]] bool takePrefix(const Attribute& attribute, std::size_t depth);
    [[nodiscard]] bool isUnique(std::size_t index) const;
    [[nodiscard]] bool checkValue(std::string_view value);
    [[nodiscard]] std::size_t skipPlain(std::size_t at, std::size_t end) const;
    [[nodiscard]] bool checkCharacter(std::size_t& at, std::size_t end, bool inText);
    [[nodiscard]] bool checkLongCharacter(std::size_t& at, std::size_t end);
    [[nodiscard]] bool checkReference(std::size_t& at, std::size_t end);
    [[nodiscard]] bool takeQuote(std::size_t at);
    [[nodiscard]] bool checkReferenceInTag(std::size_t& at, std::size_t end) const;

    std::string_view text;
    const bool showNbsp;
    ElementTable elements;
    std::vector<Prefix> prefixes; ///< of namespaces, declared by the open elements
    std::vector<Attribute> attributes; ///< of the current tag
    std::size_t textStart = 0; ///< of the current text
    bool inPaintedValue = false;
};

} // namespace vmk
