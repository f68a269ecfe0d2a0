#pragma once

#include <QString>
#include <QStringList>

#include <string>
#include <vector>

namespace vmk {

struct SpellDictionary;

/// Facts about the files of a dictionary that are needed before Hunspell reads them.
struct DictionaryFiles
{
    std::string encoding; ///< For `iconv`; "UTF-8" for most.
    std::string tryLetters; ///< In that encoding.
    std::vector<std::string> sampleWords; ///< Some of its words, in that encoding, without flags.
};

/// Reads and checks the files of a dictionary.
/// @param problem receives one line if the files are no dictionary; empty otherwise.
[[nodiscard]] DictionaryFiles ReadDictionaryFiles(const SpellDictionary& dictionary, QString* problem);

} // namespace vmk
