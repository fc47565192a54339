// The first generation's insert, update and delete of a record, written out from its table, its
// key column and its columns as name-value pairs in list order, for tables of expected texts.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "vrdppo/variant.hpp"

namespace vrdppo::testing {

struct Statements {
  std::u16string insert;
  std::u16string update;
  std::u16string remove;
};

inline Statements statementsFor(
    const std::u16string& table, const std::u16string& key, std::int32_t id,
    const std::vector<std::pair<std::u16string, std::u16string>>& columns) {
  std::u16string names, values, sets;
  for (const auto& [n, v] : columns) {
    if (!names.empty()) {
      names += u", ";
      values += u", ";
      sets += u", ";
    }
    names += n;
    values += v;
    sets += n + u" = " + v;
  }
  const std::u16string k = longText(id);
  return {u"EXEC sp_InsertStatement @p_Stmt = \"INSERT INTO " + table + u" (" + names +
              u") VALUES (" + values + u")\"",
          u"UPDATE " + table + u" SET " + sets + u" WHERE " + key + u" = " + k,
          u"DELETE FROM " + table + u" WHERE " + key + u" = " + k};
}

}  // namespace vrdppo::testing
