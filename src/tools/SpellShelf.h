#pragma once

#include "SpellDictionary.h"
#include "Speller.h"

#include <QString>
#include <QStringList>

#include <future>
#include <memory>
#include <mutex>
#include <vector>

namespace vmk {

/// The dictionaries that are loaded or being loaded, each once. The shelf can be used by several threads at
/// the same time; the spellers that it returns cannot (see `Speller`).
class SpellShelf
{
public:
    SpellShelf() = default;
    /// Waits until no dictionary is being loaded.
    ~SpellShelf() = default;
    SpellShelf(const SpellShelf&) = delete;
    SpellShelf& operator=(const SpellShelf&) = delete;

    /// Starts to load dictionaries on another thread, one after the other.
    void prepare(const std::vector<SpellDictionary>& dictionaries);
    /// Waits for a dictionary and returns it. Null if it cannot be loaded; `problems` then has a line about
    /// it.
    [[nodiscard]] std::shared_ptr<Speller> get(const SpellDictionary& dictionary);
    /// Returns the first dictionary of a list that can be loaded; null for none.
    [[nodiscard]] std::shared_ptr<Speller> firstOf(const std::vector<SpellDictionary>& dictionaries);

    /// Returns one line for each requested dictionary that cannot be loaded: "FILE: reason".
    [[nodiscard]] QStringList problems() const;

private:
    struct Loaded
    {
        std::shared_ptr<Speller> speller;
        QString problem;
    };
    struct Entry
    {
        SpellDictionary dictionary;
        std::shared_future<Loaded> loaded;
    };

    std::shared_future<Loaded> entryOf(const SpellDictionary& dictionary,
                                       const std::shared_future<Loaded>& after = {});

    mutable std::mutex guard; ///< For all members below.
    std::vector<Entry> entries;
    QStringList failures;
};

} // namespace vmk
