// Load of 100,000 rows of a first-generation class (DEGRADATION: SELECT *, a date and eleven
// doubles) and of a second-generation class (STATION: a SELECT list of 26 columns, most of them
// strings) into a Buffer state, each against a plain SQLite loop reading the same rows into
// structs.
#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench_store.hpp"
#include "vrdppo/production/tests.hpp"
#include "vrdppo/reference/stations.hpp"
#include "vrdppo/render.hpp"

namespace {

using vrdppo::bench::kRows;
using vrdppo::bench::Store;

}  // namespace

const Store& vrdppo::bench::classesStore() {
  static const Store s = vrdppo::bench::filledStore("vrdppo-classes-bench.db", [](sqlite3* db) {
    vrdppo::bench::fill(
        db,
        "INSERT INTO DEGRADATION (TestType, ProductionRunId, TestNumber, SampleTime, Weight, "
        "Over1, OverHalf, FourXFour, EightXEight, StripOnPan, ThruQuarter, NonObj, ObjStem, "
        "StemOnPan) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        kRows, 14, [](sqlite3_stmt* st, int c, int i) {
          if (c <= 3) {
            sqlite3_bind_int(st, c, c == 2 ? 1 + i / 1000 : i % 5);
          } else if (c == 4) {
            sqlite3_bind_text(st, c, "2019-03-07 09:30:00", -1, SQLITE_STATIC);
          } else {
            sqlite3_bind_double(st, c, (i % 1000) / 8.0 + c);
          }
        });
    vrdppo::bench::fill(
        db,
        "INSERT INTO STATION (StationCode, Description, DeletedFlag, ScannerPort, ScannerBaud, "
        "ScannerParity, ScannerData, ScannerStop, ScalePort, ScaleBaud, ScaleParity, ScaleData, "
        "ScaleStop, TareTolerance, RealTimeLabels, NotifyInterval, DateTimeLabels, PrintDelay, "
        "StationType, AccessAllRuns, VerifyBigBales, ModelCode, cbGreenUnitTypeId, "
        "DefaultRecvLine, DefaultRecvMode) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
        "?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
        kRows, 25, [](sqlite3_stmt* st, int c, int i) {
          switch (c) {
            case 5:
            case 10:
            case 14:
            case 16:
            case 18:
            case 23:
            case 24:
              sqlite3_bind_int(st, c, 9600 + i % 7);
              break;
            case 1:
              sqlite3_bind_text(st, c, "SCALE-2", -1, SQLITE_STATIC);
              break;
            case 2:
              sqlite3_bind_text(st, c, "Receiving scale at door 2", -1, SQLITE_STATIC);
              break;
            case 4:
            case 9:
              sqlite3_bind_text(st, c, "COM1", -1, SQLITE_STATIC);
              break;
            case 25:
              sqlite3_bind_text(st, c, "BALES", -1, SQLITE_STATIC);
              break;
            default:
              sqlite3_bind_text(st, c, "N", -1, SQLITE_STATIC);
              break;
          }
        });
  });
  return s;
}

namespace {

const Store& store() {
  return vrdppo::bench::classesStore();
}

void text(sqlite3_stmt* st, int column, char16_t* field, std::size_t length) {
  std::fill(field, field + length, u' ');
  const auto* t = static_cast<const char16_t*>(sqlite3_column_text16(st, column));
  if (!t) return;
  const auto bytes = static_cast<std::size_t>(sqlite3_column_bytes16(st, column));
  std::copy_n(t, std::min(length, bytes / 2), field);
}

// Days from 1899-12-30 for "yyyy-mm-dd hh:mm:ss", as the store's rows carry dates.
double days(sqlite3_stmt* st, int column) {
  return sqlite3_column_type(st, column) == SQLITE_NULL
             ? 2.0
             : sqlite3_column_double(st, column) - 2415018.5;
}

void BM_LoadDegradationIntoBuffer(benchmark::State& state) {
  vrdppo::bench::loadIntoBuffer<vrdppo::cDegradationPersist>(state, store(), 127, kRows);
}

void BM_PlainSqliteDegradationIntoStructs(benchmark::State& state) {
  vrdppo::bench::plainSqliteIntoStructs<vrdppo::DegradationRecord>(
      state, store(),
      "SELECT DEGRADATIONID, TestType, ProductionRunId, TestNumber, julianday(SampleTime), Weight, "
      "Over1, OverHalf, FourXFour, EightXEight, StripOnPan, ThruQuarter, NonObj, ObjStem, "
      "StemOnPan FROM DEGRADATION",
      kRows, [](sqlite3_stmt* select, vrdppo::DegradationRecord& r) {
        r.DegradationId = sqlite3_column_int(select, 0);
        r.TestType = sqlite3_column_int(select, 1);
        r.ProductionRunId = sqlite3_column_int(select, 2);
        r.TestNumber = sqlite3_column_int(select, 3);
        r.SampleTime = vrdppo::Date{days(select, 4)};
        // Weight and the ten fractions lie side by side.
        for (int c = 5; c < 15; ++c) {
          const double v = sqlite3_column_double(select, c);
          std::memcpy(reinterpret_cast<char*>(&r) + offsetof(vrdppo::DegradationRecord, Weight) +
                          static_cast<std::size_t>(c - 5) * sizeof v,
                      &v, sizeof v);
        }
      });
}

void BM_LoadStationIntoBuffer(benchmark::State& state) {
  vrdppo::bench::loadIntoBuffer<vrdppo::cStationPersist>(state, store(), 216, kRows, 0);
}

void BM_PlainSqliteStationIntoStructs(benchmark::State& state) {
  vrdppo::bench::plainSqliteIntoStructs<vrdppo::StationRecord>(
      state, store(), "SELECT * FROM STATION", kRows,
      [](sqlite3_stmt* select, vrdppo::StationRecord& r) {
        r.StationId = sqlite3_column_int(select, 0);
        text(select, 1, r.StationCode.c, 20);
        text(select, 2, r.Description.c, 100);
        text(select, 3, r.DeletedFlag.c, 1);
        text(select, 4, r.ScannerPort.c, 5);
        r.ScannerBaud = sqlite3_column_int(select, 5);
        text(select, 6, r.ScannerParity.c, 1);
        text(select, 7, r.ScannerData.c, 1);
        text(select, 8, r.ScannerStop.c, 1);
        text(select, 9, r.ScalePort.c, 5);
        r.ScaleBaud = sqlite3_column_int(select, 10);
        text(select, 11, r.ScaleParity.c, 1);
        text(select, 12, r.ScaleData.c, 1);
        text(select, 13, r.ScaleStop.c, 1);
        r.TareTolerance = sqlite3_column_int(select, 14);
        text(select, 15, r.RealTimeLabels.c, 1);
        r.NotifyInterval = sqlite3_column_int(select, 16);
        text(select, 17, r.DateTimeLabels.c, 1);
        r.PrintDelay = sqlite3_column_int(select, 18);
        text(select, 19, r.StationType.c, 2);
        text(select, 20, r.AccessAllRuns.c, 1);
        text(select, 21, r.VerifyBigBales.c, 1);
        text(select, 22, r.ModelCode.c, 1);
        r.cbGreenUnitTypeId = sqlite3_column_int(select, 23);
        r.DefaultRecvLine = sqlite3_column_int(select, 24);
        text(select, 25, r.DefaultRecvMode.c, 25);
      });
}

}  // namespace

BENCHMARK(BM_LoadDegradationIntoBuffer)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_PlainSqliteDegradationIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_LoadStationIntoBuffer)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_PlainSqliteStationIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
