"""The Python module over the C interface, driving whole requests on an embedded store."""

import contextlib
import dataclasses
import datetime
import decimal
import io
import sys
import inspect
import os
import pathlib
import signal
import sqlite3
import subprocess
import tempfile
import threading
import unittest

import vrdppo


class Store(unittest.TestCase):
    def setUp(self):
        self.dir = tempfile.TemporaryDirectory()
        self.path = pathlib.Path(self.dir.name) / "plant.db"
        vrdppo.open_store(self.path)
        self.connect = vrdppo.embedded_connect_string(self.path)

    def tearDown(self):
        vrdppo.release_store(self.path)
        self.dir.cleanup()


class Catalogue(unittest.TestCase):
    def test_classes_and_layouts(self):
        names = vrdppo.classes()
        self.assertEqual(len(names), 84)
        self.assertIn("cStemsPersist", names)
        stems = vrdppo.layout("cstemspersist")
        self.assertEqual(stems.class_name, "cStemsPersist")
        self.assertEqual(stems.source, "STEMS")
        self.assertEqual([c.name for c in stems.columns[:2]], ["StemsId", "TotalNetWeight"])
        self.assertEqual(stems.columns[1].offset, 4)

    def test_members_are_the_public_ones(self):
        s = vrdppo.create("cStemsPersist")
        self.assertIn("Load", s.members)
        self.assertIn("GetState", s.members)
        self.assertNotIn("SetState", s.members)  # private on the first generation
        with self.assertRaises(AttributeError):
            s.SetState
        with self.assertRaises(vrdppo.Error) as caught:
            vrdppo.create("cNoSuchPersist")
        self.assertEqual(caught.exception.number, 429)

    def test_states_round_trip_through_dicts(self):
        layout = vrdppo.layout("cStemsPersist")
        state = layout.encode({"StemsId": 7, "TotalNetWeight": 12.5, "ProductionRunId": 77})
        self.assertEqual(len(state), layout.state_chars)
        row = layout.decode(state)
        self.assertEqual((row["StemsId"], row["TotalNetWeight"], row["ProductionRunId"]),
                         (7, 12.5, 77))
        self.assertEqual(layout.encode(row), state)  # the trailing key name comes from the base
        with self.assertRaises(ValueError) as refused:
            layout.encode({"NoSuchColumn": 1})
        self.assertIsInstance(refused.exception, KeyError)
        self.assertEqual(str(refused.exception), "cStemsPersist has no column NoSuchColumn")
        with self.assertRaises(ValueError):
            layout.decode(state[:-1])

    def test_new_records_are_the_initialisers(self):
        for name in ("cStemsPersist", "cProductionRunPersist"):
            s = vrdppo.create(name)
            fresh = s.GetState()
            self.assertEqual(fresh, s.layout.new_state())
            self.assertEqual(s.layout.encode({}), fresh)
            self.assertNotEqual(bytes(fresh), bytes(2 * len(fresh)))
        run = vrdppo.layout("cProductionRunPersist")
        row = run.decode(run.encode({"Status": "O"}))
        self.assertEqual(row["Status"], "O")
        self.assertEqual(row["Comments"], "")  # blanks, not 255 NULs
        stems = vrdppo.layout("cStemsPersist")
        self.assertIn("StemId", stems.encode({}).text())  # the key-name literal

    def test_fields_refuse_what_they_cannot_hold(self):
        grade = next(c for c in vrdppo.layout("cGreenGradePersist").columns
                     if c.name == "GradeCode")
        cases = [
            ("cGreenGradePersist", "GradeCode", "ABCDEFGHIJKLMNOPQRSTUVWXYZ", ValueError,
             f"GradeCode holds {grade.length} characters, not 26"),
            ("cStemsPersist", "TotalNetWeight", "abc", TypeError, "TotalNetWeight"),
            ("cStemsPersist", "StemsId", 2**31, ValueError, "StemsId"),
            ("cStemsPersist", "StemsId", -2**31 - 1, ValueError, "StemsId"),
            ("cStemsPersist", "StemsId", 2**64 + 2, ValueError, "StemsId"),
            ("cStemsPersist", "StemsId", 1.5, TypeError, "StemsId"),
            ("cStemsPersist", "StemsId", None, TypeError, "StemsId"),
            ("cGreenGradePersist", "GradeCode", None, TypeError, "GradeCode"),
            ("cGreenGradePersist", "GradeCode", b"ab", TypeError, "GradeCode"),
            ("cGreenGradePersist", "GradeCode", "\U0001F600" * 6, ValueError, "not 12"),
            ("cStemsPersist", "TotalNetWeight", 10**400, ValueError, "TotalNetWeight"),
        ]
        for class_name, field, value, error, text in cases:
            with self.subTest(field=field, value=repr(value)[:30]):
                with self.assertRaises(error) as caught:
                    vrdppo.layout(class_name).encode({field: value})
                self.assertIn(text, str(caught.exception))
                self.assertIn(class_name, str(caught.exception))
        self.assertEqual(vrdppo.layout("cStemsPersist").encode({"StemsId": 2**31 - 1}),
                         vrdppo.layout("cStemsPersist").encode({"StemsId": 2147483647}))

    def test_a_pair_that_just_fits_stays_whole(self):
        # Find a String*1 field: an emoji takes two units and must be refused, never halved.
        for name in vrdppo.classes():
            layout = vrdppo.layout(name)
            one = [c for c in layout.columns if c.type_name == "String*1"]
            if one:
                break
        c = one[0]
        with self.assertRaises(ValueError):
            layout.encode({c.name: "\U0001F600"})
        after = [d for d in layout.columns if d.offset == c.offset + 2]
        state = layout.encode({c.name: "x"})
        self.assertEqual(layout.decode(state)[c.name], "x")
        if after:
            self.assertEqual(layout.decode(state)[after[0].name],
                             layout.decode(layout.new_state())[after[0].name])

    def test_decode_buffer_refuses_what_is_no_buffer(self):
        stems = vrdppo.layout("cStemsPersist")
        for state in (stems.new_state(), vrdppo.State("abc"), vrdppo.State(bytes(16))):
            with self.subTest(length=len(state)):
                with self.assertRaises(ValueError) as caught:
                    stems.decode_buffer(state)
                self.assertIn("cStemsPersist", str(caught.exception))

    def test_class_names_checked_and_near_ones_suggested(self):
        with self.assertRaises(vrdppo.UnknownClass) as caught:
            vrdppo.create("cStemPersist")
        self.assertEqual(caught.exception.number, 429)
        self.assertIn("cStemsPersist", caught.exception.suggestions)
        self.assertIn("did you mean", str(caught.exception))
        with self.assertRaises(TypeError):
            vrdppo.create(None)
        with self.assertRaises(ValueError):
            vrdppo.create("cStemsPersist\x00junk")
        self.assertIsInstance(vrdppo.cStemsPersist(), vrdppo.Persist)
        self.assertIs(type(vrdppo.Persist("cstemspersist")), vrdppo.cStemsPersist)

    def test_members_are_methods_with_their_arguments(self):
        s = vrdppo.create("cCageMoveCommentPersist")
        sig = inspect.signature(s.Load)
        self.assertEqual(list(sig.parameters), ["sCriteria", "sConnect", "lTop"])
        self.assertIs(sig.parameters["sCriteria"].default, inspect.Parameter.empty)
        self.assertIsNot(sig.parameters["lTop"].default, inspect.Parameter.empty)
        self.assertIs(sig.return_annotation, vrdppo.State)
        self.assertIn("Load", dir(s))
        self.assertIn("cCageMoveCommentPersist.Load", s.Load.__doc__)
        self.assertEqual(s.load.__name__, "Load")  # without regard to case

    def test_the_namespace_is_clean_and_versioned(self):
        public = [n for n in dir(vrdppo) if not n.startswith("_")]
        for name in ("ctypes", "struct", "math", "datetime", "decimal", "T"):
            self.assertNotIn(name, public)
        self.assertEqual(vrdppo.__version__, vrdppo.version())
        self.assertIn("cStemsPersist", public)

    def test_stubs_are_the_registrys(self):
        from vrdppo import _stubs
        self.assertTrue(_stubs.path().with_name("py.typed").exists())
        self.assertEqual(_stubs.path().read_text(), _stubs.render(),
                         "regenerate with python -m vrdppo._stubs")

    def test_dates_before_and_after_the_epoch(self):
        for when in (datetime.datetime(2026, 11, 23, 8, 30), datetime.datetime(1899, 12, 29, 6),
                     datetime.datetime(1899, 12, 30)):
            days = vrdppo._days_from_date(when)
            self.assertEqual(vrdppo._date_from_days(days), when)
        self.assertEqual(vrdppo._days_from_date(datetime.datetime(1899, 12, 29, 6)), -1.25)


