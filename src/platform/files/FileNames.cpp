#include "FileNames.h"

#include "Utf8.h"

#include <algorithm>
#include <string_view>

namespace vmk {

namespace {

constexpr char16_t FirstByteMark = 0xdc80;
constexpr char16_t LastByteMark = 0xdcff;
constexpr char16_t ByteMarkBase = 0xdc00;

/// Whether the character at `at` represents a byte. After a high surrogate it is half of a character.
bool IsByteMark(QStringView text, qsizetype at)
{
    return text[at] >= QChar(FirstByteMark) && text[at] <= QChar(LastByteMark)
        && (at == 0 || !text[at - 1].isHighSurrogate());
}

} // namespace

QString DecodeFileName(const QByteArray& name)
{
    QString text;
    text.reserve(name.size());
    std::string_view rest(name.constData(), static_cast<std::size_t>(name.size()));
    while (!rest.empty()) {
        const Utf8Character next = DecodeUtf8(rest);
        if (next.length == 0)
            text += QChar(static_cast<char16_t>(ByteMarkBase + static_cast<unsigned char>(rest.front())));
        else
            text += QStringView(QChar::fromUcs4(next.character));
        rest.remove_prefix(std::max<std::size_t>(next.length, 1));
    }
    return text;
}

QByteArray EncodeFileName(const QString& name)
{
    if (name.contains(QChar(0)))
        return {};
    if (name.isValidUtf16())
        return name.toUtf8();
    QByteArray bytes;
    qsizetype done = 0;
    for (qsizetype at = 0; at < name.size(); ++at) {
        if (!IsByteMark(name, at))
            continue;
        const QStringView text = QStringView(name).sliced(done, at - done);
        if (!text.isValidUtf16())
            return {};
        bytes += text.toUtf8();
        bytes += static_cast<char>(name[at].unicode() - ByteMarkBase);
        done = at + 1;
    }
    const QStringView rest = QStringView(name).sliced(done);
    return rest.isValidUtf16() ? bytes + rest.toUtf8() : QByteArray();
}

QString PathOfUrl(const QUrl& url)
{
    return DecodeFileName(QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1()));
}

QString ReadableName(QString name)
{
    if (name.isValidUtf16())
        return name;
    for (qsizetype at = 0; at < name.size(); ++at) {
        if (IsByteMark(name, at))
            name[at] = QChar::ReplacementCharacter;
    }
    return name;
}

QString ShortName(QString name, qsizetype bytes)
{
    // Half a surrogate pair has no bytes.
    const auto fits = [bytes](const QString& tried) {
        const QByteArray encoded = EncodeFileName(tried);
        return !encoded.isEmpty() && encoded.size() <= bytes;
    };
    while (!name.isEmpty() && !fits(name))
        name.chop(1);
    return name;
}

} // namespace vmk
