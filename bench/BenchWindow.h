// What the figures of the real window share.
#pragma once

#include "Figures.h"

#include "ui/MarluneApp.h"

#include <QQuickItem>
#include <QQuickWindow>

namespace Bench {

/// Has the event loop run.
void runFor(int milliseconds);

/// The setup of a user who has nothing yet.
[[nodiscard]] MarluneApp::Setup emptySetup(const WorkFolder &folder);

/// The item of this object name in or below `root`; null where there is none.
[[nodiscard]] QQuickItem *findItem(QQuickItem *root, const char *name);

/// One frame begins when the one before is done, so that the gaps are what the frames take. Before the first window.
void renderWithoutPause();

/// Of this process.
[[nodiscard]] double residentBytes();

/// Prints what the frames took, in milliseconds.
void printFrames(const char *name, const std::vector<double> &frames);
/// Prints what the frames take while `view` is scrolled from its beginning to its end.
void scrollThrough(const char *name, QQuickWindow &window, QQuickItem &view, double pixelsPerFrame);
/// The same in so many frames at most.
void scrollThrough(const char *name, QQuickWindow &window, QQuickItem &view, int frames);

} // namespace Bench