class Requests(Store):
    def stem(self, **fields):
        base = {"ContainerEnd": 12, "StemTypeID": 3, "ProductionRunId": 77}
        base.update(fields)
        return vrdppo.layout("cStemsPersist").encode(base)

    def test_insert_load_update_delete(self):
        stems = vrdppo.create("cStemsPersist")
        self.assertTrue(stems.Commit(self.stem(StemsId=0, TotalNetWeight=125.5), self.connect))
        key = stems.layout.decode(stems.GetState())["StemsId"]
        self.assertGreater(key, 0)

        # Keyword arguments, in any order and any case.
        rows = stems.layout.decode_buffer(
            stems.Load(sConnect=self.connect, scriteria="ProductionRunId = 77"))
        self.assertEqual([(r["StemsId"], r["TotalNetWeight"]) for r in rows], [(key, 125.5)])

        self.assertTrue(stems.Commit(self.stem(StemsId=key, TotalNetWeight=98.25),
                                     self.connect))
        rows = stems.layout.decode_buffer(stems.Load(f"StemsId = {key}", self.connect))
        self.assertEqual(rows[0]["TotalNetWeight"], 98.25)

        self.assertTrue(stems.Delete(self.stem(StemsId=key), self.connect))
        self.assertEqual(stems.layout.decode_buffer(stems.Load("", self.connect)), [])

    def test_optional_arguments_left_out_or_missing(self):
        comments = vrdppo.create("cCageMoveCommentPersist")
        everything = comments.Load("", self.connect)
        self.assertEqual(comments.Load("", self.connect, vrdppo.MISSING), everything)
        self.assertEqual(comments.Load(sCriteria="", sConnect=self.connect, lTop=0), everything)

    def test_errors_carry_the_library_fields(self):
        stems = vrdppo.create("cStemsPersist")
        with self.assertRaises(vrdppo.Error) as caught:
            stems.Load("NoSuchColumn = 1", self.connect)
        e = caught.exception
        self.assertEqual(e.number & 0xFFFFFFFF, 0x80040E14)
        self.assertTrue(e.sql_state)
        self.assertIn("NoSuchColumn = 1", e.statement)
        self.assertEqual((e.column, e.row), ("", 0))
        self.assertIn("0x80040e14", str(e))
        with self.assertRaises(vrdppo.MissingArgument) as caught:
            stems.Load()
        self.assertEqual(caught.exception.number, 449)  # a required argument left out
        self.assertIn("sCriteria is missing", str(caught.exception))
        with self.assertRaises(TypeError) as caught:
            stems.Load(sConnect=self.connect)
        self.assertIn("sCriteria", str(caught.exception))
        with self.assertRaises(ValueError) as caught:
            stems.Commit(vrdppo.State("abc"), self.connect)
        self.assertIn("sBuffer", str(caught.exception))
        self.assertEqual(stems.layout.decode(stems.GetState())["StemsId"], 0)
        comments = vrdppo.create("cCageMoveCommentPersist")
        for top in (2**31, 2**64 + 2):
            with self.assertRaises(ValueError):
                comments.Load("", self.connect, top)
        with self.assertRaises(TypeError):
            stems.Load("", self.connect, bogus=1)
        with self.assertRaises(TypeError):
            stems.Load("", sCriteria="")
        with self.assertRaises(TypeError):
            stems.Load(object(), self.connect)
        # A cell that will not go into its field: where the Load stopped.
        self.assertTrue(stems.Commit(self.stem(), self.connect))
        vrdppo.release_store(self.path)
        with sqlite3.connect(self.path) as db:
            db.execute("UPDATE STEMS SET ContainerStart = 'eight'")
        db.close()
        with self.assertRaises(vrdppo.Error) as caught:
            stems.Load("", self.connect)
        e = caught.exception
        self.assertEqual((e.number, e.description), (13, "Type mismatch"))
        self.assertEqual((e.statement, e.column, e.row),
                         ("SELECT * FROM STEMS", "ContainerStart", 1))

    def test_session_values_are_per_thread(self):
        vrdppo.set_session(connect_string=self.connect, app_name="scales", audit_trail_id=9)
        self.assertEqual(vrdppo.session(),
                         {"connect_string": self.connect, "app_name": "scales",
                          "audit_trail_id": 9})
        seen = {}
        t = threading.Thread(target=lambda: seen.update(vrdppo.session()))
        t.start()
        t.join()
        self.assertNotEqual(seen["app_name"], "scales")
        vrdppo.set_session(connect_string="", app_name="", audit_trail_id=0)
        for bad, error in (("x", TypeError), (2**64 + 5, ValueError), (2**31, ValueError)):
            with self.assertRaises(error):
                vrdppo.set_session(audit_trail_id=bad)
        self.assertEqual(vrdppo.session()["audit_trail_id"], 0)

    def test_the_sessions_connect_string_serves_a_call_without_one(self):
        stems = vrdppo.create("cStemsPersist")
        vrdppo.set_session(connect_string="")  # every call leaves its own there
        with self.assertRaises(vrdppo.MissingArgument):
            stems.Load("")
        vrdppo.set_session(connect_string=self.connect)
        try:
            self.assertTrue(stems.Commit(self.stem(StemsId=0, TotalNetWeight=5.0)))
            self.assertEqual(len(stems.layout.decode_buffer(stems.Load(""))), 1)
        finally:
            vrdppo.set_session(connect_string="")

    def test_rows_touched_are_told(self):
        stems = vrdppo.create("cStemsPersist")
        self.assertIsNone(stems.records_affected)
        stems.Commit(self.stem(StemsId=0, TotalNetWeight=1.0), self.connect)
        self.assertEqual(stems.records_affected, 1)
        self.assertEqual(vrdppo.last_records_affected(), 1)
        stems.Delete(self.stem(StemsId=987654), self.connect)
        self.assertEqual(stems.records_affected, 0)
        stems.GetState()
        self.assertIsNone(stems.records_affected)

    def test_rows_touched_are_the_calls_own_whatever_a_signal_handler_calls(self):
        # A handler runs on the main thread once a call returns; its own call (a Delete of no
        # row) is not the figure of the call it followed.
        stems, other = vrdppo.create("cStemsPersist"), vrdppo.create("cStemsPersist")
        nobody = self.stem(StemsId=987654)
        handled = []

        def handler(signum, frame):
            other.Delete(nobody, self.connect)
            handled.append(other.records_affected)

        previous = signal.signal(signal.SIGUSR1, handler)
        signal.siginterrupt(signal.SIGUSR1, False)
        stop = threading.Event()
        main = threading.main_thread().ident

        def pester():
            while not stop.wait(0.0002):
                signal.pthread_kill(main, signal.SIGUSR1)

        pesterer = threading.Thread(target=pester)
        pesterer.start()
        try:
            for n in range(150):
                stems.Commit(self.stem(StemsId=0, TotalNetWeight=float(n)), self.connect)
                self.assertEqual(stems.records_affected, 1, f"commit {n}")
        finally:
            stop.set()
            pesterer.join()
            signal.signal(signal.SIGUSR1, previous)
        self.assertTrue(handled)
        self.assertEqual(set(handled), {0})

    def test_states_keep_every_code_unit(self):
        # A Double's bytes can form a surrogate pair (4483 kg in lb does); a str would join
        # the pair into one character and lose a unit.
        stems = vrdppo.create("cStemsPersist")
        weights = [4483 * 2.20462] + [i * 2.20462 for i in range(1, 20001)]
        pairs = 0
        layout = stems.layout
        for w in weights:
            state = layout.encode({"TotalNetWeight": w})
            text = bytes(state).decode("utf-16-le", "surrogatepass")
            pairs += len(text) != len(state)
            self.assertEqual(len(state), layout.state_chars)
            self.assertEqual(layout.decode(state)["TotalNetWeight"], w)
        self.assertGreater(pairs, 0)  # the sweep does meet the case
        w = 4483 * 2.20462
        self.assertTrue(stems.Commit(self.stem(StemsId=0, TotalNetWeight=w), self.connect))
        saved = stems.GetState()
        self.assertEqual(len(saved), layout.state_chars)
        self.assertEqual(layout.decode(saved)["TotalNetWeight"], w)
        rows = layout.decode_buffer(stems.Load("", self.connect))
        self.assertEqual(len(rows), 1)
        self.assertAlmostEqual(rows[0]["TotalNetWeight"], w, places=6)
        self.assertEqual(vrdppo.State(bytes(saved)), saved)
        self.assertEqual(vrdppo.State(saved.units()), saved)

    def test_rows_as_a_data_frame(self):
        layout = vrdppo.layout("cStemsPersist")
        import sys
        saved = sys.modules.get("pandas")
        sys.modules["pandas"] = None  # as if it were not installed
        try:
            with self.assertRaisesRegex(ModuleNotFoundError, "dataframe needs pandas"):
                layout.dataframe(b"")
        finally:
            if saved is None:
                del sys.modules["pandas"]
            else:
                sys.modules["pandas"] = saved
        try:
            import pandas  # noqa: F401
        except ImportError:
            self.skipTest("pandas is not installed")
        stems = vrdppo.create("cStemsPersist")
        stems.Commit(self.stem(StemsId=0, TotalNetWeight=2.5), self.connect)
        frame = stems.layout.dataframe(stems.Load("", self.connect))
        self.assertEqual(list(frame["TotalNetWeight"]), [2.5])

    def test_text_that_utf8_cannot_hold_survives(self):
        # A state is UTF-16 code units; a lone surrogate in a record must come back as it went.
        layout = vrdppo.layout("cStemsPersist")
        state = self.stem(StemsId=5)
        odd = state[:1] + vrdppo.State("\ud800") + state[2:]
        self.assertEqual(layout.encode({}, base=odd), odd)
        self.assertEqual(layout.encode({}, base=odd.text()), odd)


