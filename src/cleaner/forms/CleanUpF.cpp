#include "CleanUpF.h"

#include "Boxes.h"
#include "CleanUpEngine.h"
#include "CleanUpGrid.h"
#include "CleanUpModel.h"
#include "Desktop.h"
#include "Dialogs.h"
#include "DisplayValuesOfSettings.h"
#include "DisplayView.h"
#include "FileOperations.h"
#include "MainWindowSeams.h"
#include "SettingsVariables.h"
#include "Sounds.h"
#include "StartUpVariables.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

constexpr int FirstWidth = 820;
constexpr int FirstHeight = 420;
constexpr int Gap = 2;
constexpr int RecoveryDelay = 1000;
constexpr int HeaderDigits = 6;

QPointer<CleanUpF> TheForm; // NOLINT(cert-err58-cpp): a null pointer

const QString& FileFilter()
{
    static const QString filter = u"CleanUp Files (*.dat)|*.dat|"_s;
    return filter;
}

QString NameOf(const QString& path)
{
    return FileOperation(NameMode, path);
}

/// Returns the first unused name for a recovery copy.
QString FreeRecoveryFile()
{
    QString path = UserCleanUpFolder + u"/Unsaved table.dat"_s;
    for (int number = 2; FileExists(path); ++number)
        path = UserCleanUpFolder + u"/Unsaved table "_s + QString::number(number) + u".dat"_s;
    return path;
}

/// Returns the name of the newest recovery copy; empty if there is none.
QString LastRecoveryFile()
{
    const QFileInfoList files
        = QDir(UserCleanUpFolder).entryInfoList({u"Unsaved table*.dat"_s}, QDir::Files, QDir::Time);
    return files.isEmpty() ? QString() : files.front().fileName();
}

} // namespace

void CleanUpF::Open(const Context& context)
{
    if (!TheForm) {
        TheForm = new CleanUpF(context);
        TheForm->show();
    }
    TheForm->raise();
    TheForm->activateWindow();
}

CleanUpF* CleanUpF::Instance()
{
    return TheForm;
}

CleanUpF::CleanUpF(const Context& openedIn)
    : QWidget(openedIn.owner, Qt::Window)
    , context(openedIn)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setObjectName(u"CleanUpF"_s);
    setWindowTitle(u"Book Cleaner"_s);
    makeControls();
    makeMenu();
    makeConnections();
    resize(FirstWidth, FirstHeight);

    const QString kept = LastRecoveryFile();
    ReadCleanUpFile();
    DrawCleanUpTable();
    setMinimumWidth(layout()->minimumSize().width());
    setMinimumHeight(ApplyB->sizeHint().height() * 3 / 2 + qRound(CaptionHeight)
                     + ListDH->horizontalHeader()->height());
    if (!kept.isEmpty())
        ShowStatus(u"rows that were not saved are kept: load \""_s + kept + u'"');
}

CleanUpF::~CleanUpF() = default;

// ---------------------------------------------------------------- controls

