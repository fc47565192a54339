// The table and view contracts: generic code configured per class by a column table and a few
// named choices (generation or shape, delete style, lTop, CriteriaDelete form, insert quirks).
#pragma once

#include <cstdint>
#include <cstring>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>

#include "vrdppo/record.hpp"
#include "vrdppo/recordset.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/visibility.hpp"

VRDPPO_PUBLIC_BEGIN
namespace vrdppo {

struct ClassInfo;

enum class Generation : std::uint8_t { First, Second };
enum class DeleteStyle : std::uint8_t { Hard, Soft, Procedure };
enum class TopArg : std::uint8_t { None, Optional, Required };
enum class CriteriaDeleteForm : std::uint8_t {
  None,
  First,                 // (sBuffer, sCriteria, sConnect); False on empty criteria
  Second,                // (sBuffer, sConnect, sCriteria); empty criteria reach every row
  SecondWithHardDelete,  // as Second, plus bHardDelete: False flags the rows instead
};
// How Load selects: "SELECT * FROM" and estimate 10 always (first generation, plain views), or
// "SELECT <SelectFields> FROM" with estimate 1 for an empty result and lTop as the estimate.
enum class LoadStyle : std::uint8_t { Star, List };

struct LoadSpec {
  std::u16string_view source;  // table or view as the statements name it
  LoadStyle style;
  TopArg top;
  std::int32_t estimate = 10;
  std::span<const std::uint8_t> selectList = {};  // column indices; empty: record order
};

struct TableConfig {
  Generation generation;
  std::u16string_view table;
  std::u16string_view keyColumn;  // as UPDATE and DELETE name it
  DeleteStyle deleteStyle;
  TopArg top;
  CriteriaDeleteForm criteriaDelete;
  const RecordLayout* layout;
  std::span<const std::uint8_t> writeList =
      {};  // Insert/Update lists; empty: record order less key
  std::span<const std::uint8_t> selectList = {};  // empty: record order
  std::int32_t estimate = 10;
  // Quirks, each named by the class that has it; the defaults follow the generation.
  bool doubleQuotesInInsert;                 // every " in the values doubled
  std::u16string_view insertProcedure;       // sp_InsertStatement / qsp_InsertStatement
  std::u16string_view insertTableSeparator;  // " " or "  " ahead of the field list
  bool keyInFieldValue = false;              // FieldValue has a branch for the key
};

// The defaults of each generation; a class states its table, key and choices.
constexpr TableConfig firstGeneration(std::u16string_view table, std::u16string_view key,
                                      DeleteStyle del, const RecordLayout& layout,
                                      CriteriaDeleteForm cd = CriteriaDeleteForm::None) {
  return TableConfig{
      Generation::First,     table, key, del, TopArg::None, cd, &layout, {}, {}, 10, false,
      u"sp_InsertStatement", u" "};
}
constexpr TableConfig secondGeneration(std::u16string_view table, std::u16string_view key,
                                       DeleteStyle del, TopArg top, CriteriaDeleteForm cd,
                                       const RecordLayout& layout) {
  return TableConfig{Generation::Second,     table, key, del, top, cd, &layout, {}, {}, 10, true,
                     u"qsp_InsertStatement", u"  "};
}

struct ViewConfig {
  std::u16string_view view;
  LoadStyle shape;  // Star: the plain shape; List: the list shape
  TopArg top;
  const RecordLayout* layout;
  std::span<const std::uint8_t> selectList = {};
  std::int32_t estimate = 10;
};

// Every persist object: its class's registry entry and its record.
//
// One call at a time: every public operation holds the object's lock while it runs, so that
// threads sharing an object wait for each other's calls, as they did when the platform kept an
// object's calls on one thread. The record is the last call's; a caller that needs two calls to
// see the same record (Commit, then GetState for the new key) holds lock() across both. The
// record accessors (record(), key(), recordBytes()) take no lock.
class PersistObject {
 public:
  virtual ~PersistObject() = default;
  virtual const ClassInfo& classInfo() const = 0;
  virtual const RecordLayout& layout() const = 0;
  virtual std::byte* recordBytes() noexcept = 0;
  const std::byte* recordBytes() const noexcept {
    return const_cast<PersistObject*>(this)->recordBytes();
  }

  // Held by each public operation; recursive, since operations call others (Commit, SetState).
  [[nodiscard]] std::unique_lock<std::recursive_mutex> lock() const {
    return std::unique_lock(calls_);
  }

