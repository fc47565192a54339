// Records two stems of a run on an embedded store and reports the run's stems.
#include <cstdio>
#include <string>

#include "vrdppo/buffer.hpp"
#include "vrdppo/embedded_store.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/text.hpp"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: stems_report STORE-FILE\n");
    return 2;
  }
  try {
    const std::u16string connect = vrdppo::embedded::connectString(argv[1]);
    vrdppo::cStemsPersist stems;
    for (double weight : {125.5, 98.25}) {
      vrdppo::StemsRecord& r = stems.record();
      r.StemsId = 0;  // a new row
      r.TotalNetWeight = weight;
      r.ContainerEnd = 12;
      r.StemTypeID = 3;
      r.ProductionRunId = 77;
      if (!stems.Commit(stems.GetState(), connect)) return 1;
    }

    vrdppo::Buffer rows;
    rows.SetState(stems.Load(u"ProductionRunId = 77", connect));
    double total = 0;
    for (std::int32_t i = 1; i <= rows.Count(); ++i) {
      vrdppo::cStemsPersist row;
      row.SetState(rows.Item(i));
      total += row.record().TotalNetWeight;
    }
    std::printf("run 77: %d stems, %.2f kg\n", rows.Count(), total);
    return rows.Count() == 2 && total == 223.75 ? 0 : 1;
  } catch (const vrdppo::Error& e) {
    std::fprintf(stderr, "error %d: %s\n", e.number(), e.description().c_str());
    return 1;
  }
}
