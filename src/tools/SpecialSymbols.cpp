#include "SpecialSymbols.h"

#include "CodePages.h"
#include "DisplayPage.h"
#include "EditLines.h"

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr WrappingSymbols WrappingSymbolRows[] = {
    {"FrenchBrackets", 171, 187, 1, "double angle quotation marks"},
    {"SmallerBigger", 139, 155, 1, "single angle quotation marks"},
    {"UpperCavich", 147, 148, 2, "double quotation marks"},
    {"UpperCavichOne", 145, 146, 2, "single quotation marks"},
    {"LowerCavich", 132, 132, 1, "double low quotation marks"},
    {"LowerCavichOne", 130, 130, 2, "single low quotation marks"},
};

constexpr SingleSymbol SingleSymbolRows[] = {
    {"FrenchLeft", 171, "left double angle quotation mark"},
    {"FrenchRight", 187, "right double angle quotation mark"},
    {"DoubleUpperLeft", 147, "left double quotation mark"},
    {"DoubleUpperRight", 148, "right double quotation mark"},
    {"SingleUpperLeft", 145, "left single quotation mark"},
    {"SingleUpperRight", 146, "right single quotation mark"},
    {"SingleLowerTwo", 132, "double low quotation mark"},
    {"SingleLowerOne", 130, "single low quotation mark"},
    {"ThreePoints", 133, "horizontal ellipsis"},
    {"Smaller", 139, "left single angle quotation mark"},
    {"Bigger", 155, "right single angle quotation mark"},
    {"Par", 167, "section sign"},
    {"TM", 153, "trade mark sign"},
    {"CopyR", 169, "copyright sign"},
    {"R", 174, "registered sign"},
    {"PlusMinus", 177, "plus-minus sign"},
    {"Degree", 176, "degree sign"},
    {"Mu", 181, "micro sign"},
};

/// Returns the number at the beginning of a text; 0 if there is none or it is not in Unicode.
char32_t LeadingNumber(QStringView text)
{
    char32_t number = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9')
            break;
        number = number * 10 + char32_t(c.unicode() - u'0');
        if (number > QChar::LastValidCodePoint)
            return 0;
    }
    return number;
}

/// Replaces the range by a text, and puts the caret after it.
void SetTextAndCaret(TextRange& range, const QString& text)
{
    range.setText(text);
    range.select();
    MarkEdit(1);
}

} // namespace

std::span<const WrappingSymbols> WrappingSymbolTable()
{
    return WrappingSymbolRows;
}

std::span<const SingleSymbol> SingleSymbolTable()
{
    return SingleSymbolRows;
}

QString SymbolText(int code)
{
    return {QChar(CharacterOfByte(static_cast<unsigned char>(code), SystemCodePage()))};
}

void InsertSpecialCharacter(DisplayDocument& document, int code)
{
    TextRange range = page::createRange(document);
    range.collapse(false);
    SetTextAndCaret(range, SymbolText(code));
}

void InsertSpecialSymbols(DisplayDocument& document, const QString& kind, const QString& extra)
{
    TextRange range = page::createRange(document);
    if (kind == QLatin1StringView(UserAsciiKind)) {
        const QString text = TextOfNumbers(extra.trimmed());
        if (text.isEmpty())
            return;
        range.collapse(false);
        SetTextAndCaret(range, text);
        return;
    }
    const auto isOfKind
        = [&kind](const WrappingSymbols& row) { return kind == QLatin1StringView(row.button); };
    const auto* row = std::ranges::find_if(WrappingSymbolRows, isOfKind);
    if (row != std::end(WrappingSymbolRows))
        SetTextAndCaret(range, SymbolText(row->left) + range.text() + SymbolText(row->right));
}

QString TextOfNumbers(const QString& numbers)
{
    QString units;
    for (const QStringView piece : QStringView(numbers).split(u' ')) {
        if (const char32_t code = LeadingNumber(piece); QChar::requiresSurrogates(code))
            units += QString::fromUcs4(&code, 1);
        else if (code != 0)
            units += QChar(char16_t(code));
    }
    QString text;
    for (qsizetype i = 0; i < units.size(); ++i) {
        const bool isPair
            = units[i].isHighSurrogate() && i + 1 < units.size() && units[i + 1].isLowSurrogate();
        if (isPair || !units[i].isSurrogate())
            text += QStringView(units).mid(i, isPair ? 2 : 1);
        i += isPair ? 1 : 0;
    }
    return text;
}

} // namespace vmk
