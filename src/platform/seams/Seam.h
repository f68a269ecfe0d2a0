#pragma once

#include <functional>
#include <utility>

namespace vmk {

/// A place where the program reaches out of itself: a function that a window fills in at start and that a
/// test may replace. It starts with what is right without a window.
template <typename Signature>
class Seam;

template <typename Result, typename... Args>
class Seam<Result(Args...)>
{
public:
    using Function = std::function<Result(Args...)>;

    explicit Seam(Function withoutWindow)
        : current(std::move(withoutWindow))
    {
    }
    Seam(const Seam&) = delete;
    Seam& operator=(const Seam&) = delete;

    Result operator()(Args... args) const { return current(std::forward<Args>(args)...); }

    /// Puts a function in place; gives the one that stood there.
    Function Fill(Function function) { return std::exchange(current, std::move(function)); }

private:
    Function current;
};

/// Fills a seam for its scope: `const SeamGuard guard(BoxSeam(), [&](...) {...});`
template <typename Signature>
class SeamGuard
{
public:
    SeamGuard(Seam<Signature>& target, typename Seam<Signature>::Function function)
        : seam(target)
        , before(seam.Fill(std::move(function)))
    {
    }
    SeamGuard(const SeamGuard&) = delete;
    SeamGuard& operator=(const SeamGuard&) = delete;
    ~SeamGuard() { seam.Fill(std::move(before)); }

private:
    Seam<Signature>& seam;
    typename Seam<Signature>::Function before;
};

} // namespace vmk
