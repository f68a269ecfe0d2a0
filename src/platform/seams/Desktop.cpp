#include "Desktop.h"

#include "Files.h"

namespace vmk {

namespace {

QString& OwnClipboard()
{
    static QString text;
    return text;
}

} // namespace

Seam<void(const QString&)>& SoundSeam()
{
    static Seam<void(const QString&)> seam([](const QString&) {});
    return seam;
}

Seam<void()>& BeepSeam()
{
    static Seam<void()> seam([] {});
    return seam;
}

void Beep()
{
    BeepSeam()();
}

Seam<bool(const QString&)>& OpenSeam()
{
    static Seam<bool(const QString&)> seam([](const QString&) { return false; });
    return seam;
}

QUrl UrlOfTarget(const QString& target)
{
    const auto isLetter = [](QChar c) { return c.unicode() < 0x80 && c.isLetter(); };
    qsizetype end = 0;
    while (end < target.size()
           && (isLetter(target[end]) || (end > 0 && QStringView(u"0123456789+-.").contains(target[end]))))
        ++end;
    // One letter is no scheme.
    if (end > 1 && end < target.size() && target[end] == u':')
        return QUrl(target);
    return EntryExists(target) ? QUrl::fromLocalFile(AbsolutePath(target)) : QUrl(target);
}

bool OpenWithSystem(const QString& target)
{
    return OpenSeam()(target);
}

Seam<QString()>& ClipboardTextSeam()
{
    static Seam<QString()> seam([] { return OwnClipboard(); });
    return seam;
}

Seam<void(const QString&)>& SetClipboardTextSeam()
{
    static Seam<void(const QString&)> seam([](const QString& text) { OwnClipboard() = text; });
    return seam;
}

QString ClipboardText()
{
    return ClipboardTextSeam()();
}

void SetClipboardText(const QString& text)
{
    SetClipboardTextSeam()(text);
}

Seam<QString()>& PrimaryTextSeam()
{
    static Seam<QString()> seam([] { return QString(); });
    return seam;
}

Seam<void(const QString&)>& SetPrimaryTextSeam()
{
    static Seam<void(const QString&)> seam([](const QString&) {});
    return seam;
}

QString PrimaryText()
{
    return PrimaryTextSeam()();
}

void SetPrimaryText(const QString& text)
{
    SetPrimaryTextSeam()(text);
}

} // namespace vmk
