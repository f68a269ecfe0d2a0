#pragma once

#include <QString>

#include <string_view>

/// The commands on the pictures of the open book. The pictures are in `BinaryPart`; what these commands
/// change there reaches the file with the next save. Commands on one picture take its id from the link of the
/// tag under the last right click.
namespace vmk {

/// Writes every picture to `ExtractedImagesFolder`; earlier files of the same names are replaced.
void ExtractAllImages();

/// Removes `ExtractedImagesFolder` with its content, without a question.
void DeleteExtractedImages();

/// Shows the picture in the viewer.
void ShowImage();

/// Asks for a picture file and appends it as an element.
void AddImageResource();

/// Takes the element out, without a question.
void RemoveImageResource();

/// What `ShowPicture` does with an element that is not a picture.
enum class OtherContent
{
    Show,
    PassOver
};

/// Writes the content of the element whose id begins with `id` to a file in `TempImagesFolder`, which is
/// emptied first, and shows it in the viewer. Reports an id that is not found.
/// @param id in the bytes of `BinaryPart`
void ShowPicture(std::string_view id, OtherContent other);

} // namespace vmk
