// The name tables of opcodes and OPR sub-operations are module-level and
// shared; every interpreter writes the same texts into them again.
#pragma once

void FillNameTables();
