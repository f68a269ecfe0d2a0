#pragma once

#include "BookVariables.h"
#include "Boxes.h"
#include "Desktop.h"
#include "Dialogs.h"
#include "DisplayPage.h"
#include "DisplayView.h"
#include "EditorState.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "Form1.h"
#include "InitGlobals.h"
#include "PanelBar.h"
#include "ProcessEnd.h"
#include "SchemaViewerF.h"
#include "Settings.h"
#include "StartUpVariables.h"
#include "TestPaths.h"
#include "Workplace.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <QToolBar>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace vmk {

/// A book that is valid against the schema.
inline constexpr char SmallBook[]
    = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
      "<FictionBook xmlns=\"http://www.gribuser.ru/xml/fictionbook/2.0\""
      " xmlns:l=\"http://www.w3.org/1999/xlink\">"
      "<description><title-info><genre>prose_classic</genre><author><nickname>N</nickname></author>"
      "<book-title>T</book-title><lang>en</lang></title-info><document-info><author><nickname>N</nickname>"
      "</author><program-used>Vellumark</program-used><date>2026</date><id>1</id><version>1.0</version>"
      "</document-info></description>"
      "<body><section><p>First words &amp; more.</p><p>Second <strong>line</strong> here.</p>"
      "<p>Third line.</p></section></body></FictionBook>";

/// The main window with a separate workspace; every output of the program is recorded: boxes, dialogs,
/// sounds, the beep, opened files, the end of the process.
class WindowTest : public testing::Test
{
protected:
    WindowTest()
        : boxes(BoxSeam(),
                [this](BoxKind, const QString& text, const QString&) {
                    boxTexts.append(text);
                    return boxAnswer;
                })
        , choiceBoxes(ChoiceBoxSeam(),
                      [this](const QString& text, const QString&) {
                          boxTexts.append(text);
                          return choiceAnswer;
                      })
        , dialogs(FileDialogSeam(),
                  [this](const FileDialogRequest& request) {
                      requests.push_back(request);
                      return dialogAnswer.isEmpty() ? QStringList() : QStringList{dialogAnswer};
                  })
        , sounds(SoundSeam(), [this](const QString& path) { soundNames.append(FileNameOf(path)); })
        , beeps(BeepSeam(), [this] { ++beepCount; })
        , openings(OpenSeam(),
                   [this](const QString& target) {
                       opened.append(target);
                       return true;
                   })
        , ends(EndProcessSeam(), [this] { ++endCount; })
    {
        FileOperation(CopyFolderMode, QStringLiteral(VMK_BIN_DIR "/VMK Office"),
                      workplace.Path(QStringLiteral("VMK Office")));
        // What other programs of the build folder have left.
        for (const char* name : {"VMK Office/Backup", "VMK Office/Recovery"})
            FileOperation(DeleteFolderMode, workplace.Path(QString::fromLatin1(name)));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           workplace.Path(QStringLiteral("config")));
        InitGlobals({workplace.Path(QStringLiteral("vellumark")), workplace.Path(QStringLiteral("user"))});
        ReadSettings(true);
        CurrentBook.clear();
        DisplayFile.clear();
        BinaryPart.clear();
        FirstStart = ValidateAfterLoad = LoadingByProgram = SkipNavigationCheck = false;
        TripleClickPending = DoubleClickSeen = LinesSelected = false;
        form = std::make_unique<Form1>();
    }

    ~WindowTest() override
    {
        form.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// Processes events until `condition` is true; false if that takes longer than a few seconds.
    static bool WaitFor(const std::function<bool()>& condition) { return QTest::qWaitFor(condition, 10'000); }

    void Open()
    {
        form->Load();
        ASSERT_TRUE(WaitFor([this] { return View().location() == EmptyPageFile; }));
        // Enough space for a small book without wrapped lines.
        if (roomy)
            form->PlaceForm(0, 0, 18'000, 13'500);
    }

    /// Writes a book into the workspace and returns its path.
    QString MakeBook(std::string_view text, const QString& name = QStringLiteral("book.fb2")) const
    {
        workplace.Make(name, text);
        return workplace.Path(name);
    }

    /// Opens the window with a book and waits until it is complete.
    void OpenBook(std::string_view text = SmallBook);
    void LoadAndWait(const QString& path);

    DisplayView& View() { return *form->HTMLread; }
    DisplayDocument& Document() { return View().document(); }
    QString Message() const { return form->StatusMsg->panelText(1); }
    QString Panel(int panel) const { return form->Status->panelText(panel); }
    QString LineText(int line) { return Document().line(line).text; }
    /// The first line that contains `text`, -1 for none.
    int FindLine(const QString& text)
    {
        for (int i = 0; i < Document().lineCount(); ++i) {
            if (LineText(i).contains(text))
                return i;
        }
        return -1;
    }
    /// Puts the caret before the first occurrence of `text`.
    Position PlaceOf(const QString& text)
    {
        const int line = FindLine(text);
        EXPECT_GE(line, 0) << text.toStdString();
        return {line, line < 0 ? 0 : int(LineText(line).indexOf(text))};
    }
    void PutCaret(Position at) { Document().setSelection(at, at); }
    QString SelectedText() { return page::createRange(Document()).text(); }

    void Key(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(form->HTMLread, Qt::Key(key), modifiers);
    }
    void Type(const QString& text)
    {
        for (const QChar& c : text)
            QTest::keyClick(form->HTMLread, c.toLatin1());
    }
    /// The middle of a character, in the coordinates of the display's viewport.
    QPoint PointOf(Position at)
    {
        const std::vector<QRect> rects = LayoutOf(at);
        return rects.empty() ? QPoint() : rects.front().center();
    }
    std::vector<QRect> LayoutOf(Position at)
    {
        return TextRange(Document(), at, {at.line, at.offset + 1}).getClientRects();
    }
    void Click(Position at, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::mouseClick(View().viewport(), Qt::LeftButton, modifiers, PointOf(at));
    }
    void DoubleClick(Position at)
    {
        QTest::mouseClick(View().viewport(), Qt::LeftButton, Qt::NoModifier, PointOf(at));
        // Qt sends the second press; the display waits for its release.
        QTest::mouseDClick(View().viewport(), Qt::LeftButton, Qt::NoModifier, PointOf(at));
        QTest::mouseRelease(View().viewport(), Qt::LeftButton, Qt::NoModifier, PointOf(at));
    }

    bool roomy = true;
    const Workplace workplace;
    QStringList boxTexts;
    /// The answer to a question box.
    bool boxAnswer = false;
    BoxAnswer choiceAnswer = BoxAnswer::Cancel;
    std::vector<FileDialogRequest> requests;
    QString dialogAnswer;
    QStringList soundNames;
    QStringList opened;
    int beepCount = 0;
    int endCount = 0;
    std::unique_ptr<Form1> form;

private:
    const SeamGuard<bool(BoxKind, const QString&, const QString&)> boxes;
    const SeamGuard<BoxAnswer(const QString&, const QString&)> choiceBoxes;
    const SeamGuard<QStringList(const FileDialogRequest&)> dialogs;
    const SeamGuard<void(const QString&)> sounds;
    const SeamGuard<void()> beeps;
    const SeamGuard<bool(const QString&)> openings;
    const SeamGuard<void()> ends;
};

} // namespace vmk
