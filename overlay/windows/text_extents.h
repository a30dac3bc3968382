#pragma once
// Measures what each step of a layout needs for its text, with the font its
// control will be given, so that GrowLayoutToFitTexts can make room before
// the controls are created.
#include <windows.h>

#include <functional>
#include <vector>

#include "overlay/layouts/panel_layout.h"
#include "overlay/layouts/text_fit.h"

// fontOf: the font the builder gives the step's control (null: the control
// keeps the system font). One extent per step, {0, 0} where nothing is
// measured.
std::vector<TextExtent> MeasureLayoutTexts(const PanelLayout& layout,
                                           const std::function<HFONT(const LayoutStep&)>& fontOf);
