// History: the steps that can be undone and redone.
//
// It knows the design as it was after the last step, and of each step what it has replaced: tables, rows of the grid,
// options. What did not change is shared, so the memory follows what the user has done and not how large the design is.
// The hub owns it, tells it what has changed, and brings back what it names; it touches no control itself.
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zrqrybld/diagram/diagram_state.h"
#include "zrqrybld/grid/rows.h"
#include "zrqrybld/host/date_format.h"
#include "zrqrybld/host/step_names.h"
#include "zrqrybld/hub/hub_options.h"
#include "zrqrybld/hub/query_set.h"
#include "zrqrybld/sql/sql_pane_options.h"
#include "zrqrybld/sql/sql_syntax.h"

namespace zrqrybld {

struct TypedStatement;

/// The options that belong to the query.
struct DesignOptions {
  QueryOptions query;
  bool showGroupBy = false;
  DateOptions dates;
  SqlPaneOptions sql;
  std::shared_ptr<const TypedStatement> typed;  ///< what is kept of the statement that was typed
  friend bool operator==(const DesignOptions&, const DesignOptions&) = default;
};

/// The design at a moment.
struct Design {
  DiagramState entities;
  std::vector<SharedRowContent> rows;
  DesignOptions options;
};

/// The design now, as far as it may be another than the one that is known. No more is untouched than there is then
/// and now.
struct DesignChange {
  Untouched untouchedEntities;
  DiagramState entities;  ///< those between the untouched ones
  Untouched untouchedRows;
  std::vector<SharedRowContent> rows;  ///< those between the untouched ones
  DesignOptions options;
};

/// A part of a list, and what it was replaced by.
template <class T>
struct Splice {
  std::size_t first = 0;  ///< from 0
  std::vector<T> before;
  std::vector<T> after;
  bool Empty() const { return before.empty() && after.empty(); }
};

class History {
 public:
  using Clock = std::function<std::chrono::steady_clock::time_point()>;

  /// Older steps are forgotten beyond this many, and while all of them take more memory than that many bytes.
  static constexpr std::size_t kMostSteps = 200;
  static constexpr std::size_t kMostBytes = std::size_t{64} * 1024 * 1024;

  /// A step and what it has changed.
  struct Step {
    StepLabel label;
    Splice<std::shared_ptr<const EntityState>> entities;
    Splice<SharedRowContent> rows;
    std::optional<std::pair<DesignOptions, DesignOptions>> options;
    std::int32_t query = 0;                                     ///< the query that it was made in
    std::optional<std::pair<QuerySet, QuerySet>> queries = {};  ///< all of them, where it has changed more than that
    std::optional<std::string> typed;  ///< a statement that was typed, not applied, and written over
    std::optional<std::pair<std::size_t, std::size_t>>
        cell;  ///< row and column, when all it changed is one cell's text
    std::chrono::steady_clock::time_point at;
    std::size_t bytes = 0;
  };

  /// The design after the last step.
  const Design& Known() const { return known_; }

  /// Notes a step. False when nothing has changed, or nothing but the options of a design that is empty: that is no
  /// work of the user's. What is typed into one cell within a second is one step; what the application has named
  /// itself is a step of its own.
  bool Record(const StepLabel& label, DesignChange change, std::optional<std::string> typed = std::nullopt,
              std::int32_t query = 0);
  /// Notes a step that has changed more than the query that is shown, which is `now`.
  void RecordQueries(const StepLabel& label, QuerySet before, QuerySet after, Design now,
                     std::optional<std::string> typed = std::nullopt);
  /// The step that was noted last has changed more than the query that is shown.
  void Widen(QuerySet before, QuerySet after);
  /// Another query is shown: the design is this, and no step is noted.
  void Show(Design now);
  /// The tables and options have changed outside of any step: they are known as they are now, and no step is noted.
  /// Tables that came or went, and the rows, are left to the next step.
  void Adopt(DesignChange change);
  /// Forgets all steps; the design is this.
  void Forget(Design now);

  /// The step that is undone next, or redone; nothing when there is none.
  const Step* Last() const { return undo_.empty() ? nullptr : &undo_.back(); }
  const Step* Next() const { return redo_.empty() ? nullptr : &redo_.back(); }
  /// Whether what the step that is undone next, or redone, has replaced is still there: a listener may have changed
  /// more than any step knows of.
  bool Fits(bool back) const;
  /// Undoes a step, which must be there and fit, or redoes one: the design that is known from now on.
  const Design& Travel(bool back);

  /// How many steps can be undone, and what the memory for all steps comes to, roughly.
  std::size_t Count() const { return undo_.size(); }
  std::size_t Bytes() const { return bytes_; }

  /// Where the time comes from; tests have their own.
  void SetClock(Clock clock) { clock_ = std::move(clock); }

 private:
  bool Merge(Step& step);
  void Absorb(const Splice<SharedRowContent>& change, std::int32_t query);
  void Push(Step step);

  Design known_;
  std::deque<Step> undo_;
  std::vector<Step> redo_;  // the next one last
  std::size_t bytes_ = 0;
  bool mayMerge_ = false;  // the last that happened was a step, not its undoing
  Clock clock_ = [] { return std::chrono::steady_clock::now(); };
};

}  // namespace zrqrybld
