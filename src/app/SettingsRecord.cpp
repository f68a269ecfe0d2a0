#include "SettingsRecord.h"

#include "CodePages.h"
#include "UserText.h"

#include <bit>
#include <cmath>
#include <limits>

namespace vmk {

namespace {

constexpr std::size_t MaxTextBytes = std::numeric_limits<uint16_t>::max();

template <typename Integer>
void AppendLittleEndian(std::string& bytes, Integer value)
{
    for (std::size_t i = 0; i < sizeof value; ++i)
        bytes.push_back(static_cast<char>(value >> (8 * i)));
}

/// Removes an integer from the beginning of the bytes; returns nothing if they are too few.
template <typename Integer>
std::optional<Integer> TakeLittleEndian(std::string_view& bytes)
{
    if (bytes.size() < sizeof(Integer))
        return std::nullopt;
    Integer value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i)
        value = static_cast<Integer>(value | Integer(static_cast<unsigned char>(bytes[i])) << (8 * i));
    bytes.remove_prefix(sizeof value);
    return value;
}

/// Never cuts within a character.
std::string CutUtf8(std::string bytes)
{
    if (bytes.size() <= MaxTextBytes)
        return bytes;
    std::size_t end = MaxTextBytes;
    while (end > 0 && (static_cast<unsigned char>(bytes[end]) & 0xc0) == 0x80)
        --end;
    bytes.resize(end);
    return bytes;
}

std::string EncodeTextField(const QString& text)
{
    std::string bytes = EncodeUserText(text);
    if (bytes.size() > MaxTextBytes)
        bytes = CutUtf8(EncodeText(text, CodePageUtf8));
    return bytes;
}

void AppendValue(std::string& bytes, const QString& text)
{
    const std::string field = EncodeTextField(text);
    AppendLittleEndian(bytes, static_cast<uint16_t>(field.size()));
    bytes += field;
}

void AppendValue(std::string& bytes, int16_t number)
{
    AppendLittleEndian(bytes, static_cast<uint16_t>(number));
}

void AppendValue(std::string& bytes, float position)
{
    AppendLittleEndian(bytes, std::bit_cast<uint32_t>(position));
}

bool TakeValue(std::string_view& bytes, QString& text)
{
    const std::optional<uint16_t> length = TakeLittleEndian<uint16_t>(bytes);
    if (!length || bytes.size() < *length)
        return false;
    text = DecodeUserText(bytes.substr(0, *length));
    bytes.remove_prefix(*length);
    return true;
}

bool TakeValue(std::string_view& bytes, int16_t& number)
{
    const std::optional<uint16_t> value = TakeLittleEndian<uint16_t>(bytes);
    number = static_cast<int16_t>(value.value_or(0));
    return value.has_value();
}

bool TakeValue(std::string_view& bytes, float& position)
{
    const std::optional<uint32_t> value = TakeLittleEndian<uint32_t>(bytes);
    position = std::bit_cast<float>(value.value_or(0));
    return value && std::isfinite(position);
}

} // namespace

const SettingsRecord& EmptySettingsRecord()
{
    const QString text;
    constexpr int16_t number = 0;
    constexpr float position = 0;
    static const SettingsRecord record = {
        text, // InputEncoding
        number, // NamespaceErrorWarning
        text, // OutputEncoding
        text, // OutputStyle
        number, // TagHighlighting
        number, // PreviewOnChange
        text, // DisplayFontName
        text, // DisplayFontSize
        text, // DisplayFontWeight
        text, // DisplayTextAlign
        text, // DisplayLeftMargin
        text, // DisplayRightMargin
        text, // DisplayForeColor
        text, // DisplayBackColor
        number, // NodeShift
        text, // TagColor
        text, // AttrNameColor
        text, // AttrValColor
        text, // TagFontWeight
        number, // SoundsOn
        number, // ShowNbsp
        number, // CommandLineInfo
        text, // ValidateOption
        text, // SchemaFile
        text, // LastBookFolder
        text, // LastSaveFolder
        text, // LastImageFolder
        text, // LastFile
        position, // MainFormLeft
        position, // MainFormTop
        position, // MainFormWidth
        position, // MainFormHeight
    };
    return record;
}

std::string EncodeSettings(const SettingsRecord& record)
{
    std::string bytes;
    for (const SettingsValue& value : record)
        std::visit([&bytes](const auto& field) { AppendValue(bytes, field); }, value);
    return bytes;
}

std::optional<SettingsRecord> DecodeSettings(std::string_view bytes)
{
    SettingsRecord record = EmptySettingsRecord();
    for (SettingsValue& value : record) {
        if (!std::visit([&bytes](auto& field) { return TakeValue(bytes, field); }, value))
            return std::nullopt;
    }
    return record;
}

} // namespace vmk
