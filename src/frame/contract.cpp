// The table and view contracts, driven by each class's column table and configuration.
#include <algorithm>
#include <cstring>
#include <optional>
#include <span>
#include <vector>

#include "vrdppo/buffer.hpp"
#include "vrdppo/dbhelp.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/operations.hpp"
#include "vrdppo/persist.hpp"
#include "vrdppo/provider.hpp"
#include "vrdppo/registry.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/row_sink.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo {

namespace {

std::u16string joinNames(const RecordLayout& layout, std::span<const std::uint8_t> list,
                         bool skipKey) {
  std::u16string out;
  const auto add = [&](const Column& c) {
    if (!out.empty()) out += u", ";
    out += c.write;
  };
  if (list.empty()) {
    for (std::size_t i = skipKey ? 1 : 0; i < layout.columns.size(); ++i) add(layout.columns[i]);
  } else {
    for (const auto i : list) add(layout.columns[i]);
  }
  return out;
}

std::vector<std::u16string_view> writeNames(const TableConfig& config) {
  std::vector<std::u16string_view> names;
  const auto& cols = config.layout->columns;
  if (config.writeList.empty()) {
    for (std::size_t i = 1; i < cols.size(); ++i) names.push_back(cols[i].write);
  } else {
    for (const auto i : config.writeList) names.push_back(cols[i].write);
  }
  return names;
}

std::u16string renderByName(const RecordLayout& layout, const std::byte* record,
                            std::u16string_view name, bool keyHasBranch) {
  const auto& cols = layout.columns;
  for (std::size_t i = keyHasBranch ? 0 : 1; i < cols.size(); ++i) {
    if (equalsNoCase(cols[i].write, name)) return renderColumn(cols[i], record);
  }
  return u"NULL";
}

}  // namespace

void runStatement(const std::u16string& sql) {
  const auto rs = dbHelp::OpenRecordset(sql);
  if (rs->State() == adStateOpen) rs->Close();
}

bool postOnOwnConnection(const std::u16string& sConnect, const std::u16string& sql) {
  try {
    Connection connection;
    connection.Open(sConnect, {}, {}, adOptionUnspecified);
    connection.Execute(sql, adOptionUnspecified);
    connection.Close();
    return true;
  } catch (...) {
    return false;
  }
}

// --- record support shared by tables and views ---

std::u16string PersistObject::GetState() const {
  const auto call = lock();
  return recordState(layout(), recordBytes());
}

// Another class's state of the same length would be read field by field as this class's, its
// key taken for one of this table's: refused before anything is written or sent. The object's
// own record as GetState gave it is taken whatever its key name: a caller that copied another
// class's record of the same fields into it (a setting frozen as a snapshot) made it so.
void PersistObject::refuseForeignState(std::u16string_view state) const {
  const ClassInfo* other = registry::foreignOwner(layout(), state);
  if (other == nullptr) return;
  const std::size_t bytes = layout().bytes;
  if (state.size() * sizeof(char16_t) >= bytes &&
      std::memcmp(state.data(), recordBytes(), bytes) == 0) {
    return;
  }
  const auto keyName = [](const RecordLayout& l) {
    return toUtf8(l.trailing.literal.substr(0, l.trailing.length));
  };
  std::string text = "the state is a " + other->name + " state (its key name is " +
                     keyName(*other->layout) + "), not a " + classInfo().name + " state";
  if (!layout().trailing.literal.empty()) text += " (key name " + keyName(layout()) + ")";
  throw Error(err::kInvalidCall, text);
}

void PersistObject::SetState(std::u16string_view state) {
  const auto call = lock();
  refuseForeignState(state);
  setRecordState(layout(), recordBytes(), state);
}

void PersistObject::RecordToObj(const Recordset& ars) {
  const auto call = lock();
  const RecordLayout& l = layout();
  std::byte* record = recordBytes();
  initialiseRecord(l, record);
  for (const Column& c : l.columns) storeField(c, record, ars.Fields(c.read));
}

