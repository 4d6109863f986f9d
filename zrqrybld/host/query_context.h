// The whole QueryContext, for those who use most of its parts.
#pragma once

#include "zrqrybld/host/context_link.h"
#include "zrqrybld/host/design_queries.h"
#include "zrqrybld/host/design_reports.h"
#include "zrqrybld/host/source_context.h"
#include "zrqrybld/host/step_context.h"
