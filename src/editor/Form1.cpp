#include "Form1.h"

#include "BookLosses.h"
#include "BookSafety.h"
#include "BookSeams.h"
#include "BookToDisplay.h"
#include "BookValidation.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "CaretStatus.h"
#include "CleanUpF.h"
#include "Desktop.h"
#include "Dialogs.h"
#include "DisplayText.h"
#include "DisplayView.h"
#include "DroppedFiles.h"
#include "EditorState.h"
#include "EmptyPage.h"
#include "FbFunctions.h"
#include "FileNames.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "FindReplaceWbF.h"
#include "MainWindowSeams.h"
#include "PanelBar.h"
#include "PreviewF.h"
#include "ProcessEnd.h"
#include "SaveBook.h"
#include "SchemasF.h"
#include "ScrollPositions.h"
#include "SelectionFunctions.h"
#include "Settings.h"
#include "SettingsF.h"
#include "SettingsVariables.h"
#include "SpellCheckF.h"
#include "StartUpVariables.h"
#include "ToolbarPictures.h"
#include "UnsavedText.h"
#include "VirtualKeys.h"
#include "WelcomePage.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QShortcut>
#include <QTimer>
#include <QToolBar>

#include <algorithm>
#include <utility>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

Form1* TheForm = nullptr;

void SetColors(QWidget& widget, const QColor& background, const QColor& text)
{
    QPalette palette = QApplication::palette(&widget);
    palette.setColor(QPalette::All, QPalette::Base, background);
    palette.setColor(QPalette::All, QPalette::Text, text);
    widget.setPalette(palette);
}

} // namespace

Form1::Form1()
{
    TheForm = this;
    setObjectName(u"Form1"_s);
    setWindowTitle(u"Vellumark"_s);
    setWindowIcon(ProgramPicture());
    setAcceptDrops(true);
    client = new QWidget(this);
    setCentralWidget(client);

    makeMenus();
    makeToolbar();
    makeSchemaControls();
    makeDisplay();
    makeBars();
    makeTimers();

    safety = std::make_unique<BookSafety>(*HTMLread);
    fillSeams();
}

Form1::~Form1()
{
    delete FindReplaceWbF::Instance();
    // It works on the display, up to its last event.
    delete SpellCheckF::Instance();
    // The display still loses the focus during its destruction.
    HTMLread->events = DisplayEvents();
    seams.release();
    ForgetRanges();
    safety.reset();
    TheForm = nullptr;
}

void Form1::fillSeams()
{
    seams.fill(StatusSeam(), [this](const QString& text) {
        StatusMsg->setPanelText(1, text);
        StatusMsg->repaint();
    });
    seams.fill(StatusPanelSeam(),
               [this](int panel, const QString& text) { Status->setPanelText(panel, text); });
    seams.fill(CaptionSeam(), [this](const QString& caption, bool preview) {
        if (preview)
            PreviewF::SetCaption(caption);
        else
            setWindowTitle(caption);
    });
    seams.fill(NavigateSeam(), [this](const QString& file, bool preview) {
        if (preview)
            PreviewF::ShowPage(file);
        else
            HTMLread->Navigate(file);
    });
    seams.fill(LoadBookSeam(), LoadBook);
    seams.fill(OfferRecoverySeam(), [this] { return safety->offerRecovery(); });
    seams.fill(LossSeam(), [](const BookLosses& losses) { return YesNoBox(LossQuestion(losses)); });
    seams.fill(MissingCharactersSeam(), [](const MissingCharacters& missing, const QString& encoding) {
        switch (ChoiceBox(MissingCharactersQuestion(missing, encoding))) {
        case BoxAnswer::Yes:
            return MissingAnswer::Utf8;
        case BoxAnswer::No:
            return MissingAnswer::Substitute;
        case BoxAnswer::Cancel:
            break;
        }
        return MissingAnswer::Cancel;
    });
    seams.fill(IsBookEmptySeam(), IsDisplayBlank);
    seams.fill(UndoStepsSeam(), [this] { return HTMLread->document().undoSteps(); });
    seams.fill(RestoreBookSeam(), [this](std::size_t undoSteps) {
        DisplayDocument& document = HTMLread->document();
        while (document.undoSteps() > undoSteps && document.undo())
            continue;
        HTMLread->RebuildLayout();
    });
    seams.fill(DisplayTextSeam(),
               [this](AngleMarks marks) { return TextOfDisplay(HTMLread->document(), marks); });
}

