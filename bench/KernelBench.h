// Each kernel on a 1080p frame, as a ratio to copying that frame in the same run.
#pragma once

/// Runs and prints; the exit code of the program.
int runKernelBench();
