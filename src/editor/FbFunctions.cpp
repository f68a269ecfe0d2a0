#include "FbFunctions.h"

#include "BookFileCheck.h"
#include "BookOnDisk.h"
#include "BookPage.h"
#include "BookSeams.h"
#include "BookToDisplay.h"
#include "BookValidation.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "CaretStatus.h"
#include "Desktop.h"
#include "DisplayText.h"
#include "DisplayView.h"
#include "EditorState.h"
#include "EmptyPage.h"
#include "FileNames.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "Form1.h"
#include "MainWindowSeams.h"
#include "OutlineSource.h"
#include "PageFileThread.h"
#include "PanelBar.h"
#include "SaveBook.h"
#include "SchemaViewerF.h"
#include "SelectionFunctions.h"
#include "SettingsVariables.h"
#include "Sounds.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"
#include "UnsavedText.h"
#include "XmlReason.h"

#include <QComboBox>

#include <algorithm>
#include <limits>
#include <new>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr int GeneralPanel = 1;
constexpr int32_t WholeFile = -1;

Form1& Window()
{
    return *Form1::Instance();
}

DisplayView& View()
{
    return *Window().HTMLread;
}

/// The page file that is not shown now, so that the display never reopens the file name it has just shown.
QString NextDisplayFile()
{
    const QString plain = TempFolder + u"/Fb2SourceHtml.htm"_s;
    return DisplayFile == plain ? TempFolder + u"/Fb2SourceHtml1.htm"_s : plain;
}

/// Reports that a book could not be loaded for a reason outside the book.
void RefuseBook(const QString& path)
{
    ShowStatus(u"cannot load file: "_s + path);
    PlayProgramSound(u"FileLoadError.wav"_s, true);
}

void BringUpWindow()
{
    Window().PlaceForm(MainFormLeft, MainFormTop, MainFormWidth, MainFormHeight);
    Window().show();
    Window().raise();
    Window().activateWindow();
}

/// The thread that writes the page file.
PageFileThread& PageThread()
{
    static PageFileThread thread;
    return thread;
}

/// Writes the page of a book to `DisplayFile`. Nothing waits for a page that is made from an outline.
bool WritePage(const BookDisplay& display)
{
    return display.outline ? PageThread().write(DisplayFile, display.outline, display.values)
                           : WriteScratchFile(DisplayFile, display.page);
}

/// Reads a book and writes its page to the next file of the display. Returns nothing on failure; status and
/// sound have reported the reason.
std::optional<BookDisplay> LayDownPage(const QString& path)
{
    const HourglassScope hourglass;
    // A file that cannot be read completely must not be treated as a shorter one, and later saved as such.
    const FileState state = StateOfFile(path);
    std::string text;
    int32_t length = WholeFile;
    if (!ReadFileBytes(path, text, length)) {
        RefuseBook(path);
        return std::nullopt;
    }
    View().setDesignMode(u"Off"_s);
    ShowStatus(u"...converting xml to html...wait, please..."_s);
    MakeFolder(TempFolder);
    DisplayFile = NextDisplayFile();
    PageThread().stop();
    // The file contains the page of the book before the last one; no failure from here on may show it again.
    FileOperation(DeleteFileMode, DisplayFile);

    KeepUnsavedText();
    NoteBookLoaded(path, state, text);
    std::optional<BookDisplay> display;
    try {
        display = DisplayOfBook(std::move(text), false);
        if (!display) {
            ShowStatus(u"cannot load file: parse error"_s);
            PlayProgramSound(u"FileLoadError.wav"_s, true);
            return std::nullopt;
        }
    } catch (const std::bad_alloc&) {
        // The old page must not remain with parts of the new book; its unsaved text is kept.
        ShowEmptyPage({.caption = u"Vellumark"_s});
        throw;
    }
    if (!WritePage(*display)) {
        // The old page must not remain: a save would append the new book's binary part to it.
        ShowEmptyPage({.caption = u"Vellumark"_s});
        RefuseBook(path);
        return std::nullopt;
    }
    return display;
}

/// Has the display open `DisplayFile` as the page of a book.
void NavigateToBook(const QString& path, BookDisplay display = {})
{
    // More than the lines of a screen.
    constexpr std::size_t FirstLines = 300;
    LoadingByProgram = true;
    if (display.outline) {
        OutlineLines lines(std::move(display.outline), display.values, View().document().tags());
        View().Navigate(DisplayFile, QByteArray::fromStdString(PageWithoutLines(display.values)),
                        std::make_unique<OutlineSource>(std::move(lines), FirstLines));
    } else {
        View().Navigate(DisplayFile);
    }
    CurrentBook = path;
    Window().setWindowTitle(u" VMK: "_s + ReadableName(FileNameOf(path)));
    LastBookFolder = FolderOf(path);
}

} // namespace

// ---------------------------------------------------------------- loading

bool LoadBook(const QString& path, bool opening)
{
    if (opening)
        RemoveDisplayFiles(true);
    if (!FileExists(path)) {
        ShowStatus(u"file not found"_s);
        PlayProgramSound(u"FileLoadError.wav"_s, true);
        return false;
    }
    if (!CheckBookFile(path, BookRefusal::StatusBar))
        return false;
    std::optional<BookDisplay> display = LayDownPage(path);
    if (!display)
        return false;
    ShowStatus(u"...loading file...wait, please..."_s);
    if (opening)
        BringUpWindow();
    NavigateToBook(path, *std::move(display));
    return true;
}

