// Headers that nearly every file of the console reads.
#pragma once
#include "pch_core.h"

#include <QtWidgets>
