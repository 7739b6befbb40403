// What the figures of the real window share.
#pragma once

#include "Figures.h"

#include "ui/MarluneApp.h"

#include <QQuickItem>

namespace Bench {

/// Has the event loop run.
void runFor(int milliseconds);

/// The setup of a user who has nothing yet.
[[nodiscard]] MarluneApp::Setup emptySetup(const WorkFolder &folder);

/// The item of this object name in or below `root`; null where there is none.
[[nodiscard]] QQuickItem *findItem(QQuickItem *root, const char *name);

/// One frame begins when the one before is done, so that the gaps are what the frames take. Before the first window.
void renderWithoutPause();

} // namespace Bench
