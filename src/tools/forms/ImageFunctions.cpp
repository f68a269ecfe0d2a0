#include "ImageFunctions.h"

#include "BinaryElements.h"
#include "BinaryListF.h"
#include "BookVariables.h"
#include "Boxes.h"
#include "CodePages.h"
#include "Dialogs.h"
#include "EditorState.h"
#include "FileOperations.h"
#include "ImageFiles.h"
#include "ImageViewerF.h"
#include "LineEnds.h"
#include "MainWindowSeams.h"
#include "PictureInfo.h"
#include "SettingsVariables.h"
#include "Sounds.h"
#include "StartUpVariables.h"
#include "TextFunctions.h"
#include "UnsavedText.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImageReader>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView NotFound("cannot find image resource");
constexpr QLatin1StringView NotAdded("cannot add image resource");

std::string IdOfTag()
{
    return IdInBinaryPart(TagUnderCaret.href, BinaryCodePage);
}

QString PictureFilter(const QString& extension)
{
    if (extension == "png"_L1)
        return u"(*.png)|*.png|PNG - Portable Network Graphics|*.png|"_s;
    if (extension == "jpg"_L1)
        return u"(*.jpg)|*.jpg|JPG - JPEG|*.jpg|"_s;
    return u"(*.jpg;*.png)|*.jpg;*.png|JPG - JPEG|*.jpg|PNG - Portable Network Graphics|*.png|"_s;
}

/// Returns true if the bytes can be decoded in the format of the extension.
bool Decodes(const std::string& bytes, const QString& extension)
{
    const PictureInfo info = ReadPictureInfo(bytes);
    if (info.format != FormatOfType(extension) || !info.problem.isEmpty())
        return false;
    QByteArray data = QByteArray::fromRawData(bytes.data(), qsizetype(bytes.size()));
    QBuffer buffer(&data);
    QImageReader reader(&buffer, extension.toLatin1());
    const qint64 memory = qint64(4) * info.width * info.height;
    // A picture that is too large to be decoded here can be valid; `ReadPictureInfo` has checked its parts.
    return memory > qint64(QImageReader::allocationLimit()) * 1024 * 1024 || !reader.read().isNull();
}

/// Returns the message for a file whose extension does not fit the link; empty if it fits.
QString Refusal(const QString& extension, const QString& href)
{
    if (extension != "png"_L1 && extension != "jpg"_L1)
        return NotAdded;
    // The extension can be anywhere in the link, in lower case, by design.
    if (!href.contains(extension))
        return NotAdded + u"\r\nimage file extension does not correspond to href"_s;
    return {};
}

void ReportBinaryPartChange()
{
    NoteBinaryPartChange();
    if (BinaryListF* list = ExistingForm<BinaryListF>())
        list->BinaryPartChanged();
}

void AppendResource(const QString& file, const QString& extension)
{
    const FileContent content = ReadContent(file);
    if (content.outcome != ReadOutcome::Ok) {
        StopBox(NotAdded + u"\r\n"_s + ReadFailureText(content));
        return;
    }
    BinaryPart += CrLf + MakeBinaryElement(extension, IdOfTag(), content.bytes);
    ReportBinaryPartChange();
    if (!Decodes(content.bytes, extension))
        ShowStatus(u"image resource added, but the file is not a valid "_s
                   + FormatName(FormatOfType(extension)) + u" picture: "_s + FileOperation(NameMode, file));
}

/// Lets the windows paint themselves and answer the window manager during a long command, ten times a second.
/// Input of the user waits until the command has finished.
class WindowsKeptAlive
{
public:
    void step()
    {
        constexpr int Interval = 100;
        if (sinceLast.isValid() && sinceLast.elapsed() < Interval)
            return;
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        sinceLast.start();
    }

private:
    QElapsedTimer sinceLast;
};

} // namespace

void ExtractAllImages()
{
    if (BinaryPart.empty())
        return;
    const HourglassScope hourglass;
    // An event can load another book meanwhile.
    const std::string binaryPart = BinaryPart;
    WindowsKeptAlive windows;
    const ExtractedPictures pictures = ExtractPictures(
        binaryPart, BinaryCodePage, ExtractedImagesFolder, MostBinaryElements, [&](int number) {
            ShowStatus(u"...extracting images..."_s + QString::number(number));
            windows.step();
        });
    if (pictures.count == 0) {
        PlayProgramSound(u"ParseError.wav"_s, true);
        ShowStatus(u"no images extracted"_s);
        return;
    }
    QString result = u"images extracted: %1; saved to: "_s.arg(pictures.count) + ExtractedImagesFolder;
    if (pictures.unwritten > 0)
        result += u"; could not be written: "_s + QString::number(pictures.unwritten);
    ShowStatus(result);
    PlayProgramSound(u"FileSaved.wav"_s, false);
}

void DeleteExtractedImages()
{
    FileOperation(DeleteFolderMode, ExtractedImagesFolder);
    if (FileExists(ExtractedImagesFolder)) {
        ShowStatus(u"some extracted images could not be deleted"_s);
        PlayProgramSound(u"ParseError.wav"_s, true);
        return;
    }
    ShowStatus(u"extracted images have been deleted"_s);
    PlayProgramSound(u"FileSaved.wav"_s, false);
}

void ShowPicture(std::string_view id, OtherContent other)
{
    if (FindBinaryId(BinaryPart, id) == std::string::npos) {
        StopBox(NotFound);
        return;
    }
    FileOperation(DeleteFolderMode, TempImagesFolder);
    MakeFolder(TempFolder);
    MakeFolder(TempImagesFolder);
    constexpr int LargestNumber = 9999;
    QString file = TempImagesFolder + u"/image_"_s + QString::number(RandomBelow(LargestNumber));

    const std::optional<BinaryElement> element = FindBinaryElement(BinaryPart, id);
    if (!element) {
        StopBox(NotFound);
        return;
    }
    if (other == OtherContent::Ignore && !IsPictureTag(element->tag))
        return;
    const std::string bytes = PictureBytes(element->data);
    file += PictureExtension(DecodeBytes(id, BinaryCodePage), bytes);
    if (!WriteScratchFile(file, bytes)) {
        ShowStatus(u"cannot show image: no file can be written to "_s + TempImagesFolder);
        return;
    }
    const QString tag = DecodeBytes(element->tag, BinaryCodePage);
    InstanceOf<ImageViewerF>().ShowImageInViewer(file, tag);
}

void ShowImage()
{
    ShowPicture(IdOfTag(), OtherContent::Show);
}

void AddImageResource()
{
    const QString href = TagUnderCaret.href;
    if (href.trimmed().isEmpty()) {
        StopBox(NotAdded + u": href not specified"_s);
        return;
    }
    const QString wanted = FileOperation(ExtensionMode, href).toLower();
    const QString file = AskFile({FileDialogRequest::Open, u"Add New Image Resource"_s, LastImageFolder,
                                  QString(), PictureFilter(wanted)});
    if (file.isEmpty() || !FileExists(file))
        return;
    LastImageFolder = FileOperation(FolderOfMode, file);
    const QString got = FileOperation(ExtensionMode, file).toLower();
    if (const QString refusal = Refusal(got, href); !refusal.isEmpty())
        StopBox(refusal);
    else
        AppendResource(file, got);
}

void RemoveImageResource()
{
    // Without a target every id would match, and the first picture of the book would be removed.
    const std::string id = IdOfTag();
    if (!id.empty() && RemoveBinaryElement(BinaryPart, id))
        ReportBinaryPartChange();
    else
        StopBox(NotFound);
}

} // namespace vmk
