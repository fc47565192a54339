#include "support/shared_object.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "endtoend/store_fixture.hpp"
#include "vrdppo/error.hpp"
#include "vrdppo/lab/settings.hpp"

namespace vrdppo::testing {

namespace {

// The record of round n of thread t, under the key given: its company tells both, and so does
// every label, so that a row mixed from two states shows.
std::u16string settingOf(int t, int n, Long key) {
  return newState<cLabSettingPersist>([&](LabSettingRecord& r) {
    r.LabSettingID = key;
    r.CompanyId = 100000 + t * 1000 + n;
    const std::u16string tag = u"t" + longText(t) + u"-n" + longText(n);
    for (auto* label : {&r.GrnLabel1, &r.GrnLabel5, &r.GrnLabel9, &r.StrLabel1, &r.StrLabel9})
      put(*label, tag);
    r.GrnTotStemTgt = toCurrency(Variant(t * 1000.0 + n));
  });
}

// A loaded row against the record its company names, with the row's key; empty when equal.
std::string mismatch(const LabSettingRecord& row) {
  const int t = (row.CompanyId - 100000) / 1000;
  const int n = (row.CompanyId - 100000) % 1000;
  cLabSettingPersist o;
  o.record() = row;
  if (o.GetState() == settingOf(t, n, row.LabSettingID)) return {};
  return "company " + std::to_string(row.CompanyId) + ": " + toUtf8(text(row.GrnLabel1)) + "/" +
         toUtf8(text(row.StrLabel9));
}

}  // namespace

void expectSharedObjectKeepsEveryRowWhole(const std::u16string& connect, int threads, int rounds) {
  cLabSettingPersist shared;
  std::vector<std::string> failures(threads);
  std::atomic<int> ready{0};
  std::vector<std::thread> running;
  for (int t = 0; t < threads; ++t) {
    running.emplace_back([&, t] {
      ++ready;
      while (ready < threads) std::this_thread::yield();  // all start together
      try {
        // Each Load answers every record the thread has committed so far, row by row through the
        // object's record.
        const Long first = 100000 + t * 1000;
        const std::u16string mine =
            u"CompanyId BETWEEN " + longText(first) + u" AND " + longText(first + rounds - 1);
        for (int n = 0; n < rounds && failures[t].empty(); ++n) {
          if (!shared.Commit(settingOf(t, n, 0), connect)) throw std::runtime_error("Commit False");
          const auto rows = rowsOf<cLabSettingPersist>(shared.Load(mine, connect));
          if (rows.size() != static_cast<std::size_t>(n + 1)) {
            failures[t] =
                "round " + std::to_string(n) + " loaded " + std::to_string(rows.size()) + " rows";
          }
          for (const auto& row : rows) {
            if (failures[t].empty() && (row.CompanyId < first || row.CompanyId > first + n))
              failures[t] = "loaded company " + std::to_string(row.CompanyId);
            if (failures[t].empty()) failures[t] = mismatch(row);
          }
        }
      } catch (const Error& e) {
        failures[t] = "error " + std::to_string(e.number()) + ": " + e.description();
      } catch (const std::exception& e) {
        failures[t] = e.what();
      }
    });
  }
  for (auto& th : running) th.join();
  for (int t = 0; t < threads; ++t) EXPECT_EQ(failures[t], "") << "thread " << t;

  // Every record once, whole, under a key of its own.
  cLabSettingPersist reader;
  std::set<Long> keys;
  std::set<Long> companies;
  for (const auto& r : rowsOf<cLabSettingPersist>(reader.Load(u"", connect))) {
    EXPECT_EQ(mismatch(r), "");
    EXPECT_TRUE(keys.insert(r.LabSettingID).second) << "key " << r.LabSettingID << " twice";
    EXPECT_TRUE(companies.insert(r.CompanyId).second) << "company " << r.CompanyId << " twice";
  }
  EXPECT_EQ(companies.size(), static_cast<std::size_t>(threads * rounds));
}

}  // namespace vrdppo::testing
