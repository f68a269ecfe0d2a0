#include "SampleTables.h"

#include "BookToDisplay.h"
#include "CleanUpEngine.h"
#include "Corpus.h"
#include "DisplayText.h"
#include "FileOperations.h"
#include "QtPrinting.h"
#include "RulesFixture.h"
#include "Settings.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "Workplace.h"
#include "XmlDocument.h"

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

class SampleTables : public Rules
{
protected:
    SampleTables() { qputenv("VELLUMARK_CODEPAGE", "1251"); }
    ~SampleTables() override { qunsetenv("VELLUMARK_CODEPAGE"); }

public:
    SampleTables(const SampleTables&) = delete;
    SampleTables& operator=(const SampleTables&) = delete;

protected:
    static CleanUpTable Table(const QString& fileName)
    {
        for (const SampleTable& sample : SampleCleanUpTables()) {
            if (sample.fileName == fileName)
                return sample.table;
        }
        ADD_FAILURE() << fileName.toStdString();
        return {};
    }
    /// The text of a paragraph after a table.
    std::string Cleaned(const QString& fileName, const char* paragraph)
    {
        show((QByteArray("<DIV style=\"MARGIN-LEFT: 5px\">&lt;p&gt;") + paragraph + "&lt;/p&gt;</DIV>")
                 .constData());
        CleanUpBookFragment(document, Table(fileName), TagPaint(), [](const QString&) {});
        return text(0);
    }
    std::string Russian(const char* paragraph) { return Cleaned(u"Russian typography.dat"_s, paragraph); }
    std::string English(const char* paragraph) { return Cleaned(u"English typography.dat"_s, paragraph); }
    std::string Ocr(const char* paragraph) { return Cleaned(u"Traces of OCR.dat"_s, paragraph); }
};

TEST_F(SampleTables, AllExpressionsAreValid)
{
    show("<DIV>x</DIV>");
    for (const SampleTable& sample : SampleCleanUpTables()) {
        EXPECT_GE(sample.table.rows.size(), 5U);
        const CleanUpRun run = CleanUpBookFragment(document, sample.table, TagPaint(), [](const QString&) {});
        for (size_t i = 0; i < run.rows.size(); ++i)
            EXPECT_EQ(run.rows[i].state, CleanUpRowState::Applied)
                << sample.fileName.toStdString() << " row " << i + 1;
    }
}

TEST_F(SampleTables, RussianTextGetsItsTypography)
{
    EXPECT_EQ(Russian("- Да, - сказал он."), "<p>—\u00a0Да,\u00a0— сказал он.</p>");
    EXPECT_EQ(Russian("Роман \"Мы\" (\"антиутопия\")."), "<p>Роман «Мы» («антиутопия»).</p>");
    EXPECT_EQ(Russian("Ну... что ,вот"), "<p>Ну… что,вот</p>");
    EXPECT_EQ(Russian("Писал А. С. Пушкин в 1830 г. и т. д."),
              "<p>Писал А.\u00a0С.\u00a0Пушкин в 1830\u00a0г. и т.\u00a0д.</p>");
}

TEST_F(SampleTables, ShownMarksOfNonBreakingSpacesAreSpacesToo)
{
    EXPECT_EQ(Russian("—\x7f\"Да\",\x7f- сказал\x7f\"он\"."), "<p>—\x7f«Да»,\u00a0— сказал\x7f«он».</p>");
    EXPECT_EQ(Russian("Роман \"Мы\"\x7fи\x7fА. С. Пушкин, и\x7fт. д."),
              "<p>Роман «Мы»\x7fи\x7fА.\u00a0С.\u00a0Пушкин, и\x7fт.\u00a0д.</p>");
    EXPECT_EQ(English("He said:\x7f\"No\"\x7fonce"), "<p>He said:\x7f“No”\x7fonce</p>");
}

