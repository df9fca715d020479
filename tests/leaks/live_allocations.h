#pragma once

// Blocks from the global operator new not yet deleted, in this program.
long LiveAllocations();
