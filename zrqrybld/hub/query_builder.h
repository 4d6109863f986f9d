// The query designer for applications: the hub, its panes, and what hangs on them.
#pragma once

#include "zrqrybld/diagram/diagram_pane.h"
#include "zrqrybld/diagram/entities.h"
#include "zrqrybld/expression/schema_cache.h"
#include "zrqrybld/grid/grid_pane.h"
#include "zrqrybld/host/query_context.h"
#include "zrqrybld/hub/history.h"
#include "zrqrybld/hub/hub.h"
#include "zrqrybld/platform/connection_policy.h"
#include "zrqrybld/platform/connection_string.h"
#include "zrqrybld/platform/property_store.h"
#include "zrqrybld/platform/toolkit.h"
#include "zrqrybld/sql/dialect.h"
#include "zrqrybld/sql/sql_pane.h"
