#pragma once
// The badge setting the tick follows, set once at connection (UI thread
// only). Always until then, as the add-in always behaved.
#include "overlay/decision/badge_visibility.h"

void UseBadgeVisibility(BadgeVisibility setting);
BadgeVisibility BadgeVisibilityInUse();
