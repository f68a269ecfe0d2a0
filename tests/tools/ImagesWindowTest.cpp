#include "BinaryListF.h"
#include "CodePages.h"
#include "ImageFiles.h"
#include "ImageFunctions.h"
#include "ImageViewerF.h"
#include "MainWindowSeams.h"
#include "PictureView.h"
#include "Pictures.h"
#include "SettingsVariables.h"
#include "WindowTest.h"

#include <QBuffer>
#include <QImageWriter>
#include <QListWidget>
#include <QScrollArea>
#include <QScrollBar>

/// The commands on pictures, through the window.
namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr std::string_view Declaration1251 = "<?xml version=\"1.0\" encoding=\"windows-1251\"?>\r\n";

std::string BookWith(const std::string& content, const std::string& binaries)
{
    std::string book = SmallBook;
    const std::string_view place = "<p>Third line.</p>";
    book.replace(book.find(place), place.size(), std::string(place) + content);
    book.insert(book.find("</FictionBook>"), binaries);
    return book;
}

std::string ImageTag(const std::string& href)
{
    return "<image l:href=\"#" + href + "\"/>";
}

/// A PNG file of any size.
std::string MakePng(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::blue);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    EXPECT_TRUE(image.save(&buffer, "png"));
    return bytes.toStdString();
}

class Images : public WindowTest
{
protected:
    /// Opens the context menu on the tag that contains `text`, as a right click does.
    void RightClick(const QString& text)
    {
        const Position at = PlaceOf(text);
        PutCaret(at);
        QTest::mouseClick(View().viewport(), Qt::RightButton, Qt::NoModifier, PointOf(at));
        ASSERT_TRUE(WaitFor([this] { return form->MnRightClick->isVisible(); }));
        form->MnRightClick->close();
    }
    void Trigger(const char* entry)
    {
        ASSERT_TRUE(form->Entry(entry)->isEnabled()) << entry;
        form->Entry(entry)->trigger();
    }
    void OpenTools()
    {
        auto* menu = form->menuBar()->findChild<QMenu*>(u"uTools"_s);
        Q_EMIT menu->aboutToShow();
    }
    static ImageViewerF& Viewer() { return InstanceOf<ImageViewerF>(); }
    static BinaryListF& List() { return InstanceOf<BinaryListF>(); }
    [[nodiscard]] QString ViewerSize() const { return Viewer().StatusMsg->panelText(1); }
    [[nodiscard]] static QStringList FilesIn(const QString& folder)
    {
        return QDir(folder).entryList(QDir::Files, QDir::Name);
    }
    void ClickRow(int row)
    {
        QListWidget& list = *List().TagListF;
        list.scrollToItem(list.item(row));
        QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::NoModifier,
                          list.visualItemRect(list.item(row)).center());
    }
};

} // namespace

// ---------------------------------------------------------------- menus

TEST_F(Images, ABookWithoutPicturesOffersNothing)
{
    OpenBook();
    OpenTools();
    EXPECT_FALSE(form->Entry("uExtractAllImages")->isEnabled());
    EXPECT_FALSE(form->Entry("uShowBinaryList")->isEnabled());
    EXPECT_FALSE(form->Entry("uDeleteExtractedImages")->isEnabled());
    const QString before = Message();
    ExtractAllImages();
    EXPECT_EQ(Message(), before);
    EXPECT_FALSE(FileExists(ExtractedImagesFolder));
    List().GetBinaryTags();
    EXPECT_FALSE(List().isVisible());
    EXPECT_EQ(Message(), before);
}

TEST_F(Images, TheContextMenuOffersTheCommandsForTheTag)
{
    OpenBook(BookWith(ImageTag("a.png") + ImageTag("none.png"), Binary("a.png", SmallPng())));
    RightClick(u"a.png"_s);
    EXPECT_TRUE(form->Entry("Ed_ShowImage")->isEnabled());
    EXPECT_TRUE(form->Entry("Ed_RemoveImageResource")->isEnabled());
    EXPECT_FALSE(form->Entry("Ed_AddImageResource")->isEnabled());
    RightClick(u"none.png"_s);
    EXPECT_FALSE(form->Entry("Ed_ShowImage")->isEnabled());
    EXPECT_FALSE(form->Entry("Ed_RemoveImageResource")->isEnabled());
    EXPECT_TRUE(form->Entry("Ed_AddImageResource")->isEnabled());
    RightClick(u"First"_s);
    EXPECT_FALSE(form->Entry("Ed_AddImageResource")->isEnabled());
}