TEST_F(SampleTables, EnglishTextGetsItsTypography)
{
    EXPECT_EQ(English("\"Don't\", he said--\"never\" ..."), "<p>“Don’t”, he said—“never”…</p>");
    EXPECT_EQ(English("One - two , three"), "<p>One – two, three</p>");
}

TEST_F(SampleTables, TracesOfRecognitionAreRemoved)
{
    EXPECT_EQ(Ocr("сло\u00adво, продол- жение, двух- и трёх"), "<p>слово, продолжение, двух- и трёх</p>");
    EXPECT_EQ(Ocr("к0т и мoре"), "<p>кот и море</p>");
}

TEST_F(SampleTables, TagsAttributesCommentsAndIdentifiersAreUnchanged)
{
    const char* const untouched[] = {
        "<DIV>&lt;?xml version=\"1.0\" encoding=\"utf-8\"?&gt;</DIV>",
        "<DIV>&lt;!-- a -- \"b\" ... --&gt;</DIV>",
        "<DIV>&lt;image l:href=\"#a...b\" alt=\"- x ,y\"/&gt;&lt;/p&gt;</DIV>",
        "<DIV>&lt;id&gt;а0б-\"1\"...&lt;/id&gt;</DIV>",
        "<DIV>&lt;stylesheet type=\"text/css\"&gt;.a { content: \"x\" ; }&lt;/stylesheet&gt;</DIV>",
        "<DIV>&lt;date value=\"2026-05-14\"&gt;14 - 15&lt;/date&gt;</DIV>",
    };
    for (const char* line : untouched) {
        show(line);
        const std::string before = text(0);
        for (const SampleTable& sample : SampleCleanUpTables())
            CleanUpBookFragment(document, sample.table, TagPaint(), [](const QString&) {});
        EXPECT_EQ(text(0), before);
    }
}

TEST_F(SampleTables, ASecondRunChangesNothing)
{
    for (const SampleTable& sample : SampleCleanUpTables()) {
        const std::string once
            = Cleaned(sample.fileName, "- Да, - \"сказал\" он... Don't  \"go\" -- А. С. Пушкин , 1830 г.");
        CleanUpBookFragment(document, sample.table, TagPaint(), [](const QString&) {});
        EXPECT_EQ(text(0), once) << sample.fileName.toStdString();
    }
}

TEST_F(SampleTables, NoRowBreaksARealBook)
{
    if (test::CorpusBooks().empty())
        GTEST_SKIP() << test::NoCorpus;
    ReadSettings(true);
    for (const test::CorpusBook& book : test::CorpusBooks()) {
        std::string page = book.bytes;
        ASSERT_TRUE(ConvertBookToDisplay(page, true)) << book.name;
        document.loadPage(QByteArray::fromStdString(page));
        if (HasParseError(TextOfDisplay(document, AngleMarks::Restore), XmlEncoding::utf8()))
            continue;
        for (const SampleTable& sample : SampleCleanUpTables()) {
            for (const CleanUpRow& row : sample.table.rows) {
                CleanUpBookFragment(document, {sample.table.CleanWhere, {row}}, TagPaint(),
                                    [](const QString&) {});
                EXPECT_FALSE(HasParseError(TextOfDisplay(document, AngleMarks::Restore), XmlEncoding::utf8()))
                    << book.name << ": " << row.RepWhat.toStdString();
            }
        }
    }
}

TEST_F(SampleTables, AreWrittenOnceAndReadBack)
{
    const Workplace place;
    ASSERT_TRUE(WriteSampleCleanUpTables(place.Folder()));
    for (const SampleTable& sample : SampleCleanUpTables())
        EXPECT_EQ(CleanUpTableOfBytes(ReadFileText(place.Path(sample.fileName))), sample.table);
    place.Make(u"Traces of OCR.dat"_s, "mine");
    EXPECT_TRUE(WriteSampleCleanUpTables(place.Folder()));
    EXPECT_EQ(ReadFileText(place.Path(u"Traces of OCR.dat"_s)), "mine");
}

} // namespace
} // namespace vmk
