#include "UniCodes.h"

#include "CodePages.h"
#include "RegExp.h"
#include "TextFunctions.h"

#include <QStringList>

#include <limits>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Returns the decimal number at the start of a text; 0 if there is none or it exceeds 32 bits.
int32_t LeadingNumber(QStringView text)
{
    int64_t number = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            break;
        number = number * 10 + (c.unicode() - u'0');
        if (number > std::numeric_limits<int32_t>::max())
            return 0;
    }
    return int32_t(number);
}

/// Returns the character with a code; empty if there is none.
QString CharacterOfCode(int32_t code)
{
    constexpr int32_t FirstByteCode = 128;
    constexpr int32_t LastByteCode = 191;
    if (code <= 0 || code > int32_t(QChar::LastValidCodePoint))
        return {};
    // Only this range is the code page's, which is intended.
    if (code >= FirstByteCode && code <= LastByteCode)
        return {QChar(CharacterOfByte(static_cast<unsigned char>(code), CodePageSystem))};
    if (code > 0xFFFF)
        return QString::fromUcs4(reinterpret_cast<const char32_t*>(&code), 1);
    return {QChar(char16_t(code))};
}

/// Returns the characters that a `uni(...)` names.
/// @param segment contains "uni("
QString Expanded(const QString& segment)
{
    QString codes = segment;
    codes.remove("uni("_L1).remove(u')');
    codes = TrimBlanks(codes).toString();
    if (!codes.contains(u',')) {
        const QString character = CharacterOfCode(LeadingNumber(codes));
        return codes.isEmpty() || !character.isEmpty() ? character : segment;
    }
    QString result;
    for (const QString& item : codes.split(u',')) {
        const QString part = TrimBlanks(item).toString();
        const QString character = CharacterOfCode(LeadingNumber(part));
        result += character.isEmpty() ? part : character;
    }
    return result;
}

} // namespace

void ParseUniCodes(QString& text)
{
    if (!text.contains("uni("_L1))
        return;
    const QString nul{QChar(u'\0')};
    const QString parted = RegExpReplace(text, uR"((uni\x28[^\x29]*\x29))", nul + u"$1"_s + nul, false);
    QString result;
    for (const QString& segment : parted.split(QChar(u'\0')))
        result += segment.contains("uni("_L1) ? Expanded(segment) : segment;
    if (!result.isEmpty())
        text = result;
}

} // namespace vmk
