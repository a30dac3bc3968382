#pragma once
// Controls that grow to fit their text. The panels' rectangles were drawn
// around Windows' default face at 96 DPI; a text that needs more room than
// its rectangle (another face, a larger font, a longer translation) would
// be cut off without a word to the user. The builder measures each text
// with the font its control gets, and this rule turns the measurements into
// the layout to build: a control whose text fits keeps its rectangle
// exactly; one that does not grows, what sits below or to the right of it
// moves by as much, and the panel grows with its content.
#include <string>
#include <vector>

#include "overlay/layouts/control_id.h"
#include "overlay/layouts/panel_layout.h"

// How a step's text is measured.
enum class TextMeasure {
  None,           // no text, a picture, a rule, or a text that scrolls by design
  OneLine,        // buttons, links, owner-drawn lines, one-line boxes: the line's extent
  CheckBoxLine,   // the same after the check box and its gap
  LineHeight,     // ellipsis texts (names): one line's height; the width ends in "..." by design
  Wrapped,        // word-wrapped text: DrawText's extent at the step's width
};

// lineHeight: the height of one line in the step's font. A word-wrapped box
// less than two lines high is a one-line text (a title): it widens rather
// than wrapping onto a line that would not show.
TextMeasure MeasureOf(const LayoutStep& step, int lineHeight);

// What a step's text needs, as measured; {0, 0} asks for nothing.
struct TextExtent {
  int width = 0;
  int height = 0;
};

// The layout with room for every Create step's extent (extents[i] belongs
// to steps[i]; missing entries ask for nothing). A step's room is its
// rectangle up to where a sibling below it or to its right starts inside
// it (the design lets a rule start a few pixels inside the text above); a
// step whose extent exceeds its room grows by the difference.
// Within one parent, a step moves down by the growth of every step above
// it (one that starts higher and ends higher), and right by the growth of
// every step to its left in the same row (one that starts further left,
// ends further left, and overlaps it vertically); the largest such push
// wins, so two controls side by side that both grow push once. A parent
// grows by as much as its children's lowest and rightmost edges moved; a
// child spanning the whole width of its parent widens with it; a
// ResizeChild step follows its target. The panel's width, height and
// creation height grow likewise.
PanelLayout GrowLayoutToFitTexts(const PanelLayout& layout, const std::vector<TextExtent>& extents);

// What a link shows: its text without the anchor's markup.
std::wstring ShownLinkText(const std::wstring& markup);
