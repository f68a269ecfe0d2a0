#include "SaveBook.h"

#include "BookOnDisk.h"
#include "BookSeams.h"
#include "BookVariables.h"
#include "BookVersions.h"
#include "Boxes.h"
#include "CodePages.h"
#include "Encodings.h"
#include "FileOperations.h"
#include "FilePaths.h"
#include "MainWindowSeams.h"
#include "SettingsVariables.h"
#include "Sounds.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"
#include "UnsavedText.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

LayoutStyle StyleOf(const QString& name)
{
    if (name == u"compact")
        return LayoutStyle::Compact;
    return name == u"line ends" ? LayoutStyle::LineEnds : LayoutStyle::TagsTree;
}

void Report(const QString& status, const QString& sound, bool isError)
{
    ShowStatus(status);
    if (!sound.isEmpty())
        PlayProgramSound(sound, isError);
}

/// There is no row for a text that is too short for a book: every text has its declaration.
void ReportOutcome(const QString& path, const BookFile& file, const WriteResult& written, SaveReport report)
{
    constexpr int ReasonPanel = 2;
    if (!written) {
        // Always reported.
        ShowStatusPanel(ReasonPanel, written.Failure());
        Report(u"cannot save file: "_s + path, u"ParseError.wav"_s, true);
    } else if (report == SaveReport::None)
        ShowStatus(QString());
    else if (file.treeSkipped)
        Report(u"Namespace error: tree on save skipped. File saved as: "_s + path,
               u"NameSpaceErrorOnSave.wav"_s, true);
    else
        Report(u"file saved as: "_s + path, report == SaveReport::Full ? u"FileSaved.wav"_s : QString(),
               false);
}

constexpr int GeneralPanel = 1;

/// Makes UTF-8 the encoding of the open book's file.
void UseUtf8()
{
    BookEncoding utf8 = MakeBookEncoding("utf-8");
    FileEncodingName = std::move(utf8.name);
    FileCodePage = utf8.codePage;
    FileMetaTag = std::move(utf8.metaTag);
}

/// Writes a book and keeps the file that it replaces as an earlier version. A version that cannot be kept
/// does not prevent the save.
WriteResult WriteVersioned(const QString& path, const BookFile& file)
{
    // A copy for another program, which reads it in the temporary folder.
    const bool isCopy = FolderOf(path) == TempFolder + u'/';
    if (isCopy)
        return ReplaceContent(path, file.bytes);
    KeptVersion version;
    WriteResult written = ReplaceBook(BackupFolder(), path, file.bytes, version);
    if (!version.isSafe)
        ShowStatusPanel(GeneralPanel, u"earlier version not kept: "_s + version.reason);
    if (!written)
        return written;
    if (file.treeSkipped && !version.path.isEmpty())
        ShowStatusPanel(GeneralPanel, u"the previous file is kept"_s);
    // The file has this encoding now: the next save does not ask again.
    if (file.missing == MissingAnswer::Utf8 && OutputEncoding == u"original")
        UseUtf8();
    NoteBookSaved(path, file.bytes);
    NoteTextSaved(path);
    return written;
}

} // namespace

SaveLayout SaveLayoutOfSettings()
{
    FindInArray(OutputEncodings, OutputEncoding, u"original"_s);
    FindInArray(OutputStyles, OutputStyle, u"tags tree"_s);
    const std::string name = OutputEncoding == u"original" ? FileEncodingName : OutputEncoding.toStdString();
    const SavedEncoding encoding = OutputEncodingInfo(name);

    SaveLayout layout;
    layout.style = StyleOf(OutputStyle);
    layout.declaration = encoding.declaration;
    layout.codePage = encoding.codePage;
    layout.inLineTags = InLineTagSet(InLineTags);
    layout.binaryPart = BinaryPart;
    layout.binaryCodePage = BinaryCodePage;
    layout.keepsText = BookKeepsText;
    return layout;
}

Seam<MissingAnswer(const MissingCharacters& missing, const QString& encoding)>& MissingCharactersSeam()
{
    static Seam<MissingAnswer(const MissingCharacters&, const QString&)> seam(
        [](const MissingCharacters&, const QString&) { return MissingAnswer::Substitute; });
    return seam;
}

BookFile FileOfDisplayText(std::string text)
{
    SaveLayout layout = SaveLayoutOfSettings();
    std::string binaries(layout.binaryPart);
    if (layout.binaryCodePage == layout.codePage)
        binaries.clear();
    else if (layout.binaryCodePage != CodePageUtf8)
        CodePageToUtf8(binaries, layout.binaryCodePage);
    MissingCharacters missing = FindMissingCharacters(text, layout.codePage);
    if (const MissingCharacters more = FindMissingCharacters(binaries, layout.codePage); more.count > 0)
        missing = {missing.count + more.count, missing.count > 0 ? missing.examples : more.examples};
    MissingAnswer answer = MissingAnswer::Substitute;
    if (missing.count > 0)
        answer = MissingCharactersSeam()(missing, u"windows-%1"_s.arg(layout.codePage));
    BookFile file;
    if (answer == MissingAnswer::Utf8) {
        const SavedEncoding utf8 = OutputEncodingInfo("utf-8");
        layout.declaration = utf8.declaration;
        layout.codePage = utf8.codePage;
    }
    if (answer != MissingAnswer::Cancel)
        file = FileOfText(std::move(text), layout);
    file.missing = answer;
    return file;
}

bool SaveBook(const QString& path, SaveReport report)
{
    if (IsBookEmpty()) {
        PlainBox(u"empty book - nothing to save"_s);
        return false;
    }
    if (!MayReplaceBook(path)) {
        ShowStatus(u"file not saved: "_s + path);
        return false;
    }
    const HourglassScope hourglass;
    ShowStatus(u"...saving Fiction Book file...wait, please"_s);
    const BookFile file = FileOfDisplayText(DisplayTextSeam()(AngleMarks::Restore));
    if (file.missing == MissingAnswer::Cancel) {
        ShowStatus(u"file not saved: "_s + path);
        return false;
    }
    const WriteResult written = WriteVersioned(path, file);
    ReportOutcome(path, file, written, report);
    return bool(written);
}

} // namespace vmk