Form1* Form1::Instance()
{
    return TheForm;
}

// ---------------------------------------------------------------- controls

void Form1::makeMenus()
{
    for (const Menu& menu : MainMenu()) {
        QMenu* item = menuBar()->addMenu(QLatin1StringView(menu.caption));
        item->setObjectName(QLatin1StringView(menu.name));
        fillMenu(*item, menu.entries);
    }
    connect(menuBar()->findChild<QMenu*>(u"uFile"_s), &QMenu::aboutToShow, this, &Form1::fileMenuOpens);
    connect(menuBar()->findChild<QMenu*>(u"uTools"_s), &QMenu::aboutToShow, this, &Form1::toolsMenuOpens);

    MnRightClick = new QMenu(this);
    MnRightClick->setObjectName(u"MnRightClick"_s);
    fillMenu(*MnRightClick, ContextMenu());

    auto* toMenuBar = new QShortcut(Qt::Key_F10, this);
    // The display handles these keys itself; elsewhere in the window, a list would open at F4.
    for (const Qt::Key key : {Qt::Key_F3, Qt::Key_F4, Qt::Key_F5}) {
        for (const QKeySequence& sequence : {QKeySequence(key), QKeySequence(Qt::ShiftModifier | key)}) {
            const auto* shortcut = new QShortcut(sequence, this);
            connect(shortcut, &QShortcut::activated, this,
                    [this, key] { runFileKey(VirtualKey::F1 + (key - Qt::Key_F1)); });
        }
    }
    // The display keeps the focus, so that typing continues at the same position when the menu closes.
    connect(toMenuBar, &QShortcut::activated, menuBar(),
            [this] { menuBar()->setActiveAction(menuBar()->actions().first()); });
}

void Form1::fillMenu(QMenu& menu, std::span<const MenuEntry> rows)
{
    for (const MenuEntry& row : rows) {
        QAction* entry = menu.addAction(QLatin1StringView(row.caption));
        entry->setObjectName(QLatin1StringView(row.name));
        entry->setVisible(!row.hidden);
        entry->setEnabled(ProcedureOf(row.command) && !row.disabled);
        entry->setMenuRole(QAction::NoRole);
        if (row.accelerator)
            entry->setShortcut(QKeySequence(QLatin1StringView(row.accelerator)));
        connect(entry, &QAction::triggered, this, [this, command = row.command] { RunCommand(command); });
        entries.insert(entry->objectName(), entry);
        if (row.separatorAfter) {
            // Only the group of fields is hidden with its separator; the others separate visible entries.
            const bool alone = row.command != Command::InsertTagAttributeValueField;
            menu.addSeparator()->setVisible(alone);
        }
    }
}

void Form1::makeSchemaControls()
{
    ValidateOptL = new QComboBox(client);
    ValidateOptL->setObjectName(u"ValidateOptL"_s);
    ValidateOptL->addItems({u"schema"_s, u"namespace!"_s});
    ValidateOptL->setAccessibleName(u"validate against"_s);
    ValidateOptL->setToolTip(u"validate against"_s);
    ValidateOptL->setCurrentIndex(ValidateAgainstOf(ValidateOption) == ValidateAgainst::Schema ? 0 : 1);
    // The wheel would change the mode by accident.
    ValidateOptL->installEventFilter(this);
    connect(ValidateOptL, &QComboBox::activated, this, [this] { HTMLread->setFocus(); });
    connect(ValidateOptL, &QComboBox::currentTextChanged, this, [this](const QString& text) {
        ValidateOption = text;
        RefreshSchemaField();
    });

    SchemaFileL = new QLineEdit(client);
    SchemaFileL->setObjectName(u"SchemaFileL"_s);
    SchemaFileL->setAccessibleName(u"schema file"_s);
    SchemaFileL->installEventFilter(this);
    // Typing has no effect here: only a click gives it the focus.
    SchemaFileL->setFocusPolicy(Qt::ClickFocus);
    RefreshSchemaField();
}

void Form1::makeDisplay()
{
    HTMLread = new DisplayView(client);
    HTMLread->setObjectName(u"HTMLread"_s);
    HTMLread->setAccessibleName(u"book"_s);
    HTMLread->installEventFilter(this);
    connectDisplay();
}

