#pragma once

#include <QString>

#include <string_view>

/// The commands for the pictures of the open book. The pictures are in `BinaryPart`; the next save writes a
/// change to the file. A command for one picture takes its id from the link of the tag under the last right
/// click.
namespace vmk {

/// Writes each picture to `ExtractedImagesFolder` and replaces files with the same names.
void ExtractAllImages();

/// Removes `ExtractedImagesFolder` with its content, without a question.
void DeleteExtractedImages();

/// Shows the picture in the viewer.
void ShowImage();

/// Asks for a picture file and appends an element for it.
void AddImageResource();

/// Removes the element, without a question.
void RemoveImageResource();

/// Whether `ShowPicture` shows an element that is not a picture.
enum class OtherContent
{
    Show,
    Ignore
};

/// Writes the content of the element whose id begins with `id` to a file in `TempImagesFolder`, which is
/// emptied first, and shows it in the viewer. Reports an id that is not found.
/// \param id  in the encoding of `BinaryPart`
void ShowPicture(std::string_view id, OtherContent other);

} // namespace vmk
