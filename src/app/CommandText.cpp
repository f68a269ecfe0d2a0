#include "CommandText.h"

using namespace Qt::StringLiterals;

namespace vmk {

namespace {

/// The text before the last `option`, without the one character in between; empty if there is no such text.
QString PathBefore(const QString& option, const QString& text)
{
    return text.left(std::max<qsizetype>(text.lastIndexOf(option) - 1, 0));
}

} // namespace

QString CommandText(const QStringList& arguments)
{
    return arguments.join(u' ');
}

StartOrder ReadCommandText(const QString& text)
{
    if (text.isEmpty())
        return {};
    if (text.startsWith(u'"') && text.endsWith(u'"'))
        return {StartCourse::LoadBook, text.mid(1).chopped(text.size() > 1 ? 1 : 0)};

    const QString lastPiece = text.mid(text.lastIndexOf(u'-') + 1).trimmed();
    if (lastPiece == u"L")
        return {StartCourse::LoadBook, PathBefore(u"-L"_s, text)};
    if (lastPiece == u"V")
        return {StartCourse::ValidateBook, PathBefore(u"-V"_s, text)};
    return {StartCourse::LoadBook, text};
}

} // namespace vmk