void Form1::makeBars()
{
    StatusMsg = new PanelBar({u"message"_s}, client);
    StatusMsg->setObjectName(u"StatusMsg"_s);
    Status = new PanelBar({u"information"_s, u"caret"_s, u"file length"_s, QString(), QString()}, client);
    Status->setObjectName(u"Status"_s);
    connect(StatusMsg, &PanelBar::filesDropped, this, &Form1::loadDropped);
    connect(Status, &PanelBar::filesDropped, this, &Form1::loadDropped);
}

void Form1::makeTimers()
{
    const auto make = [this](const char* name, int interval) {
        auto* timer = new QTimer(this);
        timer->setObjectName(QLatin1StringView(name));
        timer->setInterval(interval);
        timer->setSingleShot(true);
        return timer;
    };
    TmpBookmarkTimer = make("TmpBookmarkTimer", 50);
    TimerGetOffset = make("TimerGetOffset", 10);
    TimerTrOnMouseDown = make("TimerTrOnMouseDown", 10);
    TimerTripleClick = make("TimerTripleClick", 500);
    TimerScroll = make("TimerScroll", 10);
    TimerScroll->setSingleShot(false);
    TimerPopUp = make("TimerPopUp", 20);
    TimerWBDrop = make("TimerWBDrop", 200);
    TimerValidate = make("TimerValidate", 50);
    TimerDesignMode = make("TimerDesignMode", 50);
    // Unused by design.
    TimerShiftClick = make("TimerShiftClick", 0);
    TimerHtwFocus = make("TimerHtwFocus", 50);
    TimerColor = make("TimerColor", 50);

    connect(TmpBookmarkTimer, &QTimer::timeout, this, &RestoreTemporalBookmark);
    connect(TimerGetOffset, &QTimer::timeout, this, &StoreOffsets);
    connect(TimerTrOnMouseDown, &QTimer::timeout, this, &StoreMouseDownRange);
    connect(TimerTripleClick, &QTimer::timeout, this, [] { TripleClickPending = false; });
    connect(TimerScroll, &QTimer::timeout, this, &NoteScrollEnd);
    connect(TimerPopUp, &QTimer::timeout, this, &Form1::ShowPopUpMenu);
    connect(TimerWBDrop, &QTimer::timeout, this, [this] { LoadBook(std::exchange(droppedBook, {}), false); });
    connect(TimerValidate, &QTimer::timeout, this, [] {
        ValidateAfterLoad = false;
        ValidateDisplay();
    });
    connect(TimerDesignMode, &QTimer::timeout, this, [this] { HTMLread->setDesignMode(u"On"_s); });
}

QAction* Form1::Entry(const char* name) const
{
    return entries.value(QLatin1StringView(name));
}

QAction* Form1::ToolbarAction(const QString& key) const
{
    return TB->findChild<QAction*>(key, Qt::FindDirectChildrenOnly);
}

// ---------------------------------------------------------------- start and stop

void Form1::Load()
{
    KeepUnsavedText();
    buildToolbar();
    PlaceForm(MainFormLeft, MainFormTop, MainFormWidth, MainFormHeight);
    if (!isVisible())
        restoreWindowState();
    show();
    UndoSteps = 0;
    RemoveDisplayFiles(true);
    if (!ValidateAfterLoad) {
        if (FirstStart)
            ShowWelcomePage();
        else
            ShowEmptyPage({.status = u"ready"_s});
    }
    FirstStart = false;
}

void Form1::ReloadForm1()
{
    Load();
}

void Form1::closeEvent(QCloseEvent* event)
{
    if (Toolbar.Tbar())
        Toolbar.SaveToReg();
    SettingsF::Unload();
    // No question about unsaved changes: the file remains as last saved, by design. The text is kept
    // elsewhere; if that fails, the journal of the session stays.
    KeepUnsavedText();
    if (FindReplaceWbF* search = FindReplaceWbF::Instance())
        search->close();
    if (SpellCheckF* spellCheck = SpellCheckF::Instance())
        spellCheck->close();
    SetPointer(Pointer::Default);
    MainFormWindowState = isMaximized() ? 2 : isMinimized() ? 1 : 0;
    storeWindowState();
    RemoveDisplayFiles(false);
    (void)WriteSettings({FormLeft(), FormTop(), FormWidth(), FormHeight()});
    event->accept();
    EndProcess();
}

