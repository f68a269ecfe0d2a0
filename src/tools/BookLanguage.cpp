#include "BookLanguage.h"

#include "DisplayDocument.h"

namespace vmk {

using namespace Qt::StringLiterals;

QString BookLanguage(QStringView xml)
{
    const qsizetype body = xml.indexOf("<body"_L1);
    if (body >= 0)
        xml.truncate(body);
    constexpr QLatin1StringView Tag("<lang");
    for (qsizetype at = xml.indexOf(Tag); at >= 0; at = xml.indexOf(Tag, at + 1)) {
        const qsizetype after = at + Tag.size();
        if (after >= xml.size() || (xml[after] != u'>' && !xml[after].isSpace()))
            continue;
        const qsizetype start = xml.indexOf(u'>', after) + 1;
        const qsizetype end = start > 0 ? xml.indexOf(u'<', start) : -1;
        return end > start ? xml.mid(start, end - start).trimmed().toString() : QString();
    }
    return {};
}

QString BookLanguage(const DisplayDocument& document)
{
    // The description is a small part of the book; the rest is not copied.
    QString description;
    for (int i = 0; i < document.lineCount(); ++i) {
        const QString& text = document.line(i).text;
        description += text + u'\n';
        if (text.contains("<body"_L1) || text.contains("</lang"_L1))
            break;
    }
    return BookLanguage(QStringView(description));
}

} // namespace vmk