void CleanUpF::makeControls()
{
    ListDH = new CleanUpGrid(this);
    ListDH->setObjectName(u"ListDH"_s);
    ListDH->setAccessibleName(u"replacements"_s);
    model = new CleanUpModel(this);
    ListDH->setModel(model);
    QFont captions = ListDH->horizontalHeader()->font();
    captions.setBold(true);
    ListDH->horizontalHeader()->setFont(captions);

    const auto button = [this](const char* name, const QString& caption) {
        auto* made = new QPushButton(caption, this);
        made->setObjectName(QLatin1StringView(name));
        return made;
    };
    AddB = button("AddB", u"add"_s);
    RemoveB = button("RemoveB", u"remove"_s);
    RemoveAllB = button("RemoveAllB", u"remove all"_s);
    SaveB = button("SaveB", u"save"_s);
    SaveAsB = button("SaveAsB", u"save as"_s);
    LoadB = button("LoadB", u"load"_s);
    ApplyB = button("ApplyB", u"apply"_s);
    HelpB = button("HelpB", u"help"_s);
    // The button has no action, by design.
    HelpB->setEnabled(false);
    CleanL = new QLabel(u"clean"_s, this);
    CleanL->setObjectName(u"CleanL"_s);
    CleanWhere = new QComboBox(this);
    CleanWhere->setObjectName(u"CleanWhere"_s);
    CleanWhere->setAccessibleName(u"clean"_s);
    CleanWhere->addItems(CleanUpScopes());
    CleanL->setBuddy(CleanWhere);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(Gap * 2, 0, Gap * 2, Gap * 2);
    for (QWidget* control : std::initializer_list<QWidget*>{AddB, RemoveB, RemoveAllB, SaveB, SaveAsB, LoadB})
        row->addWidget(control);
    row->addStretch();
    for (QWidget* control : std::initializer_list<QWidget*>{CleanL, CleanWhere, ApplyB, HelpB})
        row->addWidget(control);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(Gap);
    all->addWidget(ListDH);
    all->addLayout(row);

    TimerWBDrop = new QTimer(this);
    TimerWBDrop->setObjectName(u"TimerWBDrop"_s);
    TimerWBDrop->setInterval(200);
    TimerWBDrop->setSingleShot(true);
    recoveryTimer = new QTimer(this);
    recoveryTimer->setInterval(RecoveryDelay);
    recoveryTimer->setSingleShot(true);
}

void CleanUpF::makeMenu()
{
    MnuCLeanUp = new QMenu(this);
    MnuCLeanUp->setObjectName(u"MnuCLeanUp"_s);
    const auto entry = [this](const char* name, const QString& caption, auto action) {
        QAction* made = MnuCLeanUp->addAction(caption);
        made->setObjectName(QLatin1StringView(name));
        connect(made, &QAction::triggered, this, action);
    };
    entry("MnAdd", u"add"_s, [this] { AddCleanUpRow(RowPlace::Last, true); });
    entry("MnAddBefore", u"add before"_s, [this] { AddCleanUpRow(RowPlace::Before, true); });
    entry("MnAddAfter", u"add after"_s, [this] { AddCleanUpRow(RowPlace::After, true); });
    entry("MnRemove", u"remove"_s, [this] { RemoveSelectedCleanUpRow(true); });
    entry("MnRemoveAll", u"remove all"_s, [this] { RemoveAllCleanUpRows(); });
    MnuCLeanUp->addSeparator();
    entry("MnSave", u"save"_s, [this] { SaveCleanUpFile(); });
    entry("MnSaveAs", u"save as"_s, [this] { SaveCleanUpFileAs(); });
    entry("MnLoad", u"load"_s, [this] { LoadCleanUpFile(); });
    entry("MnDeleteCleanUpFile", u"delete file"_s, [this] { DeleteCleanUpFiles(); });
    MnuCLeanUp->addSeparator();
    entry("MnCheckAll", u"check all"_s, [this] { SetAllEnabled(true); });
    entry("MnUnCheckAll", u"uncheck all"_s, [this] { SetAllEnabled(false); });
    MnuCLeanUp->addSeparator();
    entry("MnHtmlFragmentEditor", u"html fragment editor"_s, [this] {
        if (context.openFragmentEditor)
            context.openFragmentEditor();
    });
    entry("MnFont", u"font"_s, [this] { ChangeCleanUpFont(); });
}

