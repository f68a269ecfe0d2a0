#include "DisplayCharacters.h"

#include "CodePages.h"
#include "LargeBuffers.h"
#include "MarkupScanner.h"
#include "NonBreakingSpace.h"
#include "XmlReference.h"

#include <algorithm>
#include <optional>

namespace vmk {

namespace {

constexpr std::string_view Ampersand = "&amp;";
/// U+2039 and U+203A.
constexpr std::string_view LeftMark = "\xe2\x80\xb9";
constexpr std::string_view RightMark = "\xe2\x80\xba";
constexpr std::string_view Marker(&NbspMarker, 1);
constexpr std::string_view Nbsp = Utf8Nbsp;
constexpr std::string_view ReplacementCharacter = "\xef\xbf\xbd";
/// U+E0100 to U+E017F represent the bytes 128 to 255; their first two bytes.
constexpr std::string_view ByteFront = "\xf3\xa0";
constexpr size_t ByteLength = 4;

/// Rewrites a text piece by piece.
class Rewriter
{
public:
    explicit Rewriter(std::string_view source)
        : text(source)
    {
    }

    void replace(size_t at, size_t length, std::string_view with)
    {
        if (result.capacity() == 0)
            result = StringWithRoom(text.size() + text.size() / 16 + with.size());
        result.append(text, copied, at - copied);
        result += with;
        copied = at + length;
        changed = true;
    }
    void insert(size_t at, std::string_view with) { replace(at, 0, with); }

    /// Writes the new text to `target`, which contains the old one.
    void finish(std::string& target)
    {
        if (!changed)
            return;
        result.append(text, copied);
        target = std::move(result);
    }

private:
    std::string_view text;
    std::string result;
    size_t copied = 0;
    bool changed = false;
};

/// Protects the characters of one text.
class Protector
{
public:
    Protector(std::string_view source, bool showsNbsp, ProtectedCharacters& counts)
        : text(source)
        , out(source)
        , showNbsp(showsNbsp)
        , met(counts)
    {
        for (const unsigned char c : {0x26, 0xE2, 0xEF, 0x7F})
            special[c] = true;
        special[0xC2] = !showsNbsp;
    }

    void run();
    void finish(std::string& target) { out.finish(target); }

private:
    void protect(const MarkupToken& token);
    [[nodiscard]] size_t protectCharacter(size_t at);
    [[nodiscard]] size_t protectReference(size_t at, bool inText);
    [[nodiscard]] std::string_view guarded(uint32_t character);

