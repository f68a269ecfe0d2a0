#pragma once

#include <QString>

#include <string_view>

/// What the bytes of a picture say about it, read without decoding it and without a window library.
namespace vmk {

enum class PictureFormat
{
    Unknown,
    Png,
    Jpeg,
    Gif
};

struct PictureInfo
{
    PictureFormat format = PictureFormat::Unknown;
    /// Pixels; 0 when unknown.
    int width = 0;
    int height = 0;
    /// Why the bytes do not decode as their format; empty when nothing is wrong.
    QString problem;
};

/// Reads the size and checks the structure: all parts of the file are there and, in a PNG file, undamaged.
/// Takes time in proportion to the bytes, whatever the size of the picture.
[[nodiscard]] PictureInfo ReadPictureInfo(std::string_view bytes);

/// "PNG", "JPEG", "GIF"; empty for `Unknown`.
[[nodiscard]] QString FormatName(PictureFormat format);

/// The format that a content type or a file extension names: "image/png", "png", "jpg". `Unknown` for others.
[[nodiscard]] PictureFormat FormatOfType(QStringView type);

} // namespace vmk
