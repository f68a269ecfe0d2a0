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
    /// The files come with the system and are trusted. Others are tried out in a process of their own first.
    bool ofSystem = false;

    /// The language part of the name in small letters: "ru".
    [[nodiscard]] QString language() const;
    /// The script that the language is written in.
    [[nodiscard]] QChar::Script script() const;

    bool operator==(const SpellDictionary&) const = default;
};

/// The language part of a language tag in small letters: "en" for "en-GB", "en_US" and " EN ".
[[nodiscard]] QString LanguageOfTag(const QString& tag);

/// The folders that dictionaries are looked for in, the user's own first: the folders in DICPATH, `hunspell`
/// in the user's data folder and in the system's data folders. The environment variable
/// VELLUMARK_DICTIONARIES (folders separated by colons) replaces them all.
[[nodiscard]] QStringList DictionaryFolders();

/// All dictionaries in these folders: pairs of ordinary files NAME.aff and NAME.dic. In the order of the
/// folders, and by name within a folder. Nothing is read yet.
[[nodiscard]] std::vector<SpellDictionary> InstalledDictionaries(const QStringList& folders);

} // namespace vmk
