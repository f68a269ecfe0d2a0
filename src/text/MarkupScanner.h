#pragma once

#include <cstddef>
#include <string_view>

/// Splits a text into mark-up and text, whether it is well-formed or not.
namespace vmk {

/// One piece of a text.
struct MarkupToken
{
    enum class Kind
    {
        Text,
        StartTag,
        EmptyTag,
        EndTag,
        Comment,
        CData,
        Instruction, ///< also the XML declaration
        DocType
    };

    Kind kind = Kind::Text;
    size_t start = 0; ///< of the token in the text, in bytes
    std::string_view text;

    [[nodiscard]] size_t end() const { return start + text.size(); }
    [[nodiscard]] bool isTag() const
    {
        return kind == Kind::StartTag || kind == Kind::EmptyTag || kind == Kind::EndTag;
    }
    /// True if an ampersand represents itself: in comments, CDATA sections, instructions, document types.
    [[nodiscard]] bool isRaw() const { return kind != Kind::Text && !isTag(); }
    /// The name of a tag; empty for other tokens.
    [[nodiscard]] std::string_view name() const;
};

/// Scans a text from its first byte to its last. Every byte belongs to exactly one token.
///
/// Unterminated mark-up (`<!--` without `-->`, a tag without `>`) is text from its `<` on, so that one stray
/// bracket does not change the meaning of the rest of the book. Time is linear in the text.
class MarkupScanner
{
public:
    explicit MarkupScanner(std::string_view scannedText, size_t from = 0)
        : text(scannedText)
        , at(from)
    {
    }

    /// Reads the next token; returns false at the end.
    [[nodiscard]] bool next(MarkupToken& token);

private:
    [[nodiscard]] size_t markupEnd(size_t start, MarkupToken::Kind& kind);
    [[nodiscard]] size_t endOf(size_t from, std::string_view terminator, bool& missing) const;
    [[nodiscard]] size_t tagEnd(size_t start) const;
    [[nodiscard]] size_t docTypeEnd(size_t start);

    std::string_view text;
    size_t at;
    // Mark-up found after a text, for the next call.
    size_t pendingEnd = 0;
    MarkupToken::Kind pendingKind = MarkupToken::Kind::Text;
    // Results of searches to the end of the text: no further occurrence exists.
    bool noCommentEnd = false;
    bool noCDataEnd = false;
    bool noInstructionEnd = false;
    bool noDocTypeEnd = false;
};

} // namespace vmk
