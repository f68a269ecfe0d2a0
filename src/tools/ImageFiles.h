#pragma once

#include <QString>

#include <functional>
#include <string>
#include <string_view>

/// Pictures of a book as files: their content, their names, and where they are written.
///
/// An id comes from a book and is not trusted: whatever it holds, nothing is written outside the folder that
/// was asked for.
namespace vmk {

/// The text without CR and LF.
[[nodiscard]] std::string WithoutLineEnds(std::string_view text);

/// The bytes of a picture from the content of its element: line ends are taken out and base64 is decoded.
/// Content that is not base64 stays as it is.
[[nodiscard]] std::string PictureBytes(std::string_view content);

/// The extension of a picture's file, with its dot: that of the id if it is "png" or "jpg" in any case, else
/// ".png" for the content of a PNG file and ".jpg" for any other.
[[nodiscard]] QString PictureExtension(const QString& id, std::string_view bytes);

/// The name of a picture's file without its extension: the id's file name. Empty when nothing is left of it,
/// and for one with control characters.
[[nodiscard]] QString PictureBaseName(const QString& id);

/// Writes one picture into `folder`. A name that the file system refuses gives way to "FbImage_" and
/// `number`.
/// @return the file's name; empty if nothing could be written.
[[nodiscard]] QString WritePicture(const QString& folder, const QString& id, int number,
                                   std::string_view bytes);

/// What `ExtractPictures` has done.
struct ExtractedPictures
{
    int count = 0; ///< pictures found; two of the same name count twice
    int unwritten = 0; ///< those among them that could not be written
};

/// One picture as it is extracted.
struct ExtractedPicture
{
    QString id;
    QString file; ///< name in the folder; empty if it could not be written
    qsizetype bytes = 0;
};

/// Writes every picture of a binary part into `folder`, which is made if it is missing, one level.
/// @param codePage    of the binary part
/// @param most        elements to look at
/// @param beforeEach  called with the number, from 1, that the next picture will have
/// @param afterEach   called for each picture
ExtractedPictures ExtractPictures(std::string_view binaryPart, int codePage, const QString& folder, int most,
                                  const std::function<void(int)>& beforeEach,
                                  const std::function<void(const ExtractedPicture&)>& afterEach = {});

} // namespace vmk
