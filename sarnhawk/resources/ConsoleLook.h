// The look of the console: icons, style sheet and palette.
//
// Called on the GUI thread, after the QApplication is made.
#pragma once

class QApplication;

// Registers the icons and the style sheet under ":/KorviaSarnhawk/Resources/". The resources lie in a
// static library, so whoever shows an icon before applyConsoleLook() must have called this. Calling it
// again does nothing.
void initSarnhawkResources();

// Gives `application` the console's base style, palette and style sheet. The palette serves what the
// sheet cannot reach: the lever's own style, plots, and the inner parts of system dialogs.
void applyConsoleLook(QApplication& application);