bool ShowPageOfBook(const QString& path, std::string_view page)
{
    MakeFolder(TempFolder);
    const QString file = NextDisplayFile();
    if (!WriteScratchFile(file, page)) {
        RefuseBook(path);
        return false;
    }
    DisplayFile = file;
    NavigateToBook(path);
    return true;
}

void RemoveDisplayFiles(bool remake)
{
    PageThread().stop();
    FileOperation(DeleteFileMode, DisplayFile);
    FileOperation(DeleteFolderMode, TempFolder);
    // A link in place of the folder.
    FileOperation(DeleteFileMode, TempFolder);
    for (const QString& page : {EmptyPageFile, SampleEmptyPageFile, WelcomeFile})
        FileOperation(DeleteFileMode, page);
    if (remake)
        MakeFolder(TempFolder);
}

bool IsDisplayBlank()
{
    if (View().scrollHeight() > View().clientHeight())
        return false;
    const DisplayDocument& document = View().document();
    for (int i = 0; i < document.lineCount(); ++i) {
        if (!IsBlank(document.line(i).text, true))
            return false;
    }
    return true;
}

bool CheckNavigation(const QString& url)
{
    if (url == DisplayFile)
        return false;
    if (!SkipNavigationCheck) {
        ShowStatus(u"file loading error: not allowed file extension"_s);
        PlayProgramSound(u"FileLoadError.wav"_s, true);
    }
    return true;
}

// ---------------------------------------------------------------- reading

void ShowFb2TextPreview()
{
    if (IsBookEmpty()) {
        PlainBox(u"empty book - nothing to read"_s);
        return;
    }
    MakeFolder(TempFolder);
    const QString copy = TempFolder + u'/' + ReadableName(FileNameOf(CurrentBook));
    if (SaveBook(copy, SaveReport::None) && !OpenWithSystem(copy))
        PlainBox(u"no program for reading Fiction Book files found"_s);
}

// ---------------------------------------------------------------- validation

namespace {

/// The reason of an error on one line, without the book's namespace.
QString Shortened(QString reason)
{
    return WithoutNamespace(reason.remove(u"\r\n"_s), FbNamespace);
}

/// Selects the position `offset` characters from the start of the display.
TextRange SelectPlace(qsizetype offset)
{
    TextRange range = SelectionRange();
    const std::vector<DisplayElement> first = page::getElementsByName(View().document(), u"FirstDiv"_s);
    if (!first.empty())
        range.moveToElementText(first.front());
    range.collapse(true);
    // A move counts with 32 bits.
    constexpr qsizetype Most = std::numeric_limits<int>::max();
    for (; offset > 0; offset -= std::min(offset, Most))
        range.move(TextUnit::Character, static_cast<int>(std::min(offset, Most)));
    range.select();
    return range;
}

/// Extends the selection from the error, after the "</" of the genre's end tag, to the value of the genre.
void SelectGenreValue(const TextRange& error)
{
    TextRange range = error.duplicate();
    range.moveStart(TextUnit::Textedit, -1);
    if (range.findText(u">"_s, -1)) {
        range.collapse(false);
        range.setEndPoint(EndPoints::EndToEnd, error);
        range.moveEnd(TextUnit::Character, -2);
    } else {
        range = error.duplicate();
        range.move(TextUnit::Character, -2);
        range.moveStart(TextUnit::Word, -1);
    }
    range.select();
    SchemaViewerF::Instance().ShowShemaInWB(FolderOf(SchemaFile) + u"FictionBookGenres.xsd"_s);
}

} // namespace

void ValidateDisplay()
{
    if (IsBookEmpty()) {
        PlainBox(u"empty book - nothing to validate"_s);
        return;
    }
    const ValidateAgainst against = ValidateAgainstOf(Window().ValidateOptL->currentText());
    ShowStatus(u"...getting Fiction Book text...wait, please"_s);
    ShowStatusPanel(GeneralPanel, QString());
    QString message;
    QString schemaProblem;
    std::optional<TextRange> error;
    bool atEndTag = false;
    {
        const HourglassScope hourglass;
        const std::string text = GetFbTextFromDisplay(true);
        const BookValidation validation = ValidationBySettings(against);
        schemaProblem = validation.schemaProblem();
        const XmlParseError found = validation.validate(text, XmlEncoding::utf8());
        message = found ? Shortened(found.reason) : QString();
        if (!message.isEmpty()) {
            ShowStatusPanel(GeneralPanel, u"Error pos: %1"_s.arg(found.filepos));
            error = SelectPlace(DisplayOffset(View().document(), found.fileByte));
            atEndTag = std::string_view(text).substr(0, static_cast<size_t>(found.fileByte)).ends_with("</");
            View().centerCaret();
            View().focus();
        }
    }
    const QString status = error ? u"Error against %1. %2"_s.arg(NameOf(against), message)
                                 : u"No errors (against %1)"_s.arg(NameOf(against));
    ShowStatus(status);
    // The text of the result does not change; without its schema a book is validated against the namespace.
    Window().RefreshSchemaField(schemaProblem);
    if (!error && !schemaProblem.isEmpty())
        ShowStatusPanel(GeneralPanel, u"schema "_s + schemaProblem);
    if (error)
        PlayProgramSound(u"ParseError.wav"_s, true);
    else
        PlayProgramSound(u"NoParseError.wav"_s, false);
    // The value is before the error only if the error is at the end tag.
    if (atEndTag && status.contains("'genre'"_L1))
        SelectGenreValue(*error);
    ShowCaretPosition();
}

} // namespace vmk
