// The store's dialect: any text is cut into tokens and translated, or refused with the store's
// syntax error; then run on a store inside a transaction that is rolled back, where it may fail
// as a server fails but not crash. The first byte holds the options; the rest is UTF-8 text.
#include <sqlite3.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "fuzz_input.hpp"
#include "providers/embedded/session.hpp"
#include "providers/embedded/tokenizer.hpp"
#include "providers/embedded/translator.hpp"
#include "vrdppo/embedded_store.hpp"
#include "vrdppo/text.hpp"

using namespace vrdppo;
using namespace vrdppo::embedded;

namespace {

std::string& storePath() {
  static std::string path;
  return path;
}

void freshStore() {
  releaseStore(storePath());
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(storePath() + suffix);
  openStore(storePath());
}

void removeStore() {
  releaseStore(storePath());
  for (const char* suffix : {"", "-wal", "-shm"}) std::filesystem::remove(storePath() + suffix);
}

// A statement that runs away (a recursive query without end) is interrupted.
int interrupt(void* steps) {
  return ++*static_cast<int*>(steps) > 2000;
}

// Words that would end the transaction the text runs in: not worth running.
bool endsTransaction(const Tokens& t) {
  for (std::size_t i = 0; i < t.size(); ++i) {
    if (t.isWord(i, u"COMMIT") || t.isWord(i, u"ROLLBACK") || t.isWord(i, u"END")) return true;
  }
  return false;
}

// Runs text on the store and rolls it back; false when something inside it (a procedure's
// text, say) ended the transaction, so that the store may have changed.
bool rolledBack(const std::u16string& text) {
  Session session(storePath());
  sqlite3* db = session.handle();
  int steps = 0;
  sqlite3_progress_handler(db, 1000, interrupt, &steps);
  sqlite3_limit(db, SQLITE_LIMIT_LENGTH, 1 << 20);
  session.exec("BEGIN");
  fuzz::answers([&] { session.execute(text); });
  const bool inside = sqlite3_get_autocommit(db) == 0;
  if (inside) rollbackQuietly(db, "ROLLBACK");
  sqlite3_progress_handler(db, 0, nullptr, nullptr);
  sqlite3_limit(db, SQLITE_LIMIT_LENGTH, 1000000000);
  return inside;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  const char* dir = std::getenv("TMPDIR");
  storePath() = std::string(dir ? dir : "/tmp") + "/vrdppo-fuzz-dialect-" +
                std::to_string(::getpid()) + ".db";
  freshStore();
  std::atexit(removeStore);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input in(data, size);
  const std::uint8_t options = in.byte();
  const std::u16string text = fromUtf8(in.restBytes());
  std::optional<Tokens> tokens;
  if (!fuzz::answers([&] { tokens.emplace(text); })) return 0;
  for (const auto& range : tokens->statements()) {
    if (range.first > range.second || range.second > tokens->size()) std::abort();
    fuzz::answers([&] { translate(*tokens, range.first, range.second, (options & 1) != 0); });
  }
  if ((options & 2) && !endsTransaction(*tokens) && !rolledBack(text)) freshStore();
  return 0;
}
