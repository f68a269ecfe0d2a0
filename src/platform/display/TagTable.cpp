#include "TagTable.h"

#include "HtmlCharacters.h"

#include <algorithm>

namespace vmk {

namespace {

/// One attribute in the attribute text of a tag: the positions of its name and its raw value.
struct AttributePlace
{
    qsizetype nameStart = 0;
    qsizetype nameEnd = 0;
    qsizetype valueStart = 0; ///< After the opening quote.
    qsizetype valueEnd = 0; ///< Before the closing quote.
    qsizetype end = 0; ///< After the closing quote.
};

/// Reads the next attribute from `at` on; returns false at the end of the text.
bool NextAttribute(QStringView text, qsizetype at, AttributePlace& place)
{
    const auto skip = [&text](qsizetype from, auto&& accept) {
        while (from < text.size() && accept(text[from]))
            ++from;
        return from;
    };
    const auto isBlank = [](QChar c) { return IsHtmlSpace(c.unicode()); };

    place.nameStart = skip(at, [&](QChar c) { return isBlank(c) || c == u'/'; });
    if (place.nameStart >= text.size())
        return false;
    // A name that begins with an equals sign keeps it, so that the loop always advances.
    place.nameEnd = skip(place.nameStart + 1, [&](QChar c) { return !isBlank(c) && c != u'='; });
    place.valueStart = place.valueEnd = place.end = place.nameEnd;

    const qsizetype equals = skip(place.nameEnd, isBlank);
    if (equals >= text.size() || text[equals] != u'=')
        return true;
    place.valueStart = skip(equals + 1, isBlank);
    if (place.valueStart < text.size()
        && (text[place.valueStart] == u'"' || text[place.valueStart] == u'\'')) {
        const QChar quote = text[place.valueStart++];
        const qsizetype close = text.indexOf(quote, place.valueStart);
        place.valueEnd = close < 0 ? text.size() : close;
        place.end = close < 0 ? text.size() : close + 1;
    } else {
        place.valueEnd = place.end = skip(place.valueStart, [&](QChar c) { return !isBlank(c); });
    }
    return true;
}

/// A value as browsers write it: in quotes unless it is one plain word.
QString QuotedValue(const QString& value)
{
    const auto isPlain = [](QChar c) {
        return c.unicode() < 0x80
            && (c.isLetterOrNumber() || c == u'#' || c == u'-' || c == u'_' || c == u'.');
    };
    if (!value.isEmpty() && std::all_of(value.begin(), value.end(), isPlain))
        return value;
    QString escaped = value;
    escaped.replace(u'&', QStringLiteral("&amp;")).replace(u'"', QStringLiteral("&quot;"));
    escaped.replace(u'<', QStringLiteral("&lt;")).replace(u'>', QStringLiteral("&gt;"));
    escaped.replace(u'\r', QStringLiteral("&#13;")).replace(u'\n', QStringLiteral("&#10;"));
    return u'"' + escaped + u'"';
}

QStringView WithoutOuterSpace(QStringView text)
{
    while (!text.isEmpty() && IsHtmlSpace(text.front().unicode()))
        text = text.sliced(1);
    while (!text.isEmpty() && IsHtmlSpace(text.back().unicode()))
        text.chop(1);
    return text;
}

/// Closes a quote that the attribute text leaves open, so that it cannot hide the text after the tag.
void CloseLastQuote(QString& attributes)
{
    qsizetype i = 0;
    while ((i = attributes.indexOf(u'=', i)) >= 0) {
        for (++i; i < attributes.size() && IsHtmlSpace(attributes[i].unicode());)
            ++i;
        if (i >= attributes.size() || (attributes[i] != u'"' && attributes[i] != u'\''))
            continue;
        const qsizetype close = attributes.indexOf(attributes[i], i + 1);
        if (close < 0)
            attributes += attributes[i];
        i = (close < 0 ? attributes.size() - 1 : close) + 1;
    }
}

/// Adds an empty value if the last attribute ends with `=`: otherwise appended text would become its value.
void CompleteLastValue(QString& attributes)
{
    if (!attributes.endsWith(u'='))
        return;
    AttributePlace last;
    for (AttributePlace place; NextAttribute(attributes, place.end, place);)
        last = place;
    if (last.valueStart > last.nameEnd && last.valueStart == attributes.size())
        attributes += QStringLiteral("\"\"");
}

/// The canonical attribute text, which reads back as itself; see `intern`.
QString CanonicalAttributes(QStringView written)
{
    QString text = WithoutOuterSpace(written).toString();
    text.replace(u'<', QStringLiteral("&lt;")).replace(u'>', QStringLiteral("&gt;"));
    text.replace(u'\r', u' ').replace(u'\n', u' ');
    CloseLastQuote(text);
    // The slash of `<BR/>`, but not one that ends an unquoted address; repeated if another one is found.
    QStringView kept = text;
    while (kept == u"/" || kept.endsWith(u" /") || kept.endsWith(u"\"/"))
        kept = WithoutOuterSpace(kept.chopped(1));
    if (kept.size() < text.size())
        text = kept.toString();
    CompleteLastValue(text);
    return text;
}

/// In HTML names only the letters A to Z have a case. Brackets become references as in attributes.
QString CanonicalName(QStringView written)
{
    QString name = written.toString();
    name.replace(u'<', QStringLiteral("&LT;")).replace(u'>', QStringLiteral("&GT;"));
    for (QChar& c : name) {
        if (c >= u'a' && c <= u'z')
            c = QChar(char16_t(c.unicode() - 0x20));
    }
    return name;
}

/// Names never contain a blank, so that the pair is unambiguous.
QString KeyOf(QStringView name, QStringView attributes)
{
    QString key;
    key.reserve(name.size() + 1 + attributes.size());
    key.append(name).append(u' ').append(attributes);
    return key;
}

bool FindAttribute(QStringView attributes, QStringView name, AttributePlace& place)
{
    for (qsizetype at = 0; NextAttribute(attributes, at, place); at = place.end) {
        const QStringView found = attributes.sliced(place.nameStart, place.nameEnd - place.nameStart);
        if (found.compare(name, Qt::CaseInsensitive) == 0)
            return true;
    }
    return false;
}

/// The attribute text without the attributes of that name that it contains.
QString WithoutAttribute(QStringView attributes, QStringView name)
{
    QString rest;
    qsizetype copied = 0;
    AttributePlace place;
    while (NextAttribute(attributes, place.end, place)) {
        const QStringView found = attributes.sliced(place.nameStart, place.nameEnd - place.nameStart);
        if (found.compare(name, Qt::CaseInsensitive) != 0)
            continue;
        rest += attributes.sliced(copied, place.nameStart - copied);
        copied = place.end;
    }
    rest += attributes.sliced(copied);
    return rest;
}

} // namespace

QString Tag::value(QStringView attribute) const
{
    AttributePlace place;
    if (!FindAttribute(attributes, attribute, place))
        return {};
    const QStringView raw
        = QStringView(attributes).sliced(place.valueStart, place.valueEnd - place.valueStart);
    // An attribute that exists but is empty is an empty string, not a null string.
    return raw.isEmpty() ? QStringLiteral("") : ResolveReferences(raw);
}

QString Tag::startTag() const
{
    QString html;
    writeStart(html);
    return html;
}

QString Tag::endTag() const
{
    QString html;
    writeEnd(html);
    return html;
}

void Tag::writeStart(QString& html) const
{
    html += u'<';
    html += name;
    if (!attributes.isEmpty()) {
        html += u' ';
        html += attributes;
    }
    html += u'>';
}

void Tag::writeEnd(QString& html) const
{
    html += u"</";
    html += name;
    html += u'>';
}

TagTable::TagTable()
{
    tags.push_back(std::make_unique<const Tag>());
}

TagTable::~TagTable() = default;

TagId TagTable::intern(QStringView name, QStringView attributes)
{
    const QString asGiven = KeyOf(name, attributes);
    if (const auto known = numbers.constFind(asGiven); known != numbers.cend())
        return *known;

    auto tag = std::make_unique<Tag>();
    tag->name = CanonicalName(name);
    tag->attributes = CanonicalAttributes(attributes);
    const QString key = KeyOf(tag->name, tag->attributes);
    if (const auto known = numbers.constFind(key); known != numbers.cend()) {
        const TagId number = *known;
        numbers.insert(asGiven, number);
        return number;
    }

    tag->id = tag->value(u"id");
    tag->className = tag->value(u"class");
    tag->style = tag->value(u"style");
    tag->align = tag->value(u"align");
    const auto number = TagId(tags.size());
    tags.push_back(std::move(tag));
    numbers.insert(key, number);
    numbers.insert(asGiven, number);
    return number;
}

TagId TagTable::withAttribute(TagId id, QStringView attribute, const QString& value)
{
    const Tag& tag = *tags[id];
    QString written;
    if (!value.isNull())
        written = attribute.toString() + u'=' + QuotedValue(value);

    QString attributes = tag.attributes;
    AttributePlace place;
    if (value.isNull()) {
        // Repeated: without it, the texts around an attribute can form another one.
        while (FindAttribute(attributes, attribute, place))
            attributes = WithoutAttribute(attributes, attribute);
    } else if (FindAttribute(attributes, attribute, place)) {
        attributes.replace(place.nameStart, place.end - place.nameStart, written);
    } else {
        attributes += u' ' + written;
    }
    return intern(tag.name, attributes);
}

} // namespace vmk