std::u16string loadStatement(const RecordLayout& layout, const LoadSpec& spec,
                             const std::u16string& sCriteria, std::int32_t lTop) {
  std::u16string sql = u"SELECT ";
  if (spec.top != TopArg::None && lTop >= 1) sql += u"TOP " + longText(lTop) + u" ";
  if (spec.style == LoadStyle::Star) {
    sql += u"*";
  } else {
    sql += joinNames(layout, spec.selectList, false);
  }
  sql += u" FROM ";
  sql += spec.source;
  if (!trimBlanks(sCriteria).empty()) sql += u" WHERE " + sCriteria;
  return sql;
}

namespace {

// A Load's rows, each record written in place into the Buffer state as the provider steps.
class LoadSink final : public RecordSink {
 public:
  LoadSink(const RecordLayout& layout, std::byte* record, const LoadSpec& spec, std::int32_t lTop)
      : RecordSink(layout, record),
        length_(static_cast<std::int16_t>(layout.stateChars)),
        list_(spec.style == LoadStyle::List),
        estimate_(list_ && lTop >= 1 ? lTop : spec.estimate) {}

  std::u16string state() {
    // An empty result of the list shape gives the Buffer of one, released without a Close.
    if (!writer_) writer_.emplace(length_, list_ ? 1 : estimate_);
    return writer_->state();
  }

 private:
  void firstRow() override { writer_.emplace(length_, estimate_); }

  void take(const std::byte* record) override {
    // The record's image, then U+0000 to the state's length; cut where the Buffer's text ends.
    const std::span<char16_t> to = writer_->next();
    const std::size_t bytes = std::min<std::size_t>(layout().bytes, to.size_bytes());
    std::memcpy(to.data(), record, bytes);
    std::memset(reinterpret_cast<std::byte*>(to.data()) + bytes, 0, to.size_bytes() - bytes);
  }

  bool leavesEmptyResultOpen() const noexcept override { return list_; }

  std::int16_t length_;
  bool list_;
  std::int32_t estimate_;
  std::optional<BufferWriter> writer_;
};

}  // namespace

std::u16string loadInto(PersistObject& object, const LoadSpec& spec,
                        const std::u16string& sCriteria, const std::u16string& sConnect,
                        std::int32_t lTop) {
  const auto call = object.lock();
  if (spec.top == TopArg::None) lTop = 0;
  dbHelp::ConnectString = sConnect;
  const RecordLayout& layout = object.layout();
  LoadSink sink(layout, object.recordBytes(), spec, lTop);
  dbHelp::OpenRecordsetInto(loadStatement(layout, spec, sCriteria, lTop), sink);
  // A statement without a row set leaves nothing to read: the recordset's closed-object error.
  if (!sink.begun()) throw Error::runtime(err::kObjectClosed);
  return sink.state();
}

// --- tables ---

std::int32_t TableObject::key() const noexcept {
  return readField<Long>(recordBytes(), layout().columns[0].offset);
}

void TableObject::setKey(std::int32_t key) noexcept {
  writeField<Long>(recordBytes(), layout().columns[0].offset, key);
}

std::u16string TableObject::FieldValue(std::u16string_view name) const {
  const auto call = lock();
  return renderByName(layout(), recordBytes(), name, config_.keyInFieldValue);
}

std::u16string TableObject::InsertFields() const {
  const auto call = lock();
  return joinNames(layout(), config_.writeList, true);
}

std::u16string TableObject::InsertValues() const {
  const auto call = lock();
  std::u16string out;
  for (const auto name : writeNames(config_)) {
    if (!out.empty()) out += u", ";
    out += FieldValue(name);
  }
  return out;
}

std::u16string TableObject::UpdateFields() const {
  const auto call = lock();
  std::u16string out;
  for (const auto name : writeNames(config_)) {
    if (!out.empty()) out += u", ";
    out += name;
    out += u" = ";
    out += FieldValue(name);
  }
  return out;
}

std::u16string TableObject::SelectFields() const {
  const auto call = lock();
  return joinNames(layout(), config_.selectList, false);
}

