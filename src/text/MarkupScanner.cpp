#include "MarkupScanner.h"

#include <algorithm>

namespace vmk {

namespace {

constexpr size_t None = std::string_view::npos;
constexpr std::string_view White = " \t\r\n";
constexpr std::string_view CommentStart = "<!--";
constexpr std::string_view CDataStart = "<![CDATA[";
constexpr std::string_view DocTypeStart = "<!DOCTYPE";

constexpr bool IsNameStart(char c)
{
    const auto code = static_cast<unsigned char>(c);
    return (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z') || code == '_' || code == ':'
        || code >= 0x80;
}

} // namespace

std::string_view MarkupToken::name() const
{
    if (!isTag())
        return {};
    const std::string_view inner = text.substr(kind == Kind::EndTag ? 2 : 1);
    return inner.substr(0, inner.find_first_of(" \t\r\n/>"));
}

bool MarkupScanner::next(MarkupToken& token)
{
    if (at >= text.size())
        return false;
    token.kind = MarkupToken::Kind::Text;
    token.start = at;
    size_t end = text.size();
    if (pendingEnd > at) {
        token.kind = pendingKind;
        end = pendingEnd;
    } else {
        for (size_t open = text.find('<', at); open != None; open = text.find('<', open + 1)) {
            MarkupToken::Kind kind = MarkupToken::Kind::Text;
            const size_t close = markupEnd(open, kind);
            if (close == None)
                continue;
            end = open;
            if (open == at) {
                token.kind = kind;
                end = close;
            } else {
                pendingKind = kind;
                pendingEnd = close;
            }
            break;
        }
    }
    at = end;
    token.text = text.substr(token.start, at - token.start);
    return true;
}

/// The end of the mark-up that begins with the "<" at `start`; None if that is a character of the text.
size_t MarkupScanner::markupEnd(size_t start, MarkupToken::Kind& kind)
{
    const std::string_view rest = text.substr(start);
    if (rest.size() < 2)
        return None;
    if (rest[1] == '?') {
        kind = MarkupToken::Kind::Instruction;
        return endOf(start + 2, "?>", noInstructionEnd);
    }
    if (rest.starts_with(CommentStart)) {
        kind = MarkupToken::Kind::Comment;
        return endOf(start + CommentStart.size(), "-->", noCommentEnd);
    }
    if (rest.starts_with(CDataStart)) {
        kind = MarkupToken::Kind::CData;
        return endOf(start + CDataStart.size(), "]]>", noCDataEnd);
    }
    if (rest.starts_with(DocTypeStart)) {
        kind = MarkupToken::Kind::DocType;
        return docTypeEnd(start);
    }
    const bool isEnd = rest[1] == '/';
    if (rest.size() < 3 || !IsNameStart(rest[isEnd ? 2 : 1]))
        return None;
    const size_t end = tagEnd(start);
    if (end == None)
        return None;
    kind = isEnd               ? MarkupToken::Kind::EndTag
        : text[end - 2] == '/' ? MarkupToken::Kind::EmptyTag
                               : MarkupToken::Kind::StartTag;
    return end;
}

size_t MarkupScanner::endOf(size_t from, std::string_view terminator, bool& missing) const
{
    const size_t found = missing ? None : text.find(terminator, from);
    missing = found == None;
    return missing ? None : found + terminator.size();
}

/// A ">" in a quoted value does not end a tag, unless the quote is never closed before the next "<".
size_t MarkupScanner::tagEnd(size_t start) const
{
    size_t firstAngle = None;
    size_t i = start + 1;
    while (i < text.size() && text[i] != '<') {
        const char c = text[i];
        if (c == '>')
            return i + 1;
        if (c != '=') {
            ++i;
            continue;
        }
        i = std::min(text.find_first_not_of(White, i + 1), text.size());
        if (i == text.size() || (text[i] != '"' && text[i] != '\''))
            continue;
        const char quote = text[i];
        size_t close = i + 1;
        for (; close < text.size() && text[close] != quote && text[close] != '<'; ++close)
            if (text[close] == '>' && firstAngle == None)
                firstAngle = close;
        if (close == text.size() || text[close] == '<')
            break;
        i = close + 1;
    }
    return firstAngle == None ? None : firstAngle + 1;
}

/// A document type ends at the ">" outside its quotes, comments and square brackets.
size_t MarkupScanner::docTypeEnd(size_t start)
{
    bool inSubset = false;
    size_t i = noDocTypeEnd ? text.size() : start + DocTypeStart.size();
    for (; i < text.size(); ++i) {
        const char c = text[i];
        const std::string_view rest = text.substr(i);
        if (c == '>' && !inSubset)
            return i + 1;
        if (c == '[' || c == ']') {
            inSubset = c == '[';
        } else if (c == '"' || c == '\'') {
            i = std::min(text.find(c, i + 1), text.size());
        } else if (rest.starts_with(CommentStart)) {
            i = std::min(text.find("-->", i + CommentStart.size()), text.size());
        }
    }
    noDocTypeEnd = true;
    return None;
}

} // namespace vmk
