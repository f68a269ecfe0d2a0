#pragma once

#include "CaretTag.h"
#include "TextRange.h"

#include <cstdint>
#include <optional>
#include <vector>

/// What the editing of the display remembers between its events.
namespace vmk {

// ---------------------------------------------------------------- clicks

/// Set by a double click; a click that ends while it holds counts as the third.
extern bool TripleClickPending;
/// Set by a double click, cleared on every release.
extern bool DoubleClickSeen;
/// The selected lines were chosen by double click or shift-click; cleared by the next plain press or left
/// release.
extern bool LinesSelected;
/// The word of the double click, before its lines were selected.
extern std::optional<TextRange> DoubleClickRange;
/// The caret just after the last plain left press.
extern std::optional<TextRange> MouseDownRange;
/// The selected lines, the fixed end of a shift-click; may be missing.
extern std::optional<TextRange> LineAnchorRange;

/// The selection's place and the page's scrolling, pixels, 10 ms after each press.
extern int32_t CaretOffsetLeft, CaretOffsetTop, SavedScrollLeft, SavedScrollTop;

/// The tag under the caret; good until the next right click.
extern CaretTag TagUnderCaret;

// ---------------------------------------------------------------- positions

/// `scrollTop` / `scrollHeight` of each place rested at; entry 0 is not used.
extern std::vector<double> PositionHistory;
/// Entries in use, at most 40.
extern int16_t PositionCount;
/// The current entry, from 1.
extern int16_t PositionIndex;
/// Height of the page at the last use, pixels.
extern double DocScrollHeight;
/// The next end of scrolling enters nothing; set by the resize.
extern bool SkipPositionRemember;
/// The scrolling comes from a jump within the history.
extern bool PositionJump;
/// Counts the resize events of the display, modulo 2.
extern int16_t ResizeEventCount;
/// A marker is planted.
extern bool TemporalBookmarkSet;

/// Forgets every range; runs when another page has come, and before their document goes.
void ForgetRanges();

} // namespace vmk