std::u16string TableObject::Load(const std::u16string& sCriteria, const std::u16string& sConnect,
                                 std::int32_t lTop) {
  const auto call = lock();
  const LoadSpec spec{config_.table,
                      config_.generation == Generation::First ? LoadStyle::Star : LoadStyle::List,
                      config_.top, config_.estimate, config_.selectList};
  return loadInto(*this, spec, sCriteria, sConnect, lTop);
}

bool TableObject::Commit(const std::u16string& sBuffer, const std::u16string& sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  if (key() != 0) {
    runStatement(u"UPDATE " + std::u16string(config_.table) + u" SET " + UpdateFields() +
                 u" WHERE " + std::u16string(config_.keyColumn) + u" = " + longText(key()));
    return true;
  }
  std::u16string values = InsertValues();
  if (config_.doubleQuotesInInsert) values = dbHelp::ReplaceAll(values, u"\"", u"\"\"");
  std::u16string sql = u"EXEC ";
  sql += config_.insertProcedure;
  sql += u" @p_Stmt = \"INSERT INTO ";
  sql += config_.table;
  sql += config_.insertTableSeparator;
  sql += u"(" + InsertFields() + u") VALUES (" + values + u")\"";
  const auto rs = dbHelp::OpenRecordset(sql);
  setKey(toLong(rs->Fields(u"Identity")));
  rs->Close();
  // A driver counts no rows for a statement whose result is a row set (the identity), but the
  // identity says the row was made.
  if (lastRecordsAffected() < 0) restoreLastRecordsAffected(1);
  return true;
}

bool TableObject::Delete(const std::u16string& sBuffer, const std::u16string& sConnect) {
  const auto call = lock();
  dbHelp::ConnectString = sConnect;
  SetState(sBuffer);
  const std::u16string table(config_.table);
  const std::u16string where =
      u" WHERE " + std::u16string(config_.keyColumn) + u" = " + longText(key());
  if (config_.deleteStyle == DeleteStyle::Soft) {
    runStatement(u"UPDATE " + table + u" SET DELETEDFLAG = 'Y'" + where);
  } else {
    runStatement(u"DELETE FROM " + table + where);
  }
  return true;
}

bool TableObject::CriteriaDelete(const std::u16string& sBuffer, const std::u16string& second,
                                 const std::u16string& third, bool bHardDelete) {
  const auto call = lock();
  const std::u16string table(config_.table);
  if (config_.criteriaDelete == CriteriaDeleteForm::First) {
    const std::u16string& sCriteria = second;
    if (trimBlanks(sCriteria).empty()) return false;
    dbHelp::ConnectString = third;
    SetState(sBuffer);
    runStatement(u"DELETE FROM " + table + u" WHERE " + sCriteria);
    return true;
  }
  if (config_.criteriaDelete == CriteriaDeleteForm::None)
    throw Error::runtime(err::kMemberNotFound);
  const std::u16string& sCriteria = third;
  dbHelp::ConnectString = second;
  SetState(sBuffer);
  const std::u16string condition =
      trimBlanks(sCriteria).empty() ? std::u16string() : u" WHERE " + sCriteria;
  if (config_.criteriaDelete == CriteriaDeleteForm::SecondWithHardDelete && !bHardDelete) {
    runStatement(u"UPDATE " + table + u" SET DELETEDFLAG = 'Y'" + condition);
  } else {
    runStatement(u"DELETE FROM " + table + condition);
  }
  return true;
}

// --- views ---

std::u16string ViewObject::SelectFields() const {
  const auto call = lock();
  return joinNames(layout(), config_.selectList, false);
}

std::u16string ViewObject::FieldValue(std::u16string_view name) const {
  const auto call = lock();
  return renderByName(layout(), recordBytes(), name, true);
}

std::u16string ViewObject::Load(const std::u16string& sCriteria, const std::u16string& sConnect,
                                std::int32_t lTop) {
  const auto call = lock();
  const LoadSpec spec{config_.view, config_.shape, config_.top, config_.estimate,
                      config_.selectList};
  return loadInto(*this, spec, sCriteria, sConnect, lTop);
}

}  // namespace vrdppo
