#pragma once

namespace orvane {

/// Whether a window can be opened at all. Where it cannot, making a QGuiApplication ends the program.
bool hasDisplay();

/// Has windows drawn by the processor, unless the environment chooses otherwise: the same pixels on every
/// machine, and no graphics driver is needed. Before the QGuiApplication is made.
void chooseRenderer();

/// Has text drawn in the font that is most like a Mac's; a Mac has its own. After the QGuiApplication is
/// made.
void chooseFont();

}  // namespace orvane
