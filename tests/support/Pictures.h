#pragma once

#include "Base64.h"

#include <string>
#include <string_view>

/// Pictures for tests, made without a picture library.
namespace vmk {

/// A red PNG file of 2 by 3 pixels.
inline std::string SmallPng()
{
    return *Base64Decode(
        "iVBORw0KGgoAAAANSUhEUgAAAAIAAAADCAIAAAA2iEnWAAAAEElEQVR42mP4z8AARAwoFABE0AX7TM5xDwAAAABJRU5ErkJg"
        "gg==");
}

/// A PNG file with valid checksums around data that cannot be decompressed.
inline std::string TornPng()
{
    return *Base64Decode(
        "iVBORw0KGgoAAAANSUhEUgAAAAIAAAADCAIAAAA2iEnWAAAADElEQVRub3QgZGVmbGF0ZWS4103nAAAAAElFTkSuQmCC");
}

/// A red JPEG file of 2 by 3 pixels.
inline std::string SmallJpeg()
{
    return *Base64Decode(
        "/9j/4AAQSkZJRgABAQAAAQABAAD/2wBDAAMCAgICAgMCAgIDAwMDBAYEBAQEBAgGBgUGCQgKCgkICQkKDA8MCgsOCwkJDREN"
        "Dg8QEBEQCgwSExIQEw8QEBD/2wBDAQMDAwQDBAgEBAgQCwkLEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQEBAQ"
        "EBAQEBAQEBAQEBAQEBD/wAARCAADAAIDAREAAhEBAxEB/8QAFAABAAAAAAAAAAAAAAAAAAAACP/EABQQAQAAAAAAAAAAAAAA"
        "AAAAAAD/xAAVAQEBAAAAAAAAAAAAAAAAAAAHCf/EABQRAQAAAAAAAAAAAAAAAAAAAAD/2gAMAwEAAhEDEQA/ADoDFU3/2Q==");
}

/// One `binary` element.
inline std::string Binary(std::string_view id, std::string_view data, std::string_view type = "image/png")
{
    return "<binary content-type=\"" + std::string(type) + "\" id=\"" + std::string(id) + "\">"
        + Base64Encode(data) + "</binary>";
}

} // namespace vmk
