#include "SpellDictionary.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QStandardPaths>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView FolderName("hunspell");

QStringList FoldersOfVariable(const char* variable)
{
    return qEnvironmentVariable(variable).split(u':', Qt::SkipEmptyParts);
}

/// Returns true for a folder that only an administrator can change.
bool IsFolderOfSystem(const QString& folder)
{
    const QString path = QFileInfo(folder).canonicalFilePath();
    return path.startsWith("/usr/"_L1) || path.startsWith("/opt/"_L1);
}

} // namespace

QString LanguageOfTag(const QString& tag)
{
    const QString trimmed = tag.trimmed().toLower();
    qsizetype end = 0;
    while (end < trimmed.size() && trimmed[end].isLetter())
        ++end;
    return trimmed.left(end);
}

QString SpellDictionary::language() const
{
    return LanguageOfTag(name);
}

QChar::Script SpellDictionary::script() const
{
    // The language's name for itself is written in its script.
    const QString ownName = QLocale(name).nativeLanguageName();
    for (const QChar c : ownName) {
        if (c.isLetter())
            return c.script();
    }
    return QChar::Script_Latin;
}

QStringList DictionaryFolders()
{
    if (qEnvironmentVariableIsSet("VELLUMARK_DICTIONARIES"))
        return FoldersOfVariable("VELLUMARK_DICTIONARIES");
    QStringList folders = FoldersOfVariable("DICPATH");
    folders += QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, FolderName,
                                         QStandardPaths::LocateDirectory);
    folders += u"/usr/share/"_s + FolderName;
    folders.removeDuplicates();
    return folders;
}

std::vector<SpellDictionary> InstalledDictionaries(const QStringList& folders)
{
    std::vector<SpellDictionary> dictionaries;
    for (const QString& folder : folders) {
        const bool ofSystem = IsFolderOfSystem(folder);
        for (const QFileInfo& words : QDir(folder).entryInfoList({u"*.dic"_s}, QDir::Files, QDir::Name)) {
            const QFileInfo affixes(folder + u'/' + words.completeBaseName() + u".aff"_s);
            // A pipe or a device would block the reader.
            if (words.isFile() && affixes.isFile())
                dictionaries.push_back(
                    {words.completeBaseName(), affixes.filePath(), words.filePath(), ofSystem});
        }
    }
    return dictionaries;
}

} // namespace vmk
