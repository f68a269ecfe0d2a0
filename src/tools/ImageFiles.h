#pragma once

#include <QString>

#include <functional>
#include <string>
#include <string_view>

/// The pictures of a book as files: content, names and writing.
///
/// An id is untrusted input: no id causes a write outside the given folder.
namespace vmk {

/// Returns the text without CR and LF.
[[nodiscard]] std::string WithoutLineEnds(std::string_view text);

/// Returns the bytes of a picture: removes the line ends from the content of its element and decodes base64.
/// Content that is not base64 is returned without its line ends.
[[nodiscard]] std::string PictureBytes(std::string_view content);

/// Returns the extension of a picture's file, with its dot: that of the id if it is "png" or "jpg" in upper
/// or lower case, otherwise ".png" for the content of a PNG file and ".jpg" for other content.
[[nodiscard]] QString PictureExtension(const QString& id, std::string_view bytes);

/// Returns the name of a picture's file without its extension: the base name of the id. Empty if the id has
/// none, or one with control characters.
[[nodiscard]] QString PictureBaseName(const QString& id);

/// Writes a picture into `folder`. If the file system refuses the name, the name is "FbImage_" and `number`.
/// \return the name of the file; empty if nothing could be written
[[nodiscard]] QString WritePicture(const QString& folder, const QString& id, int number,
                                   std::string_view bytes);

/// The result of `ExtractPictures`.
struct ExtractedPictures
{
    int count = 0; ///< Pictures found; two with the same name count twice.
    int unwritten = 0; ///< Pictures found that could not be written.
};

/// An extracted picture.
struct ExtractedPicture
{
    QString id;
    QString file; ///< The name in the folder; empty if it could not be written.
    qsizetype bytes = 0;
};

/// Writes each picture of a binary part into `folder`, and creates this folder, but not its parents, if it is
/// missing.
/// \param codePage    the code page of the binary part
/// \param most        the maximum number of elements to read
/// \param beforeEach  called before each search with the number of the next picture, from 1
/// \param afterEach   called for each picture
ExtractedPictures ExtractPictures(std::string_view binaryPart, int codePage, const QString& folder, int most,
                                  const std::function<void(int)>& beforeEach,
                                  const std::function<void(const ExtractedPicture&)>& afterEach = {});

} // namespace vmk
