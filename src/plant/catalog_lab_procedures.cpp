// The laboratory's stored procedures: notes, the header lock, holds, prizing, and the
// procedures that add samples to their header's counts or take them out again.
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "plant/catalog_lab.hpp"
#include "providers/embedded/session.hpp"

namespace vrdppo::embedded {

namespace {

// Sample types of the notes, and of a sample withdrawn from one: samples of these types are
// no material for a new note.
constexpr const char* kNotSampled = "('ITD','ISD','ADA','ADS','999')";

struct Family {
  const char* samples;  // the sample table
  const char* key;      // its key column
  const char* sums;     // the table linking a note row to its samples
};
constexpr Family kFamilies[] = {
    {"LABPACKED", "LABPACKEDID", "LABPACKEDSUM"},
    {"LABDEGRADATION", "LABDEGRADATIONID", "LABDEGSUM"},
    {"LABGREENMOISTURE", "LABGREENMOISTUREID", "LABGREENMOISTSUM"},
};

std::shared_ptr<Recordset> noRows() {
  return std::make_shared<Recordset>();
}

// One row, one column: what the retried calls and the lock read by position.
std::shared_ptr<Recordset> answer(Session& s, std::int32_t value) {
  return s.run("SELECT ? AS Result", {Variant(value)});
}

std::int32_t longArg(const ProcArgs& args, std::size_t position, std::u16string_view name) {
  const Variant& v = args.get(position, name);
  return v.isNull() ? 0 : toLong(v);
}

std::u16string textArg(const ProcArgs& args, std::size_t position, std::u16string_view name) {
  const Variant& v = args.get(position, name);
  return v.isNull() ? std::u16string() : toString(v);
}

// The first row's first column as a number (a Null as 0); false when there is no row.
bool firstLong(const std::shared_ptr<Recordset>& rs, std::int32_t& out) {
  if (!rs || rs->State() != adStateOpen || rs->EOF_()) return false;
  const Variant& v = rs->Fields(std::size_t{0});
  out = v.isNull() ? 0 : toLong(v);
  return true;
}

// Intermediate notes: for each production grade of the company with ordinary samples of the
// season in the span, one note row of type 'ITD' that counts them, in each sample family.
std::shared_ptr<Recordset> createIntermediateNotes(Session& s, const ProcArgs& args) {
  const std::int32_t season = longArg(args, 0, u"p_Season");
  const std::int32_t company = longArg(args, 1, u"p_CompanyID");
  const std::u16string from = textArg(args, 2, u"p_FromDate");
  const std::u16string to = textArg(args, 3, u"p_ToDate");
  s.transaction([&] {
    for (const Family& f : kFamilies) {
      s.run(std::string("INSERT INTO ") + f.samples +
                " (ProductionGradeId, LabSeason, SampleDateTime, SampleType, SampleCount) "
                "SELECT x.ProductionGradeId, x.LabSeason, ?, 'ITD', COUNT(*) FROM " +
                f.samples +
                " x JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = x.ProductionGradeId "
                "JOIN GRADE g ON g.GradeId = p.GradeId "
                "WHERE x.LabSeason = ? AND g.CompanyId = ? AND x.SampleDateTime BETWEEN ? AND ? "
                "AND x.SampleType NOT IN " +
                kNotSampled + " GROUP BY x.ProductionGradeId, x.LabSeason",
            {Variant(to), Variant(season), Variant(company), Variant(from), Variant(to)});
    }
  });
  return noRows();
}

// Advice notes: per family and production grade of the company, one note row of type 'ADA'
// linked by its sum rows to each ordinary sample of the season not yet in an advice note, and
// one LABADVICENOTE row under the next number for the packed cases noted.
std::shared_ptr<Recordset> createAdviceNotes(Session& s, const ProcArgs& args) {
  const std::int32_t company = longArg(args, 0, u"p_CompanyID");
  const std::int32_t season = longArg(args, 1, u"p_Season");
  s.transaction([&] {
    std::int32_t cases = 0;
    for (const Family& f : kFamilies) {
      const std::string candidates =
          std::string(" FROM ") + f.samples +
          " x JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = x.ProductionGradeId "
          "JOIN GRADE g ON g.GradeId = p.GradeId WHERE x.LabSeason = ? AND g.CompanyId = ? "
          "AND x.SampleType NOT IN " +
          kNotSampled + " AND x." + f.key + " NOT IN (SELECT u.ChildID FROM " + f.sums +
          " u JOIN " + f.samples + " n ON n." + f.key +
          " = u.ParentID WHERE n.SampleType IN ('ADA','ADS'))";
      const auto grades = s.run("SELECT DISTINCT x.ProductionGradeId" + candidates,
                                {Variant(season), Variant(company)});
      std::vector<std::int32_t> gradeIds;
      for (; grades->State() == adStateOpen && !grades->EOF_(); grades->MoveNext()) {
        gradeIds.push_back(toLong(grades->Fields(std::size_t{0})));
      }
      for (const std::int32_t grade : gradeIds) {
        const std::string ofGrade = candidates + " AND x.ProductionGradeId = ?";
        std::int32_t count = 0;
        firstLong(
            s.run("SELECT COUNT(*)" + ofGrade, {Variant(season), Variant(company), Variant(grade)}),
            count);
        s.run(std::string("INSERT INTO ") + f.samples +
                  " (ProductionGradeId, LabSeason, SampleDateTime, SampleType, SampleCount) "
                  "VALUES (?, ?, getdate(), 'ADA', ?)",
              {Variant(grade), Variant(season), Variant(count)});
        const auto note = static_cast<std::int32_t>(s.lastInsertId());
        s.run(std::string("INSERT INTO ") + f.sums + " (ParentID, ChildID, SumType) SELECT ?, x." +
                  f.key + ", 1" + ofGrade,
              {Variant(note), Variant(season), Variant(company), Variant(grade)});
        if (std::string_view(f.samples) == "LABPACKED") cases += count;
      }
    }
    if (cases > 0) {
      s.run(
          "INSERT INTO LABADVICENOTE (AdviceNoteNum, NumberOfCases, CutOff) "
          "SELECT COALESCE(MAX(AdviceNoteNum), 0) + 1, ?, 'N' FROM LABADVICENOTE",
          {Variant(cases)});
    }
  });
  return noRows();
}

// Synchronising cuts every advice note off; the season, when given, changes nothing here.
std::shared_ptr<Recordset> syncAdvice(Session& s, const ProcArgs&) {
  s.run("UPDATE LABADVICENOTE SET CutOff = 'Y'");
  return noRows();
}

// The lock lives in ForeignCount: granted once, while it is Null; 1 when granted, else 0.
std::shared_ptr<Recordset> lockHeader(Session& s, const ProcArgs& args) {
  const std::int32_t id = longArg(args, 0, u"p_LabHeaderId");
  s.run("UPDATE LABHEADER SET ForeignCount = 1 WHERE LABHEADERID = ? AND ForeignCount IS NULL",
        {Variant(id)});
  return answer(s, s.changes() == 1 ? 1 : 0);
}

// A blank status lifts the hold of a container; any other puts it on hold with that type.
std::shared_ptr<Recordset> onHoldCheck(Session& s, const ProcArgs& args) {
  const std::int32_t grade = longArg(args, 0, u"p_GradeID");
  const std::int32_t container = longArg(args, 1, u"p_ContainerNumber");
  const std::u16string status = textArg(args, 2, u"p_Status");
  const std::int32_t user = longArg(args, 3, u"p_UserID");
  s.transaction([&] {
    s.run("DELETE FROM ONHOLD WHERE ProductionGradeId = ? AND ContainerNumber = ?",
          {Variant(grade), Variant(container)});
    if (status.find_first_not_of(u' ') != std::u16string::npos) {
      s.run(
          "INSERT INTO ONHOLD (ProductionGradeId, ContainerNumber, OnHoldType, UserID, HoldDate) "
          "VALUES (?, ?, ?, ?, getdate())",
          {Variant(grade), Variant(container), Variant(status), Variant(user)});
    }
  });
  return noRows();
}

// A container counts as prized once a packed sample of its grade has been taken from it.
std::shared_ptr<Recordset> containerPrized(Session& s, const ProcArgs& args) {
  return s.run(
      "SELECT CASE WHEN EXISTS (SELECT 1 FROM LABPACKED WHERE ProductionGradeId = ? AND "
      "ContainerNumber = ?) THEN 1 ELSE 0 END AS RetVal",
      {Variant(longArg(args, 0, u"p_GradeID")), Variant(longArg(args, 1, u"p_ContainerNumber"))});
}

// Which of the header's counts a sample belongs to: stem, scrap (a by-product) or the rest.
struct Counts {
  const char* stem;
  const char* scrap;
  const char* green;  // nullptr: no count of its own
  const char* other;
};

// Adds the sample to its header's count (step +1) or takes it out (-1). Answers 0 on success;
// 1 when the sample has no header or there is nothing to take out, leaving everything as it
// was; `missing` when the sample does not exist.
std::shared_ptr<Recordset> countSample(Session& s, const char* table, const char* key,
                                       std::int32_t id, const Counts& counts, int step,
                                       std::int32_t missing) {
  std::int32_t result = 0;
  s.transaction([&] {
    const auto row = s.run(std::string("SELECT LabHeaderID, StemTypeID, ByProductID, TestType "
                                       "FROM ") +
                               table + " WHERE " + key + " = ?",
                           {Variant(id)});
    if (row->State() != adStateOpen || row->EOF_()) {
      result = missing;
      return;
    }
    const Variant& header = row->Fields(std::size_t{0});
    if (header.isNull() || toLong(header) == 0) {
      result = 1;
      return;
    }
    const auto isSet = [&](std::size_t i) {
      const Variant& v = row->Fields(i);
      return !v.isNull() && toLong(v) != 0;
    };
    const Variant& testType = row->Fields(std::size_t{3});
    const char* column = isSet(1)   ? counts.stem
                         : isSet(2) ? counts.scrap
                         : counts.green && !testType.isNull() && toString(testType) == u"GRN"
                             ? counts.green
                             : counts.other;
    const std::string col(column);
    s.run("UPDATE LABHEADER SET " + col + " = NULLIF(COALESCE(" + col + ", 0) + ?, 0) " +
              "WHERE LABHEADERID = ? AND (? > 0 OR COALESCE(" + col + ", 0) > 0)",
          {Variant(step), Variant(toLong(header)), Variant(step)});
    result = s.changes() == 1 ? 0 : 1;
  });
  return answer(s, result);
}

constexpr Counts kPackedCounts{"PackedStemCount", "PackedScrapCount", nullptr, "PackedStripCount"};
constexpr Counts kDegradationCounts{"StemDegCount", "ScrapDegCount", "GreenDegCount",
                                    "StripDegCount"};

// 0 when the sample exists, else 1: these samples have no count on the header.
std::shared_ptr<Recordset> sampleExists(Session& s, const char* table, const char* key,
                                        std::int32_t id) {
  std::int32_t n = 0;
  firstLong(
      s.run(std::string("SELECT COUNT(*) FROM ") + table + " WHERE " + key + " = ?", {Variant(id)}),
      n);
  return answer(s, n > 0 ? 0 : 1);
}

}  // namespace

void addLabProcedures(Catalog& c) {
  c.procedure(u"qsp_LabCreateIntermediateNotes",
              {u"p_Season", u"p_CompanyID", u"p_FromDate", u"p_ToDate"}, createIntermediateNotes);
  c.procedure(u"qsp_LabCreateAdviceNotes", {u"p_CompanyID", u"p_Season"}, createAdviceNotes);
  c.procedure(u"qsp_LabSyncAdvice", {u"p_Season"}, syncAdvice);
  c.procedure(u"qsp_LabLockHeader", {u"p_LabHeaderId"}, lockHeader);
  c.procedure(u"qsp_OnHoldCheck", {u"p_GradeID", u"p_ContainerNumber", u"p_Status", u"p_UserID"},
              onHoldCheck);
  c.procedure(u"qsp_ContainerPrized", {u"p_GradeID", u"p_ContainerNumber"}, containerPrized);
  c.procedure(u"qsp_LabAddPacked", {u"p_PackedID"}, [](Session& s, const ProcArgs& a) {
    return countSample(s, "LABPACKED", "LABPACKEDID", longArg(a, 0, u"p_PackedID"), kPackedCounts,
                       1, 1);
  });
  c.procedure(u"qsp_LabRemovePacked", {u"p_PackedID"}, [](Session& s, const ProcArgs& a) {
    return countSample(s, "LABPACKED", "LABPACKEDID", longArg(a, 0, u"p_PackedID"), kPackedCounts,
                       -1, 1);
  });
  c.procedure(u"qsp_LabAddDegradation", {u"p_DegradationID"}, [](Session& s, const ProcArgs& a) {
    return countSample(s, "LABDEGRADATION", "LABDEGRADATIONID", longArg(a, 0, u"p_DegradationID"),
                       kDegradationCounts, 1, 1);
  });
  // A sample that is gone already answers -2: there is nothing left to remove.
  c.procedure(u"qsp_LabRemoveDegradation", {u"p_DegradationID"}, [](Session& s, const ProcArgs& a) {
    return countSample(s, "LABDEGRADATION", "LABDEGRADATIONID", longArg(a, 0, u"p_DegradationID"),
                       kDegradationCounts, -1, -2);
  });
  c.procedure(u"qsp_LabAddStemLength", {u"p_LabStemLengthID"}, [](Session& s, const ProcArgs& a) {
    return sampleExists(s, "LABSTEMLENGTH", "LABSTEMLENGTHID", longArg(a, 0, u"p_LabStemLengthID"));
  });
  c.procedure(u"qsp_LabAddInfraalyzer", {u"p_InfraalyzerID"}, [](Session& s, const ProcArgs& a) {
    return sampleExists(s, "LABINFRAALYZER", "LABINFRAALYZERID", longArg(a, 0, u"p_InfraalyzerID"));
  });
  c.procedure(u"qsp_LabRemoveInfraalyzer", {u"p_InfraalyzerID"}, [](Session& s, const ProcArgs& a) {
    return sampleExists(s, "LABINFRAALYZER", "LABINFRAALYZERID", longArg(a, 0, u"p_InfraalyzerID"));
  });
}

}  // namespace vrdppo::embedded
