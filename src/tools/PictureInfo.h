#pragma once

#include <QString>

#include <string_view>

/// The format, size and faults of a picture, read from its bytes without a window library.
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
    /// Pixels; 0 if unknown.
    int width = 0;
    int height = 0;
    /// Why the bytes cannot be decoded; empty if no fault was found.
    QString problem;
};

/// Reads the size and checks that no part of the file is missing. The data of a PNG file is decompressed and
/// checked row by row, up to 1 GB of pixels; the compressed data of a JPEG or GIF file is not decoded. The
/// memory used does not depend on the size of the picture.
[[nodiscard]] PictureInfo ReadPictureInfo(std::string_view bytes);

/// Returns "PNG", "JPEG" or "GIF"; empty for `Unknown`.
[[nodiscard]] QString FormatName(PictureFormat format);

/// Returns the format of a content type or a file extension such as "image/png", "png" or "jpg".
[[nodiscard]] PictureFormat FormatOfType(QStringView type);

} // namespace vmk