void CleanUpF::makeConnections()
{
    connect(AddB, &QPushButton::clicked, this, [this] { AddCleanUpRow(RowPlace::Last, false); });
    connect(RemoveB, &QPushButton::clicked, this, [this] { RemoveSelectedCleanUpRow(false); });
    connect(RemoveAllB, &QPushButton::clicked, this, &CleanUpF::RemoveAllCleanUpRows);
    connect(SaveB, &QPushButton::clicked, this, &CleanUpF::SaveCleanUpFile);
    connect(SaveAsB, &QPushButton::clicked, this, &CleanUpF::SaveCleanUpFileAs);
    connect(LoadB, &QPushButton::clicked, this, [this] {
        LoadCleanUpFile();
        NoteSelectionForCleaner(!context.display->document().selection().isEmpty());
    });
    connect(ApplyB, &QPushButton::clicked, this, &CleanUpF::CleanUpBookFragment);

    connect(ListDH, &CleanUpGrid::rowWanted, this, [this] { AddCleanUpRow(RowPlace::Last, false); });
    connect(ListDH, &CleanUpGrid::copyWanted, this, &CleanUpF::copyRows);
    connect(ListDH, &CleanUpGrid::pasteWanted, this, &CleanUpF::pasteRows);
    connect(ListDH, &CleanUpGrid::removeWanted, this, &CleanUpF::clearOrRemove);
    connect(ListDH, &CleanUpGrid::undoWanted, this, [this] { model->Undo(); });
    connect(ListDH, &CleanUpGrid::menuWanted, this, &CleanUpF::showMenu);
    connect(ListDH, &CleanUpGrid::fileDropped, this, &CleanUpF::fileDropped);
    connect(TimerWBDrop, &QTimer::timeout, this, [this] { (void)loadFile(std::exchange(droppedFile, {})); });
    connect(model, &CleanUpModel::edited, recoveryTimer, qOverload<>(&QTimer::start));
    connect(recoveryTimer, &QTimer::timeout, this, &CleanUpF::keepUnsavedRows);
}

void CleanUpF::showMenu(QPoint at, int row)
{
    ListDH->CommitEditor();
    menuRow = row;
    MnuCLeanUp->popup(at);
}

void CleanUpF::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        close();
    else
        QWidget::keyPressEvent(event);
}

void CleanUpF::closeEvent(QCloseEvent* event)
{
    ListDH->CommitEditor();
    keepUnsavedRows();
    if (model->IsModified() && !recoveryFile.isEmpty())
        ShowStatus(u"rows that were not saved are kept in \""_s + NameOf(recoveryFile) + u'"');
    QWidget::closeEvent(event);
}

void CleanUpF::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange && ListDH)
        useFont();
}

// ---------------------------------------------------------------- the file

CleanUpTable CleanUpF::tableOnScreen() const
{
    return {CleanWhere->currentText(), model->Rows()};
}

void CleanUpF::SaveCleanUpFile()
{
    ListDH->CommitEditor();
    if (CurrentCleanUpFile.isEmpty()) {
        ShowStatus(u"no clean-up file is open: use \"save as\""_s);
        return;
    }
    if (WriteFileText(CurrentCleanUpFile, CleanUpFileBytes(tableOnScreen())))
        rowsAreSaved();
    else
        ShowStatus(u"cannot save file: "_s + CurrentCleanUpFile);
}

bool CleanUpF::ReadCleanUpFile()
{
    if (!FileExists(CurrentCleanUpFile)) {
        showScope(CleanUpScopes().front());
        setWindowTitle(u" Book Cleaner"_s);
        return false;
    }
    std::optional<CleanUpTable> table = CleanUpTableOfBytes(ReadFileText(CurrentCleanUpFile));
    if (!table) {
        StopBox(u"cannot load file: bad file signature"_s);
        return false;
    }
    showScope(table->CleanWhere);
    model->SetRows(std::move(table->rows));
    return true;
}

bool CleanUpF::loadFile(QString path)
{
    if (path.isEmpty() || !FileExists(path))
        return false;
    ListDH->CommitEditor();
    keepUnsavedRows();
    const bool hadUnsavedRows = model->IsModified();
    // After a bad signature the open table keeps its file name: the next save must not replace a file that
    // is not a table.
    const QString before = std::exchange(CurrentCleanUpFile, std::move(path));
    if (!ReadCleanUpFile()) {
        CurrentCleanUpFile = before;
        return false;
    }
    const QString kept = std::exchange(recoveryFile, {});
    recoveryTimer->stop();
    if (hadUnsavedRows && !kept.isEmpty())
        ShowStatus(u"rows that were not saved are kept in \""_s + NameOf(kept) + u'"');
    DrawCleanUpTable();
    return true;
}

