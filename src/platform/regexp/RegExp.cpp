#include "RegExp.h"

#include "RegExpSyntax.h"

#define PCRE2_CODE_UNIT_WIDTH 16
#include <pcre2.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

namespace vmk {
namespace {

template <auto free>
struct Freed
{
    template <typename Handle>
    void operator()(Handle* handle) const
    {
        free(handle);
    }
};

using Code = std::unique_ptr<pcre2_code, Freed<&pcre2_code_free>>;
using MatchData = std::unique_ptr<pcre2_match_data, Freed<&pcre2_match_data_free>>;
using MatchContext = std::unique_ptr<pcre2_match_context, Freed<&pcre2_match_context_free>>;
using CompileContext = std::unique_ptr<pcre2_compile_context, Freed<&pcre2_compile_context_free>>;
using JitStack = std::unique_ptr<pcre2_jit_stack, Freed<&pcre2_jit_stack_free>>;

/// Never null, which the engine treats as an error.
PCRE2_SPTR EngineUnits(QStringView text)
{
    static_assert(sizeof(PCRE2_UCHAR) == sizeof(char16_t));
    return reinterpret_cast<PCRE2_SPTR>(text.isNull() ? u"" : text.utf16());
}

// ---------------------------------------------------------------- compiled patterns

struct Key
{
    QString pattern;
    bool ignoreCase;
    bool multiLine;
    bool byteText;

    bool operator==(const Key&) const = default;
};

struct Compiled
{
    Code code;
    int groupCount = 0;
};

Code Compile(const EnginePattern& pattern, const Key& key)
{
    uint32_t options = PCRE2_ALLOW_EMPTY_CLASS | PCRE2_DOLLAR_ENDONLY | PCRE2_MATCH_UNSET_BACKREF
        | PCRE2_NEVER_BACKSLASH_C | PCRE2_ALT_CIRCUMFLEX;
    if (!key.byteText)
        options |= PCRE2_UTF | PCRE2_MATCH_INVALID_UTF;
    if (key.ignoreCase)
        options |= PCRE2_CASELESS;
    if (key.multiLine)
        options |= PCRE2_MULTILINE;
    const CompileContext context(pcre2_compile_context_create(nullptr));
    pcre2_set_newline(context.get(), PCRE2_NEWLINE_LF);
    int error = 0;
    PCRE2_SIZE place = 0;
    Code code(pcre2_compile(EngineUnits(pattern.text), static_cast<PCRE2_SIZE>(pattern.text.size()), options,
                            &error, &place, context.get()));
    // Without the just-in-time compiler the engine interprets the pattern: slower, with the same results.
    if (code)
        pcre2_jit_compile(code.get(), PCRE2_JIT_COMPLETE);
    return code;
}

std::shared_ptr<const Compiled> MakeCompiled(const Key& key)
{
    const auto pattern = TranslatePattern(key.pattern);
    if (!pattern)
        return nullptr;
    Code code = Compile(*pattern, key);
    if (!code)
        return nullptr;
    return std::make_shared<const Compiled>(Compiled{std::move(code), pattern->groupCount});
}

/// The most recently used patterns, latest first; bad ones too, so that they are not compiled again.
class Cache
{
public:
    std::shared_ptr<const Compiled> find(const Key& key)
    {
        const std::lock_guard lock(mutex);
        const auto known = std::find_if(entries.begin(), entries.end(),
                                        [&key](const Entry& entry) { return entry.first == key; });
        if (known != entries.end()) {
            entries.splice(entries.begin(), entries, known);
            return known->second;
        }
        entries.emplace_front(key, MakeCompiled(key));
        if (entries.size() > Capacity)
            entries.pop_back();
        return entries.front().second;
    }

private:
    static constexpr size_t Capacity = 64;
    using Entry = std::pair<Key, std::shared_ptr<const Compiled>>;

    std::mutex mutex;
    std::list<Entry> entries;
};

std::shared_ptr<const Compiled> FindCompiled(const Key& key)
{
    static Cache cache;
    return cache.find(key);
}

// ---------------------------------------------------------------- runaway searches

/// The processor time of this thread, so that a busy machine does not make a normal search fail.
std::chrono::nanoseconds ThreadTime()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// Ends a search that takes too long. The engine calls back at the check points of the pattern; the faster
/// the calls, the fewer of them read the clock.
class Watch
{
public:
    explicit Watch(qsizetype textLength)
        : lastLook(ThreadTime())
        , deadline(lastLook + BaseTime + textLength * TimeForUnit)
        , mostCalls(std::clamp<qsizetype>(UnwatchedUnits / (textLength + 1), 16, 1024))
    {
    }

