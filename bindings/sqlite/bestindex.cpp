// Which constraints of a query lead to rows, and what that costs.

#include <algorithm>
#include <cstring>
#include <optional>

#include "vtab.h"

SQLITE_EXTENSION_INIT3

namespace statecut::sql {

namespace {

using relations::Match;
using relations::Path;
using relations::Term;

// As SQLite counts its own tables: a row of a scan costs three units, a search about ten.
constexpr double kRowCost = 3, kSearchCost = 8;

bool isText(Match match) { return match != Match::kKey; }

bool hasOperator(Match match, int op) {
  switch (match) {
    case Match::kPrefix:
      return op == SQLITE_INDEX_CONSTRAINT_GLOB;
    case Match::kZips:
      return op == SQLITE_INDEX_CONSTRAINT_GT || op == SQLITE_INDEX_CONSTRAINT_GE ||
             op == SQLITE_INDEX_CONSTRAINT_LT || op == SQLITE_INDEX_CONSTRAINT_LE;
    default:
      return op == SQLITE_INDEX_CONSTRAINT_EQ;
  }
}

bool isUpper(int op) {
  return op == SQLITE_INDEX_CONSTRAINT_LT || op == SQLITE_INDEX_CONSTRAINT_LE;
}

struct Choice {
  std::array<int, 2> constraints{-1, -1};  // for the arguments, in their order
  int arguments = 0;
  int plan = 0;  // without the number of the path
  double rows = 0;
  double cost = 0;
};

class Chooser {
 public:
  Chooser(const Relation& relation, sqlite3_index_info& info, double rows)
      : relation_(relation), info_(info), rows_(rows) {}

  std::optional<Choice> choose(const Path& path) {
    Choice choice;
    for (int i = 0; i < path.count; ++i) {
      const Term& term = path.terms[static_cast<std::size_t>(i)];
      if (term.match == Match::kZips ? !addRange(term, choice) : !addTerm(term, choice))
        return std::nullopt;
    }
    const double bounds = choice.plan == (kLowerBound | kUpperBound) ? 4 : 1;
    choice.rows = path.unique       ? 1
                  : path.oneIn == 0 ? 2
                                    : std::max(2.0, rows_ / path.oneIn / bounds);
    choice.cost = kSearchCost + choice.rows * kRowCost;
    return choice;
  }

 private:
  // The id of a row may be asked for under the name of its column.
  [[nodiscard]] bool isOn(int column, const Term& term) const {
    if (column == term.column) return true;
    return term.column == relations::kRowId && relation_.idColumn != relations::kRowId &&
           column == relation_.idColumn;
  }

  // Texts are found as they stand in the file: under another collation others may be equal.
  bool isUsable(int at, const Term& term) {
    const auto& constraint = info_.aConstraint[at];
    if (constraint.usable == 0 || !isOn(constraint.iColumn, term) ||
        !hasOperator(term.match, constraint.op))
      return false;
    return !isText(term.match) || term.match == Match::kPrefix ||
           std::strcmp(sqlite3_vtab_collation(&info_, at), "BINARY") == 0;
  }

  bool addTerm(const Term& term, Choice& choice) {
    for (int i = 0; i < info_.nConstraint; ++i) {
      if (!isUsable(i, term)) continue;
      choice.constraints[static_cast<std::size_t>(choice.arguments++)] = i;
      return true;
    }
    return false;
  }

  bool addRange(const Term& term, Choice& choice) {
    for (const int bound : {kLowerBound, kUpperBound})
      for (int i = 0; i < info_.nConstraint; ++i) {
        const bool isOfBound = isUpper(info_.aConstraint[i].op) == (bound == kUpperBound);
        if (!isOfBound || !isUsable(i, term)) continue;
        choice.constraints[static_cast<std::size_t>(choice.arguments++)] = i;
        choice.plan |= bound;
        break;
      }
    return choice.plan != 0;
  }

  const Relation& relation_;
  sqlite3_index_info& info_;
  double rows_;
};

// Rows come by ascending ZIP code, which is the first column.
bool isInOrder(const Relation& relation, const sqlite3_index_info& info) {
  return relation.zipOrder && info.nOrderBy == 1 && info.aOrderBy[0].iColumn == 0 &&
         info.aOrderBy[0].desc == 0;
}

}  // namespace

// SQLite looks at each row again, so that a path may give more rows than fit.
int bestIndex(const Table& table, sqlite3_index_info& info) {
  const Relation& relation = *table.relation;
  const double rows = std::max(1.0, static_cast<double>(relation.rows(*table.source)));
  Chooser chooser(relation, info, rows);
  Choice best;
  best.rows = rows;
  best.cost = rows * kRowCost;
  const Path* path = nullptr;
  for (std::size_t i = 0; i < relation.paths.size(); ++i) {
    const std::optional<Choice> choice = chooser.choose(relation.paths[i]);
    if (!choice || choice->cost >= best.cost) continue;
    path = &relation.paths[i];
    best = *choice;
    best.plan |= static_cast<int>(i) + 1;
  }
  for (int i = 0; i < best.arguments; ++i)
    info.aConstraintUsage[best.constraints[static_cast<std::size_t>(i)]].argvIndex = i + 1;
  info.idxNum = best.plan;
  info.estimatedCost = best.cost;
  info.estimatedRows = static_cast<sqlite3_int64>(best.rows);
  info.orderByConsumed = isInOrder(relation, info) ? 1 : 0;
  if (path == nullptr) return SQLITE_OK;
  info.idxFlags = path->unique ? SQLITE_INDEX_SCAN_UNIQUE : 0;
  info.idxStr = const_cast<char*>(path->name);  // SQLite shows it
  info.needToFreeIdxStr = 0;
  return SQLITE_OK;
}

}  // namespace statecut::sql