    std::string_view text;
    Rewriter out;
    const bool showNbsp;
    bool special[256]{}; ///< bytes with which a character begins that may have to be protected
    ProtectedCharacters& met;
};

void Protector::run()
{
    MarkupScanner scanner(text);
    for (MarkupToken token; scanner.next(token);)
        protect(token);
}

void Protector::protect(const MarkupToken& token)
{
    const std::string_view within = text.substr(0, token.end());
    const auto next = [this, within](size_t at) {
        while (at < within.size() && !special[static_cast<unsigned char>(within[at])])
            ++at;
        return at;
    };
    for (size_t at = next(token.start); at < within.size(); at = next(at)) {
        if (text[at] != '&')
            at = protectCharacter(at);
        else
            at = token.isRaw() ? at + 1 : protectReference(at, token.kind == MarkupToken::Kind::Text);
    }
}

/// Guards the character at `at` if the display gives it another meaning. Returns the next position.
size_t Protector::protectCharacter(size_t at)
{
    const std::string_view rest = text.substr(at);
    size_t length = 1;
    if (rest.starts_with(DisplayGuard)) {
        out.insert(at, DisplayGuardEscape);
        return at + DisplayGuard.size();
    }
    if (rest.starts_with(LeftMark) || rest.starts_with(RightMark)) {
        length = LeftMark.size();
        ++met.angleQuotes;
    } else if (rest.starts_with(Marker)) {
        ++met.markers;
    } else if (!showNbsp && rest.starts_with(Utf8Nbsp)) {
        length = Nbsp.size();
        ++met.nonBreaking;
    } else {
        return at + 1;
    }
    out.insert(at + length, DisplayGuard);
    return at + length;
}

size_t Protector::protectReference(size_t at, bool inText)
{
    constexpr size_t NamedLength = 4;
    const std::string_view rest = text.substr(at);
    if (rest.starts_with("&lt;") || rest.starts_with("&gt;")) {
        out.replace(at, NamedLength, rest[1] == 'l' ? LeftMark : RightMark);
        return at + NamedLength;
    }
    const std::optional<XmlReference> reference = NumericReference(rest);
    if (!reference)
        return at + 1;
    const uint32_t character = reference->character;
    const bool isLayout = character == '\t' || character == '\n' || character == '\r';
    std::string_view replacement;
    if (character == '<' || character == '>') {
        replacement = character == '<' ? LeftMark : RightMark;
    } else if (isLayout && inText) {
        // White space in text is one blank, however it is written.
        replacement = " ";
        ++met.lineEnds;
    } else {
        replacement = guarded(character);
    }
    if (!replacement.empty())
        out.replace(at, reference->length, replacement);
    return at + reference->length;
}

/// The written form of a character that has another meaning in the display; empty for any other character.
std::string_view Protector::guarded(uint32_t character)
{
    switch (character) {
    case 0x2039:
        ++met.angleQuotes;
        return "\xe2\x80\xb9\xef\xb8\x8c";
    case 0x203A:
        ++met.angleQuotes;
        return "\xe2\x80\xba\xef\xb8\x8c";
    case 0xFE0C:
        return "\xef\xb8\x8b\xef\xb8\x8c";
    case 0x7F:
        ++met.markers;
        return "\x7f\xef\xb8\x8c";
    case 0xA0:
        met.nonBreaking += showNbsp ? 0 : 1;
        return showNbsp ? std::string_view() : std::string_view("\xc2\xa0\xef\xb8\x8c");
    default:
        return {};
    }
}

bool IsByteSign(std::string_view text)
{
    return text.size() >= ByteLength && text.starts_with(ByteFront)
        && (static_cast<unsigned char>(text[2]) & 0xFEU) == 0x84;
}

/// The byte that the character after a guard represents.
char ByteOf(std::string_view character)
{
    const unsigned int high = static_cast<unsigned char>(character[2]) - 0x84U;
    return static_cast<char>(0x80U | high << 6U | (static_cast<unsigned char>(character[3]) & 0x3FU));
}

/// Returns the position of the next ampersand, or first byte of a guard.
size_t FindSpecial(std::string_view text, size_t from)
{
    const auto found = std::find_if(text.begin() + std::ptrdiff_t(std::min(from, text.size())), text.end(),
                                    [](char c) { return c == '&' || c == DisplayGuard.front(); });
    return found == text.end() ? std::string_view::npos : size_t(found - text.begin());
}

/// Resolves the text of a display, token by token; calls `edit(at, length, with)` for each replacement.
template <typename Edit>
void ForEachResolution(std::string_view text, Edit edit)
{
    const auto guardAt = [text](size_t at) { return text.substr(at).starts_with(DisplayGuard); };
    MarkupScanner scanner(text);
    for (MarkupToken token; scanner.next(token);) {
        const std::string_view within = text.substr(0, token.end());
        for (size_t at = FindSpecial(within, token.start); at != std::string_view::npos;) {
            const std::string_view rest = text.substr(at);
            size_t next = at + 1;
            if (rest.starts_with(DisplayGuard)) {
                // The text before it determines its meaning.
                const std::string_view before = text.substr(0, at);
                next = at + DisplayGuard.size();
                if (before.ends_with(DisplayGuardEscape)) {
                    edit(at - DisplayGuardEscape.size(), DisplayGuardEscape.size(), "");
                } else if (before.ends_with(ReplacementCharacter) && IsByteSign(text.substr(next))) {
                    const char byte = ByteOf(text.substr(next));
                    next += ByteLength;
                    edit(at - ReplacementCharacter.size(), next - at + ReplacementCharacter.size(),
                         {&byte, 1});
                } else if (before.ends_with(Nbsp)) {
                    edit(at - Nbsp.size(), next - at + Nbsp.size(), Marker);
                } else if (before.ends_with(' ')) {
                    edit(at - 1, next - at + 1, Utf8Nbsp);
                }
            } else if (rest.starts_with(Ampersand)) {
                const bool guarded = guardAt(at + Ampersand.size());
                next = at + Ampersand.size() + (guarded ? DisplayGuard.size() : 0);
                const bool reference = token.isTag() && IsTagReference(rest.substr(Ampersand.size()));
                if (guarded || token.isRaw() || reference)
                    edit(at, next - at, "&");
            } else if ((rest.starts_with("&lt;") || rest.starts_with("&gt;")) && guardAt(at + 4)) {
                next = at + 4 + DisplayGuard.size();
                edit(at, next - at, rest[1] == 'l' ? LeftMark : RightMark);
            }
            at = FindSpecial(within, next);
        }
    }
}

} // namespace

size_t ProtectBytes(std::string& text)
{
    Rewriter out(text);
    size_t count = 0;
    const std::string_view view = text;
    for (size_t at = ValidUtf8Prefix(view); at < view.size();
         at += 1 + ValidUtf8Prefix(view.substr(at + 1))) {
        const unsigned int bits = static_cast<unsigned char>(view[at]) & 0x7FU;
        std::string shown
            = std::string(ReplacementCharacter) + std::string(DisplayGuard) + std::string(ByteFront);
        shown += static_cast<char>(0x84U + (bits >> 6U));
        shown += static_cast<char>(0x80U | (bits & 0x3FU));
        out.replace(at, 1, shown);
        ++count;
    }
    out.finish(text);
    return count;
}

void ProtectCharacters(std::string& text, bool showNbsp, ProtectedCharacters& met)
{
    Protector protector(text, showNbsp, met);
    protector.run();
    protector.finish(text);
}

void ProtectNumericAngles(std::string& text)
{
    if (text.find("&#") == std::string::npos)
        return;
    Rewriter out(text);
    MarkupScanner scanner(text);
    for (MarkupToken token; scanner.next(token);) {
        if (token.isRaw())
            continue;
        const std::string_view within = std::string_view(text).substr(0, token.end());
        for (size_t at = within.find("&#", token.start); at != std::string_view::npos;
             at = within.find("&#", at + 1)) {
            const std::optional<XmlReference> reference = NumericReference(within.substr(at));
            if (reference && (reference->character == '<' || reference->character == '>'))
                out.replace(at, reference->length, reference->character == '<' ? "&#x2039;" : "&#x203A;");
        }
    }
    out.finish(text);
}

std::string PageAmpersands(std::string_view text)
{
    std::string result = StringWithRoom(text.size() + text.size() / 16);
    MarkupScanner scanner(text);
    for (MarkupToken token; scanner.next(token);) {
        size_t copied = 0;
        for (size_t at = token.text.find('&'); at != std::string_view::npos;
             at = token.text.find('&', copied)) {
            const std::string_view rest = token.text.substr(at);
            result.append(token.text, copied, at - copied);
            result += Ampersand;
            copied = at + 1;
            if (token.isRaw() || (token.isTag() && IsTagReference(rest.substr(1))))
                continue;
            if (rest.starts_with(Ampersand))
                copied = at + Ampersand.size();
            else if (AnyReference(rest))
                result += DisplayGuard;
        }
        result.append(token.text, copied);
    }
    return result;
}

std::string ResolveDisplayText(std::string text)
{
    if (text.find(Ampersand) == std::string::npos && text.find(DisplayGuard) == std::string::npos)
        return text;
    Rewriter out(text);
    ForEachResolution(
        text, [&out](size_t at, size_t length, std::string_view with) { out.replace(at, length, with); });
    out.finish(text);
    return text;
}

size_t UnresolvedOffset(std::string_view text, size_t resolvedOffset)
{
    size_t shift = 0; // the increase of the text's length up to the position
    ForEachResolution(text, [&shift, resolvedOffset](size_t at, size_t length, std::string_view with) {
        if (at - shift < resolvedOffset)
            shift += length - with.size();
    });
    return std::min(resolvedOffset + shift, text.size());
}

} // namespace vmk
