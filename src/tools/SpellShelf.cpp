#include "SpellShelf.h"

#include <algorithm>

namespace vmk {

using namespace Qt::StringLiterals;

std::shared_future<SpellShelf::Loaded> SpellShelf::entryOf(const SpellDictionary& dictionary,
                                                           const std::shared_future<Loaded>& after)
{
    const std::lock_guard lock(guard);
    const auto known = std::ranges::find(entries, dictionary, &Entry::dictionary);
    if (known != entries.end())
        return known->loaded;
    const auto load = [dictionary, after] {
        if (after.valid())
            after.wait();
        Loaded loaded;
        loaded.speller = Speller::Load(dictionary, &loaded.problem);
        return loaded;
    };
    // If the system starts no further thread: on the thread of the caller that waits for it.
    std::shared_future<Loaded> loaded = std::async(std::launch::async | std::launch::deferred, load).share();
    entries.push_back({dictionary, loaded});
    return loaded;
}

void SpellShelf::prepare(const std::vector<SpellDictionary>& dictionaries)
{
    std::shared_future<Loaded> last;
    for (const SpellDictionary& dictionary : dictionaries)
        last = entryOf(dictionary, last);
}

std::shared_ptr<Speller> SpellShelf::get(const SpellDictionary& dictionary)
{
    const std::shared_future<Loaded> future = entryOf(dictionary);
    const Loaded& loaded = future.get();
    if (!loaded.speller) {
        const QString line = dictionary.wordFile + u": "_s + loaded.problem;
        const std::lock_guard lock(guard);
        if (!failures.contains(line))
            failures.append(line);
    }
    return loaded.speller;
}

std::shared_ptr<Speller> SpellShelf::firstOf(const std::vector<SpellDictionary>& dictionaries)
{
    for (const SpellDictionary& dictionary : dictionaries) {
        if (std::shared_ptr<Speller> speller = get(dictionary))
            return speller;
    }
    return nullptr;
}

QStringList SpellShelf::problems() const
{
    const std::lock_guard lock(guard);
    return failures;
}

} // namespace vmk