// ---------------------------------------------------------------- extracting and deleting

TEST_F(Images, ExtractingReportsAndTheFilesCanBeDeleted)
{
    OpenBook(BookWith("",
                      Binary("a.png", SmallPng()) + Binary("data", "x", "application/octet-stream")
                          + Binary("b.jpg", SmallJpeg())));
    QStringList texts;
    {
        const SeamGuard status(StatusSeam(), [&](const QString& text) { texts.append(text); });
        QList<Pointer> pointers;
        const SeamGuard pointer(PointerSeam(), [&](Pointer p) { pointers.append(p); });
        OpenTools();
        soundNames.clear();
        Trigger("uExtractAllImages");
        EXPECT_EQ(pointers, (QList<Pointer>{Pointer::Hourglass, Pointer::Default}));
    }
    EXPECT_EQ(texts,
              (QStringList{u"...extracting images...1"_s, u"...extracting images...2"_s,
                           u"...extracting images...2"_s, u"...extracting images...3"_s,
                           u"images extracted: 2; saved to: "_s + ExtractedImagesFolder}));
    EXPECT_EQ(soundNames, QStringList{u"FileSaved.wav"_s});
    EXPECT_EQ(FilesIn(ExtractedImagesFolder), (QStringList{u"a.png"_s, u"b.jpg"_s}));
    EXPECT_EQ(ReadFileText(ExtractedImagesFolder + u"/b.jpg"_s), SmallJpeg());

    OpenTools();
    soundNames.clear();
    Trigger("uDeleteExtractedImages");
    EXPECT_FALSE(FileExists(ExtractedImagesFolder));
    EXPECT_EQ(Message(), u"extracted images have been deleted"_s);
    EXPECT_EQ(soundNames, QStringList{u"FileSaved.wav"_s});
    EXPECT_TRUE(boxTexts.isEmpty());
    OpenTools();
    EXPECT_FALSE(form->Entry("uDeleteExtractedImages")->isEnabled());
}

TEST_F(Images, WithoutAPictureNothingIsExtractedAndTheBeepIsHeardWithSoundsOff)
{
    OpenBook(BookWith("", Binary("data", "x", "application/octet-stream")));
    soundNames.clear();
    ExtractAllImages();
    EXPECT_EQ(Message(), u"no images extracted"_s);
    EXPECT_EQ(soundNames, QStringList{u"ParseError.wav"_s});
    SoundsOn = 0;
    ExtractAllImages();
    EXPECT_EQ(beepCount, 1);
}

TEST_F(Images, AFailedWriteIsReported)
{
    OpenBook(BookWith("", Binary("a.png", SmallPng())));
    workplace.Make(u"VMK Office/Extracted Images"_s, "a file in the way");
    ExtractAllImages();
    EXPECT_EQ(Message(),
              u"images extracted: 1; saved to: "_s + ExtractedImagesFolder + u"; could not be written: 1"_s);
}

// ---------------------------------------------------------------- showing

TEST_F(Images, ShowImageOpensTheViewerWithSizeAndTags)
{
    OpenBook(BookWith(ImageTag("a.png"), Binary("a.png", MakePng({37, 41}))));
    RightClick(u"a.png"_s);
    Trigger("Ed_ShowImage");
    EXPECT_TRUE(Viewer().isVisible());
    EXPECT_FALSE(Viewer().isModal());
    EXPECT_EQ(Viewer().windowTitle(), u" Fiction Book Image"_s);
    EXPECT_EQ(Viewer().size(), QSize(500, 400));
    EXPECT_EQ(ViewerSize(), u"37x41"_s);
    EXPECT_EQ(Viewer().StatusMsg->panelText(2), u"<image l:href=\"#a.png\"/>"_s);
    EXPECT_EQ(Viewer().StatusMsg->panelText(3), u"<binary content-type=\"image/png\" id=\"a.png\">"_s);
    EXPECT_EQ(Viewer().ImVi->size(), QSize(37, 41));
    const QStringList files = FilesIn(TempImagesFolder);
    ASSERT_EQ(files.size(), 1);
    EXPECT_TRUE(files[0].contains(QRegularExpression(u"^image_[0-9]{1,4}\\.png$"_s)))
        << files[0].toStdString();

    QTest::keyClick(&Viewer(), Qt::Key_Escape);
    EXPECT_FALSE(Viewer().isVisible());
    EXPECT_FALSE(FileExists(TempImagesFolder));
}

