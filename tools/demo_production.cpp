// The demo's production section: a run's day.
#include <ostream>

#include "commands.hpp"
#include "demo.hpp"
#include "vrdppo/production/stems.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::cli {

void demoProduction(DemoContext& d) {
  d.heading("A run's stems through cStemsPersist: three inserts, an update, a delete");
  d.run = d.insert(
      u"INSERT INTO PRODUCTIONRUN (ProductionDate, ProductionGradeId) VALUES "
      u"('2019/03/07', " +
      longText(d.productionGrade) + u")");
  cStemsPersist stems;
  std::vector<Long> keys;
  for (const double weight : {125.5, 98.25, 110.0}) {
    stems.Commit(newRecord<cStemsPersist>([&](StemsRecord& r) {
                   r.TotalNetWeight = weight;
                   r.ContainerEnd = static_cast<Long>(keys.size()) + 12;
                   r.StemTypeID = 3;
                   r.ProductionRunId = d.run;
                 }),
                 d.connect);
    keys.push_back(stems.record().StemsId);  // the new key, as GetState shows it
  }
  cStemsPersist editor;
  editor.record() = stems.record();
  editor.record().TotalNetWeight = 111.75;
  stems.Commit(editor.GetState(), d.connect);
  stems.Delete(newRecord<cStemsPersist>([&](StemsRecord& r) { r.StemsId = keys[1]; }), d.connect);
  d.statements();

  d.heading("The run's stems back through Load: a Buffer state of 43-character records");
  const std::u16string state =
      stems.Load(u"ProductionRunId = " + longText(d.run) + u" ORDER BY StemsId", d.connect);
  d.statements();
  d.out << "    state: " << state.size() << " characters; its first record as state text:\n    "
        << escapeState(recordsOf(state).at(0)) << "\n";
  d.table(stems.layout(), state);
}

}  // namespace vrdppo::cli
