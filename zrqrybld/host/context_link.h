// QueryContext: what the panes share, and whom they tell, in four parts.
//
// The hub derives from it. A pane holds a weak link to its context and includes the header of each part that it uses:
// what is known of the source and its language, steps and state, the design as the other panes have it, and whom it
// tells what has happened. Reports are direct calls to the hub, never subscriptions to a public event, so that public
// events come in one order, which the hub alone decides.
#pragma once

namespace zrqrybld {

class DesignQueries;
class DesignReports;
class SourceContext;
class StepContext;

/// The parts live as long as the designer does, and a handle to the context keeps that alive.
struct QueryContext {
  SourceContext& source;
  StepContext& steps;
  DesignQueries& design;
  DesignReports& reports;
};

}  // namespace zrqrybld
