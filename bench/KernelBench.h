// Each kernel on a 1080p frame, as a ratio to copying that frame in the same run.
#pragma once
#include <QList>

/// Runs and prints; the exit code of the program. With effects only those, otherwise all kernels and effects.
/// Writes the lines to `jsonFile` too, unless that is empty.
int runKernelBench(const QList<int>& effects, const QString& jsonFile);
