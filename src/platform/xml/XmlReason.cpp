#include "XmlReason.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

using namespace std::string_view_literals;

/// The end of the list that opens before `at`, or npos; namespaces in braces and quoted values are skipped.
size_t FindListEnd(std::string_view text, size_t at, char close)
{
    for (; at < text.size(); ++at) {
        if (text[at] == close)
            return at;
        if (text[at] == '\'' || text[at] == '{') {
            at = text.find(text[at] == '{' ? '}' : '\'', at + 1);
            if (at == std::string_view::npos)
                return at;
        }
    }
    return std::string_view::npos;
}

/// Replaces the entries of `list` after `XmlReasonListLength` visible characters by "…".
std::string CutList(std::string_view list)
{
    int visible = 0;
    size_t entryEnd = 0;
    bool counted = true;
    bool quoted = false;
    for (size_t at = 0; at < list.size(); ++at) {
        const char c = list[at];
        if (c == '\'')
            quoted = !quoted;
        if (!quoted && c == '{')
            counted = false;
        if (!quoted && c == ',')
            entryEnd = at + 1;
        visible += counted && (static_cast<unsigned char>(c) & 0xC0) != 0x80 ? 1 : 0;
        counted = counted || c == '}';
        if (visible > XmlReasonListLength && entryEnd > 0)
            return std::string(list.substr(0, entryEnd)) + " …";
    }
    return std::string(list);
}

} // namespace

std::string TidyReason(std::string_view message)
{
    std::string line(message);
    std::ranges::replace_if(
        line, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    line.erase(line.find_last_not_of(' ') + 1);
    if (line == "xmlParseEntityRef: no name")
        return "An '&' that does not begin a reference must be written as '&amp;'";
    // The names of parser functions are not useful to the user.
    if (const size_t colon = line.find(": "); line.starts_with("xmlParse") && colon != std::string::npos)
        line.erase(0, colon + 2);

    // The validator writes lists as "set {'a', 'b'}" and "( {uri}a, {uri}b )".
    for (const auto& [opening, close] : {std::pair("{'"sv, '}'), std::pair("( "sv, ')')}) {
        const size_t open = line.find(opening);
        if (open == std::string::npos)
            continue;
        const size_t end = FindListEnd(line, open + 1, close);
        if (end == std::string::npos)
            continue;
        const bool blankBeforeClose = line[end - 1] == ' ';
        std::string list = CutList(std::string_view(line).substr(open + 1, end - open - 1));
        if (blankBeforeClose && !list.ends_with(' '))
            list += ' ';
        line.replace(open + 1, end - open - 1, list);
    }
    return line;
}

QString WithoutNamespace(QString reason, const QString& namespaceUri)
{
    reason.remove(u'{' + namespaceUri + u'}', Qt::CaseInsensitive);
    reason.remove(namespaceUri, Qt::CaseInsensitive);
    return reason;
}

namespace {

/// Removes the text before the message: "Element 'p', attribute 'id': ".
QString WithoutSubject(const QString& reason)
{
    const qsizetype end = reason.startsWith(u"Element '"_s) ? reason.indexOf(u"': "_s) : -1;
    return end < 0 ? reason : reason.mid(end + 3);
}

/// The position after a text in quotes that begins at `open`; 0 if it does not end.
qsizetype EndOfQuote(const QString& text, qsizetype open)
{
    for (qsizetype i = text.indexOf(u'\'', open + 1); i >= 0; i = text.indexOf(u'\'', i + 1))
        if (i + 1 == text.size() || u" .,:)]"_s.contains(text[i + 1]))
            return i + 1;
    return 0;
}

} // namespace

QString KindOfReason(const QString& reason)
{
    const QString text = WithoutSubject(reason);
    QString kind;
    // The name of a facet is a part of the kind.
    qsizetype at = text.startsWith(u"[facet "_s) ? text.indexOf(u']') + 1 : 0;
    kind = text.left(at);
    while (at < text.size()) {
        const QChar c = text[at];
        const bool isEnd = (c == u'.' || c == u':') && (at + 1 == text.size() || text[at + 1] == u' ');
        if (isEnd || c == u'{')
            break;
        const qsizetype end = c == u'\'' ? EndOfQuote(text, at) : 0;
        kind += end > 0 ? u"'…'"_s : QString(c);
        at = end > 0 ? end : at + 1;
    }
    // The parser writes these names without quotes.
    if (kind.startsWith(u"Namespace prefix "_s))
        return u"Namespace prefix is not defined"_s;
    return kind.trimmed();
}

} // namespace vmk
