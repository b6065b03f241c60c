// The run as a tree of objects, for scripts.
#ifndef EXAMPLES_REPORT_DUMP_H
#define EXAMPLES_REPORT_DUMP_H

#include "TAFileName.h"
#include "report/run.h"

// Writes the tree into the directory, which is made. Attributes of the root: "identifier", "date", "host", and the
// lists "scans", "batches" and "counters". False when the directory cannot be made.
bool DumpRun(const Run& run, const TAFileName& directory);

#endif
