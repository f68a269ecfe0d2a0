// Opens every window that a menu entry opens, and draws all windows on one picture:
//     windowsheet light|dark sheet.png [FOLDER]
// With FOLDER, each window has a picture there too, with the name of its form.
// QT_SCALE_FACTOR and QT_QPA_PLATFORM have their usual effect.
#include "Boxes.h"
#include "CleanUpF.h"
#include "CleanUpTable.h"
#include "ColorsF1.h"
#include "Commands.h"
#include "Desktop.h"
#include "Dialogs.h"
#include "DisplayView.h"
#include "EditHtmlWbF.h"
#include "FbFunctions.h"
#include "FileOperations.h"
#include "Form1.h"
#include "ImageFunctions.h"
#include "InitGlobals.h"
#include "PreviewF.h"
#include "ProcessEnd.h"
#include "SampleTables.h"
#include "Settings.h"
#include "SettingsF.h"
#include "SettingsVariables.h"
#include "StartUpVariables.h"
#include "TestPaths.h"
#include "WidgetSeams.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QPainter>
#include <QPushButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cstdio>
#include <vector>

using namespace Qt::StringLiterals;
using namespace vmk;

namespace {

constexpr int Gap = 16;
constexpr int SheetWidth = 1600;

QPalette DarkPalette()
{
    const QColor text(0xEF, 0xEF, 0xEF);
    QPalette palette(QColor(0x35, 0x35, 0x35), QColor(0x2B, 0x2B, 0x2B));
    palette.setColor(QPalette::Base, QColor(0x23, 0x23, 0x23));
    palette.setColor(QPalette::AlternateBase, QColor(0x31, 0x31, 0x31));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, text);
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x80, 0x80));
    }
    palette.setColor(QPalette::Highlight, QColor(0x2A, 0x82, 0xDA));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

struct Picture
{
    QString caption;
    QString form;
    QPixmap pixels;
};

class Sheet
{
public:
    /// Adds every visible window that is not on the sheet yet.
    void takeWindows()
    {
        QTest::qWait(150);
        for (QWidget* window : QApplication::topLevelWidgets()) {
            const QString caption = window->windowTitle();
            const bool known = std::ranges::any_of(
                pictures, [&caption](const Picture& picture) { return picture.caption == caption; });
            if (window->isVisible() && !caption.isEmpty() && !known)
                pictures.push_back({caption, window->objectName(), window->grab()});
        }
    }

    bool save(const QString& path, bool dark) const
    {
        const qreal density = qApp->devicePixelRatio();
        QImage image(QSize(SheetWidth, height()) * density, QImage::Format_RGB32);
        image.setDevicePixelRatio(density);
        image.fill(dark ? QColor(0x10, 0x10, 0x10) : QColor(0xC8, 0xC8, 0xC8));
        QPainter painter(&image);
        painter.setPen(dark ? Qt::white : Qt::black);
        arrange([&](const Picture& picture, const QPoint& corner) {
            painter.drawText(corner + QPoint(0, Gap - 4), picture.caption);
            painter.drawPixmap(corner + QPoint(0, Gap), picture.pixels);
        });
        painter.end();
        return image.save(path);
    }

    bool saveEach(const QString& folder) const
    {
        return std::ranges::all_of(pictures, [&folder](const Picture& picture) {
            return picture.form.isEmpty() || picture.pixels.save(folder + u'/' + picture.form + u".png"_s);
        });
    }

private:
    [[nodiscard]] int height() const
    {
        return arrange([](const Picture&, const QPoint&) {});
    }

    /// Calls `draw` for each picture, in rows. \return the height of the sheet
    template <typename Draw>
    int arrange(Draw draw) const
    {
        QPoint corner(Gap, Gap);
        int rowHeight = 0;
        for (const Picture& picture : pictures) {
            const QSize size = picture.pixels.deviceIndependentSize().toSize() + QSize(Gap, 2 * Gap);
            if (corner.x() + size.width() > SheetWidth && corner.x() > Gap) {
                corner = {Gap, corner.y() + rowHeight};
                rowHeight = 0;
            }
            draw(picture, corner);
            rowHeight = std::max(rowHeight, size.height());
            corner.rx() += size.width();
        }
        return corner.y() + rowHeight;
    }

    std::vector<Picture> pictures;
};

