#include "SettingsTest.h"

#include "ColorsF1.h"

#include <QScreen>

/// The preview and the palette.
namespace vmk {

// ---------------------------------------------------------------- preview

TEST_F(SettingsFTest, ThePreviewShowsTheSampleWithTheValuesInTheControls)
{
    Open();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewShows(u"Глава первая"_s));
    EXPECT_EQ(Preview()->windowTitle(), u" SampleForPreview.fb2"_s);
    EXPECT_TRUE(PreviewShows(u"Chapter two"_s));
    TypeInto(Dialog().FontSizeT, u"17pt"_s);
    EXPECT_TRUE(PreviewShows(u"font-size:17pt"_s));
    Choose(Dialog().FontsL, u"Arial"_s);
    EXPECT_TRUE(PreviewShows(u"font-family:Arial"_s));
    Choose(Dialog().FontWeightL, u"bold"_s);
    EXPECT_TRUE(PreviewShows(u"font-weight:bold; text-align:left"_s));
    Choose(Dialog().TextAlignL, u"justify"_s);
    EXPECT_TRUE(PreviewShows(u"text-align:justify"_s));
    TypeInto(Dialog().LeftMarginT, u"21px"_s);
    EXPECT_TRUE(PreviewShows(u"margin-left:21px"_s));
    TypeInto(Dialog().RightMarginT, u"22px"_s);
    EXPECT_TRUE(PreviewShows(u"margin-right:22px"_s));
    TypeInto(Dialog().NodeShiftT, u"13PX"_s);
    EXPECT_TRUE(PreviewShows(u"MARGIN-LEFT: 13px"_s));
    Choose(Dialog().TagFontWeightL, u"normal"_s);
    EXPECT_TRUE(
        PreviewShows(u"span.t\r\n\t{font-family:Arial;\r\n\tfont-size:17pt;\r\n\tfont-weight:normal"_s));
    Set(Dialog().TagHighlightingB, false);
    EXPECT_TRUE(WaitFor([] { return !PreviewPage().contains(u"<SPAN class=t"_s); }));
    // The settings are unchanged.
    EXPECT_EQ(DisplayFontSize, u"10pt"_s);
    EXPECT_EQ(NodeShift, 5);
}

TEST_F(SettingsFTest, AChangeShowsThePreviewOnlyIfItFollowsChanges)
{
    Open();
    Set(Dialog().PreviewOnChangeB, false);
    TypeInto(Dialog().FontSizeT, u"17pt"_s);
    Choose(Dialog().FontsL, u"Arial"_s);
    EXPECT_EQ(Preview(), nullptr);
    Push(Dialog().PreviewB);
    EXPECT_TRUE(PreviewShows(u"font-size:17pt"_s));
    Preview()->close();
    Set(Dialog().PreviewOnChangeB, true);
    EXPECT_EQ(Preview(), nullptr);
    TypeInto(Dialog().FontSizeT, u"18pt"_s);
    EXPECT_TRUE(PreviewShows(u"font-size:18pt"_s));
}

TEST_F(SettingsFTest, FillingTheControlsShowsNoPreview)
{
    Open();
    DisplayFontSize = u"12pt"_s;
    DisplayFontName = u"Arial"_s;
    Dialog();
    QCoreApplication::processEvents();
    EXPECT_EQ(Preview(), nullptr);
    Dialog().SettingsLoading = 1;
    ShowFb2TextPreview(true);
    EXPECT_EQ(Preview(), nullptr);
}

TEST_F(SettingsFTest, ThePreviewLeavesTheFocusInTheField)
{
    Open();
    SettingsF& dialog = Dialog();
    TypeInto(dialog.FontSizeT, u"18pt"_s);
    ASSERT_TRUE(PreviewIsVisible());
    EXPECT_TRUE(dialog.FontSizeT->hasFocus());
    EXPECT_TRUE(Preview()->testAttribute(Qt::WA_ShowWithoutActivating));
}

TEST_F(SettingsFTest, AMissingSampleIsReportedInABox)
{
    Open();
    FileOperation(DeleteFileMode, SampleBookFile());
    Push(Dialog().PreviewB);
    EXPECT_EQ(boxTexts, QStringList{u"Preview file not found\r\n"_s + SampleBookFile()});
    EXPECT_FALSE(PreviewIsVisible());
    EXPECT_TRUE(Dialog().isVisible());
}

