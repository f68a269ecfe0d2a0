// Real books in the display: each page loads line by line, and the saved page contains the same text.

#include "Corpus.h"
#include "BookToDisplay.h"
#include "DisplayPage.h"
#include "DisplayToBook.h"
#include "HtmlCharacters.h"
#include "SettingsVariables.h"

#include <QRegularExpression>

#include <gtest/gtest.h>

#include <algorithm>

namespace vmk {

namespace {

/// The page of a book with highlighting and the default colours; empty if the book cannot be converted.
std::string pageOf(std::string book)
{
    NamespaceErrorWarning = 0;
    ShowNbsp = 1;
    TagHighlighting = true;
    return ConvertBookToDisplay(book, false) ? book : std::string();
}

/// The lines of a page's text with white space as in a browser: each run becomes one blank, and lines do
/// not begin or end with white space.
std::vector<std::string> shownLines(const std::string& page)
{
    QString text = QString::fromStdString(TextOfPage(page, AngleMarks::Keep));
    // A book that is not well-formed can contain references, which the display shows as their characters.
    text = ResolveReferences(text);
    text.replace(QRegularExpression(QStringLiteral("[ \\t\\x{A0}]+")), QStringLiteral(" "));
    std::vector<std::string> lines;
    for (const QString& line : text.split(QRegularExpression(QStringLiteral("[\r\n]+")))) {
        if (const QString shown = line.trimmed(); !shown.isEmpty())
            lines.push_back(shown.toStdString());
    }
    return lines;
}

/// The surroundings of the first difference of two texts; empty if they are equal.
std::string firstDifference(const std::string& a, const std::string& b)
{
    const auto [inA, inB] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
    if (inA == a.end() && inB == b.end())
        return {};
    const auto at = std::size_t(inA - a.begin());
    const std::size_t from = at < 40 ? 0 : at - 40;
    return '"' + a.substr(from, 80) + "\" and \"" + b.substr(from, 80) + '"';
}

} // namespace

TEST(Corpus, TheTextOfEachBookIsUnchangedInTheDisplay)
{
    if (test::CorpusBooks().empty())
        GTEST_SKIP() << test::NoCorpus;
    for (const auto& [name, bytes] : test::CorpusBooks()) {
        SCOPED_TRACE(name);
        const std::string page = pageOf(bytes);
        ASSERT_FALSE(page.empty());
        DisplayDocument document;
        document.loadPage(QByteArray::fromStdString(page));
        const std::string saved = document.savePage().toStdString();
        const std::vector<std::string> written = shownLines(saved);
        const std::vector<std::string> expected
            = shownLines(QString::fromStdString(page)
                             .replace(QLatin1String("</DIV>\r<"), QLatin1String("</DIV>\r\n<"))
                             .toStdString());
        for (std::size_t i = 0; i < std::min(written.size(), expected.size()); ++i)
            ASSERT_EQ(firstDifference(written[i], expected[i]), std::string());
        EXPECT_EQ(written.size(), expected.size());
        EXPECT_EQ(page::item(document, 1).id(), QStringLiteral("FirstDiv"));
        EXPECT_EQ(saved.substr(0, saved.find("<DIV")), page.substr(0, page.find("<DIV")));

        DisplayDocument again;
        again.loadPage(QByteArray::fromStdString(saved));
        EXPECT_EQ(again.savePage().toStdString(), saved);
    }
}

} // namespace vmk
