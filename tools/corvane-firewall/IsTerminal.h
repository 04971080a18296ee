#pragma once

/// Whether somebody may be watching stderr.
bool IsErrorsTerminal();
