#include "EditorState.h"

namespace vmk {

bool TripleClickPending = false;
bool DoubleClickSeen = false;
bool LinesSelected = false;
std::optional<TextRange> DoubleClickRange;
std::optional<TextRange> MouseDownRange;
std::optional<TextRange> LineAnchorRange;
int32_t CaretOffsetLeft = 0, CaretOffsetTop = 0, SavedScrollLeft = 0, SavedScrollTop = 0;
CaretTag TagUnderCaret;

PositionList Positions;
std::vector<double>& PositionHistory = Positions.entries;
int16_t& PositionCount = Positions.count;
int16_t& PositionIndex = Positions.index;
double DocScrollHeight = 0;
bool SkipPositionRemember = false;
bool PositionJump = false;
int16_t ResizeEventCount = 0;
bool TemporalBookmarkSet = false;

void ForgetRanges()
{
    DoubleClickRange.reset();
    MouseDownRange.reset();
    LineAnchorRange.reset();
}

} // namespace vmk
