// A Load reads the store's cells straight into the record. Whatever the column's declared type
// and whatever the cell holds, the field must come out as the recordset's value would store it,
// error for error.
#include <sqlite3.h>

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "providers/embedded/rows.hpp"
#include "providers/embedded/sqlite_handles.hpp"
#include "store_fixture.hpp"
#include "vrdppo/render.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::embedded::testing {

namespace {

constexpr std::size_t kRecordBytes = 16;

// One field at the start of a 16-byte record, reading the column v.
RecordLayout oneField(const Column& column) {
  return RecordLayout{kRecordBytes, kRecordBytes / 2, {&column, 1}, {kRecordBytes, 0, {}}};
}

using Image = std::array<std::byte, kRecordBytes>;

// The record as the sink leaves it, or the number of the error it raised.
struct Outcome {
  Image record{};
  std::int32_t error = 0;
  bool operator==(const Outcome&) const = default;
};

class LastRecord final : public RecordSink {
 public:
  using RecordSink::RecordSink;

 private:
  void take(const std::byte*) override {}
};

Outcome streamed(sqlite3* db, const Column& column) {
  const RecordLayout layout = oneField(column);
  Outcome o;
  LastRecord sink(layout, o.record.data());
  try {
    Statement st(db, std::u16string_view(u"SELECT v FROM T"));
    streamInto(st, sink);
  } catch (const Error& e) {
    o.error = e.number();
  }
  return o;
}

// The recordset's way: the cell as a value, then stored into the initialised record.
Outcome fromRecordset(sqlite3* db, const Column& column) {
  const RecordLayout layout = oneField(column);
  Outcome o;
  initialiseRecord(layout, o.record.data());
  try {
    Statement st(db, std::u16string_view(u"SELECT v FROM T"));
    const auto rs = fetchAll(st);
    storeField(column, o.record.data(), rs->Fields(0));
  } catch (const Error& e) {
    o.error = e.number();
  }
  return o;
}

TEST(StoreStream, EveryCellReachesTheFieldAsTheRecordsetsValueWould) {
  const std::vector<Column> fields{
      {u"v", u"v", FieldType::Long, 0, 0, Render::None, {}},
      {u"v", u"v", FieldType::Double, 0, 0, Render::None, {}},
      {u"v", u"v", FieldType::Currency, 0, 0, Render::None, {}},
      {u"v", u"v", FieldType::Date, 0, 0, Render::None, {}},
      {u"v", u"v", FieldType::String, 0, 6, Render::None, {}},
  };
  // An empty type stands for a column of no declared type, which keeps each value's own class.
  const std::vector<std::string> declared{"INT",         "FLOAT", "MONEY", "DATETIME",
                                          "VARCHAR(20)", "BIT",   ""};
  const std::vector<std::string> values{"NULL",
                                        "0",
                                        "7",
                                        "-2147483649",
                                        "5000000000",
                                        "2.5",
                                        "3.5",
                                        "-0.5",
                                        "1e300",
                                        "'abc'",
                                        "'12'",
                                        "'  42 '",
                                        "''",
                                        "'Zürich'",
                                        "'sevenchars'",
                                        "X'4142'",
                                        "'2019/03/07 14:05:09'",
                                        "'2019-03-07'",
                                        "'2019-03-07 09:30:00.250'",
                                        "'20190307'",
                                        "'1899-12-29 06:00'",
                                        "'0100/01/01'",
                                        "'9999/12/31 23:59:59'",
                                        "'2019/02/29'",
                                        "'March 7, 2019'",
                                        "'soon'",
                                        "'2019/03/07 24:00:00'"};
  int compared = 0;
  for (const std::string& type : declared) {
    for (const std::string& value : values) {
      sqlite3* raw = nullptr;
      ASSERT_EQ(sqlite3_open(":memory:", &raw), SQLITE_OK);
      const ConnectionHandle db(raw);
      execute(db.get(), "CREATE TABLE T (v " + type + ")");
      execute(db.get(), "INSERT INTO T VALUES (" + value + ")");
      for (const Column& field : fields) {
        const Outcome expected = fromRecordset(db.get(), field);
        const Outcome got = streamed(db.get(), field);
        EXPECT_EQ(got.error, expected.error)
            << type << " " << value << " into " << fieldTypeText(field.type);
        EXPECT_TRUE(got.record == expected.record)
            << type << " " << value << " into " << fieldTypeText(field.type);
        ++compared;
      }
    }
  }
  EXPECT_EQ(compared, 7 * 27 * 5);
}

}  // namespace

}  // namespace vrdppo::embedded::testing