class Criteria(Store):
    def test_a_hostile_value_selects_exactly_its_row(self):
        stations = vrdppo.create("cStationPersist")
        layout = stations.layout
        descriptions = ["x' OR '1'='1", "]; DROP TABLE STATION --", "O'Neil", "plain"]
        for d in descriptions:
            self.assertTrue(stations.Commit(layout.encode({"Description": d, "StationCode": "S"}),
                                            self.connect))
        for d in descriptions:
            with self.subTest(description=d):
                built = vrdppo.criteria("Description = ? AND StationCode = ?", d, "S")
                rows = layout.decode_buffer(stations.Load(built, self.connect, 0))
                self.assertEqual([r["Description"] for r in rows], [d])
        # Glued by hand, the value's quote ends the string and its OR selects every row.
        glued = layout.decode_buffer(stations.Load(f"Description = '{descriptions[0]}'",
                                                   self.connect, 0))
        self.assertEqual(len(glued), len(descriptions))

    def test_values_go_as_arguments_do_and_what_has_no_sql_form_is_refused(self):
        built = [
            ("a = ?", [7], "a = 7"),
            ("a = ?", [2**40], "a = 1099511627776"),
            ("a = ?", [12.5], "a = 12.5"),
            ("a = ?", [decimal.Decimal("-1.50")], "a = -1.50"),
            ("a = ?", [datetime.datetime(2019, 3, 7, 14, 5, 9)], "a = '2019/03/07 14:05:09'"),
            ("a = ?", [datetime.date(2019, 3, 7)], "a = '2019/03/07 00:00:00'"),
            ("a IS ?", [None], "a IS Null"),
            ("a = ?", ["\u00e9\U0001F600"], "a = '\u00e9\U0001F600'"),
        ]
        for template, values, expected in built:
            with self.subTest(values=values):
                self.assertEqual(vrdppo.criteria(template, *values), expected)
        refused = [
            ("a = ?", [True], "placeholder 1 (character 5): a value of type Boolean"),
            ("a = ?", [1, 2], "2 values for 1 placeholders"),
            ("a = ? AND b = ?", [1], "placeholder 2"),
            ("a = ?", [float("nan")], "not a finite number"),
            ("a = ?", ["x\0y"], "U+0000"),
            ("a = ?", ["\ud800"], "lone surrogate"),
            ("a = ?", [vrdppo.MISSING], "placeholder 1"),
            ("a = 1; DROP TABLE STATION", [], '";"'),
        ]
        for template, values, says in refused:
            with self.subTest(template=template, values=values):
                with self.assertRaises(vrdppo.Error) as caught:
                    vrdppo.criteria(template, *values)
                self.assertEqual(caught.exception.number, 5)
                self.assertIn(says, caught.exception.description)
        for template, values, error in (("a = ?", [object()], TypeError),
                                        ("a = ?", [2**64], ValueError),
                                        ("a = ?\0", [1], ValueError), (None, [], TypeError)):
            with self.subTest(template=template, values=values):
                with self.assertRaises(error):
                    vrdppo.criteria(template, *values)