TEST_F(Images, OnlyTheShownPictureIsInTheFolder)
{
    OpenBook(BookWith(ImageTag("a.png"), Binary("a.png", SmallPng()) + Binary("b.jpg", SmallJpeg())));
    ShowPicture("a.png", OtherContent::Show);
    ShowPicture("b", OtherContent::Show);
    const QStringList files = FilesIn(TempImagesFolder);
    ASSERT_EQ(files.size(), 1);
    EXPECT_TRUE(files[0].endsWith(u".jpg"_s));
}

TEST_F(Images, ALargePictureHasScrollBarsAndASmallOneIsCentred)
{
    OpenBook(BookWith("", Binary("big.png", MakePng({900, 20})) + Binary("small.png", SmallPng())));
    ShowPicture("big.png", OtherContent::Show);
    EXPECT_EQ(ViewerSize(), u"900x20"_s);
    EXPECT_GT(Viewer().scrolled->horizontalScrollBar()->maximum(), 0);
    ShowPicture("small.png", OtherContent::Show);
    ASSERT_TRUE(WaitFor([&] { return Viewer().scrolled->horizontalScrollBar()->maximum() == 0; }));
    EXPECT_NEAR(Viewer().ImVi->geometry().center().x(), Viewer().scrolled->viewport()->width() / 2.0, 2);
    EXPECT_NEAR(Viewer().ImVi->geometry().center().y(), Viewer().scrolled->viewport()->height() / 2.0, 2);
}

