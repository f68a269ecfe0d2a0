#include "MemberNames.h"

#include <QStringDecoder>

#include <algorithm>
#include <optional>

namespace vmk {

namespace {

/// The characters 128 to 255 of code page 866.
constexpr std::u16string_view UpperHalf866 = u"АБВГДЕЖЗИЙКЛМНОПРСТУФХЦЧШЩЪЫЬЭЮЯабвгдежзийклмноп"
                                             u"░▒▓│┤╡╢╖╕╣║╗╝╜╛┐└┴┬├─┼╞╟╚╔╩╦╠═╬╧╨╤╥╙╘╒╓╫╪┘┌█▄▌▐▀"
                                             u"рстуфхцчшщъыьэюяЁёЄєЇїЎў°∙·√№¤■\u00A0";
static_assert(UpperHalf866.size() == 128);

QString OfCodePage866(std::string_view bytes)
{
    QString text;
    text.reserve(static_cast<qsizetype>(bytes.size()));
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += byte < 128 ? QChar(char16_t(byte)) : QChar(UpperHalf866[byte - 128U]);
    }
    return text;
}

std::optional<QString> OfUtf8(std::string_view bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

bool IsBoxDrawing866(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return 0xB0 <= byte && byte <= 0xDF;
}

} // namespace

QString MemberName(std::string_view bytes, bool isUtf8)
{
    if (isUtf8 || std::ranges::any_of(bytes, IsBoxDrawing866))
        if (std::optional<QString> text = OfUtf8(bytes))
            return *std::move(text);
    return OfCodePage866(bytes);
}

} // namespace vmk