void CloseWindows(const Form1& form)
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window != &form)
            window->close();
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

/// A run of a sample table over the book, with an invalid expression.
void FillCleaner()
{
    const QString folder = UserCleanUpFolder;
    CleanUpTable table = SampleCleanUpTables().front().table;
    table.rows.insert(table.rows.begin(), {.RepWhat = u"(a"_s, .RepBy = {}, .RegExp = true});
    table.rows.push_back({.RepWhat = u"mill"_s, .RepBy = u"Mill"_s, .Case = true, .Enabled = false});
    CurrentCleanUpFile = folder + u"/Sheet.dat"_s;
    if (!WriteScratchFile(CurrentCleanUpFile, CleanUpFileBytes(table)))
        return;
    CleanUpF::Instance()->ReloadCleanUpFile();
    CleanUpF::Instance()->ApplyB->click();
}

/// Fills a window that has just opened, as its user does.
void FillWindow(Command command)
{
    if (command == Command::BookCleaner && CleanUpF::Instance())
        FillCleaner();
    if (command == Command::HtmlFragmentEditor) {
        auto& editor = InstanceOf<EditHtmlWbF>();
        // The activation of the window fills the editor.
        QTest::qWait(150);
        editor.ValidateSelectionB->setChecked(true);
        editor.Refresh();
        editor.PaintFragment();
    }
    if (command == Command::ShowBinaryList)
        ShowPicture("cover", OtherContent::Show);
}

/// The settings dialog with the windows that it opens.
void TakeSettings(Form1& form, Sheet& sheet)
{
    form.RunCommand(Command::Settings);
    sheet.takeWindows();
    SettingsF& settings = *SettingsF::Existing();
    settings.PreviewB->click();
    settings.TagColorP->click();
    QTest::qWait(300);
    sheet.takeWindows();
    CloseWindows(form);
}

void TakeAll(Form1& form, Sheet& sheet)
{
    sheet.takeWindows();
    TakeSettings(form, sheet);
    for (const Menu& menu : MainMenu()) {
        const bool opensWindows = QLatin1StringView(menu.name) != "uFile"_L1;
        for (const MenuEntry& row : opensWindows ? menu.entries : std::span<const MenuEntry>()) {
            if (row.hidden || row.command == Command::ReadInHaaliReader)
                continue;
            form.Entry(row.name)->setEnabled(ProcedureOf(row.command));
            if (row.command == Command::HtmlFragmentEditor)
                form.HTMLread->document().setSelection({7, 0}, {14, 0});
            form.Entry(row.name)->trigger();
            FillWindow(row.command);
            sheet.takeWindows();
            CloseWindows(form);
        }
    }
}

} // namespace

int main(int argc, char* argv[])
{
    const QApplication application(argc, argv);
    if (argc != 3 && argc != 4) {
        std::fputs("usage: windowsheet light|dark sheet.png [FOLDER]\n", stderr);
        return 1;
    }
    const bool dark = QByteArray(argv[1]) == "dark";
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setStyle(u"Fusion"_s);
    if (dark)
        QApplication::setPalette(DarkPalette());
    FillWidgetSeams();
    BoxSeam().Fill([](BoxKind, const QString&, const QString&) { return false; });
    FileDialogSeam().Fill([](const FileDialogRequest&) { return QStringList(); });
    SoundSeam().Fill([](const QString&) {});
    OpenSeam().Fill([](const QString&) { return true; });
    EndProcessSeam().Fill([] {});

    const QTemporaryDir folder;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, folder.path());
    FileOperation(CopyFolderMode, QStringLiteral(VMK_BIN_DIR "/VMK Office"),
                  folder.filePath(u"VMK Office"_s));
    InitGlobals({folder.filePath(u"vellumark"_s), folder.filePath(u"user"_s)});
    ReadSettings(true);
    Form1 form;
    form.Load();
    form.PlaceForm(0, 0, 15'000, 10'000);
    LoadBook(SampleBooksFolder + u"/English/5 Sample book.fb2"_s, false);
    QTest::qWait(500);
    Sheet sheet;
    TakeAll(form, sheet);
    const bool saved = sheet.save(QString::fromLocal8Bit(argv[2]), dark)
        && (argc == 3 || sheet.saveEach(QString::fromLocal8Bit(argv[3])));
    return saved ? 0 : 1;
}
