#pragma once
// Reads BadgeVisibility at connection, the administrator's policy
// (HKLM\Software\Policies\QelvoFilewell\OfficeAddin) before the user's own
// (HKCU\Software\QelvoFilewell\OfficeAddin), logs the one line that says
// what was chosen, and hands the choice to the tick.
#include "overlay/decision/badge_visibility.h"

BadgeVisibility ReadBadgeVisibilitySetting();
