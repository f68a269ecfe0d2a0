#pragma once

#include "CaretTag.h"
#include "PositionList.h"
#include "TextRange.h"

#include <cstdint>
#include <optional>
#include <vector>

/// The state that editing keeps between the events of the display.
namespace vmk {

// ---------------------------------------------------------------- clicks

/// Set by a double click; a click that ends while it is set counts as the third.
extern bool TripleClickPending;
/// Set by a double click, cleared on every release.
extern bool DoubleClickSeen;
/// The lines were selected by a double click or shift-click. Cleared by the next plain press or left release.
extern bool LinesSelected;
/// The double-clicked word, before its lines were selected.
extern std::optional<TextRange> DoubleClickRange;
/// The caret after the last plain left press.
extern std::optional<TextRange> MouseDownRange;
/// The selected lines, the fixed end of a shift-click; may be empty.
extern std::optional<TextRange> LineAnchorRange;

/// The position of the selection and the scroll position, in pixels, 10 ms after each press.
extern int32_t CaretOffsetLeft, CaretOffsetTop, SavedScrollLeft, SavedScrollTop;

/// The tag under the caret; valid until the next right click.
extern CaretTag TagUnderCaret;

// ---------------------------------------------------------------- positions

/// The recorded positions, as `scrollTop` / `scrollHeight`.
extern PositionList Positions;
/// The parts of `Positions`.
extern std::vector<double>& PositionHistory;
extern int16_t& PositionCount;
extern int16_t& PositionIndex;
/// The height of the page when the history was last used, in pixels.
extern double DocScrollHeight;
/// The next end of scrolling adds no entry; set when the window is resized.
extern bool SkipPositionRemember;
/// A jump within the history caused the scrolling.
extern bool PositionJump;
/// The number of resize events of the display, modulo 2.
extern int16_t ResizeEventCount;
/// The temporary anchor is in the page.
extern bool TemporalBookmarkSet;

/// Clears every range. Called when a new page has loaded, before the document of the ranges is deleted.
void ForgetRanges();

} // namespace vmk
