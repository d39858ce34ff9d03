// Makes the record that describes the product to the console. Plain data, any thread.
#pragma once
#include "shell/tagKorviaProductInfo.h"

tagKorviaProductInfo makeProductRecord();
