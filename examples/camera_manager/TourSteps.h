#pragma once

class CameraManagerWindow;
class DesktopStandIn;
class EmbeddedServer;
class Tour;

/**
 * Adds to @p tour the road of the user: settings, checks that end in all three ways, an
 * installation, and a download that breaks and is tried again. All four must outlive the tour's
 * run.
 */
void addSteps(Tour& tour, CameraManagerWindow& window, EmbeddedServer& server,
              DesktopStandIn& desktop);