    static int ask(pcre2_callout_block*, void* self)
    {
        auto& watch = *static_cast<Watch*>(self);
        return --watch.callsLeft > 0 || watch.look() ? 0 : PCRE2_ERROR_CALLOUT;
    }

private:
    /// Returns whether time remains.
    bool look()
    {
        const auto now = ThreadTime();
        callsBetween = now - lastLook < Soon ? std::min(2 * callsBetween, mostCalls) : 1;
        callsLeft = callsBetween;
        lastLook = now;
        return now < deadline;
    }

    static constexpr auto BaseTime = std::chrono::milliseconds(250);
    static constexpr auto TimeForUnit = std::chrono::nanoseconds(100);
    static constexpr auto Soon = std::chrono::milliseconds(2);
    /// Between two calls the engine reads the text at most once: this limits the code units between two
    /// readings of the clock.
    static constexpr qsizetype UnwatchedUnits = 100'000'000;

    std::chrono::nanoseconds lastLook;
    std::chrono::nanoseconds deadline;
    qsizetype mostCalls;
    qsizetype callsBetween = 1;
    qsizetype callsLeft = 1;
};

pcre2_jit_stack* ThreadJitStack()
{
    constexpr size_t Start = 65'536;
    constexpr size_t Most = 32'000'000;
    thread_local const JitStack stack(pcre2_jit_stack_create(Start, Most, nullptr));
    return stack.get();
}

} // namespace

// ---------------------------------------------------------------- matching

/// Finds the matches in a text one after the other.
class RegExp::Matcher
{
public:
    Matcher(std::shared_ptr<const Compiled> pattern, QStringView subject)
        : compiled(std::move(pattern))
        , text(subject)
        , watch(subject.size())
        , data(pcre2_match_data_create_from_pattern(compiled->code.get(), nullptr))
        , context(pcre2_match_context_create(nullptr))
    {
        pcre2_jit_stack_assign(context.get(), nullptr, ThreadJitStack());
        pcre2_set_callout(context.get(), &Watch::ask, &watch);
    }

    enum Outcome
    {
        Found,
        NotFound,
        Failed
    };

    Outcome next();

    [[nodiscard]] qsizetype begin() const { return static_cast<qsizetype>(spans()[0]); }
    [[nodiscard]] qsizetype end() const { return static_cast<qsizetype>(spans()[1]); }
    [[nodiscard]] int groupCount() const { return compiled->groupCount; }
    /// Group 0 is the whole match.
    [[nodiscard]] QStringView group(int number) const;

private:
    [[nodiscard]] const PCRE2_SIZE* spans() const { return pcre2_get_ovector_pointer(data.get()); }

