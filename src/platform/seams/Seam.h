#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vmk {

/// A replaceable function through which the program reaches its environment. A window sets it at start, and a
/// test may replace it. The initial function is the right one without a window.
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

    /// Sets the function; returns the previous one.
    Function Fill(Function function) { return std::exchange(current, std::move(function)); }

private:
    Function current;
};

/// Sets a seam for its scope: `const SeamGuard guard(BoxSeam(), [&](...) {...});`
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

/// Holds what it fills into any number of seams, and puts back what was there before when it is destroyed or
/// asked to `release`: for a window that fills seams for as long as it exists.
class SeamOwner
{
public:
    SeamOwner() = default;
    SeamOwner(const SeamOwner&) = delete;
    SeamOwner& operator=(const SeamOwner&) = delete;
    ~SeamOwner() { release(); }

    template <typename Signature>
    void fill(Seam<Signature>& seam, typename Seam<Signature>::Function function)
    {
        auto before = std::make_shared<typename Seam<Signature>::Function>(seam.Fill(std::move(function)));
        restorers.emplace_back([&seam, before] { seam.Fill(std::move(*before)); });
    }

    /// Puts the earlier functions back, last filled first.
    void release()
    {
        for (; !restorers.empty(); restorers.pop_back())
            restorers.back()();
    }

private:
    std::vector<std::function<void()>> restorers;
};

} // namespace vmk
