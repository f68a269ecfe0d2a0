#include "BookLosses.h"

#include "TextFunctions.h"

namespace vmk {

using namespace Qt::StringLiterals;

bool BookLosses::any() const
{
    return lines != LineLosses() || characters.angleQuotes + characters.markers + characters.nonBreaking > 0
        || characters.lineEnds + movedElements + cutCharacters + misreadCharacters + garbledBrackets > 0
        || droppedBytes + misplacedPictures + descriptions + controls + foreignBytes > 0;
}

QStringList BookLosses::descriptionLines() const
{
    QStringList result;
    const auto add = [&result](size_t count, const QString& what) {
        if (count > 0)
            result.append(what.arg(GroupDigits(int64_t(count))));
    };
    add(lines.joinedWords + characters.lineEnds, u"words joined where only a line end parts them: %1"_s);
    add(lines.tornTexts + movedElements, u"line ends put into text beside elements: %1"_s);
    add(lines.mergedAttributes, u"attributes run together with the word before them: %1"_s);
    add(lines.valueBlanks, u"runs of blanks shortened in attribute values: %1"_s);
    add(cutCharacters, u"characters cut off at the end of the UTF-16 text: %1"_s);
    if (misreadCharacters > 0)
        add(misreadCharacters, u"characters misread, the encoding being "_s + encoding + u": %1"_s);
    add(garbledBrackets, u"&lt; and &gt; garbled: %1"_s);
    add(characters.angleQuotes, u"single angle quotes taken for &lt; and &gt;: %1"_s);
    add(characters.nonBreaking, u"non-breaking spaces turned into blanks: %1"_s);
    add(characters.markers, u"characters 127 turned into non-breaking spaces: %1"_s);
    add(droppedBytes, u"characters dropped before the root or after the last picture: %1"_s);
    add(misplacedPictures, u"quoted declarations, pictures or ends of the book taken for real ones: %1"_s);
    add(descriptions, u"mark-up taken out of the description: %1"_s);
    add(controls, u"tabs and control characters taken out: %1"_s);
    add(foreignBytes, u"bytes that are no characters replaced by signs: %1"_s);
    return result;
}

QString LossQuestion(const BookLosses& losses)
{
    QString text = u"Loading this book in the usual way would change it:\r\n"_s;
    for (const QString& line : losses.descriptionLines())
        text += u"\r\n- "_s + line;
    if (losses.replacedBytes > 0)
        text += u"\r\n\r\nIn any case lost, being no characters of the encoding: %1"_s.arg(
            GroupDigits(int64_t(losses.replacedBytes)));
    return text + u"\r\n\r\nLoad the book without these losses?"_s;
}

} // namespace vmk