void CleanUpF::SaveCleanUpFileAs()
{
    ListDH->CommitEditor();
    QString path = AskFile({.kind = FileDialogRequest::Save,
                            .title = u"Save CleanUp file as"_s,
                            .folder = UserCleanUpFolder,
                            .fileName = NameOf(CurrentCleanUpFile),
                            .filter = FileFilter()});
    if (path.isEmpty())
        return;
    if (!NameOf(path).contains(u'.'))
        path += u".dat"_s;
    if (FileExists(path)
        && !ConfirmBox(path + u" exists"_s + QLatin1StringView("\r\n") + u"Do you want to replace it?"_s,
                       u"File Exists"_s))
        return;
    CurrentCleanUpFile = path;
    SaveCleanUpFile();
    setWindowTitle(u" Book Cleaner: "_s + NameOf(path));
}

void CleanUpF::LoadCleanUpFile()
{
    (void)loadFile(AskFile({.kind = FileDialogRequest::Open,
                            .title = u"Load CleanUp file"_s,
                            .folder = UserCleanUpFolder,
                            .fileName = {},
                            .filter = FileFilter()}));
}

void CleanUpF::DeleteCleanUpFiles()
{
    const QStringList paths = AskFiles({.kind = FileDialogRequest::OpenSeveral,
                                        .title = u"Delete CleanUp file(s)"_s,
                                        .folder = UserCleanUpFolder,
                                        .fileName = {},
                                        .filter = FileFilter()});
    for (const QString& path : paths) {
        if (!FileExists(path))
            continue;
        FileOperation(DeleteFileMode, path);
        const bool isOpen = path.compare(CurrentCleanUpFile, Qt::CaseInsensitive) == 0;
        if (!isOpen || FileExists(CurrentCleanUpFile))
            continue;
        keepUnsavedRows();
        recoveryFile.clear();
        model->SetRows({});
        CurrentCleanUpFile.clear();
        setWindowTitle(u" Book Cleaner"_s);
    }
}

void CleanUpF::ReloadCleanUpFile()
{
    (void)loadFile(CurrentCleanUpFile);
}

void CleanUpF::fileDropped(const QString& path)
{
    // The file is loaded after the drop event has returned.
    droppedFile = path;
    TimerWBDrop->start();
}

void CleanUpF::keepUnsavedRows()
{
    recoveryTimer->stop();
    if (!model->IsModified() || model->Rows().empty())
        return;
    if (recoveryFile.isEmpty())
        recoveryFile = FreeRecoveryFile();
    if (!WriteFileText(recoveryFile, CleanUpFileBytes(tableOnScreen())))
        ShowStatus(u"cannot save file: "_s + recoveryFile);
}

void CleanUpF::rowsAreSaved()
{
    model->MarkSaved();
    recoveryTimer->stop();
    if (!recoveryFile.isEmpty())
        FileOperation(DeleteFileMode, std::exchange(recoveryFile, {}));
}

// ---------------------------------------------------------------- the table

void CleanUpF::DrawCleanUpTable()
{
    setWindowTitle(FileExists(CurrentCleanUpFile) ? NameOf(CurrentCleanUpFile) + u' ' : u" Book Cleaner"_s);
    useFont();
}

void CleanUpF::useFont()
{
    QFont cells(CleanUpFontName, CleanUpFontSize);
    cells.setBold(CleanUpFontBold);
    ListDH->setFont(cells);
    const QFontMetrics metrics(cells);
    constexpr int CellPadding = 8;
    ListDH->verticalHeader()->setDefaultSectionSize(metrics.height() + CellPadding);
    ListDH->verticalHeader()->setFixedWidth(metrics.horizontalAdvance(QString(HeaderDigits, u'0'))
                                            + CellPadding);
    ListDH->FitColumns();
}

void CleanUpF::showScope(const QString& scope)
{
    // A scope that is not in the list means the selection.
    const qsizetype index = CleanUpScopes().indexOf(scope);
    CleanWhere->setCurrentIndex(index >= 0 ? int(index) : 1);
}

int CleanUpF::chosenRow(bool fromMenu)
{
    return fromMenu ? std::exchange(menuRow, -1) : ListDH->currentIndex().row();
}

