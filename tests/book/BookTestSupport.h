#pragma once

#include "BookReference.h"
#include "Corpus.h"
#include "DisplayValues.h"
#include "TreeLines.h"

#include <QStringList>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace vmk::test {

/// The display values of the default settings.
DisplayValues DefaultValues();

QStringList ToList(const std::vector<std::string>& strings);
std::vector<std::string> ToStrings(const QStringList& list);
reference::DisplayValues ToReference(const DisplayValues& values);

/// Random texts made of fragments that are special to the conversions.
class TextMaker
{
public:
    explicit TextMaker(uint32_t seed)
        : random(seed)
    {
    }

    /// Any text, mostly not well-formed.
    std::string soup();
    /// A well-formed text, with a declaration in most cases.
    std::string book();
    /// A page as it can be after a user's edits.
    std::string page();
    size_t below(size_t count) { return random() % count; }

private:
    std::string piece(const std::vector<std::string>& pieces) { return pieces[below(pieces.size())]; }
    std::string element(int depth);
    std::string text();
    std::string value();

    std::mt19937 random;
};

/// The first difference of two texts, with some text around it.
std::string Difference(const std::string& got, const std::string& expected);

} // namespace vmk::test
