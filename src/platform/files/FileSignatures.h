#pragma once

/// The first bytes that identify the format of a file.
namespace vmk {

inline constexpr char PngSignature[] = "\x89PNG";
inline constexpr char JpegSignature1[] = "\xff\xd8\xff\xe0";
inline constexpr char JpegSignature2[] = "\xff\xd8\xff\xfe";
/// The first bytes of a clean-up file.
inline constexpr char CleanUpFileSignature[] = "VMKCleanUpFile\xe9\xfe";

} // namespace vmk
