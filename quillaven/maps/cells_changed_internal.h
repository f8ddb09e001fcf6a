// The one way in which the library tells an application that cells have changed.

#pragma once

/// Sends message 32771 to the application's main window, synchronously.
void TellCellsChanged();
