// The record that tells the console which product it is. Plain data, any thread.
#pragma once
#include "shell/tagKorviaProductInfo.h"

tagKorviaProductInfo makeProductRecord();