  std::u16string GetState() const;
  // Error 5 for a record state of another class: one whose key name, in that class's place,
  // is another class's while its own place does not hold this class's.
  void SetState(std::u16string_view state);
  // Fills the record from the recordset's current row, by name.
  void RecordToObj(const Recordset& ars);

 protected:
  void refuseForeignState(std::u16string_view state) const;

 private:
  mutable std::recursive_mutex calls_;
};

// The table contract.
class TableObject : public PersistObject {
 public:
  explicit TableObject(const TableConfig& config) : config_(config) {}
  const TableConfig& config() const noexcept { return config_; }
  const RecordLayout& layout() const override { return *config_.layout; }

  std::u16string InsertValues() const;
  std::u16string InsertFields() const;
  std::u16string UpdateFields() const;
  std::u16string SelectFields() const;
  std::u16string FieldValue(std::u16string_view name) const;

  std::u16string Load(const std::u16string& sCriteria, const std::u16string& sConnect,
                      std::int32_t lTop = 0);
  bool Commit(const std::u16string& sBuffer, const std::u16string& sConnect);
  // Hard or soft by the configuration; a class that deletes by procedure overrides it.
  virtual bool Delete(const std::u16string& sBuffer, const std::u16string& sConnect);
  // The arguments in the class's own order: first form (sBuffer, sCriteria, sConnect), second
  // form (sBuffer, sConnect, sCriteria[, bHardDelete]).
  bool CriteriaDelete(const std::u16string& sBuffer, const std::u16string& second,
                      const std::u16string& third, bool bHardDelete = true);

  std::int32_t key() const noexcept;
  void setKey(std::int32_t key) noexcept;

 private:
  const TableConfig& config_;
};

// The view contract.
class ViewObject : public PersistObject {
 public:
  explicit ViewObject(const ViewConfig& config) : config_(config) {}
  const ViewConfig& config() const noexcept { return config_; }
  const RecordLayout& layout() const override { return *config_.layout; }

  std::u16string SelectFields() const;
  std::u16string FieldValue(std::u16string_view name) const;
  std::u16string Load(const std::u16string& sCriteria, const std::u16string& sConnect,
                      std::int32_t lTop = 0);

 private:
  const ViewConfig& config_;
};

// Runs a Load: the statement, the Buffer, the rows through the object's record.
std::u16string loadInto(PersistObject& object, const LoadSpec& spec,
                        const std::u16string& sCriteria, const std::u16string& sConnect,
                        std::int32_t lTop);
// "SELECT ..." of a Load, without running it.
std::u16string loadStatement(const RecordLayout& layout, const LoadSpec& spec,
                             const std::u16string& sCriteria, std::int32_t lTop);

// The record, held ahead of the contract's base so that it exists before the base uses it.
template <class Record>
struct RecordHolder {
  Record rec{};  // a new object's record is all zero bytes
};

template <class Record, class Base, class Config>
class PersistWith : protected RecordHolder<Record>, public Base {
 public:
  explicit PersistWith(const Config& config) : Base(config) {
    static_assert(std::is_standard_layout_v<Record> && std::is_trivially_copyable_v<Record>);
  }
  std::byte* recordBytes() noexcept override { return reinterpret_cast<std::byte*>(&this->rec); }
  // PersistObject's SetState, with the record's size known here: a state that covers the whole
  // record is copied in at once, which is what a walk over a Buffer's records does.
  void SetState(std::u16string_view state) {
    const auto call = this->lock();
    if (state.size() * sizeof(char16_t) >= sizeof(Record)) {
      this->refuseForeignState(state);
      std::memcpy(static_cast<void*>(&this->rec), state.data(), sizeof(Record));
    } else {
      Base::SetState(state);
    }
  }
  Record& record() noexcept { return this->rec; }
  const Record& record() const noexcept { return this->rec; }
};

template <class Record>
using TablePersist = PersistWith<Record, TableObject, TableConfig>;
template <class Record>
using ViewPersist = PersistWith<Record, ViewObject, ViewConfig>;

// The state of a new record of the class, as its initialiser leaves it and `set` changes it:
// how a client builds a record to insert (key 0) without a former Load.
template <class Class, class F>
std::u16string newState(F set) {
  Class o;
  initialiseRecord(o.layout(), o.recordBytes());
  set(o.record());
  return o.GetState();
}

}  // namespace vrdppo
VRDPPO_PUBLIC_END
