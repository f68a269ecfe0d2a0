#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>

/// The common ends of two sequences: the only measure of the extent of an edit.
namespace vmk {

/// Returns the length of the common prefix of two sequences.
/// \param alike  whether an element of `a` counts as equal to one of `b`
template <class A, class B, class Alike = std::equal_to<>>
[[nodiscard]] std::ptrdiff_t CommonFront(const A& a, const B& b, Alike alike = {})
{
    return std::mismatch(std::begin(a), std::end(a), std::begin(b), std::end(b), alike).first - std::begin(a);
}

/// Returns the length of the common suffix of two sequences, without their first `frontOfA` and `frontOfB`
/// elements.
template <class A, class B, class Alike = std::equal_to<>>
[[nodiscard]] std::ptrdiff_t CommonBack(const A& a, std::ptrdiff_t frontOfA, const B& b,
                                        std::ptrdiff_t frontOfB, Alike alike = {})
{
    return std::mismatch(std::rbegin(a), std::rend(a) - frontOfA, std::rbegin(b), std::rend(b) - frontOfB,
                         alike)
               .first
        - std::rbegin(a);
}

/// The same without the first `front` elements of each.
template <class A, class B, class Alike = std::equal_to<>>
[[nodiscard]] std::ptrdiff_t CommonBack(const A& a, const B& b, std::ptrdiff_t front, Alike alike = {})
{
    return CommonBack(a, front, b, front, alike);
}

} // namespace vmk