void Form1::changeEvent(QEvent* event)
{
    QMainWindow::changeEvent(event);
    // The field's colours depend on the desktop, which may switch between light and dark at any time.
    if (event->type() == QEvent::PaletteChange && SchemaFileL)
        RefreshSchemaField();
    if (event->type() == QEvent::FontChange && StatusMsg && !isMinimized()) {
        StatusMsg->takeDesktopFont();
        Status->takeDesktopFont();
        layOut();
    }
}

// ---------------------------------------------------------------- commands

bool Form1::RunCommand(Command command)
{
    const CommandProcedure procedure = ProcedureOf(command);
    const bool mayRun = !ChangesBook(command) || HTMLread->designMode() == "On"_L1;
    if (procedure && mayRun)
        procedure(*this);
    return procedure;
}

void Form1::LoadNewFbFile_Dialog()
{
    const QString name = AskFile({FileDialogRequest::Open, u"Open new Fiction Book file"_s, LastBookFolder,
                                  QString(), u"Fiction Book Files (*.fb2)|*.fb2|"_s});
    if (!name.isEmpty() && FileExists(name) && LoadBook(name, false))
        LastBookFolder = FolderOf(name);
}

void Form1::LoadNewFbSchema_Dialog()
{
    const QString name
        = AskFile({FileDialogRequest::Open, u"Load new Fiction Book Schema"_s, FolderOf(SchemaFile),
                   u"FictionBook"_s, u"Fiction Book Shemes Files (*.xsd)|*.xsd|"_s});
    if (!name.isEmpty() && FileExists(name))
        UseSchema(name);
}

void Form1::UseSchema(const QString& path)
{
    if (ExtensionOf(path).toLower() != "xsd"_L1)
        return;
    SchemaFile = path;
    ValidateOptL->setCurrentText(u"schema"_s);
    RefreshSchemaField();
}

void Form1::SaveFileAs_Dialog()
{
    if (IsBookEmpty()) {
        PlainBox(u"empty book - nothing to save"_s);
        return;
    }
    const QString folder
        = KindOfFile(LastSaveFolder) == FileKind::Folder ? LastSaveFolder : FolderOf(CurrentBook);
    const QString name = AskFile({FileDialogRequest::Save, u"Save Fiction Book file as"_s, folder,
                                  FileNameOf(CurrentBook), u"Fiction Book Files (*.fb2)|*.fb2|"_s});
    if (name.isEmpty() || !mayReplace(name) || !SaveBook(name))
        return;
    ShowCaretPosition();
    LastSaveFolder = FolderOf(name);
    CurrentBook = name;
    setWindowTitle(u"VMK: "_s + ReadableName(FileNameOf(name)));
}

bool Form1::mayReplace(const QString& path)
{
    // The open book is saved without a question; another file is not overwritten by accident.
    return path == CurrentBook || !FileExists(path)
        || ConfirmBox(path + u" exists\r\nDo you want to replace it?"_s, u"File Exists"_s);
}

void Form1::OpenLastBook()
{
    if (!FileExists(LastFile)) {
        PlainBox(u"last file not found"_s);
        return;
    }
    const QString path = LastFile;
    if (LoadBook(path, false)) {
        CurrentBook = path;
        LastBookFolder = FolderOf(path);
    }
}

void Form1::SaveCurrentBook()
{
    if (SaveBook(CurrentBook))
        ShowCaretPosition();
}

void Form1::SaveAndReload()
{
    if (IsBookEmpty()) {
        PlainBox(u"empty book - nothing to save"_s);
        return;
    }
    if (SaveBook(CurrentBook, SaveReport::None))
        LoadBook(CurrentBook, false);
}

void Form1::ShowSchemas()
{
    if (!schemas)
        schemas = new SchemasF(this);
    schemas->ShowList();
}

void Form1::OpenBookCleaner()
{
    CleanUpF::Open({this, HTMLread, [this] { RunCommand(Command::HtmlFragmentEditor); }});
}

void Form1::OpenPortalPage(const char* path)
{
    OpenWithSystem(u"http://www.fictionbook.org"_s + QLatin1StringView(path));
}

void Form1::fileMenuOpens()
{
    Entry("uOpenLastFile")->setEnabled(FileExists(LastFile));
}

