// What an operation on STEMCLASS may leave behind when one of its calls fails: the table held the
// row "before" with key 1 when it began. Both fault campaigns judge their sweeps by these.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "vrdppo/persist.hpp"
#include "vrdppo/reference/types.hpp"
#include "vrdppo/text.hpp"

namespace vrdppo::testing {

using Rows = std::map<Long, std::u16string>;  // the descriptions by key

inline std::u16string stemClass(Long key, std::u16string_view description) {
  return newState<cStemClassPersist>([&](StemClassRecord& r) {
    r.StemClassId = key;
    put(r.Description, description);
    put(r.DeletedFlag, u"N");
  });
}

// An update to "after": the row holds the old text or the new, never a mixture.
inline void expectUpdated(bool raised, const Rows& now) {
  ASSERT_EQ(now.size(), 1u);
  if (!raised) {
    EXPECT_EQ(now.at(1), u"after");
  }
  EXPECT_TRUE(now.at(1) == u"before" || now.at(1) == u"after") << toUtf8(now.at(1));
}

// A load of row 1: an error, or the row exactly.
inline void expectLoaded(bool raised, const std::u16string& loaded, const Rows& now) {
  EXPECT_EQ(now.size(), 1u);
  if (!raised) {
    EXPECT_EQ(loaded, u"before");
  }
}

// A delete of row 1: the row is gone, or there whole when the delete raised.
inline void expectDeleted(bool raised, const Rows& now) {
  if (!raised) {
    EXPECT_TRUE(now.empty());
  }
  for (const auto& [key, d] : now) EXPECT_EQ(d, u"before");
}

}  // namespace vrdppo::testing
