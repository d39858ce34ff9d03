// Headers that nearly every test reads.
#pragma once
#include "pch_core.h"

#include <QTemporaryDir>
#include <QtTest>
