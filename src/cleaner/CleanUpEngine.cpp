#include "CleanUpEngine.h"

#include "BookVariables.h"
#include "CodePages.h"
#include "DisplayPage.h"
#include "EditLines.h"
#include "HtmlReader.h"
#include "RegExp.h"
#include "Repaint.h"
#include "TextFunctions.h"
#include "TextRange.h"
#include "UniCodes.h"

#include <QStringEncoder>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr QChar LessMask(1);
constexpr QChar GreaterMask(2);

/// UTF-16 units. A row is not applied if its result is longer than this and longer than `LargestGrowth` times
/// the text before the run: a few rows could otherwise fill the memory.
constexpr qsizetype AlwaysAllowed = qsizetype(16) * 1024 * 1024;
constexpr qsizetype LargestGrowth = 8;

qsizetype LargestResult(qsizetype size)
{
    return std::max(AlwaysAllowed, size * LargestGrowth);
}

/// Returns the range of a scope.
TextRange RangeOfScope(DisplayDocument& document, const QString& scope)
{
    TextRange range = page::createRange(document);
    if (scope == "from cursor up"_L1) {
        range.collapse(false);
        range.moveStart(TextUnit::Textedit, -1);
    } else if (scope == "from cursor down"_L1) {
        range.collapse(true);
        range.moveEnd(TextUnit::Textedit);
    } else if (scope == "whole book"_L1) {
        range.moveStart(TextUnit::Textedit, -1);
        range.moveEnd(TextUnit::Textedit);
    }
    return range;
}

CleanUpRowResult ApplyExpression(QString& html, const CleanUpRow& row, qsizetype limit)
{
    QString what = row.RepWhat;
    QString by = row.RepBy;
    ParseUniCodes(by);
    MaskCleanUpAngles(what, by, true);

    RegExp expression;
    expression.Pattern = what;
    expression.IgnoreCase = !row.Case;
    expression.Global = true;
    if (!expression.Test(QStringView()))
        return {CleanUpRowState::BadExpression};
    qsizetype count = 0;
    std::optional<QString> result = expression.Replace(html, by, &count);
    if (!result || result->size() > limit)
        return {CleanUpRowState::Stopped};
    if (count > 0)
        html = *std::move(result);
    return {CleanUpRowState::Applied, count};
}

CleanUpRowResult ApplyPlain(QString& html, const CleanUpRow& row, qsizetype limit)
{
    QString what = row.RepWhat;
    QString by = row.RepBy;
    ParseUniCodes(what);
    ParseUniCodes(by);
    MaskCleanUpAngles(what, by, false);

    const qsizetype count = CountOccurrences(html, what, !row.Case);
    if (html.size() + count * (by.size() - what.size()) > limit)
        return {CleanUpRowState::Stopped};
    if (count > 0)
        html = ReplaceAll(std::move(html), what, by, !row.Case);
    return {CleanUpRowState::Applied, count};
}

/// Returns true for a tag that can be part of a page without hiding text.
/// \param inner  the text between its brackets
bool IsSafeTag(QStringView inner)
{
    const bool isEnd = inner.startsWith(u'/');
    const QStringView name = isEnd ? inner.mid(1) : inner;
    const auto isLetter = [](QChar c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); };
    if (name.isEmpty() || !isLetter(name.front()))
        return false;
    if (inner.count(u'"') % 2 != 0 || inner.count(u'\'') % 2 != 0)
        return false;
    // Elements whose text is not visible on a page.
    static constexpr std::array Hidden
        = {"script"_L1, "style"_L1,  "title"_L1,  "head"_L1,     "textarea"_L1,  "xmp"_L1,  "noscript"_L1,
           "iframe"_L1, "select"_L1, "object"_L1, "template"_L1, "plaintext"_L1, "body"_L1, "html"_L1};
    return std::ranges::none_of(
        Hidden, [name](QLatin1StringView hidden) { return name.startsWith(hidden, Qt::CaseInsensitive); });
}

/// Returns the length of the tag at the beginning of a text, with its brackets; 0 if the bracket does not
/// begin a tag.
qsizetype TagLength(QStringView text)
{
    constexpr qsizetype LongestTag = 65536;
    for (qsizetype at = 1; at < std::min(text.size(), LongestTag); ++at) {
        const QChar c = text[at];
        if (c == u'>')
            return IsSafeTag(text.sliced(1, at - 1)) ? at + 1 : 0;
        if (c == u'<' || c == LessMask || c == GreaterMask || c == u'\r' || c == u'\n')
            return 0;
    }
    return 0;
}

/// Applies `change` to each match of `pattern` in a text and to each piece between matches.
template <class Change>
QString ByPieces(const QString& text, const QString& pattern, const Change& change)
{
    RegExp expression;
    expression.Pattern = pattern;
    expression.IgnoreCase = true;
    expression.Global = true;
    QString result;
    qsizetype done = 0;
    for (const RegExpMatch& match : expression.Execute(text).value_or(std::vector<RegExpMatch>())) {
        result += change(text.sliced(done, match.FirstIndex - done));
        result += change(match.Value);
        done = match.FirstIndex + match.Length;
    }
    return result + change(text.sliced(done));
}

