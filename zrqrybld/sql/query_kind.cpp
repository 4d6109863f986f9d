#include "zrqrybld/sql/query_kind.h"

#include "zrqrybld/sql/dialect.h"

namespace zrqrybld {

std::string_view NameOf(QueryOperatorEnum combined) {
  switch (combined) {
    case QueryUnion:
      return "UNION";
    case QueryUnionAll:
      return "UNION ALL";
    case QueryIntersect:
      return "INTERSECT";
    case QueryIntersectAll:
      return "INTERSECT ALL";
    case QueryExcept:
      return "EXCEPT";
    case QueryExceptAll:
      return "EXCEPT ALL";
  }
  return {};
}

std::string WordOf(QueryOperatorEnum combined, const QueryForms& forms) {
  if (!Intersects(combined) && !Excepts(combined)) return std::string(NameOf(combined));
  const std::string_view word = Intersects(combined) ? forms.intersectWord : forms.exceptWord;
  if (word.empty() || (KeepsDuplicates(combined) && !forms.countsRows)) return {};
  return std::string(word) + (KeepsDuplicates(combined) ? " ALL" : "");
}

}  // namespace zrqrybld
