#include "MissingCharacters.h"

#include "CodePages.h"
#include "TextFunctions.h"

#include <unordered_map>

namespace vmk {

using namespace Qt::StringLiterals;

namespace {

/// A character as the question shows it.
QString Shown(char32_t character)
{
    if (QChar::isPrint(character) && !QChar::isSpace(character) && !QChar::isMark(character))
        return QString::fromUcs4(&character, 1);
    return u"U+%1"_s.arg(QString::number(character, 16).toUpper(), 4, u'0');
}

} // namespace

MissingCharacters FindMissingCharacters(std::string_view text, int32_t codePage)
{
    constexpr qsizetype MostExamples = 10;
    MissingCharacters missing;
    if (codePage == CodePageUtf8)
        return missing;
    std::unordered_map<char32_t, bool> known; // whether the code page has it
    qsizetype examples = 0;
    size_t at = 0;
    while (at < text.size()) {
        const auto lead = static_cast<unsigned char>(text[at]);
        const size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        const std::string_view bytes = text.substr(at, length);
        at += length;
        if (length == 1)
            continue;
        char32_t character = lead & (0x7FU >> length);
        for (const char c : bytes.substr(1))
            character = character << 6U | (static_cast<unsigned char>(c) & 0x3FU);
        const auto [entry, isNew] = known.try_emplace(character, false);
        if (isNew)
            entry->second = ByteOfCharacter(character, codePage).has_value();
        if (entry->second)
            continue;
        ++missing.count;
        if (isNew && examples < MostExamples) {
            missing.examples += examples == 0 ? QString() : u" "_s;
            missing.examples += Shown(character);
            ++examples;
        }
    }
    return missing;
}

QString MissingCharactersQuestion(const MissingCharacters& missing, const QString& encoding)
{
    return u"%1 has no place for some characters of this book: %2\r\n\r\nThe first of them: %3\r\n\r\n"
           "Save the book in utf-8? With No they are replaced by similar ones or by question marks."_s.arg(
               encoding, GroupDigits(int64_t(missing.count)), missing.examples);
}

} // namespace vmk
