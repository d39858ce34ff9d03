// Measures each kernel on a 1080p frame, as a multiple of the time of copying that frame in the same run.
#pragma once
#include <QList>

/// Runs and prints; returns the exit code of the program. Measures only the given effects, or all kernels
/// and effects when there are none. Writes the figures to `jsonFile` too, unless it is empty.
int runKernelBench(const QList<int>& effects, const QString& jsonFile);
