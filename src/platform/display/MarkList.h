#pragma once

#include "TagTable.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <new>
#include <span>
#include <utility>
#include <vector>

namespace vmk {

/// An in-line start or end tag before the character at `pos`.
struct Mark
{
    std::int32_t pos = 0; ///< Offset in the line's text, 0 to its length.
    std::uint32_t open : 1 = 0; ///< 1 for a start tag, 0 for an end tag.
    std::uint32_t tag : 31 = 0; ///< `TagId`; an end tag has the number of its start tag.

    [[nodiscard]] static Mark opening(int pos, TagId tag) { return {pos, 1, tag & 0x7FFFFFFF}; }
    [[nodiscard]] static Mark closing(int pos, TagId tag) { return {pos, 0, tag & 0x7FFFFFFF}; }

    friend bool operator==(const Mark& a, const Mark& b)
    {
        return a.pos == b.pos && a.open == b.open && a.tag == b.tag;
    }
};

/// The marks of a line. The list does not change; copies share it, also between threads. It takes the size of
/// a pointer: a page can have a list for each few bytes of a text.
class MarkList
{
public:
    MarkList() = default;
    MarkList(std::span<const Mark> marks)
    {
        if (marks.empty())
            return;
        list = new (::operator new(sizeof(Header) + marks.size_bytes()))
            Header{1, std::uint32_t(marks.size())};
        std::uninitialized_copy(marks.begin(), marks.end(), data());
    }
    MarkList(const std::vector<Mark>& marks)
        : MarkList(std::span(marks))
    {
    }
    MarkList(std::initializer_list<Mark> marks)
        : MarkList(std::span(marks.begin(), marks.size()))
    {
    }
    MarkList(const MarkList& other) noexcept
        : list(other.list)
    {
        if (list)
            list->uses.fetch_add(1, std::memory_order_relaxed);
    }
    MarkList(MarkList&& other) noexcept
        : list(std::exchange(other.list, nullptr))
    {
    }
    MarkList& operator=(MarkList other) noexcept
    {
        std::swap(list, other.list);
        return *this;
    }
    ~MarkList()
    {
        if (list && list->uses.fetch_sub(1, std::memory_order_acq_rel) == 1)
            ::operator delete(list);
    }

    [[nodiscard]] bool empty() const { return !list; }
    [[nodiscard]] std::size_t size() const { return list ? list->size : 0; }
    [[nodiscard]] const Mark* begin() const { return list ? data() : nullptr; }
    [[nodiscard]] const Mark* end() const { return begin() + size(); }
    [[nodiscard]] auto rbegin() const { return std::reverse_iterator(end()); }
    [[nodiscard]] auto rend() const { return std::reverse_iterator(begin()); }
    [[nodiscard]] const Mark& operator[](std::size_t index) const { return data()[index]; }
    /// A copy that can be changed.
    [[nodiscard]] std::vector<Mark> toVector() const { return {begin(), end()}; }

    friend bool operator==(const MarkList& a, const MarkList& b)
    {
        return a.list == b.list || std::equal(a.begin(), a.end(), b.begin(), b.end());
    }

private:
    /// The marks follow it in memory.
    struct Header
    {
        std::atomic<std::uint32_t> uses;
        std::uint32_t size;
    };
    static_assert(alignof(Mark) <= alignof(Header) && sizeof(Header) % alignof(Mark) == 0);

    [[nodiscard]] Mark* data() const { return reinterpret_cast<Mark*>(list + 1); }

    Header* list = nullptr;
};

/// Makes lists of marks, and shares those that are equal: the lines of a text that are equally long mostly
/// have the same marks.
class SharedMarks
{
public:
    [[nodiscard]] MarkList list(std::span<const Mark> marks)
    {
        if (marks.empty() || marks.size() > Longest)
            return marks;
        constexpr std::uint64_t Spread = 0x9E3779B97F4A7C15; // 2^64 divided by the golden ratio
        std::uint64_t key = 0;
        for (const Mark& mark : marks)
            key = (key ^ std::uint32_t(mark.pos) ^ std::uint64_t(mark.tag) << 32 ^ mark.open) * Spread;
        if (lists.empty())
            lists.resize(std::size_t(1) << HashBits);
        MarkList& known = lists[key >> (64 - HashBits)];
        if (!std::equal(known.begin(), known.end(), marks.begin(), marks.end()))
            known = marks;
        return known;
    }

private:
    static constexpr std::size_t Longest = 8;
    static constexpr unsigned HashBits = 8;
    std::vector<MarkList> lists; ///< Each at a position computed from its content.
};

} // namespace vmk