TEST_F(Images, APictureTooLargeForTheMemoryIsReportedInTheViewer)
{
    // A header of 50 000 by 50 000 pixels with a little data.
    std::string bomb = SmallPng();
    const auto set = [&](size_t at, uint32_t value) {
        for (size_t i = 0; i < 4; ++i)
            bomb[at + i] = char(value >> (24 - 8 * i));
    };
    set(16, 50'000);
    set(20, 50'000);
    set(29, 0xC4CDAA9D); // the checksum of that header
    OpenBook(BookWith("", Binary("bomb.png", bomb)));
    ShowPicture("bomb.png", OtherContent::Show);
    EXPECT_TRUE(Viewer().ImVi->picture().isNull());
    EXPECT_EQ(Viewer().ImVi->message(), u"The picture is too large to be shown: 50000x50000 pixels."_s);
    EXPECT_EQ(ViewerSize(), u"50000x50000"_s);
}

TEST_F(Images, ContentThatIsNotBase64IsShownAsABrokenPicture)
{
    OpenBook(BookWith("", "<binary content-type=\"image/png\" id=\"x\">no base64!</binary>"));
    ShowPicture("x", OtherContent::Show);
    EXPECT_TRUE(Viewer().isVisible());
    EXPECT_TRUE(Viewer().ImVi->message().startsWith(u"The picture cannot be shown: "_s));
    EXPECT_EQ(ViewerSize(), QString());
    EXPECT_EQ(ReadFileText(TempImagesFolder + u'/' + FilesIn(TempImagesFolder).value(0)), "no base64!");
}

TEST_F(Images, OtherContentIsShownFromTheTagOnly)
{
    OpenBook(BookWith(ImageTag("a.png"), Binary("a.png", SmallPng(), "application/octet-stream")));
    ShowPicture("a.png", OtherContent::Ignore);
    EXPECT_FALSE(Viewer().isVisible());
    EXPECT_TRUE(boxTexts.isEmpty());
    RightClick(u"a.png"_s);
    Trigger("Ed_ShowImage");
    EXPECT_TRUE(Viewer().isVisible());
}

TEST_F(Images, AMissingIdIsReported)
{
    OpenBook(BookWith(ImageTag("A.PNG"), Binary("a.png", SmallPng())));
    // The menu ignores case and the commands do not, by design.
    RightClick(u"A.PNG"_s);
    Trigger("Ed_ShowImage");
    Trigger("Ed_RemoveImageResource");
    EXPECT_EQ(boxTexts, (QStringList{u"cannot find image resource"_s, u"cannot find image resource"_s}));
    EXPECT_FALSE(Viewer().isVisible());
}

TEST_F(Images, ATagWithoutATargetRemovesNoPicture)
{
    OpenBook(BookWith("<image id=\"i1\" l:href=\"#\"/>", Binary("a.png", SmallPng())));
    const std::string before = BinaryPart;
    RightClick(u"i1"_s);
    Trigger("Ed_RemoveImageResource");
    EXPECT_EQ(BinaryPart, before);
    EXPECT_EQ(boxTexts, QStringList(u"cannot find image resource"_s));
}

TEST_F(Images, ACyrillicIdOfAnAnsiBookIsFound)
{
    std::string book = BookWith(ImageTag("обложка.png"), Binary("обложка.png", MakePng({9, 8})));
    book.replace(0, book.find('\n') + 1, Declaration1251);
    OpenBook(Utf8ToBytes(book, CodePageCyrillic));
    RightClick(u"обложка.png"_s);
    Trigger("Ed_ShowImage");
    EXPECT_EQ(ViewerSize(), u"9x8"_s);
    EXPECT_EQ(Viewer().StatusMsg->panelText(3), u"<binary content-type=\"image/png\" id=\"обложка.png\">"_s);
    Trigger("Ed_RemoveImageResource");
    EXPECT_TRUE(BinaryPart.empty());
}

// ---------------------------------------------------------------- the list

TEST_F(Images, TheOpenBinaryListFollowsTheBookThatIsLoaded)
{
    OpenBook(BookWith("", Binary("a.png", SmallPng()) + Binary("b.jpg", SmallJpeg())));
    OpenTools();
    Trigger("uShowBinaryList");
    ASSERT_EQ(List().TagListF->count(), 2);
    OpenBook(BookWith("", Binary("c.png", MakePng({7, 8}))));
    EXPECT_TRUE(Message().startsWith(u"document complete"_s)) << Message().toStdString();
    ASSERT_EQ(List().TagListF->count(), 1);
    ClickRow(0);
    EXPECT_EQ(ViewerSize(), u"7x8"_s);
    OpenBook();
    EXPECT_EQ(List().TagListF->count(), 0);
    EXPECT_TRUE(List().isVisible());
}

TEST_F(Images, TheOpenBinaryListFollowsTheRemovalOfAPicture)
{
    OpenBook(BookWith(ImageTag("a.png"), Binary("a.png", SmallPng()) + Binary("b.png", MakePng({7, 8}))));
    OpenTools();
    Trigger("uShowBinaryList");
    ASSERT_EQ(List().TagListF->count(), 2);
    RightClick(u"a.png"_s);
    Trigger("Ed_RemoveImageResource");
    ASSERT_EQ(List().TagListF->count(), 1);
    ClickRow(0);
    EXPECT_EQ(ViewerSize(), u"7x8"_s);
}

TEST_F(Images, TheBinaryListShowsPicturesOnAClickOrEnter)
{
    OpenBook(BookWith("",
                      Binary("a.png", MakePng({5, 6})) + "\r\n" + Binary("data", "x", "text/plain")
                          + Binary("b.jpg", SmallJpeg())));
    OpenTools();
    Trigger("uShowBinaryList");
    ASSERT_TRUE(List().isVisible());
    EXPECT_EQ(List().windowTitle(), u" Binary Resources"_s);
    ASSERT_EQ(List().TagListF->count(), 3);
    EXPECT_EQ(List().TagListF->item(1)->text(), u"<binary content-type=\"text/plain\" id=\"data\">"_s);
    EXPECT_EQ(Message(), u"...extracting images...4"_s);
    ClickRow(1);
    EXPECT_FALSE(Viewer().isVisible());
    ClickRow(0);
    EXPECT_EQ(ViewerSize(), u"5x6"_s);
    List().TagListF->setCurrentRow(2);
    QTest::keyClick(List().TagListF, Qt::Key_Return);
    EXPECT_EQ(ViewerSize(), u"2x3"_s);
    EXPECT_TRUE(boxTexts.isEmpty());

    QTest::keyClick(List().TagListF, Qt::Key_Escape);
    EXPECT_FALSE(List().isVisible());
    EXPECT_FALSE(FileExists(TempImagesFolder));
}

TEST_F(Images, TheListIsRefilledEachTime)
{
    OpenBook(BookWith("", Binary("a.png", SmallPng())));
    List().GetBinaryTags();
    EXPECT_EQ(List().TagListF->count(), 1);
    BinaryPart += Binary("b.png", SmallPng());
    List().GetBinaryTags();
    EXPECT_EQ(List().TagListF->count(), 2);
}

// ---------------------------------------------------------------- adding and removing

TEST_F(Images, AnAddedPictureIsInTheSavedBook)
{
    Open();
    const QString path = MakeBook(BookWith(ImageTag("new.png"), ""));
    LoadAndWait(path);
    workplace.Make(u"pic.PNG"_s, SmallPng());
    dialogAnswer = workplace.Path(u"pic.PNG"_s);
    RightClick(u"new.png"_s);
    Trigger("Ed_AddImageResource");
    EXPECT_EQ(BinaryPart, "\r\n" + Binary("new.png", SmallPng()));
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_EQ(requests[0].title, u"Add New Image Resource"_s);
    EXPECT_EQ(requests[0].filter, u"(*.png)|*.png|PNG - Portable Network Graphics|*.png|"_s);
    EXPECT_EQ(requests[0].fileName, QString());
    EXPECT_EQ(LastImageFolder, workplace.Folder() + u'/');
    EXPECT_TRUE(BookUnchanged);
    EXPECT_TRUE(boxTexts.isEmpty());

    form->SaveCurrentBook();
    LoadAndWait(path);
    RightClick(u"new.png"_s);
    Trigger("Ed_ShowImage");
    EXPECT_EQ(ViewerSize(), u"2x3"_s);
}

TEST_F(Images, TheFilterFollowsTheLink)
{
    OpenBook(BookWith(ImageTag("a.JPG") + ImageTag("b"), ""));
    RightClick(u"a.JPG"_s);
    Trigger("Ed_AddImageResource");
    RightClick(u"#b"_s);
    Trigger("Ed_AddImageResource");
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_EQ(requests[0].filter, u"(*.jpg)|*.jpg|JPG - JPEG|*.jpg|"_s);
    EXPECT_EQ(requests[1].filter,
              u"(*.jpg;*.png)|*.jpg;*.png|JPG - JPEG|*.jpg|PNG - Portable Network Graphics|*.png|"_s);
    EXPECT_TRUE(BinaryPart.empty());
    EXPECT_TRUE(boxTexts.isEmpty());
}

TEST_F(Images, AFileOfAnotherExtensionIsRefused)
{
    Open();
    const auto add = [this](const QString& href, const QString& file, const std::string& bytes) {
        workplace.Make(file, bytes);
        dialogAnswer = workplace.Path(file);
        TagUnderCaret.href = href;
        BinaryPart.clear();
        boxTexts.clear();
        AddImageResource();
        return boxTexts.join(u'|');
    };
    EXPECT_EQ(add(u"a.gif"_s, u"a.gif"_s, "GIF89a"), u"cannot add image resource"_s);
    const QString differs
        = u"cannot add image resource\r\nimage file extension does not correspond to href"_s;
    EXPECT_EQ(add(u"cover"_s, u"jpg.png"_s, SmallPng()), differs);
    EXPECT_EQ(add(u"cover.JPG"_s, u"x.jpg"_s, SmallJpeg()), differs);
    EXPECT_TRUE(BinaryPart.empty());
    EXPECT_EQ(add(u"cover.jpg"_s, u"cover.JPG"_s, SmallJpeg()), QString());
    EXPECT_EQ(add(u"jpg_cover.png"_s, u"x.jpg"_s, SmallJpeg()), QString());
    EXPECT_EQ(BinaryPart, "\r\n" + Binary("jpg_cover.png", SmallJpeg(), "image/jpeg"));
    EXPECT_EQ(add(u" "_s, u"x.jpg"_s, SmallJpeg()), u"cannot add image resource: href not specified"_s);
}

TEST_F(Images, AFileThatCannotBeDecodedIsAddedAndReported)
{
    Open();
    workplace.Make(u"x.png"_s, SmallJpeg());
    dialogAnswer = workplace.Path(u"x.png"_s);
    TagUnderCaret.href = u"x.png"_s;
    AddImageResource();
    EXPECT_EQ(BinaryPart, "\r\n" + Binary("x.png", SmallJpeg()));
    EXPECT_EQ(Message(), u"image resource added, but the file is not a valid PNG picture: x.png"_s);
    workplace.Make(u"x.png"_s, TornPng());
    ShowStatus(QString());
    AddImageResource();
    EXPECT_EQ(Message(), u"image resource added, but the file is not a valid PNG picture: x.png"_s);
    ShowStatus(QString());
    workplace.Make(u"x.png"_s, SmallPng());
    AddImageResource();
    EXPECT_EQ(Message(), QString());
    EXPECT_TRUE(boxTexts.isEmpty());
}

TEST_F(Images, ABookThatIsLoadedDuringAnExtractionDoesNotDisturbIt)
{
    OpenBook(BookWith("", Binary("a.png", SmallPng()) + Binary("b.jpg", SmallJpeg())));
    QTimer::singleShot(0, form.get(), [] { BinaryPart.clear(); });
    ExtractAllImages();
    EXPECT_TRUE(BinaryPart.empty());
    EXPECT_EQ(FilesIn(ExtractedImagesFolder), (QStringList{u"a.png"_s, u"b.jpg"_s}));
}

TEST_F(Images, ALinkWithMarkUpCharactersLeavesTheBookWellFormed)
{
    Open();
    const QString path = MakeBook(BookWith(ImageTag("a&amp;b.png"), ""));
    LoadAndWait(path);
    workplace.Make(u"x.png"_s, SmallPng());
    dialogAnswer = workplace.Path(u"x.png"_s);
    RightClick(u"b.png"_s);
    Trigger("Ed_AddImageResource");
    EXPECT_NE(BinaryPart.find("id=\"a&amp;b.png\""), std::string::npos);
    form->SaveCurrentBook();
    LoadAndWait(path);
    EXPECT_EQ(Message(), u"document complete"_s);
    RightClick(u"b.png"_s);
    Trigger("Ed_ShowImage");
    EXPECT_EQ(ViewerSize(), u"2x3"_s);
}

TEST_F(Images, RemovingTheOnlyPictureHidesTheEntries)
{
    OpenBook(BookWith(ImageTag("a.png"), Binary("a.png", SmallPng())));
    OpenTools();
    EXPECT_TRUE(form->Entry("uExtractAllImages")->isEnabled());
    RightClick(u"a.png"_s);
    Trigger("Ed_RemoveImageResource");
    EXPECT_TRUE(BinaryPart.empty());
    EXPECT_TRUE(boxTexts.isEmpty());
    EXPECT_TRUE(BookUnchanged);
    EXPECT_GE(FindLine(u"a.png"_s), 0);
    OpenTools();
    EXPECT_FALSE(form->Entry("uExtractAllImages")->isEnabled());
    EXPECT_FALSE(form->Entry("uShowBinaryList")->isEnabled());
}

TEST_F(Images, ExtractedAndAddedAgainThePicturesHaveTheSameBytes)
{
    const std::vector<std::pair<std::string, std::string>> pictures
        = {{"a.png", SmallPng()}, {"b.jpg", SmallJpeg()}, {"c.png", MakePng({64, 64})}};
    std::string tags;
    std::string binaries;
    for (const auto& [id, bytes] : pictures) {
        tags += ImageTag(id);
        binaries += Binary(id, bytes, id.ends_with("png") ? "image/png" : "image/jpeg") + "\r\n";
    }
    Open();
    const QString path = MakeBook(BookWith(tags, binaries));
    LoadAndWait(path);
    ExtractAllImages();
    for (const auto& [id, bytes] : pictures) {
        const QString name = QString::fromStdString(id);
        RightClick(name);
        Trigger("Ed_RemoveImageResource");
        RightClick(name);
        dialogAnswer = ExtractedImagesFolder + u'/' + name;
        Trigger("Ed_AddImageResource");
    }
    form->SaveCurrentBook();
    LoadAndWait(path);
    FileOperation(DeleteFolderMode, ExtractedImagesFolder);
    ExtractAllImages();
    for (const auto& [id, bytes] : pictures)
        EXPECT_EQ(ReadFileText(ExtractedImagesFolder + u'/' + QString::fromStdString(id)), bytes) << id;
}

} // namespace vmk
