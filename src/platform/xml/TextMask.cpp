#include "TextMask.h"

#include <algorithm>
#include <cstring>

namespace vmk {

void TextMask::apply(char* piece, size_t length)
{
    kept.append(piece, length);
    char* at = piece;
    const char* const end = piece + length;
    while (at != end && isUsable)
        at = state == State::Text ? text(at, end) : markup(at, end);
}

/// Masks up to the next "<".
char* TextMask::text(char* at, const char* end)
{
    // Characters from U+F000 on begin with this byte; two of them are forbidden.
    constexpr unsigned char LastPlane = 0xEF;
    auto* open = static_cast<char*>(std::memchr(at, '<', static_cast<size_t>(end - at)));
    char* const textEnd = open == nullptr ? at + (end - at) : open;
    bool isExact = true;
    for (; at != textEnd; ++at) {
        const auto byte = static_cast<unsigned char>(*at);
        isExact &= byte != LastPlane && *at != Mask;
        *at = byte >= 0x80 ? Mask : *at;
    }
    isUsable = isUsable && isExact;
    if (open == nullptr)
        return textEnd;
    state = State::Opening;
    opening.clear();
    return textEnd + 1;
}

char* TextMask::markup(char* at, const char* end)
{
    for (; at != end && state != State::Text && isUsable; ++at) {
        const char c = *at;
        switch (state) {
        case State::Text:
            break;
        case State::Opening:
            open(c);
            break;
        case State::Tag:
            if (c == '>')
                state = State::Text;
            else if (c == '"' || c == '\'') {
                state = State::Value;
                quote = c;
            }
            break;
        case State::Value:
            if (c == quote)
                state = State::Tag;
            break;
        case State::Comment:
            closeAfter(c, '-', 2);
            break;
        case State::CData:
            closeAfter(c, ']', 2);
            break;
        case State::Instruction:
            closeAfter(c, '?', 1);
            break;
        }
    }
    return at;
}

/// Takes a character after a "<" and finds the kind of the mark-up.
void TextMask::open(char c)
{
    constexpr std::string_view CommentStart = "!--";
    constexpr std::string_view CDataStart = "![CDATA[";
    opening += c;
    marks = 0;
    if (opening == "?")
        state = State::Instruction;
    else if (opening == CommentStart)
        state = State::Comment;
    else if (opening == CDataStart)
        state = State::CData;
    else if (opening.front() != '!')
        state = c == '>' ? State::Text : State::Tag;
    else if (!CommentStart.starts_with(opening) && !CDataStart.starts_with(opening))
        isUsable = false; // a document type, or not XML
}

/// Ends the mark-up at a ">" after `count` or more marks.
void TextMask::closeAfter(char c, char mark, int count)
{
    if (c == '>' && marks >= count)
        state = State::Text;
    marks = c == mark ? marks + 1 : 0;
}

std::string_view TextMask::original(qsizetype offset, size_t length) const
{
    if (offset < keptFrom)
        return {};
    return std::string_view(kept).substr(std::min(static_cast<size_t>(offset - keptFrom), kept.size()),
                                         length);
}

void TextMask::forget(qsizetype offset)
{
    constexpr qsizetype Worthwhile = 1 << 17;
    if (offset - keptFrom < Worthwhile)
        return;
    kept.erase(0, std::min(static_cast<size_t>(offset - keptFrom), kept.size()));
    keptFrom = offset;
}

} // namespace vmk
