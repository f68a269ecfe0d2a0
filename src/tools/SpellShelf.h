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

/// Dictionaries that are loaded, or being loaded, each once. May be used from several threads; the spellers
/// that it returns may not (see `Speller`).
class SpellShelf
{
public:
    SpellShelf() = default;
    /// Waits for the loads that are running.
    ~SpellShelf() = default;
    SpellShelf(const SpellShelf&) = delete;
    SpellShelf& operator=(const SpellShelf&) = delete;

    /// Begins to load a dictionary on another thread, unless that was done already.
    void prepare(const SpellDictionary& dictionary);
    /// Waits for a dictionary. Null if it cannot be loaded; `problems` then has a line about it.
    [[nodiscard]] std::shared_ptr<Speller> get(const SpellDictionary& dictionary);
    /// The first dictionary of the list that can be loaded; null for none.
    [[nodiscard]] std::shared_ptr<Speller> firstOf(const std::vector<SpellDictionary>& dictionaries);

    /// One line for each dictionary that was asked for and cannot be loaded: "FILE: why".
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

    std::shared_future<Loaded> entryOf(const SpellDictionary& dictionary);

    mutable std::mutex guard; ///< For all that follows.
    std::vector<Entry> entries;
    QStringList failures;
};

} // namespace vmk
