#pragma once

#include "Workplace.h"

#include <QString>

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace vmk {

/// A folder of small dictionaries of a test's own, in place of all others for its scope.
class SmallDictionaries
{
public:
    SmallDictionaries()
        : before(qEnvironmentVariable("VELLUMARK_DICTIONARIES"))
        , wasSet(qEnvironmentVariableIsSet("VELLUMARK_DICTIONARIES"))
    {
        use(folder.Folder());
    }
    SmallDictionaries(const SmallDictionaries&) = delete;
    SmallDictionaries& operator=(const SmallDictionaries&) = delete;
    ~SmallDictionaries()
    {
        if (wasSet)
            use(before);
        else
            qunsetenv("VELLUMARK_DICTIONARIES");
    }

    /// English, Russian and German with some dozen words.
    void makeUsual() const
    {
        make("en_US",
             "the book title section body a first second third words more line here is one two three "
             "well known don't Paul Title html lang genre ru en de");
        make(
            "ru_RU",
            "книга слово слова первая вторая третья строка ёж еж что то он она дом мама красно белый Москва");
        make("de_DE", "das Buch ist gut für");
    }

    /// Makes a dictionary with these words, separated by blanks.
    void make(const std::string& name, std::string_view words,
              std::string_view affixes = "SET UTF-8\nTRY esianrtolcdugmphbyfvkw\n") const
    {
        std::string lines;
        size_t count = 0;
        for (size_t at = 0; at < words.size();) {
            const size_t end = std::min(words.find(' ', at), words.size());
            lines += std::string(words.substr(at, end - at)) + '\n';
            ++count;
            at = end + 1;
        }
        folder.Make(QString::fromStdString(name + ".aff"), affixes);
        folder.Make(QString::fromStdString(name + ".dic"), std::to_string(count) + '\n' + lines);
    }

    const Workplace folder;

private:
    static void use(const QString& folders) { qputenv("VELLUMARK_DICTIONARIES", folders.toUtf8()); }

    QString before;
    bool wasSet;
};

} // namespace vmk
