/* Counts a run's stems on an embedded store through the C interface:
 *   cc stems_count.c $(pkg-config --cflags --libs vrdppo) -o stems_count */
#include <stdio.h>
#include <string.h>

#include <vrdppo/vrdppo.h>

static vrdppo_value text(const char* s) {
  vrdppo_value v = {0};
  v.type = VRDPPO_STRING8;
  v.length = (int32_t)strlen(s);
  v.u.str8 = s;
  return v;
}

static int report(const vrdppo_status* st) {
  fprintf(stderr, "error %d: %s\n", st->number, st->description ? st->description : "");
  return 1;
}

int main(int argc, char** argv) {
  vrdppo_status st = {0};
  vrdppo_value connect = {0}, state = {0};
  vrdppo_object* stems = NULL;
  int rc = 1;
  if (argc != 2) {
    fprintf(stderr, "usage: stems_count STORE-FILE\n");
    return 2;
  }
  printf("vrdppo %s, %d classes\n", vrdppo_version(), vrdppo_class_count());
  if (vrdppo_embedded_connect_string(argv[1], &connect, &st) != 0 ||
      vrdppo_session_set(VRDPPO_SESSION_CONNECT_STRING, &connect, &st) != 0 ||
      vrdppo_create("cStemsPersist", &stems, &st) != 0) {
    rc = report(&st);
  } else {
    vrdppo_value args[2];
    args[0] = text("ProductionRunId = 77");
    args[1] = connect;
    if (vrdppo_invoke(stems, "Load", args, 2, &state, &st) != 0) {
      rc = report(&st);
    } else {
      /* A Buffer state: record count at characters 6-7 of its header. */
      int32_t count = 0;
      memcpy(&count, state.u.str16 + 6, sizeof count);
      printf("run 77: %d stems\n", count);
      /* A mistake comes back as a status, not a crash. */
      args[0] = text("NoSuchColumn = 1");
      vrdppo_value none = {0};
      rc = vrdppo_invoke(stems, "Load", args, 2, &none, &st) != 0 && st.sql_state ? 0 : 1;
      printf("a bad criterion: %s\n", st.description ? st.description : "(no error)");
    }
  }
  vrdppo_value_clear(&state, NULL);
  vrdppo_value_clear(&connect, NULL);
  vrdppo_status_clear(&st);
  vrdppo_release(stems, NULL);
  return rc;
}
