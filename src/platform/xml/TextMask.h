#pragma once

#include <QtGlobal>

#include <string>
#include <string_view>

namespace vmk {

/// Replaces the characters beyond ASCII in the text of an XML stream by ASCII ones of the same length, so
/// that the parser takes its fast path, which is for ASCII only; most of the text of a Russian book is beyond
/// ASCII. The original text is available by its position.
///
/// Which characters are text depends on the mark-up before them. A stream with anything that this class does
/// not follow (a document type, characters that XML could forbid, the mask itself) is not `usable` any more,
/// and must be parsed again without a mask.
class TextMask
{
public:
    /// A character that the parser accepts and that no book contains.
    static constexpr char Mask = '\x7f';

    /// Masks the next piece of the stream in place.
    void apply(char* piece, size_t length);
    /// False after a piece that cannot be masked exactly.
    [[nodiscard]] bool usable() const { return isUsable; }

    /// Returns the original text of `length` bytes of the stream from `offset`; empty if it was forgotten.
    [[nodiscard]] std::string_view original(qsizetype offset, size_t length) const;
    /// Forgets the original text before `offset`.
    void forget(qsizetype offset);

private:
    enum class State
    {
        Text,
        Opening, ///< after a "<", until its kind is known
        Tag,
        Value, ///< of an attribute, until `quote`
        Comment,
        CData,
        Instruction
    };

    [[nodiscard]] char* text(char* at, const char* end);
    [[nodiscard]] char* markup(char* at, const char* end);
    void open(char c);
    void closeAfter(char c, char mark, int count);

    State state = State::Text;
    std::string opening; // the characters after the "<"
    char quote = 0;
    int marks = 0; // consecutive characters of the end of a comment, section or instruction
    bool isUsable = true;
    std::string kept; // the original stream
    qsizetype keptFrom = 0;
};

} // namespace vmk
