#include "SpellDictionaries.h"

#include <QLocale>

#include <algorithm>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Returns "en_gb" for "en-GB.UTF-8".
QString PlainTag(const QString& tag)
{
    return tag.trimmed().toLower().replace(u'-', u'_').section(u'.', 0, 0);
}

void AppendNew(std::vector<SpellDictionary>& list, const std::vector<SpellDictionary>& added)
{
    for (const SpellDictionary& dictionary : added) {
        if (std::ranges::find(list, dictionary) == list.end())
            list.push_back(dictionary);
    }
}

} // namespace

SpellDictionaries::SpellDictionaries(std::vector<SpellDictionary> installedDictionaries,
                                     const QString& bookLanguage, const QString& userLocale)
    : installed(std::move(installedDictionaries))
    , bookTag(PlainTag(bookLanguage))
    , userTag(PlainTag(userLocale))
{
}

std::vector<SpellDictionary> SpellDictionaries::ofTag(const QString& tag) const
{
    const QString language = LanguageOfTag(tag);
    if (language.isEmpty())
        return {};
    std::vector<SpellDictionary> found;
    std::ranges::copy_if(installed, std::back_inserter(found), [&](const SpellDictionary& dictionary) {
        return dictionary.language() == language;
    });
    // The requested variety, that of the user, the usual one of the language, any other.
    const QString usual = PlainTag(QLocale(language).name());
    const auto rank = [&](const SpellDictionary& dictionary) {
        const QString name = PlainTag(dictionary.name);
        const QStringList wanted = {tag, userTag, usual, language};
        for (qsizetype i = 0; i < wanted.size(); ++i) {
            if (name == wanted[i] || (wanted[i].contains(u'_') && name.startsWith(wanted[i] + u'_')))
                return i;
        }
        return wanted.size();
    };
    std::ranges::stable_sort(found, {}, rank);
    return found;
}

std::vector<SpellDictionary> SpellDictionaries::main() const
{
    std::vector<SpellDictionary> found = ofTag(bookTag);
    return found.empty() ? ofTag(userTag) : found;
}

std::vector<SpellDictionary> SpellDictionaries::ofScript(QChar::Script script) const
{
    std::vector<SpellDictionary> list = main();
    AppendNew(list, ofTag(script == QChar::Script_Cyrillic ? u"ru"_s : u"en"_s));
    AppendNew(list, ofTag(userTag));
    AppendNew(list, installed);
    std::erase_if(list, [&](const SpellDictionary& dictionary) { return dictionary.script() != script; });
    return list;
}

} // namespace vmk
