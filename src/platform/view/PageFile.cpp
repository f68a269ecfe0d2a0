#include "PageFile.h"

#include "CodePages.h"

#include <QFile>
#include <QUrl>

#include <array>
#include <string_view>

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The charset of a page must be named within this number of bytes.
constexpr qsizetype CharsetSearch = 1024;

struct NamedCodePage
{
    const char* name;
    int codePage;
};

constexpr std::array CodePageNames = std::to_array<NamedCodePage>({
    {"windows-1250", CodePageCentralEurope},
    {"windows-1251", CodePageCyrillic},
    {"windows-1252", CodePageWestern},
});

bool IsUtf16(const QByteArray& bytes)
{
    return bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff");
}

} // namespace

QString PathOfPage(const QString& target)
{
    const QUrl url(target);
    return url.isLocalFile() ? url.toLocalFile() : target;
}

QByteArray ReadPageFile(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.readAll();
    const std::string_view view(bytes.constData(), size_t(bytes.size()));
    if (IsUtf16(bytes) || IsValidUtf8(view))
        return bytes;
    const QByteArray head = bytes.left(CharsetSearch).toLower();
    for (const NamedCodePage& named : CodePageNames) {
        if (head.contains(named.name))
            return QByteArray::fromStdString(BytesToUtf8(view, named.codePage));
    }
    return bytes;
}

} // namespace vmk