TEST_F(SettingsFTest, ThePreviewNeverTouchesTheOpenBook)
{
    OpenBook(CyrillicBook);
    PutCaret(PlaceOf(u"First"_s));
    Type(u"typed "_s);
    const auto state = [this] {
        return std::tuple(Page(), BinaryPart, CurrentBook, DisplayFile, WorkEncodingName, WorkCodePage,
                          FileEncodingName, XmlDeclaration, UndoSteps, BookUnchanged, form->windowTitle(),
                          Message(), Panel(1), Panel(3), View().location(), Document().selection());
    };
    const auto before = state();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewShows(u"Глава первая"_s));
    TypeInto(Dialog().FontSizeT, u"18pt"_s);
    ASSERT_TRUE(PreviewShows(u"18pt"_s));
    EXPECT_EQ(state(), before);
    Dialog().close();
    EXPECT_EQ(state(), before);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_FALSE(LineText(FindLine(u"First"_s)).contains(u"typed "_s));
}

TEST_F(SettingsFTest, ASampleThatIsNotWellFormedIsShownWithoutATree)
{
    Open();
    FileOperation(DeleteFileMode, SampleBookFile());
    workplace.Make(u"VMK Office/SampleForPreview.fb2"_s, "<FictionBook><body><p>Broken</body></FictionBook>");
    Push(Dialog().PreviewB);
    EXPECT_TRUE(PreviewShows(u"Broken"_s));
    EXPECT_EQ(boxTexts, QStringList{u"Namespace error. Tree view is skipped"_s});
    EXPECT_EQ(View().location(), EmptyPageFile);
}

TEST_F(SettingsFTest, ASampleWithADamagedBinaryPartEmptiesThePreviewAlone)
{
    OpenBook();
    const QString page = Page();
    FileOperation(DeleteFileMode, SampleBookFile());
    workplace.Make(u"VMK Office/SampleForPreview.fb2"_s,
                   "<FictionBook><body/><binary id=\"a\">AAAA</FictionBook>");
    Push(Dialog().PreviewB);
    EXPECT_EQ(boxTexts, QStringList{u"Cannot load file: bad binary part"_s});
    EXPECT_EQ(Preview()->windowTitle(), u"Cannot open file: bad binary part"_s);
    EXPECT_EQ(Page(), page);
}

TEST_F(SettingsFTest, ThePreviewsPageIsDeletedWithItsWindow)
{
    Open();
    Push(Dialog().PreviewB);
    EXPECT_TRUE(FileExists(SamplePageFile()));
    Preview()->close();
    EXPECT_FALSE(FileExists(SamplePageFile()));
    EXPECT_TRUE(Dialog().isVisible());
    Push(Dialog().PreviewB);
    EXPECT_TRUE(FileExists(SamplePageFile()));
    Dialog().close();
    EXPECT_FALSE(FileExists(SamplePageFile()));
    EXPECT_EQ(Preview(), nullptr);
}

TEST_F(SettingsFTest, ThePreviewIsReadOnly)
{
    Open();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewShows(u"Chapter two"_s));
    DisplayView& view = *Preview()->FbPreview;
    EXPECT_FALSE(view.isEditable());
    const QString page = PreviewPage();
    QTest::keyClick(&view, Qt::Key_A);
    EXPECT_EQ(PreviewPage(), page);
    EXPECT_FALSE(view.Navigate(MakeBook(SmallBook)));
    EXPECT_EQ(view.location(), SamplePageFile());
    Preview()->resize(333, 222);
    EXPECT_EQ(view.geometry(), Preview()->rect());
}

TEST_F(SettingsFTest, ThePreviewKeepsItsScrollPositionAfterAChange)
{
    Open();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewShows(u"Chapter two"_s));
    DisplayView& view = *Preview()->FbPreview;
    view.scroll(0, 150);
    TypeInto(Dialog().LeftMarginT, u"3px"_s);
    ASSERT_TRUE(PreviewShows(u"margin-left:3px"_s));
    EXPECT_EQ(view.scrollTop(), 150);
}

// ---------------------------------------------------------------- position

TEST(PreviewGeometry, IsBesideTheDialogIfThereIsRoom)
{
    const QMargins frame(2, 24, 2, 2);
    const QSize size(480, 420);
    const QRect screen(0, 0, 1920, 1080);
    const auto corner = [&](const QRect& dialog) {
        const QRect place = PreviewGeometry(size, frame, dialog, dialog, screen).marginsAdded(frame);
        EXPECT_EQ(place.size(), size.grownBy(frame));
        EXPECT_FALSE(place.intersects(dialog));
        EXPECT_TRUE(screen.contains(place));
        return place.topLeft();
    };
    EXPECT_EQ(corner({100, 200, 800, 430}), QPoint(900, 200));
    EXPECT_EQ(corner({1100, 200, 800, 430}), QPoint(1100 - 484, 200));
    EXPECT_EQ(corner({200, 10, 1600, 430}), QPoint(200, 440));
    EXPECT_EQ(corner({200, 600, 1600, 430}), QPoint(200, 600 - 446));
}

