#pragma once

#include "SpellDictionaries.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vmk {

/// Looks for suggestions on a thread of its own, with dictionaries of its own: a dictionary may take more
/// than a second for one word, and cannot be interrupted.
class SuggestionWorker
{
public:
    /// What is known about a word.
    struct Found
    {
        QStringList words; ///< Best first.
        bool complete = false; ///< All that the dictionary suggests; else words that were found at once.
    };

    /// @param wordFound is called on the worker's thread for each thing that becomes known; never after the
    ///     worker is gone.
    explicit SuggestionWorker(std::function<void(const QString& word)> wordFound);
    /// Does not wait for a word in work; its thread ends by itself, at the latest with the process.
    ~SuggestionWorker();
    SuggestionWorker(const SuggestionWorker&) = delete;
    SuggestionWorker& operator=(const SuggestionWorker&) = delete;

    /// Sets which dictionaries suggest.
    void setDictionaries(const SpellDictionaries& chosen);
    /// Asks for a word, before all others; words that wait and are not asked for again are dropped.
    /// @param following a word that is likely to be asked for next; may be empty.
    void request(const QString& word, const QString& following);
    /// What is known about a word by now.
    [[nodiscard]] Found found(const QString& word) const;
    /// The same, after waiting until it is complete or the time has passed.
    [[nodiscard]] Found wait(const QString& word, std::chrono::steady_clock::time_point until) const;

private:
    struct State;
    std::shared_ptr<State> state;
};

} // namespace vmk
