// The peer: SOCI reading the same rows into the same records, in its bulk form (vectors bound
// with into, fetched a batch at a time), the faster of its idiomatic ways for a whole table.
#include <benchmark/benchmark.h>
#include <soci/soci.h>
#include <soci/sqlite3/soci-sqlite3.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "stores.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/production/tests.hpp"
#include "vrdppo/reference/stations.hpp"

namespace {

using vrdppo::bench::kRows;

constexpr std::size_t kBatch = 1000;

template <std::size_t N>
void text(const std::string& s, soci::indicator ind, vrdppo::FixedString<N>& field) {
  std::size_t n = 0;
  if (ind == soci::i_ok) {
    n = std::min(s.size(), N);
    for (std::size_t i = 0; i < n; ++i) field.c[i] = static_cast<unsigned char>(s[i]);
  }
  std::fill(field.c + n, field.c + N, u' ');
}

// Batch binds its vectors to its statement; the rows it fetches go through read into records.
template <class Record, class Batch, class Read>
void sociBulk(benchmark::State& state, const vrdppo::bench::Store& s, Read read) {
  std::vector<Record> records;
  for (auto _ : state) {
    soci::session sql(*soci::factory_sqlite3(), "db=" + s.path);
    records.clear();
    Batch b(sql);
    b.statement.execute();
    while (b.statement.fetch()) {
      for (std::size_t i = 0; i < b.size(); ++i) {
        Record r{};
        read(b, i, r);
        records.push_back(r);
      }
      b.resize(kBatch);
    }
    benchmark::DoNotOptimize(records.data());
  }
  if (records.size() != static_cast<std::size_t>(kRows)) state.SkipWithError("wrong row count");
  state.SetItemsProcessed(state.iterations() * kRows);
}

struct StemsBatch {
  std::vector<int> id, start, end, type, run;
  std::vector<double> weight;
  std::vector<soci::indicator> startInd;
  soci::statement statement;
  explicit StemsBatch(soci::session& sql)
      : id(kBatch),
        start(kBatch),
        end(kBatch),
        type(kBatch),
        run(kBatch),
        weight(kBatch),
        startInd(kBatch),
        statement((sql.prepare << "SELECT StemsId, TotalNetWeight, ContainerStart, ContainerEnd, "
                                  "StemTypeId, ProductionRunId FROM STEMS",
                   soci::into(id), soci::into(weight), soci::into(start, startInd), soci::into(end),
                   soci::into(type), soci::into(run))) {}
  std::size_t size() const { return id.size(); }
  void resize(std::size_t n) {
    for (auto* v : {&id, &start, &end, &type, &run}) v->resize(n);
    weight.resize(n);
    startInd.resize(n);
  }
};

void BM_SociStemsIntoStructs(benchmark::State& state) {
  sociBulk<vrdppo::StemsRecord, StemsBatch>(
      state, vrdppo::bench::stemsStore(),
      [](const StemsBatch& b, std::size_t i, vrdppo::StemsRecord& r) {
        r.StemsId = b.id[i];
        r.TotalNetWeight = b.weight[i];
        r.ContainerStart = b.startInd[i] == soci::i_ok ? b.start[i] : 0;
        r.ContainerEnd = b.end[i];
        r.StemTypeID = b.type[i];
        r.ProductionRunId = b.run[i];
      });
}

struct DegradationBatch {
  std::vector<int> id, type, run, number;
  std::vector<double> when;
  std::vector<std::vector<double>> values;
  soci::statement statement;
  explicit DegradationBatch(soci::session& sql)
      : id(kBatch),
        type(kBatch),
        run(kBatch),
        number(kBatch),
        when(kBatch),
        values(10, std::vector<double>(kBatch)),
        statement(sql) {
    statement.exchange(soci::into(id));
    statement.exchange(soci::into(type));
    statement.exchange(soci::into(run));
    statement.exchange(soci::into(number));
    statement.exchange(soci::into(when));
    for (auto& v : values) statement.exchange(soci::into(v));
    statement.alloc();
    statement.prepare(
        "SELECT DEGRADATIONID, TestType, ProductionRunId, TestNumber, julianday(SampleTime), "
        "Weight, Over1, OverHalf, FourXFour, EightXEight, StripOnPan, ThruQuarter, NonObj, "
        "ObjStem, StemOnPan FROM DEGRADATION");
    statement.define_and_bind();
  }
  std::size_t size() const { return id.size(); }
  void resize(std::size_t n) {
    for (auto* v : {&id, &type, &run, &number}) v->resize(n);
    when.resize(n);
    for (auto& v : values) v.resize(n);
  }
};

void BM_SociDegradationIntoStructs(benchmark::State& state) {
  sociBulk<vrdppo::DegradationRecord, DegradationBatch>(
      state, vrdppo::bench::classesStore(),
      [](const DegradationBatch& b, std::size_t i, vrdppo::DegradationRecord& r) {
        r.DegradationId = b.id[i];
        r.TestType = b.type[i];
        r.ProductionRunId = b.run[i];
        r.TestNumber = b.number[i];
        r.SampleTime = vrdppo::Date{b.when[i] - 2415018.5};
        for (std::size_t c = 0; c < b.values.size(); ++c) {
          std::memcpy(reinterpret_cast<char*>(&r) + offsetof(vrdppo::DegradationRecord, Weight) +
                          c * sizeof(double),
                      &b.values[c][i], sizeof(double));
        }
      });
}

// STATION's 26 columns: its integers and its texts, in column order.
constexpr bool kStationInteger[26] = {true,  false, false, false, false, true, false, false, false,
                                      false, true,  false, false, false, true, false, true,  false,
                                      true,  false, false, false, false, true, true,  false};

struct StationBatch {
  std::vector<std::vector<int>> ints;
  std::vector<std::vector<std::string>> texts;
  std::vector<std::vector<soci::indicator>> textInd;
  soci::statement statement;
  explicit StationBatch(soci::session& sql) : statement(sql) {
    for (bool integer : kStationInteger) {
      if (integer) {
        ints.emplace_back(kBatch);
      } else {
        texts.emplace_back(kBatch);
        textInd.emplace_back(kBatch);
      }
    }
    std::size_t i = 0;
    std::size_t t = 0;
    for (bool integer : kStationInteger) {
      if (integer) {
        statement.exchange(soci::into(ints[i++]));
      } else {
        statement.exchange(soci::into(texts[t], textInd[t]));
        ++t;
      }
    }
    statement.alloc();
    statement.prepare("SELECT * FROM STATION");
    statement.define_and_bind();
  }
  std::size_t size() const { return ints[0].size(); }
  void resize(std::size_t n) {
    for (auto& v : ints) v.resize(n);
    for (auto& v : texts) v.resize(n);
    for (auto& v : textInd) v.resize(n);
  }
};

void BM_SociStationIntoStructs(benchmark::State& state) {
  sociBulk<vrdppo::StationRecord, StationBatch>(
      state, vrdppo::bench::classesStore(),
      [](const StationBatch& b, std::size_t i, vrdppo::StationRecord& r) {
        const auto s = [&](std::size_t t, auto& field) {
          text(b.texts[t][i], b.textInd[t][i], field);
        };
        r.StationId = b.ints[0][i];
        s(0, r.StationCode);
        s(1, r.Description);
        s(2, r.DeletedFlag);
        s(3, r.ScannerPort);
        r.ScannerBaud = b.ints[1][i];
        s(4, r.ScannerParity);
        s(5, r.ScannerData);
        s(6, r.ScannerStop);
        s(7, r.ScalePort);
        r.ScaleBaud = b.ints[2][i];
        s(8, r.ScaleParity);
        s(9, r.ScaleData);
        s(10, r.ScaleStop);
        r.TareTolerance = b.ints[3][i];
        s(11, r.RealTimeLabels);
        r.NotifyInterval = b.ints[4][i];
        s(12, r.DateTimeLabels);
        r.PrintDelay = b.ints[5][i];
        s(13, r.StationType);
        s(14, r.AccessAllRuns);
        s(15, r.VerifyBigBales);
        s(16, r.ModelCode);
        r.cbGreenUnitTypeId = b.ints[6][i];
        r.DefaultRecvLine = b.ints[7][i];
        s(17, r.DefaultRecvMode);
      });
}

}  // namespace

BENCHMARK(BM_SociStemsIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_SociDegradationIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_SociStationIntoStructs)->Unit(benchmark::kMillisecond)->MinTime(2.0);
