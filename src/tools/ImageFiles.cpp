#include "ImageFiles.h"

#include "Base64.h"
#include "BinaryElements.h"
#include "CodePages.h"
#include "FileOperations.h"
#include "FileSignatures.h"
#include "TagFunctions.h"

#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace vmk {
namespace {

/// Replaces the file `path`. A link or a pipe is replaced by the file; nothing is written through it.
bool WriteInFolder(const QString& path, std::string_view bytes)
{
    const QFileInfo entry(path);
    if (entry.isSymLink() || (entry.exists() && !entry.isFile() && !entry.isDir()))
        DeleteOneFile(path);
    return WriteScratchFile(path, bytes);
}

} // namespace

std::string WithoutLineEnds(std::string_view text)
{
    std::string joined;
    joined.reserve(text.size());
    while (!text.empty()) {
        const size_t end = std::min(text.find_first_of("\r\n"), text.size());
        joined += text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return joined;
}

std::string PictureBytes(std::string_view content)
{
    std::string text = WithoutLineEnds(content);
    std::optional<std::string> decoded = Base64Decode(text);
    return decoded ? *std::move(decoded) : std::move(text);
}

QString PictureExtension(const QString& id, std::string_view bytes)
{
    const QString extension = FileOperation(ExtensionMode, id).toLower();
    if (extension == "png"_L1 || extension == "jpg"_L1)
        return u'.' + extension;
    return bytes.starts_with(PngSignature) ? u".png"_s : u".jpg"_s;
}

QString PictureBaseName(const QString& id)
{
    const QString name = FileOperation(BaseNameMode, id);
    // Some systems accept such names, but programs cannot show them.
    if (std::ranges::any_of(name, [](QChar c) { return c.category() == QChar::Other_Control; }))
        return {};
    const auto isNoBlank = [](QChar c) { return c != u' '; };
    const auto begin = std::ranges::find_if(name, isNoBlank);
    const auto end = std::find_if(name.rbegin(), std::make_reverse_iterator(begin), isNoBlank).base();
    return QString(begin, end - begin);
}

QString WritePicture(const QString& folder, const QString& id, int number, std::string_view bytes)
{
    const QString extension = PictureExtension(id, bytes);
    const QString plain = u"FbImage_"_s + QString::number(number) + extension;
    const QString baseName = PictureBaseName(id);
    if (!baseName.isEmpty() && WriteInFolder(folder + u'/' + baseName + extension, bytes))
        return baseName + extension;
    return WriteInFolder(folder + u'/' + plain, bytes) ? plain : QString();
}

ExtractedPictures ExtractPictures(std::string_view binaryPart, int codePage, const QString& folder, int most,
                                  const std::function<void(int)>& beforeEach,
                                  const std::function<void(const ExtractedPicture&)>& afterEach)
{
    MakeFolder(folder);
    ExtractedPictures result;
    size_t position = 0;
    for (int round = 0; round < most; ++round) {
        beforeEach(result.count + 1);
        const std::optional<BinaryTag> tag = NextBinaryTag(binaryPart, position);
        if (!tag)
            break;
        position = tag->end;
        if (!IsPictureTag(tag->tag))
            continue;
        const std::optional<BinaryElement> element = ElementOfTag(binaryPart, *tag);
        if (!element)
            break;
        position = element->next;

        ++result.count;
        const std::string bytes = PictureBytes(element->data);
        ExtractedPicture picture;
        picture.id = DecodeBytes(GetXmlAttribute(element->tag, "id", true), codePage);
        picture.file = WritePicture(folder, picture.id, result.count, bytes);
        picture.bytes = qsizetype(bytes.size());
        if (picture.file.isEmpty())
            ++result.unwritten;
        if (afterEach)
            afterEach(picture);
    }
    return result;
}

} // namespace vmk