void Form1::toolsMenuOpens()
{
    const auto enable = [this](const char* name, Command command, bool fits) {
        Entry(name)->setEnabled(fits && ProcedureOf(command));
    };
    enable("uExtractAllImages", Command::ExtractAllImages, !BinaryPart.empty());
    enable("uShowBinaryList", Command::ShowBinaryList, !BinaryPart.empty());
    enable("uDeleteExtractedImages", Command::DeleteExtractedImages,
           FileExists(ExtractedImagesFolder + u"/*"_s));
}

void Form1::RefreshSchemaField(const QString& problem)
{
    const QPalette desktop = QApplication::palette(SchemaFileL);
    // Black on light desktop backgrounds; on a dark desktop, its own text colour.
    const bool dark = desktop.color(QPalette::Base).lightness() < 128;
    const QColor black = dark ? desktop.color(QPalette::Text) : QColor(Qt::black);
    if (ValidateAgainstOf(ValidateOptL->currentText()) == ValidateAgainst::Namespace) {
        SchemaFileL->clear();
        SchemaFileL->setToolTip(QString());
        SetColors(*SchemaFileL, desktop.color(QPalette::Button), black);
        SchemaFileL->setEnabled(false);
        return;
    }
    const bool found = FileExists(SchemaFile);
    // "validatioon" is the fixed spelling.
    SchemaFileL->setText(found ? FileNameOf(SchemaFile)
                               : u"Schema file not found. Only namespace validatioon is available."_s);
    SchemaFileL->setCursorPosition(0);
    // The field is narrow in a small window.
    SchemaFileL->setToolTip(!found ? SchemaFileL->text() : problem.isEmpty() ? SchemaFile : problem);
    SchemaFileL->setReadOnly(!found);
    const bool usable = found && problem.isEmpty();
    SetColors(*SchemaFileL, desktop.color(QPalette::Base), usable ? black : QColor(255, 0, 0));
    SchemaFileL->setEnabled(true);
}

// ---------------------------------------------------------------- drops

void Form1::loadDropped(const QStringList& paths)
{
    // After the drop: a question during loading must not block the program that was dragged from.
    if (!paths.isEmpty())
        QMetaObject::invokeMethod(
            this, [book = paths.first()] { LoadBook(book, false); }, Qt::QueuedConnection);
}

void Form1::dragEnterEvent(QDragEnterEvent* event)
{
    AcceptFileDrag(*event);
}

void Form1::dropEvent(QDropEvent* event)
{
    AcceptFileDrag(*event);
    // The schema field forwards drops while it is disabled.
    const QPoint place = client->mapFrom(this, event->position().toPoint());
    if (SchemaFileL->geometry().contains(place))
        useDroppedSchema(DroppedFiles(*event));
    else
        loadDropped(DroppedFiles(*event));
}

void Form1::useDroppedSchema(const QStringList& paths)
{
    if (!paths.isEmpty())
        UseSchema(paths.first());
}

bool Form1::isAccelerator(const QKeyEvent& key) const
{
    // The display handles the key Del; only the menu entry shows it as its accelerator.
    if (key.key() == Qt::Key_Delete)
        return false;
    const QKeySequence sequence(key.keyCombination());
    return std::ranges::any_of(entries, [&](const QAction* entry) { return entry->shortcut() == sequence; });
}

bool Form1::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == HTMLread && event->type() == QEvent::ShortcutOverride) {
        // The display receives every key before any menu. Left to the menus: accelerators, and the keys that
        // open the menu bar.
        auto& key = static_cast<QKeyEvent&>(*event);
        if (isAccelerator(key) || key.key() == Qt::Key_Alt || key.key() == Qt::Key_F10) {
            event->ignore();
            return true;
        }
    }
    if (watched == ValidateOptL && event->type() == QEvent::Wheel)
        return true;
    if (watched == TB && event->type() == QEvent::MouseButtonDblClick) {
        RunCommand(Command::Toolbar);
        return true;
    }
    if (watched == SchemaFileL && event->type() == QEvent::DragEnter) {
        AcceptFileDrag(static_cast<QDropEvent&>(*event));
        return true;
    }
    if (watched == SchemaFileL && event->type() == QEvent::Drop) {
        auto& drop = static_cast<QDropEvent&>(*event);
        AcceptFileDrag(drop);
        useDroppedSchema(DroppedFiles(drop));
        return true;
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace vmk
