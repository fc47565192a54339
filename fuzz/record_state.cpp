// The record states of every class: the first byte picks the class, the rest is the state. A
// state goes in and out unchanged in what the record holds, and every field renders as SQL text
// or raises the library's error.
#include <algorithm>
#include <cstdlib>

#include "fuzz_input.hpp"
#include "vrdppo/persist.hpp"
#include "vrdppo/registry.hpp"

using namespace vrdppo;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  const auto& classes = registry::classes();
  const ClassInfo& info = *classes[in.byte() % classes.size()];
  const std::u16string state = in.rest();

  const auto object = info.create();
  object->SetState(state);
  const std::u16string once = object->GetState();
  if (once.size() != info.layout->stateChars) std::abort();
  // The record's bytes are the state's first characters.
  const std::size_t copied = std::min<std::size_t>(state.size(), info.layout->bytes / 2u);
  if (once.compare(0, copied, state, 0, copied) != 0) std::abort();
  object->SetState(once);
  if (object->GetState() != once) std::abort();

  for (const Column& c : info.layout->columns) {
    fuzz::answers([&] { renderColumn(c, object->recordBytes()); });
    fuzz::answers([&] { fieldValue(c, object->recordBytes()); });
  }
  if (auto* table = dynamic_cast<TableObject*>(object.get())) {
    for (const Column& c : info.layout->columns) fuzz::answers([&] { table->FieldValue(c.write); });
    fuzz::answers([&] { table->InsertValues(); });
    fuzz::answers([&] { table->UpdateFields(); });
    fuzz::answers([&] { table->SelectFields(); });
  } else if (auto* view = dynamic_cast<ViewObject*>(object.get())) {
    for (const Column& c : info.layout->columns) fuzz::answers([&] { view->FieldValue(c.read); });
    fuzz::answers([&] { view->SelectFields(); });
  }
  // The same through late binding, as a client of the class server calls it.
  if (const MemberInfo* m = info.member("FieldValue");
      m && m->invoke && !info.layout->columns.empty()) {
    const Variant arg(std::u16string(info.layout->columns.back().write));
    fuzz::answers([&] { registry::invoke(*object, "FieldValue", std::span(&arg, 1)); });
  }
  return 0;
}