QString ChrPiece(const QString& piece)
{
    constexpr int LargestByte = 255;
    if (!piece.contains("chr("_L1))
        return piece;
    const QString number = QString(piece).remove("chr("_L1).remove(u')').trimmed();
    if (number.isEmpty())
        return {};
    qsizetype digits = 0;
    while (digits < number.size() && number[digits] >= u'0' && number[digits] <= u'9')
        ++digits;
    bool isNumber = false;
    const int code = number.first(digits).toShort(&isNumber);
    if (!isNumber || code < 1 || code > LargestByte)
        return piece;
    return {QChar(CharacterOfByte(static_cast<unsigned char>(code), CodePageSystem))};
}

} // namespace

CleanUpRun CleanUpBookFragment(DisplayDocument& document, const CleanUpTable& table, const TagPaint& paint,
                               const CleanUpProgress& progress)
{
    CleanUpRun run;
    UndoSteps = 0;

    // Find the lines of the scope.
    SelectedLines lines;
    {
        const TextRange range = RangeOfScope(document, table.CleanWhere);
        lines.first = NodeAtRangeStart(range);
        lines.last = NodeAtRangeEnd(range);
    }
    run.found = bool(lines);
    if (!run.found) {
        run.rows.resize(table.rows.size());
        return run;
    }

    // Apply the rows to the lines without painting, and paint the result. Each form of the text is released
    // early, because a book is large.
    QString html = MaskShownAngles(BareHtml(document, lines.first - 1, lines.last - lines.first + 1));
    html = ApplyCleanUpRows(std::move(html), table.rows, run.rows, progress);
    std::string unmasked = UnmaskShownAngles(html);
    html = QString();
    const std::string painted = PaintLines(unmasked, paint);
    unmasked = std::string();
    HtmlContent content = ReadFragment(document.tags(), painted);
    ReplaceLines(document, lines, std::move(content.lines));
    MarkEdit(UndoSteps + 2);
    return run;
}

QString ApplyCleanUpRows(QString html, const std::vector<CleanUpRow>& rows,
                         std::vector<CleanUpRowResult>& results, const CleanUpProgress& progress)
{
    const qsizetype limit = LargestResult(html.size());
    results.assign(rows.size(), {});
    for (size_t i = 0; i < rows.size(); ++i) {
        const CleanUpRow& row = rows[i];
        progress(u"...user-defined book clean up..."_s + QString::number(i + 1));
        if (!row.Enabled || row.RepWhat.isEmpty())
            continue;
        if (row.RegExp) {
            progress(u"user clean-up: RegExp "_s + row.RepWhat + u" -> "_s + row.RepBy);
            results[i] = ApplyExpression(html, row, limit);
        } else {
            progress(u"user clean-up: replacing "_s + row.RepWhat + u" -> "_s + row.RepBy);
            results[i] = ApplyPlain(html, row, limit);
        }
    }
    return html;
}

QString MaskShownAngles(QString html)
{
    html.remove(LessMask);
    html.remove(GreaterMask);
    html = ReplaceAll(std::move(html), u"&lt;", QStringView(&LessMask, 1));
    return ReplaceAll(std::move(html), u"&gt;", QStringView(&GreaterMask, 1));
}

std::string UnmaskShownAngles(const QString& html)
{
    std::string unmasked;
    unmasked.reserve(size_t(html.size()));
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    const auto append = [&](QStringView piece) {
        const size_t before = unmasked.size();
        unmasked.resize(before + size_t(encoder.requiredSpace(piece.size())));
        unmasked.resize(size_t(encoder.appendToBuffer(unmasked.data() + before, piece) - unmasked.data()));
    };
    const QStringView text(html);
    qsizetype at = 0;
    while (at < text.size()) {
        const auto special = std::find_if(text.begin() + at, text.end(), [](QChar c) {
            return c == LessMask || c == GreaterMask || c == u'<' || c == u'>';
        });
        const qsizetype next = special - text.begin();
        append(text.sliced(at, next - at));
        at = next;
        if (at == text.size())
            break;
        const QChar c = text[at];
        const qsizetype tag = c == u'<' ? TagLength(text.sliced(at)) : 0;
        if (tag > 0)
            append(text.sliced(at, tag));
        else
            unmasked += c == LessMask || c == u'<' ? "&lt;" : "&gt;";
        at += std::max<qsizetype>(tag, 1);
    }
    return unmasked;
}

void MaskCleanUpAngles(QString& what, QString& by, bool isRegExp)
{
    by.replace(u'<', LessMask).replace(u'>', GreaterMask);
    if (isRegExp)
        what.replace(u"<"_s, u"\\x01"_s).replace(u">"_s, u"\\x02"_s);
    else
        what.replace(u'<', LessMask).replace(u'>', GreaterMask);
}

QString ParseCleanUpFunction(const QString& text, const QString& name)
{
    const QString opening = name + u'(';
    const qsizetype from = text.indexOf(opening);
    const qsizetype to = from < 0 ? -1 : text.indexOf(u')', from);
    if (to < 0)
        return {};
    QString inner = text.sliced(from, to - from).remove(opening).remove(u')');
    if (!inner.isEmpty())
        ParseCleanUpChr(inner);
    return inner;
}

void ParseCleanUpChr(QString& text)
{
    if (!text.contains("chr("_L1))
        return;
    const QString result = ByPieces(text, u"(chr\\x28[^\\x29]*\\x29)"_s, ChrPiece);
    if (!result.isEmpty())
        text = result;
}

} // namespace vmk
