#include "desktop/appdelegate.h"

bool AppDelegate::applicationShouldHandleReopen(bool, const Activation &activation)
{
    showWindow(activation);
    return true;
}

void AppDelegate::showWindow(const Activation &activation)
{
    if (window_) {
        bringToFront(*window_, activation);
    }
}
