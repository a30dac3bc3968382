#include "overlay/overlay_images.h"

std::wstring ImagesFolder;