    std::shared_ptr<const Compiled> compiled;
    QStringView text;
    Watch watch;
    MatchData data;
    MatchContext context;
    qsizetype from = 0;
};

RegExp::Matcher::Outcome RegExp::Matcher::next()
{
    if (from > text.size())
        return NotFound;
    const int found
        = pcre2_match(compiled->code.get(), EngineUnits(text), static_cast<PCRE2_SIZE>(text.size()),
                      static_cast<PCRE2_SIZE>(from), 0, data.get(), context.get());
    if (found == PCRE2_ERROR_NOMATCH)
        return NotFound;
    if (found < 0)
        return Failed;
    from = end();
    if (begin() == end()) {
        const bool pair
            = from + 1 < text.size() && text[from].isHighSurrogate() && text[from + 1].isLowSurrogate();
        from += pair ? 2 : 1;
    }
    return Found;
}

QStringView RegExp::Matcher::group(int number) const
{
    const PCRE2_SIZE* const span = spans() + 2 * static_cast<ptrdiff_t>(number);
    const PCRE2_SIZE first = span[0];
    const PCRE2_SIZE last = span[1];
    if (first == PCRE2_UNSET)
        return {};
    return text.mid(static_cast<qsizetype>(first), static_cast<qsizetype>(last - first));
}

namespace {

/// One part of a parsed replacement template.
struct TemplatePart
{
    enum Kind
    {
        Text,
        Group,
        Before,
        After
    };
    Kind kind;
    QStringView text;
    int group = 0;
};

/// Reads `$1` to `$99` at `at`; the number of digits is 0 if there is no such group.
std::pair<int, qsizetype> ReadGroupNumber(QStringView digits, int groupCount)
{
    for (const qsizetype length : {2, 1}) {
        const QStringView number = digits.left(length);
        const bool allDigits = number.size() == length
            && std::all_of(number.begin(), number.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
        const int group = allDigits ? number.toInt() : 0;
        if (group > 0 && group <= groupCount)
            return {group, length};
    }
    return {0, 0};
}

std::vector<TemplatePart> ReadTemplate(QStringView source, int groupCount)
{
    std::vector<TemplatePart> parts;
    qsizetype plain = 0;
    qsizetype at = 0;
    const auto add = [&](TemplatePart part, qsizetype length) {
        if (at > plain)
            parts.push_back({TemplatePart::Text, source.mid(plain, at - plain)});
        parts.push_back(part);
        at += length;
        plain = at;
    };
    while (at + 1 < source.size()) {
        if (source[at] != u'$') {
            ++at;
            continue;
        }
        const QChar sign = source[at + 1];
        const auto [group, digits] = ReadGroupNumber(source.mid(at + 1), groupCount);
        if (digits > 0)
            add({TemplatePart::Group, {}, group}, 1 + digits);
        else if (sign == u'&')
            add({TemplatePart::Group, {}, 0}, 2);
        else if (sign == u'`')
            add({TemplatePart::Before, {}}, 2);
        else if (sign == u'\'')
            add({TemplatePart::After, {}}, 2);
        else if (sign == u'$')
            add({TemplatePart::Text, source.mid(at, 1)}, 2);
        else
            ++at;
    }
    if (plain < source.size())
        parts.push_back({TemplatePart::Text, source.mid(plain)});
    return parts;
}

} // namespace

bool RegExp::forEachMatch(QStringView text, const std::function<void(const Matcher&)>& take) const
{
    const auto compiled = FindCompiled({Pattern, IgnoreCase, MultiLine, ByteText});
    if (!compiled)
        return false;
    Matcher matcher(compiled, text);
    for (;;) {
        const Matcher::Outcome outcome = matcher.next();
        if (outcome != Matcher::Found)
            return outcome == Matcher::NotFound;
        take(matcher);
        if (!Global)
            return true;
    }
}

std::optional<std::vector<RegExpMatch>> RegExp::Execute(QStringView text) const
{
    std::vector<RegExpMatch> matches;
    const bool done = forEachMatch(text, [&matches](const Matcher& matcher) {
        RegExpMatch match{matcher.group(0).toString(), matcher.begin(), matcher.end() - matcher.begin(), {}};
        for (int group = 1; group <= matcher.groupCount(); ++group)
            match.SubMatches.append(matcher.group(group).toString());
        matches.push_back(std::move(match));
    });
    if (!done)
        return std::nullopt;
    return matches;
}

std::optional<QString> RegExp::Replace(QStringView text, QStringView replacement, qsizetype* count) const
{
    const qsizetype limit = std::max(RegExpFreeResult, RegExpResultGrowth * text.size());
    QString result;
    qsizetype copied = 0;
    qsizetype replaced = 0;
    const auto append = [&](QStringView piece) {
        if (result.size() <= limit)
            result += piece.left(limit + 1 - result.size());
    };
    std::vector<TemplatePart> parts;
    const bool done = forEachMatch(text, [&](const Matcher& matcher) {
        if (replaced++ == 0) {
            parts = ReadTemplate(replacement, matcher.groupCount());
            result.reserve(text.size());
        }
        append(text.mid(copied, matcher.begin() - copied));
        copied = matcher.end();
        for (const TemplatePart& part : parts) {
            switch (part.kind) {
            case TemplatePart::Text:
                append(part.text);
                break;
            case TemplatePart::Group:
                append(matcher.group(part.group));
                break;
            case TemplatePart::Before:
                append(text.left(matcher.begin()));
                break;
            case TemplatePart::After:
                append(text.mid(matcher.end()));
                break;
            }
        }
    });
    if (count)
        *count = done ? replaced : 0;
    if (!done)
        return std::nullopt;
    if (replaced == 0)
        return text.toString();
    append(text.mid(copied));
    if (result.size() > limit) {
        if (count)
            *count = 0;
        return std::nullopt;
    }
    return result;
}

std::optional<bool> RegExp::Test(QStringView text) const
{
    RegExp first = *this;
    first.Global = false;
    const auto count = first.Count(text);
    if (!count)
        return std::nullopt;
    return *count > 0;
}

std::optional<qsizetype> RegExp::Count(QStringView text) const
{
    qsizetype count = 0;
    if (!forEachMatch(text, [&count](const Matcher&) { ++count; }))
        return std::nullopt;
    return count;
}

} // namespace vmk
