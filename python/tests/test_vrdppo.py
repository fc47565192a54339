"""The Python module over the C interface, driving whole requests on an embedded store."""

import datetime
import decimal
import os
import pathlib
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
        with self.assertRaises(KeyError):
            layout.encode({"NoSuchColumn": 1})
        with self.assertRaises(ValueError):
            layout.decode(state[:-1])

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
        self.assertIn("0x80040e14", str(e))
        with self.assertRaises(vrdppo.Error) as caught:
            stems.Load()
        self.assertEqual(caught.exception.number, 449)  # a required argument left out
        with self.assertRaises(TypeError):
            stems.Load("", self.connect, bogus=1)
        with self.assertRaises(TypeError):
            stems.Load("", sCriteria="")
        with self.assertRaises(TypeError):
            stems.Load(object(), self.connect)

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
        with self.assertRaises(vrdppo.Error):
            vrdppo.set_session(audit_trail_id="x")

    def test_text_that_utf8_cannot_hold_survives(self):
        # A state is UTF-16 code units; a lone surrogate in a record must come back as it went.
        layout = vrdppo.layout("cStemsPersist")
        state = self.stem(StemsId=5)
        odd = state[:1] + "\ud800" + state[2:]
        self.assertEqual(layout.encode({}, base=odd), odd)


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