TEST(PreviewGeometry, LeavesTheButtonsVisibleOnASmallScreen)
{
    const QMargins frame(2, 24, 2, 2);
    for (const QRect& screen : {QRect(0, 0, 1024, 768), QRect(0, 27, 1024, 741), QRect(1024, 0, 800, 600)}) {
        for (int left = -50; left < 200; left += 10) {
            for (int top = 0; top < 300; top += 10) {
                const QRect dialog(screen.left() + left, screen.top() + top, 830, 456);
                const QRect buttons(dialog.left() + 10, dialog.bottom() - 40, 810, 30);
                const QRect place
                    = PreviewGeometry({480, 420}, frame, dialog, buttons, screen).marginsAdded(frame);
                EXPECT_FALSE(place.intersects(buttons)) << left << ' ' << top;
                EXPECT_TRUE(screen.contains(place)) << left << ' ' << top;
            }
        }
    }
}

TEST(PreviewGeometry, IsLowerThanWantedIfThatCoversNothingOfTheDialog)
{
    const QRect screen(0, 0, 1024, 768);
    EXPECT_EQ(PreviewGeometry({480, 420}, {}, {0, 41, 826, 405}, {0, 410, 826, 30}, screen),
              QRect(0, 446, 480, 322));
    EXPECT_EQ(PreviewGeometry({480, 420}, {}, {150, 300, 826, 405}, {150, 670, 826, 30}, screen),
              QRect(150, 0, 480, 300));
}

TEST(PreviewGeometry, AlwaysFitsTheScreen)
{
    const QRect screen(0, 0, 300, 200);
    EXPECT_TRUE(screen.contains(PreviewGeometry({480, 420}, {}, screen, screen, screen)));
}

TEST_F(SettingsFTest, ThePreviewDoesNotCoverTheButtons)
{
    Open();
    Push(Dialog().PreviewB);
    ASSERT_TRUE(PreviewIsVisible());
    for (const QPushButton* button : {Dialog().DoneB, Dialog().ReloadB, Dialog().DefaultB}) {
        const QRect area(button->mapToGlobal(QPoint()), button->size());
        EXPECT_FALSE(Preview()->frameGeometry().intersects(area)) << button->text().toStdString();
    }
}

// ---------------------------------------------------------------- palette

namespace {

class ColorsF1Test : public SettingsFTest
{
protected:
    ColorsF1& Palette(QPushButton* button)
    {
        Push(button);
        auto* palette = Dialog().findChild<ColorsF1*>();
        EXPECT_TRUE(palette);
        EXPECT_TRUE(palette->isVisible());
        return *palette;
    }
    static void ClickCell(ColorsF1& palette, int cell, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(&palette, button, {}, ColorCell(cell).center());
    }
};

} // namespace

TEST_F(ColorsF1Test, AClickSetsTheFieldForWhichThePaletteWasOpened)
{
    Open();
    SettingsF& dialog = Dialog();
    struct Field
    {
        QPushButton* button;
        QLineEdit* text;
        QFrame* panel;
        const char* name;
    };
    const Field fields[]
        = {{dialog.ForeColorP, dialog.ForeColorT, dialog.ForeColorP1, "fore color"},
           {dialog.BackColorP, dialog.BackColorT, dialog.BackColorP1, "back color"},
           {dialog.TagColorP, dialog.TagColorT, dialog.TagColorP1, "tag color"},
           {dialog.AttrNameColorP, dialog.AttrNameColorT, dialog.AttrNameColorP1, "attr. color"},
           {dialog.AttrValColorP, dialog.AttrValColorT, dialog.AttrValColorP1, "value color"}};
    for (const Field& field : fields) {
        ColorsF1& palette = Palette(field.button);
        EXPECT_EQ(palette.windowTitle(), u" Set Colors"_s);
        EXPECT_EQ(palette.SetColorForB->text(), QLatin1StringView(field.name));
        const SettingsValues before = dialog.values();
        ClickCell(palette, 26);
        EXPECT_EQ(field.text->text(), u"#FF1493"_s);
        EXPECT_EQ(field.panel->palette().color(QPalette::Window), QColor(0xFF, 0x14, 0x93));
        EXPECT_TRUE(palette.isVisible());
        ClickCell(palette, 3);
        EXPECT_EQ(field.text->text(), u"#FFFF01"_s);
        // Nothing else has changed.
        field.text->setText(u"-"_s);
        SettingsValues after = dialog.values();
        SettingsValues expected = before;
        for (SettingsValues* values : {&after, &expected}) {
            QString* const texts[] = {&values->foreColor, &values->backColor, &values->tagColor,
                                      &values->attrNameColor, &values->attrValColor};
            *texts[&field - fields] = u"-"_s;
        }
        EXPECT_EQ(after, expected);
    }
}

