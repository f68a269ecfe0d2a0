#include "Speller.h"

#include "DictionaryFiles.h"
#include "SpellDictionary.h"
#include "Trial.h"

#include <QFile>

#include <hunspell/hunspell.hxx>

#include <algorithm>
#include <iconv.h>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace vmk {
namespace {

using namespace Qt::StringLiterals;

/// Suggestions are slow, and the caller waits for the trial.
constexpr size_t TriedSuggestions = 2;

/// Converts between UTF-8 and a dictionary's encoding.
class Converter
{
public:
    Converter(const std::string& to, const std::string& from)
        : handle(::iconv_open(to.c_str(), from.c_str()))
    {
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;
    ~Converter()
    {
        if (isValid())
            ::iconv_close(handle);
    }

    [[nodiscard]] bool isValid() const { return handle != iconv_t(-1); } // NOLINT: the interface's constant

    /// Returns nothing for text with a character that the encoding lacks.
    [[nodiscard]] std::optional<std::string> convert(std::string_view text)
    {
        std::string result(4 * text.size() + 4, '\0');
        char* in = const_cast<char*>(text.data()); // NOLINT: read only
        char* out = result.data();
        size_t inLeft = text.size();
        size_t outLeft = result.size();
        ::iconv(handle, nullptr, nullptr, nullptr, nullptr);
        if (::iconv(handle, &in, &inLeft, &out, &outLeft) != 0)
            return std::nullopt;
        result.resize(result.size() - outLeft);
        return result;
    }

private:
    iconv_t handle;
};

/// Held while an engine is created or destroyed: Hunspell counts its instances in a variable without a lock.
std::mutex& EngineGuard()
{
    static std::mutex guard;
    return guard;
}

} // namespace

class Speller::Engine
{
public:
    Engine(const SpellDictionary& dictionary, const DictionaryFiles& files)
        : isUtf8(QLatin1StringView(files.encoding.c_str()).compare("UTF-8"_L1, Qt::CaseInsensitive) == 0)
        , toDictionary(files.encoding, "UTF-8")
        , fromDictionary("UTF-8", files.encoding)
    {
        if (!toDictionary.isValid() || !fromDictionary.isValid())
            return;
        letters = decoded(files.tryLetters);
        hunspell.emplace(QFile::encodeName(dictionary.affixFile).constData(),
                         QFile::encodeName(dictionary.wordFile).constData());
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;
    ~Engine()
    {
        const std::lock_guard lock(EngineGuard());
        hunspell.reset();
    }

    [[nodiscard]] bool isLoaded() const { return hunspell.has_value(); }

    [[nodiscard]] bool knowsAnyOf(const std::vector<std::string>& words)
    {
        return std::ranges::any_of(words, [this](const std::string& word) { return hunspell->spell(word); });
    }

    [[nodiscard]] bool isRight(QStringView word)
    {
        const std::optional<std::string> bytes = encoded(word);
        return bytes && hunspell->spell(*bytes);
    }

    [[nodiscard]] QStringList suggestions(QStringView word)
    {
        QStringList result;
        if (const std::optional<std::string> bytes = encoded(word)) {
            for (const std::string& suggestion : hunspell->suggest(*bytes))
                result.append(decoded(suggestion));
        }
        return result;
    }

    [[nodiscard]] const QString& tryLetters() const { return letters; }

private:
    [[nodiscard]] std::optional<std::string> encoded(QStringView word)
    {
        const QByteArray utf8 = word.toUtf8();
        const std::string_view bytes(utf8.constData(), size_t(utf8.size()));
        return isUtf8 ? std::optional<std::string>(bytes) : toDictionary.convert(bytes);
    }

    [[nodiscard]] QString decoded(const std::string& bytes)
    {
        return QString::fromStdString(isUtf8 ? bytes : fromDictionary.convert(bytes).value_or(std::string()));
    }

    bool isUtf8;
    Converter toDictionary;
    Converter fromDictionary;
    QString letters;
    std::optional<Hunspell> hunspell;
};

Speller::Speller(std::unique_ptr<Engine> loadedEngine)
    : engine(std::move(loadedEngine))
{
}

Speller::~Speller() = default;

std::unique_ptr<Speller> Speller::Load(const SpellDictionary& files, QString* problem)
{
    const DictionaryFiles known = ReadDictionaryFiles(files, problem);
    if (!problem->isEmpty())
        return nullptr;
    const auto makeEngine = [&] {
        const std::lock_guard lock(EngineGuard());
        return std::make_unique<Engine>(files, known);
    };
    const auto load = [&]() -> std::unique_ptr<Engine> {
        try {
            auto made = makeEngine();
            return made->isLoaded() && made->knowsAnyOf(known.sampleWords) ? std::move(made) : nullptr;
        } catch (const std::exception&) {
            return nullptr;
        }
    };
    const auto tryOut = [&] {
        const std::unique_ptr<Engine> tried = load();
        for (size_t i = 0; tried && i < std::min(known.sampleWords.size(), TriedSuggestions); ++i)
            (void)tried->suggestions(QString::fromStdString(known.sampleWords[i]) + u"zя"_s);
    };
    // Hunspell trusts its files. Damaged ones can end or stall the process that reads them.
    if (!files.ofSystem && !PassesTrial(tryOut, EngineGuard())) {
        *problem = u"is damaged"_s;
        return nullptr;
    }
    std::unique_ptr<Engine> loaded = load();
    if (!loaded) {
        *problem = u"is damaged, or in an unknown encoding"_s;
        return nullptr;
    }
    return std::unique_ptr<Speller>(new Speller(std::move(loaded)));
}

bool Speller::isRight(QStringView word)
{
    try {
        return word.size() <= LongestWord && engine->isRight(word);
    } catch (const std::exception&) {
        return false;
    }
}

QStringList Speller::suggestions(QStringView word)
{
    try {
        return word.size() <= LongestWord ? engine->suggestions(word) : QStringList();
    } catch (const std::exception&) {
        return {};
    }
}

const QString& Speller::tryLetters() const
{
    return engine->tryLetters();
}

} // namespace vmk
