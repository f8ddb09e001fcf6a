// What the program asks of the terminal.

#pragma once

/// Whether standard error goes to a terminal, where a line may be written over.
bool StandardErrorIsTerminal();