TEST_F(ColorsF1Test, ItsCellsAreDrawnWithTheColoursOfTheFile)
{
    Open();
    ColorsF1& palette = Palette(Dialog().TagColorP);
    EXPECT_EQ(palette.width(), 168);
    EXPECT_GE(palette.height(), 245);
    const QImage picture = palette.grab().toImage();
    ColorTable table;
    table.read(ColorTableFile());
    for (int cell = 0; cell < ColorCellCount; ++cell)
        ASSERT_EQ(picture.pixelColor(ColorCell(cell).center()), QColor::fromRgb(table.color(cell))) << cell;
    EXPECT_GE(palette.SetColorForB->y(), 17 * 14);
}

TEST_F(ColorsF1Test, OtherButtonsAndPointsOutsideEveryCellDoNothing)
{
    Open();
    ColorsF1& palette = Palette(Dialog().TagColorP);
    ClickCell(palette, 26, Qt::RightButton);
    ClickCell(palette, 26, Qt::MiddleButton);
    QTest::mouseClick(&palette, Qt::LeftButton, {}, {50, 17 * 14 + 2});
    EXPECT_EQ(Dialog().TagColorT->text(), u"#0000FF"_s);
}

TEST_F(ColorsF1Test, APickedColourShowsInThePreviewIfItFollowsChanges)
{
    Open();
    ColorsF1& palette = Palette(Dialog().TagColorP);
    ClickCell(palette, 26);
    EXPECT_TRUE(PreviewShows(u"color:#FF1493"_s));
    Preview()->close();
    Set(Dialog().PreviewOnChangeB, false);
    ClickCell(palette, 25);
    EXPECT_EQ(Preview(), nullptr);
}

TEST_F(ColorsF1Test, TheArrowKeysSelectACellAndEnterAppliesIt)
{
    Open();
    ColorsF1& palette = Palette(Dialog().TagColorP);
    QTest::keyClick(&palette, Qt::Key_Return);
    EXPECT_EQ(Dialog().TagColorT->text(), u"#0000FF"_s);
    QTest::keyClick(&palette, Qt::Key_Right);
    EXPECT_EQ(palette.currentCell(), 0);
    QTest::keyClick(&palette, Qt::Key_Left);
    QTest::keyClick(&palette, Qt::Key_Up);
    EXPECT_EQ(palette.currentCell(), 0);
    QTest::keyClick(&palette, Qt::Key_Down);
    QTest::keyClick(&palette, Qt::Key_Down);
    QTest::keyClick(&palette, Qt::Key_Right);
    QTest::keyClick(&palette, Qt::Key_Right);
    EXPECT_EQ(palette.currentCell(), 26);
    EXPECT_EQ(palette.accessibleDescription(), u"#FF1493"_s);
    QTest::keyClick(&palette, Qt::Key_Return);
    EXPECT_EQ(Dialog().TagColorT->text(), u"#FF1493"_s);
    QTest::keyClick(&palette, Qt::Key_End);
    EXPECT_EQ(palette.currentCell(), 203);
    QTest::keyClick(&palette, Qt::Key_Down);
    QTest::keyClick(&palette, Qt::Key_Right);
    EXPECT_EQ(palette.currentCell(), 203);
    QTest::keyClick(&palette, Qt::Key_Home);
    Push(palette.SetColorForB);
    EXPECT_EQ(Dialog().TagColorT->text(), u"#000000"_s);
    QTest::keyClick(&palette, Qt::Key_Escape);
    EXPECT_FALSE(palette.isVisible());
}

TEST_F(ColorsF1Test, ThePaletteIsClosedWithTheDialog)
{
    Open();
    const QPointer<ColorsF1> palette = &Palette(Dialog().TagColorP);
    Dialog().close();
    EXPECT_FALSE(palette && palette->isVisible());
}

} // namespace vmk
