#include "Corpus.h"
#include "EditHtmlWbF.h"
#include "FbTagListF.h"
#include "FragmentEditing.h"
#include "ImageFunctions.h"
#include "SaveBook.h"
#include "WindowTest.h"

#include <QCheckBox>
#include <QListWidget>
#include <QPushButton>
#include <QXmlStreamReader>

/// The tools on real books, through the window. The tests are skipped without a folder of real books.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;
using test::CorpusBook;
using test::CorpusBooks;

/// The name of the file for a picture.
QString FileOf(const QString& id, const QByteArray& content)
{
    const QString extension = id.section(u'.', -1).toLower();
    const QString base = id.contains(u'.') ? id.left(id.lastIndexOf(u'.')) : id;
    if (extension == "png"_L1 || extension == "jpg"_L1)
        return base + u'.' + extension;
    return base + (content.startsWith("\x89PNG") ? u".png"_s : u".jpg"_s);
}

/// The picture files of a book as another parser and decoder read them.
QMap<QString, QByteArray> PicturesOf(const std::string& book)
{
    QMap<QString, QByteArray> pictures;
    QXmlStreamReader reader(QByteArray::fromStdString(book));
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement() || reader.name() != u"binary")
            continue;
        const QXmlStreamAttributes attributes = reader.attributes();
        const QString id = attributes.value(u"id"_s).toString();
        const bool isPicture = attributes.value(u"content-type"_s).startsWith(u"image");
        const QString text = reader.readElementText().remove(u'\n').remove(u'\r');
        // Text with blanks is not decoded, by design.
        const QByteArray content = text.contains(u' ') || text.contains(u'\t')
            ? text.toLatin1()
            : QByteArray::fromBase64(text.toLatin1());
        if (isPicture)
            pictures.insert(FileOf(id, content), content);
    }
    return reader.hasError() ? QMap<QString, QByteArray>() : pictures;
}

class RealBookTools : public WindowTest
{
protected:
    void SetUp() override
    {
        if (CorpusBooks().empty())
            GTEST_SKIP() << test::NoCorpus;
        Open();
    }
    void Load(const CorpusBook& book)
    {
        const QString name = QString::fromStdString(book.name);
        workplace.Make(name, book.bytes);
        LoadAndWait(workplace.Path(name));
        ASSERT_EQ(Message(), u"document complete"_s) << book.name;
    }
    QString Page() { return QString::fromUtf8(Document().savePage()); }
    /// The window manager's part: the form becomes the active window.
    static bool HasKeyboard(const QWidget& window)
    {
        return WaitFor([&] { return QApplication::activeWindow() == &window; });
    }
    static void Click(QAbstractButton* button) { QTest::mouseClick(button, Qt::LeftButton); }
    void CloseTools()
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window != form.get() && window->isVisible())
                window->close();
        }
        form->activateWindow();
        EXPECT_TRUE(HasKeyboard(*form));
    }
};

} // namespace

TEST_F(RealBookTools, ExtractedPicturesHaveTheBytesThatAnotherDecoderReads)
{
    int pictures = 0;
    for (const CorpusBook& book : CorpusBooks()) {
        const QMap<QString, QByteArray> expected = PicturesOf(book.bytes);
        if (expected.isEmpty())
            continue;
        Load(book);
        ExtractAllImages();
        EXPECT_EQ(QDir(ExtractedImagesFolder).entryList(QDir::Files).size(), expected.size()) << book.name;
        for (const auto& [file, bytes] : expected.asKeyValueRange()) {
            EXPECT_TRUE(ReadFileText(ExtractedImagesFolder + u'/' + file) == bytes.toStdString())
                << book.name << ' ' << file.toStdString();
            ++pictures;
        }
        DeleteExtractedImages();
    }
    EXPECT_GT(pictures, 10);
}

TEST_F(RealBookTools, AnUnchangedFragmentOfAnySizeChangesNothing)
{
    for (const CorpusBook& book : CorpusBooks()) {
        Load(book);
        const QString before = Page();
        Document().setSelection({2, 1}, {Document().lineCount() - 2, 1});
        form->Entry("uHtmlFragmentEditor")->trigger();
        auto& tool = InstanceOf<EditHtmlWbF>();
        ASSERT_TRUE(HasKeyboard(tool));
        tool.ValidateSelectionB->setChecked(true);
        Click(tool.RefreshB);
        EXPECT_EQ(tool.FragmentFirstNode(), 3) << book.name;
        EXPECT_EQ(tool.FragmentLastNode(), Document().lineCount() - 1) << book.name;
        Click(tool.ColorB);
        Click(tool.ApplyB);
        EXPECT_TRUE(BookUnchanged) << book.name;
        EXPECT_TRUE(Page() == before) << book.name;
        CloseTools();
    }
}

TEST_F(RealBookTools, AChangedFragmentOfManyLinesIsAppliedAndReverted)
{
    for (const CorpusBook& book : CorpusBooks()) {
        Load(book);
        const QString before = page::innerText(Document());
        const int last = std::min(Document().lineCount() - 2, 60);
        Document().setSelection({2, 1}, {last, 1});
        form->Entry("uHtmlFragmentEditor")->trigger();
        auto& tool = InstanceOf<EditHtmlWbF>();
        ASSERT_TRUE(HasKeyboard(tool));
        tool.ValidateSelectionB->setChecked(true);
        Click(tool.RefreshB);
        // The user types after the last character of the source.
        ASSERT_TRUE(WaitFor([&] { return tool.HtmlEditor->isEditable(); }));
        tool.HtmlEditor->setFocus();
        QTest::keyClick(tool.HtmlEditor, Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(tool.HtmlEditor, u"<DIV>typed text</DIV>"_s);
        Click(tool.ApplyB);
        EXPECT_EQ(LineText(last + 1), u"typed text"_s) << book.name;
        EXPECT_TRUE(page::innerText(Document()).remove(u"typed text\r\n"_s) == before) << book.name;
        CloseTools();
        form->Entry("uUndo")->trigger();
        EXPECT_TRUE(page::innerText(Document()) == before) << book.name;
    }
}

TEST_F(RealBookTools, ATagAroundLinesIsInsertedAndReverted)
{
    for (const CorpusBook& book : CorpusBooks()) {
        Load(book);
        const QString before = Page();
        const int middle = Document().lineCount() / 2;
        Document().setSelection({middle, 1}, {middle + 2, 1});
        form->Entry("uInsertTags")->trigger();
        auto& tool = InstanceOf<FbTagListF>();
        ASSERT_TRUE(HasKeyboard(tool));
        tool.CloseTagsB->setChecked(true);
        tool.TagListL->setCurrentRow(7);
        Click(tool.InsertB);
        EXPECT_EQ(LineText(middle), u"<section id=\"\">"_s) << book.name;
        EXPECT_EQ(LineText(middle + 4), u"</section>"_s) << book.name;
        CloseTools();
        form->Entry("uUndo")->trigger();
        EXPECT_TRUE(Page() == before) << book.name;
    }
}

} // namespace vmk
