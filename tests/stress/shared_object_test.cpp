// Threads sharing one object: each commits records of its own through it and loads each back by
// a value only that record has. Calls wait for each other, so every row is whole and the
// thread's own, and the table ends with every record once. A wide record (the lab settings'
// 93 columns) keeps each call on the record long enough for an unserialised one to show.
#include <gtest/gtest.h>

#include "endtoend/store_fixture.hpp"
#include "support/shared_object.hpp"

namespace vrdppo::testing {

using SharedObject = StoreTest;

TEST_F(SharedObject, ThreadsCommittingAndLoadingThroughOneObjectKeepEveryRowWhole) {
  expectSharedObjectKeepsEveryRowWhole(connect, 8, 30);
}

}  // namespace vrdppo::testing
