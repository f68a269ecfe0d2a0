#pragma once

#include "SpellDictionaries.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace vmk {

/// Searches for suggestions on a separate thread with separate dictionaries: a dictionary can take more than
/// a second for one word, and cannot be interrupted.
class SuggestionWorker
{
public:
    /// The suggestions for a word.
    struct Found
    {
        QStringList words; ///< Best first.
        bool complete = false; ///< The suggestions of the dictionary; otherwise only similar words, which are
                               ///< found sooner.
    };

    /// @param wordFound called on the worker's thread when suggestions for a word are found; never after the
    ///     worker is destroyed.
    explicit SuggestionWorker(std::function<void(const QString& word)> wordFound);
    /// Does not wait for a search in progress; its thread ends by itself, at the latest with the process.
    ~SuggestionWorker();
    SuggestionWorker(const SuggestionWorker&) = delete;
    SuggestionWorker& operator=(const SuggestionWorker&) = delete;

    /// Sets the dictionaries.
    void setDictionaries(const SpellDictionaries& chosen);
    /// Requests a word; earlier requests that are still waiting are cancelled.
    /// @param following the word that is likely to be requested next; may be empty.
    void request(const QString& word, const QString& following);
    /// Returns the suggestions found so far.
    [[nodiscard]] Found found(const QString& word) const;
    /// Waits until the suggestions are complete or the time has passed, and returns them.
    [[nodiscard]] Found wait(const QString& word, std::chrono::steady_clock::time_point until) const;

private:
    struct State;
    std::shared_ptr<State> state;
};

} // namespace vmk