void CleanUpF::AddCleanUpRow(RowPlace where, bool fromMenu)
{
    ListDH->CommitEditor();
    int at = model->rowCount();
    if (where != RowPlace::Last) {
        const int row = chosenRow(fromMenu);
        if (row < 0)
            return;
        at = where == RowPlace::Before ? row : row + 1;
    }
    model->InsertRows(at, {CleanUpRow()});
    ListDH->setFocus();
    ListDH->EditCell(at, RepWhatColumn);
}

void CleanUpF::RemoveSelectedCleanUpRow(bool fromMenu)
{
    ListDH->CommitEditor();
    RowBlock removed{chosenRow(fromMenu), 1};
    if (const RowBlock block = ListDH->Block(); !fromMenu && block.count > 0)
        removed = block;
    if (removed.first < 0)
        return;
    ListDH->ClearBlock();
    model->RemoveRows(removed.first, removed.count);
}

void CleanUpF::RemoveAllCleanUpRows()
{
    ListDH->CommitEditor();
    ListDH->ClearBlock();
    model->RemoveAllRows();
}

void CleanUpF::SetAllEnabled(bool enabled)
{
    ListDH->CommitEditor();
    model->SetAllEnabled(enabled);
}

void CleanUpF::ChangeCleanUpFont()
{
    const std::optional<FontChoice> font
        = AskFont({.title = u"Change viewer font"_s,
                   .current = {.name = CleanUpFontName, .size = CleanUpFontSize, .bold = CleanUpFontBold}});
    if (!font)
        return;
    CleanUpFontName = font->name;
    CleanUpFontSize = font->size;
    CleanUpFontBold = font->bold;
    DrawCleanUpTable();
}

void CleanUpF::copyRows()
{
    const RowBlock block = ListDH->Block();
    const QModelIndex cell = ListDH->currentIndex();
    if (block.count > 0) {
        const auto first = model->Rows().begin() + block.first;
        SetClipboardText(TextOfRows({first, first + block.count}));
    } else if (cell.isValid() && cell.flags().testFlag(Qt::ItemIsEditable)) {
        SetClipboardText(cell.data(Qt::EditRole).toString());
    } else if (cell.isValid()) {
        SetClipboardText(TextOfRows({model->Rows()[size_t(cell.row())]}));
    }
}

void CleanUpF::pasteRows()
{
    const QString text = ClipboardText();
    const std::vector<CleanUpRow> rows = RowsOfText(text);
    const QModelIndex cell = ListDH->currentIndex();
    if (!rows.empty()) {
        const RowBlock block = ListDH->Block();
        const int after = block.count > 0 ? block.first + block.count - 1 : cell.row();
        model->InsertRows(cell.isValid() ? after + 1 : model->rowCount(), rows);
    } else if (cell.isValid() && !text.isEmpty()) {
        model->setData(cell, text, Qt::EditRole);
    }
}

void CleanUpF::clearOrRemove()
{
    if (ListDH->Block().count > 0)
        RemoveSelectedCleanUpRow(false);
    else if (ListDH->currentIndex().isValid())
        model->setData(ListDH->currentIndex(), QString(), Qt::EditRole);
}

// ---------------------------------------------------------------- the run

void CleanUpF::CleanUpBookFragment()
{
    ListDH->CommitEditor();
    const HourglassScope hourglass;
    DisplayView& display = *context.display;
    const int top = display.scrollTop();
    CleanUpRun run;
    // The pages of the program cannot be changed.
    if (display.designMode() == "On"_L1)
        run = vmk::CleanUpBookFragment(display.document(), tableOnScreen(),
                                       TagPaint::Of(DisplayValuesOfSettings()), ShowStatus);
    if (run.found) {
        display.scroll(0, top);
        model->ShowRun(run);
    } else {
        ShowStatus(u"user-defined replacements failed"_s);
        PlayProgramSound(u"ParseError.wav"_s, true);
    }
    // A failed run is also reported as done, by design.
    ShowStatus(u"user-defined replacements done"_s);
    PlayProgramSound(u"NoParseError.wav"_s, false);
}

void NoteSelectionForCleaner(bool somethingSelected)
{
    CleanUpF* form = CleanUpF::Instance();
    if (somethingSelected && form && form->isVisible())
        form->CleanWhere->setCurrentText(u"selected fragment"_s);
}

} // namespace vmk
