#include "BookImages.h"

#include "Base64.h"
#include "BinaryElements.h"
#include "CodePages.h"
#include "Encodings.h"
#include "HtmlCharacters.h"
#include "ImageFiles.h"

#include <QHash>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr size_t None = std::string_view::npos;

/// One tag of the book's text.
struct TextTag
{
    QString name; ///< Without a prefix.
    QString href; ///< The target of a link within the book, without "#".
    QString id;
    QString type;
};

bool IsBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

QString LocalName(const QString& name)
{
    return name.mid(name.indexOf(u':') + 1);
}

/// Stores the value of an attribute that `TextTag` contains; ignores other attributes.
void TakeAttribute(TextTag& tag, const QString& name, const QString& value)
{
    const QString local = LocalName(name);
    if (local == "href"_L1 && value.startsWith(u'#'))
        tag.href = value.mid(1);
    else if (name == "id"_L1)
        tag.id = value;
    else if (name == "content-type"_L1)
        tag.type = value;
}

/// Reads the text between the angle brackets of a start tag.
TextTag ReadTag(QStringView text)
{
    TextTag tag;
    qsizetype at = 0;
    const auto skip = [&](auto&& condition) {
        const qsizetype from = at;
        while (at < text.size() && condition(text[at]))
            ++at;
        return text.mid(from, at - from).toString();
    };
    const auto isBlankOrSlash = [](QChar c) { return IsBlank(c) || c == u'/'; };
    const auto isOfName = [&](QChar c) { return !isBlankOrSlash(c) && c != u'='; };
    tag.name = LocalName(skip(isOfName));
    while (at < text.size()) {
        skip(isBlankOrSlash);
        const QString name = skip(isOfName);
        skip(IsBlank);
        if (at >= text.size() || text[at] != u'=') {
            if (name.isEmpty())
                ++at;
            continue;
        }
        ++at;
        skip(IsBlank);
        const QChar quote = at < text.size() ? text[at] : QChar();
        if (quote != u'"' && quote != u'\'')
            continue;
        ++at;
        TakeAttribute(tag, name, ResolveReferences(skip([quote](QChar c) { return c != quote; })));
        ++at;
    }
    return tag;
}

/// Returns the position of the end of a tag: of the first ">" outside quotes, or of the character before the
/// next "<". Returns npos if there is none.
size_t EndOfTag(std::string_view text, size_t from)
{
    char quote = 0;
    for (size_t at = from; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != 0)
            quote = c == quote ? '\0' : quote;
        else if (c == '"' || c == '\'')
            quote = c;
        else if (c == '>' || c == '<')
            return c == '>' ? at : at - 1;
    }
    return None;
}

/// Calls `take` with each start tag of a text. Skips comments, CDATA sections, instructions and end tags.
template <typename Take>
void ForEachTag(std::string_view text, int codePage, Take take)
{
    constexpr std::pair<std::string_view, std::string_view> Skipped[]
        = {{"<!--", "-->"}, {"<![CDATA[", "]]>"}, {"<?", "?>"}, {"<!", ">"}, {"</", ">"}};
    for (size_t at = text.find('<'); at != None; at = text.find('<', at)) {
        const std::string_view rest = text.substr(at);
        const auto* skipped = std::ranges::find_if(
            Skipped, [rest](const auto& brackets) { return rest.starts_with(brackets.first); });
        const size_t end = skipped != std::end(Skipped)
            ? text.find(skipped->second, at + skipped->first.size())
            : EndOfTag(text, at + 1);
        if (end == None)
            return;
        // Directly before another "<" there is no tag.
        if (skipped == std::end(Skipped) && end > at)
            take(ReadTag(DecodeBytes(text.substr(at + 1, end - at - 1), codePage)));
        at = std::max(end, at + 1);
    }
}

std::string WithoutBlanks(std::string text)
{
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t'; });
    return text;
}

BookResource ReadResource(const BinaryElement& element, int codePage)
{
    const std::string_view inner = element.tag.substr(1, element.tag.size() - 2);
    const TextTag tag = ReadTag(DecodeBytes(inner, codePage));
    BookResource resource;
    resource.id = tag.id;
    resource.type = tag.type;
    const std::string text = WithoutLineEnds(element.data);
    const std::optional<std::string> bytes = Base64Decode(text);
    resource.isBase64 = bytes.has_value();
    resource.bytes = qsizetype(bytes ? bytes->size() : text.size());
    if (bytes)
        resource.picture = ReadPictureInfo(*bytes);
    else
        resource.hasBlanks = Base64Decode(WithoutBlanks(text)).has_value();
    return resource;
}

} // namespace

BookBytes ReadableBook(std::string bytes)
{
    const int codePage = FindBookEncoding(bytes, "original").work.codePage;
    if (codePage == CodePageUtf16)
        return {EncodeText(DecodeBytes(bytes, CodePageUtf16), CodePageUtf8), CodePageUtf8};
    return {std::move(bytes), codePage};
}

std::string_view BinaryPartOf(std::string_view book)
{
    constexpr std::string_view ElementEnd = "</binary>";
    const size_t begin = book.find("<binary");
    const size_t end = book.rfind(ElementEnd);
    if (begin == None || end == None || end < begin)
        return {};
    return book.substr(begin, end + ElementEnd.size() - begin);
}

BookResources ListResources(const BookBytes& book)
{
    const std::string_view all = book.bytes;
    const std::string_view binaryPart = BinaryPartOf(all);
    const size_t begin = binaryPart.empty() ? all.size() : size_t(binaryPart.data() - all.data());

    BookResources result;
    QHash<QString, size_t> byId;
    for (size_t position = 0;;) {
        const std::optional<BinaryTag> tag = NextBinaryTag(binaryPart, position);
        const auto element = tag ? ElementOfTag(binaryPart, *tag) : std::nullopt;
        if (!element)
            break;
        position = element->next;
        BookResource resource = ReadResource(*element, book.codePage);
        resource.isRepeated = byId.contains(resource.id);
        if (!resource.isRepeated)
            byId.insert(resource.id, result.resources.size());
        result.resources.push_back(std::move(resource));
    }

    const auto take = [&](const TextTag& tag) {
        if (tag.href.isEmpty())
            return;
        if (const auto found = byId.constFind(tag.href); found != byId.cend())
            ++result.resources[*found].uses;
        else if (tag.name == "image"_L1 && !result.missing.contains(tag.href))
            result.missing.append(tag.href);
    };
    ForEachTag(all.substr(0, begin), book.codePage, take);
    ForEachTag(all.substr(std::min(begin + binaryPart.size(), all.size())), book.codePage, take);
    return result;
}

QString DecodingProblem(const BookResource& resource)
{
    if (resource.hasBlanks)
        return u"the base64 text contains blanks"_s;
    if (!resource.isBase64)
        return u"the content is not base64"_s;
    if (!resource.picture.problem.isEmpty())
        return resource.picture.problem;
    const PictureFormat named = FormatOfType(resource.type);
    if (resource.type.startsWith("image/"_L1) && named != PictureFormat::Unknown
        && resource.picture.format == PictureFormat::Unknown)
        return u"the content is no picture"_s;
    return {};
}

} // namespace vmk