def _tool_state(text):
    """The command-line tool's state text (a JSON string's body) as a State, unit by unit: a
    JSON reader would join an escaped surrogate pair into one character."""
    simple = {"n": "\n", "t": "\t", "r": "\r", "b": "\b", "f": "\f"}
    units, i = [], 0
    while i < len(text):
        ch = text[i]
        if ch == "\\" and text[i + 1] == "u":
            units.append(int(text[i + 2:i + 6], 16))
            i += 6
        elif ch == "\\":
            units.append(ord(simple.get(text[i + 1], text[i + 1])))
            i += 2
        else:
            units.append(ord(ch))
            i += 1
    return vrdppo.State(units)


class SchemaCheck(Store):
    def test_a_fresh_store_fits_and_a_damaged_one_does_not(self):
        report = vrdppo.check(self.connect)
        self.assertTrue(report["fits"], report["findings"])
        self.assertEqual(report["classes"], 84)
        self.assertIn("The database fits the classes.", vrdppo.check(self.connect, text=True))
        vrdppo.release_store(self.path)
        with sqlite3.connect(self.path) as db:
            db.execute("DROP VIEW VLABWORKLIST")
        db.close()
        report = vrdppo.check(self.connect)
        self.assertFalse(report["fits"])
        self.assertEqual([(f["class"], f["object"]) for f in report["findings"]
                          if f["severity"] == "problem"],
                         [("cvLabWorkListPersist", "VLABWORKLIST")])

    def test_a_store_that_is_not_there_is_not_made(self):
        missing = pathlib.Path(self.dir.name) / "none.db"
        with self.assertRaises(vrdppo.Error):
            vrdppo.check(vrdppo.embedded_connect_string(missing))
        self.assertFalse(missing.exists())


