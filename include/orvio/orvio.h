#pragma once

/// Everything that the library offers.

#include "orvio/oh5_io.h"
#include "orvio/oh5_reader.h"
#include "orvio/orv_block.h"
#include "orvio/orv_definitions.h"
#include "orvio/orv_ele_connectivity.h"
#include "orvio/orv_entity_type.h"
#include "orvio/orv_ext_var.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_index.h"
#include "orvio/orv_predicate.h"
#include "orvio/orv_properties.h"
#include "orvio/orv_result.h"
#include "orvio/orv_result_values.h"
#include "orvio/orv_switches.h"
#include "orvio/orv_system.h"
#include "orvio/orv_types.h"
#include "orvio/orv_unit.h"
#include "orvio/orv_variable.h"
#include "orvio/orv_variable_grp.h"
