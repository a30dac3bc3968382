#include "overlay/tick/badge_visibility_in_use.h"

namespace {
BadgeVisibility current = BadgeVisibility::Always;
}

void UseBadgeVisibility(BadgeVisibility setting) { current = setting; }
BadgeVisibility BadgeVisibilityInUse() { return current; }