class Observers(Store):
    def setUp(self):
        super().setUp()
        self.addCleanup(vrdppo.set_observer, None)
        self.addCleanup(vrdppo.set_observer, None, thread=True)
        self.stems = vrdppo.create("cStemsPersist")

    def commit_and_load(self):
        layout = self.stems.layout
        state = layout.encode({"TotalNetWeight": 12.5, "ProductionRunId": 77, "ContainerEnd": 12,
                               "StemTypeID": 3})
        ok = self.stems.Commit(state, self.connect)
        return ok, self.stems.records_affected, self.stems.Load("ProductionRunId = 77",
                                                                self.connect)

    def test_a_callable_hears_a_commits_and_a_loads_statements(self):
        heard = []
        vrdppo.set_observer(heard.append)
        self.commit_and_load()
        with self.assertRaises(vrdppo.Error):
            self.stems.Load("NoSuchColumn = 1", self.connect)
        vrdppo.set_observer(None)
        self.stems.Load("", self.connect)

        by_text = {e.db_query_text: e for e in heard}
        commit = next(e for t, e in by_text.items() if "INSERT INTO STEMS" in t)
        load = by_text["SELECT * FROM STEMS WHERE ProductionRunId = 77"]
        failed = by_text["SELECT * FROM STEMS WHERE NoSuchColumn = 1"]
        self.assertEqual((commit.db_operation_name, commit.rows_affected), ("EXEC", 1))
        self.assertEqual((load.db_operation_name, load.db_response_returned_rows), ("SELECT", 1))
        self.assertIsNone(load.error)
        self.assertEqual(load.attributes(), {
            "db.system.name": "sqlite", "db.namespace": str(self.path),
            "db.query.text": load.db_query_text, "db.operation.name": "SELECT",
            "db.response.returned_rows": 1})
        for e in heard:
            self.assertEqual((e.db_system_name, e.db_namespace, e.server_address, e.session),
                             ("sqlite", str(self.path), None, None))
            self.assertIsInstance(e.duration, float)
            self.assertLess(e.duration, 60)
        self.assertIsInstance(failed.error, vrdppo.Error)
        self.assertTrue(failed.error.sql_state)
        self.assertEqual(failed.attributes()["error.type"], failed.error.sql_state)
        self.assertIs(heard[-1], failed)  # nothing once removed
        with self.assertRaises(dataclasses.FrozenInstanceError):
            load.db_query_text = "changed"

        figures = vrdppo.pool_figures()
        for key in ("idle", "in_use", "connections", "logins", "failed_logins", "reuses",
                    "logouts", "login_time_ns"):
            self.assertIn(key, figures)
        self.assertIn("idle-life-ended", figures["logouts"])

    def test_a_raising_observer_changes_nothing_and_prints_nothing(self):
        quiet = self.commit_and_load()
        vrdppo.set_session(app_name="scales", audit_trail_id=9)
        self.addCleanup(vrdppo.set_session, app_name="", audit_trail_id=0)

        def raising(event):
            vrdppo.set_session(app_name="observer", audit_trail_id=1)
            raise RuntimeError("observer")

        def exiting(event):
            raise SystemExit(3)

        unraisable = []
        hook, sys.unraisablehook = sys.unraisablehook, unraisable.append
        self.addCleanup(setattr, sys, "unraisablehook", hook)
        err = io.StringIO()
        with contextlib.redirect_stderr(err):
            vrdppo.set_observer(raising, raising)
            vrdppo.set_observer(exiting, thread=True)
            ok, affected, loaded = self.commit_and_load()
            with self.assertRaises(vrdppo.Error) as caught:
                self.stems.Load("NoSuchColumn = 1", self.connect)
        self.assertEqual((ok, affected), quiet[:2])
        self.assertEqual(len(self.stems.layout.decode_buffer(loaded)),
                         len(self.stems.layout.decode_buffer(quiet[2])) + 1)
        self.assertIn("NoSuchColumn", caught.exception.statement)
        self.assertEqual(vrdppo.session()["app_name"], "scales")
        self.assertEqual((err.getvalue(), unraisable), ("", []))

    def test_a_threads_observer_hears_its_thread_only(self):
        main, worker = [], []

        def work():
            vrdppo.set_observer(worker.append, thread=True)
            vrdppo.create("cStemsPersist").Load("StemsId = 1", self.connect)
            vrdppo.set_observer(None, thread=True)

        vrdppo.set_observer(main.append, thread=True)
        t = threading.Thread(target=work)
        t.start()
        t.join()
        self.stems.Load("StemsId = 2", self.connect)
        self.assertIn("SELECT * FROM STEMS WHERE StemsId = 2", [e.db_query_text for e in main])
        self.assertNotIn("StemsId = 1", " ".join(e.db_query_text for e in main))
        self.assertIn("SELECT * FROM STEMS WHERE StemsId = 1", [e.db_query_text for e in worker])
        self.assertNotIn("StemsId = 2", " ".join(e.db_query_text for e in worker))


