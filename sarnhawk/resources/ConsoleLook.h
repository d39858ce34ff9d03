// The look of the console: icons, style sheet and palette. Console thread, after the QApplication is made.
#pragma once

class QApplication;

/// Registers the icons and the style sheet under ":/KorviaSarnhawk/Resources/". Needed before an icon is used
/// without applyConsoleLook(), because the resources are in a static library. A second call does nothing.
void initSarnhawkResources();

/// Gives `application` the console's base style, palette and style sheet. The palette is for what the style
/// sheet does not reach: the style of the lever, plots, and the inner parts of system dialogs.
void applyConsoleLook(QApplication& application);
