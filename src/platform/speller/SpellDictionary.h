#pragma once

#include <QChar>
#include <QString>
#include <QStringList>

#include <vector>

namespace vmk {

/// The two files of one installed Hunspell dictionary.
struct SpellDictionary
{
    /// The base name of the files: "ru_RU", "fr", "sr_Latn_RS".
    QString name;
    QString affixFile;
    QString wordFile;
    /// The files belong to the system and are trusted. Others are first tried in a separate process.
    bool ofSystem = false;

    /// Returns the language part of the name in lower case: "ru".
    [[nodiscard]] QString language() const;
    /// Returns the script of the language.
    [[nodiscard]] QChar::Script script() const;

    bool operator==(const SpellDictionary&) const = default;
};

/// Returns the language part of a language tag in lower case: "en" for "en-GB", "en_US" and " EN ".
[[nodiscard]] QString LanguageOfTag(const QString& tag);

/// Returns the folders with dictionaries, those of the user first: the folders in DICPATH, `hunspell`
/// in the user's data folder and in the system's data folders. The environment variable
/// VELLUMARK_DICTIONARIES (folders separated by colons) replaces them all.
[[nodiscard]] QStringList DictionaryFolders();

/// Returns all dictionaries in these folders: pairs of ordinary files NAME.aff and NAME.dic. In the order of
/// the folders, and by name within a folder. The files are not read.
[[nodiscard]] std::vector<SpellDictionary> InstalledDictionaries(const QStringList& folders);

} // namespace vmk
