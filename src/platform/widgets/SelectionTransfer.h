#pragma once

#include <QString>

namespace vmk {

/// The texts that X11 programs pass to each other.
enum class SharedText
{
    Clipboard,
    Primary ///< the text that was selected last
};

/// How the transfer of a text from another program has ended.
enum class TransferEnd
{
    Complete,
    Unavailable, ///< There is no such text, or not in UTF-8, or no X11: the toolkit may know more.
    NoAnswer, ///< The other program does not respond, or has stopped in the middle.
    Cancelled ///< by Escape; see `CancellableWork`
};

struct TransferredText
{
    TransferEnd end = TransferEnd::Unavailable;
    QString text; ///< empty unless complete
};

/// Asks the program that owns a text for it, by the protocol of X11. The wait ends with Escape, and a few
/// seconds after the last sign of life of that program; the toolkit waits up to 15 seconds and does not
/// paint meanwhile. Not to be called if this program owns the text.
[[nodiscard]] TransferredText TransferText(SharedText which);

} // namespace vmk
