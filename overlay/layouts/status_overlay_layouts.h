#pragma once
// The three small overlays that sit on the Office window itself. Unlike
// the panels they are placed by their caller, owned by the Office window
// and shown at once.
#include "overlay/layouts/panel_layout.h"

// The badge: a 70 × 70 layered pop-up with no children; its picture is laid
// on afterwards with the colour key, so it shows nothing until then.
PanelLayout MainOverlayLayout();

// A white strip with the drive picture and "No Internet Connection".
PanelLayout NoInternetOverlayLayout();

// A blue strip with the drive picture, the product title (painted by the
// overlay window procedure) and a marquee bar along its bottom edge.
PanelLayout LoadingOverlayLayout();