@unittest.skipUnless(os.environ.get("VRDPPO_CLI"), "VRDPPO_CLI names the built tool")
class AgreesWithTheTool(unittest.TestCase):
    """The tool and the module build records by the same rules: the same state from the same
    fields, and the same refusals."""

    def tool(self, class_name, sets):
        args = [os.environ["VRDPPO_CLI"], "encode", class_name]
        for name, text in sets.items():
            args += ["--set", f"{name}={text}"]
        return subprocess.run(args, capture_output=True, text=True)

    def test_the_same_fields_make_the_same_state(self):
        cases = [
            ("cStemsPersist", {"StemsId": 5, "TotalNetWeight": 4483 * 2.20462}),
            ("cStemsPersist", {"StemsId": -2**31, "ContainerEnd": 2**31 - 1}),
            ("cGreenGradePersist", {"GradeCode": "AB 12", "DeletedFlag": "Y"}),
            ("cGreenGradePersist", {"GradeCode": "\u00e9\U0001F600" * 3}),
            ("cProductionRunPersist", {"Status": "O", "RemainderIn": 0.1,
                                       "ProductionDate": datetime.datetime(2026, 11, 23, 8, 30)}),
        ]
        for class_name, fields in cases:
            with self.subTest(class_name=class_name, fields=fields):
                sets = {k: (v.strftime("%Y-%m-%d %H:%M:%S") if isinstance(v, datetime.datetime)
                            else repr(v) if isinstance(v, float) else v)
                        for k, v in fields.items()}
                run = self.tool(class_name, sets)
                self.assertEqual(run.returncode, 0, run.stderr)
                self.assertEqual(vrdppo.layout(class_name).encode(fields),
                                 _tool_state(run.stdout.strip("\n")))

    def test_the_same_fields_are_refused(self):
        cases = [
            ("cGreenGradePersist", "GradeCode", "ABCDEFGHIJKLMNOPQRSTUVWXYZ"),
            ("cGreenGradePersist", "DeletedFlag", "\U0001F600"),
            ("cStemsPersist", "StemsId", 2**31),
            ("cStemsPersist", "StemsId", -2**31 - 1),
        ]
        for class_name, field, value in cases:
            with self.subTest(field=field, value=value):
                run = self.tool(class_name, {field: value})
                self.assertEqual(run.returncode, 2, run.stdout)
                with self.assertRaises(ValueError) as caught:
                    vrdppo.layout(class_name).encode({field: value})
                self.assertIn(field, run.stderr)
                if "holds" in run.stderr:
                    message = run.stderr.strip().split(": ", 1)[1]
                    self.assertIn(message, str(caught.exception))


class Library(unittest.TestCase):
    def test_found_where_it_was_asked_for(self):
        self.assertTrue(vrdppo.version())
        explicit = os.environ.get("VRDPPO_LIBRARY")
        if explicit:
            self.assertEqual(os.path.realpath(vrdppo._lib._name), os.path.realpath(explicit))
        # Installed: the module and the library it found both come from the installed tree.
        prefix = os.environ.get("VRDPPO_EXPECT_PREFIX")
        if prefix:
            prefix = os.path.realpath(prefix) + os.sep
            self.assertTrue(os.path.realpath(vrdppo.__file__).startswith(prefix))
            self.assertTrue(os.path.realpath(vrdppo._lib._name).startswith(prefix))


if __name__ == "__main__":
    unittest.main()
