#pragma once

/// Everything that the library offers.

#include "orvio/oh5_io.h"
#include "orvio/oh5_reader.h"
#include "orvio/orv_block.h"
#include "orvio/orv_ele_connectivity.h"
#include "orvio/orv_ext_var.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_result.h"
#include "orvio/orv_switches.h"
#include "orvio/orv_types.h"
#include "orvio/orv_unit.h"
#include "orvio/orv_variable.h"
