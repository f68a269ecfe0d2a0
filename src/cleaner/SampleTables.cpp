#include "SampleTables.h"

#include "FileOperations.h"

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

/// Matches only between tags of the book, and not in elements whose text is not prose: after the position a
/// tag begins before any tag ends. `\x3c` and `\x3e` are the brackets of the page's own tags.
const QString& InText()
{
    static const QString guard
        = u"(?=[^<>\\x3c\\x3e]*<(?!/(?:id|stylesheet|src-url|home-page|email|isbn|genre|lang|date|version|program-used)\\b))"_s;
    return guard;
}

CleanUpRow InTextRow(const QString& what, const QString& by, bool matchCase = false)
{
    return {.RepWhat = what + InText(), .RepBy = by, .Case = matchCase, .RegExp = true, .Enabled = true};
}

/// Matches a non-breaking space: as HTML has it, or the mark that the display shows in its place.
QString AnyNbsp()
{
    return u"&nbsp;|\\x7f"_s;
}

/// Three dots, and blanks before punctuation; the same in both languages.
std::vector<CleanUpRow> CommonRows()
{
    return {InTextRow(u"([^.])\\.{3}(?!\\.)"_s, u"$1\u2026"_s),
            InTextRow(u"([^\\s<>\\x3c\\x3e]) +([,;!?\u2026]|:(?![()D-])|\\.(?![.\\d]))"_s, u"$1$2"_s)};
}

std::vector<CleanUpRow> RussianRows()
{
    std::vector<CleanUpRow> rows = CommonRows();
    // Dashes at the beginning of a line of dialogue and between words.
    rows.push_back(InTextRow(u"(<p(?: [^<>]*)?>)\\s*(?:-{1,3}|\u2013|\u2014)\\s+"_s, u"$1\u2014&nbsp;"_s));
    rows.push_back(InTextRow(u"([^\\s<>\\x3c\\x3e])(?: |%1)(?:-{1,3}|\u2013|\u2014)(?= |%1)"_s.arg(AnyNbsp()),
                             u"$1&nbsp;\u2014"_s));
    // Quotation marks.
    rows.push_back(
        InTextRow(u"([>\\s(\u00ab\u2014]|%1)\"(?=[^\\s<\"\\x7f])"_s.arg(AnyNbsp()), u"$1\u00ab"_s));
    rows.push_back(
        InTextRow(u"([^\\s<>(\u00ab\\d\\x7f])\"(?=[\\s<.,;:!?)\u2026\u00bb\u2014-]|%1)"_s.arg(AnyNbsp()),
                  u"$1\u00bb"_s));
    // Non-breaking spaces.
    rows.push_back(InTextRow(u"([\\s>(\\x7f])([А-ЯЁ]\\.) ?([А-ЯЁ]\\.) ?(?=[А-ЯЁ][а-яё])"_s,
                             u"$1$2&nbsp;$3&nbsp;"_s, true));
    rows.push_back(InTextRow(u"([\\s>(\\x7f]т\\.) ?([едпк]\\.)"_s, u"$1&nbsp;$2"_s, true));
    rows.push_back(InTextRow(u"(\\d{4}) (гг?\\.)"_s, u"$1&nbsp;$2"_s, true));
    rows.push_back(InTextRow(u"№ ?(?=\\d)"_s, u"№&nbsp;"_s));
    return rows;
}

std::vector<CleanUpRow> EnglishRows()
{
    std::vector<CleanUpRow> rows = CommonRows();
    // Dashes.
    rows.push_back(InTextRow(u"([^\\s<>\\x3c\\x3e-]) ?-{2,3} ?(?=[^\\s-])"_s, u"$1\u2014"_s));
    rows.push_back(InTextRow(u"([^\\s<>\\x3c\\x3e]) - (?=\\S)"_s, u"$1 \u2013 "_s));
    // Quotation marks and apostrophes.
    rows.push_back(
        InTextRow(u"([>\\s(\u2018\u2014]|%1)\"(?=[^\\s<\"\\x7f])"_s.arg(AnyNbsp()), u"$1\u201c"_s));
    rows.push_back(
        InTextRow(u"([^\\s<>(\u201c\\d\\x7f])\"(?=[\\s<.,;:!?)\u2026\u2019\u2014-]|%1)"_s.arg(AnyNbsp()),
                  u"$1\u201d"_s));
    rows.push_back(InTextRow(u"([A-Za-z])'(?=[A-Za-z])"_s, u"$1\u2019"_s));
    return rows;
}

/// A character that was recognised inside a Cyrillic word, and the letter that it resembles.
struct Lookalike
{
    char16_t recognised;
    char16_t letter;
};

std::vector<CleanUpRow> RecognitionRows()
{
    std::vector<CleanUpRow> rows;
    // Soft hyphens, hyphens of line ends, doubled blanks.
    rows.push_back(InTextRow(u"\u00ad"_s, QString()));
    rows.push_back(InTextRow(u"([A-Za-zА-яЁё])\u00ac\\s*(?=[a-zа-яё])"_s, u"$1"_s, true));
    rows.push_back(InTextRow(u"([а-яё]{2})- (?!(?:и|или|либо|да|а|но) )(?=[а-яё]{2})"_s, u"$1"_s, true));
    rows.push_back(InTextRow(u"([a-z]{2})- (?!(?:and|or|to|und|oder|et) )(?=[a-z]{2})"_s, u"$1"_s, true));
    rows.push_back(InTextRow(u"([^\\s<>\\x3c\\x3e]) {2,}(?=[^\\s<>\\x3c\\x3e])"_s, u"$1 "_s));
    // Digits and Latin letters between Cyrillic letters.
    static constexpr Lookalike Lookalikes[]
        = {{u'0', u'о'}, {u'3', u'з'}, {u'6', u'б'}, {u'a', u'а'}, {u'c', u'с'},
           {u'e', u'е'}, {u'o', u'о'}, {u'p', u'р'}, {u'x', u'х'}, {u'y', u'у'}};
    for (const auto [recognised, letter] : Lookalikes)
        rows.push_back(
            InTextRow(u"([а-яё])"_s + QChar(recognised) + u"(?=[а-яё])"_s, u"$1"_s + QChar(letter), true));
    return rows;
}

} // namespace

std::vector<SampleTable> SampleCleanUpTables()
{
    const QString& wholeBook = CleanUpScopes().front();
    return {{u"Russian typography.dat"_s, {wholeBook, RussianRows()}},
            {u"English typography.dat"_s, {wholeBook, EnglishRows()}},
            {u"Traces of OCR.dat"_s, {wholeBook, RecognitionRows()}}};
}

bool WriteSampleCleanUpTables(const QString& folder)
{
    bool written = true;
    for (const SampleTable& sample : SampleCleanUpTables()) {
        const QString path = folder + u'/' + sample.fileName;
        if (!FileExists(path))
            written = WriteFileText(path, CleanUpFileBytes(sample.table)) && written;
    }
    return written;
}

} // namespace vmk
