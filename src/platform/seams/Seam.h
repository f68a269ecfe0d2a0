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

/// Fills any number of seams for the lifetime of a window. Restores the previous functions when it is
/// destroyed or released.
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

    /// Restores the previous functions, in reverse order.
    void release()
    {
        for (; !restorers.empty(); restorers.pop_back())
            restorers.back()();
    }

private:
    std::vector<std::function<void()>> restorers;
};

} // namespace vmk
