"""The module on a data set that DSMAKE, the program, builds."""
import gc
import io
import os
import pickle
import subprocess
import tempfile
import threading
import unittest
from pathlib import Path

import dsmake
from dsmake import _texts

LINES = "Ann O'Neil\tCork\t4111 1111\nBob\tKöln\t5\nZo\udcebx\tX\t6\n"


class OnADataSet(unittest.TestCase):
    def setUp(self):
        place = tempfile.TemporaryDirectory()
        self.addCleanup(place.cleanup)
        self.place = Path(place.name)
        (self.place / "in").write_bytes(os.fsencode(LINES))
        self.path = self.build("out", "Name,SimpleNC;Place,Simple;Card,CCNUMBER", "in", "Name", "Card")
        self.data_set = dsmake.DataSet(self.path)
        self.addCleanup(self.data_set.close)

    def build(self, out, schema, source, *keys):
        options = [word for key in keys for word in ("-k", key)]
        subprocess.run([os.environ["DSMAKE"], *options, "-s", schema, "-i", source, "-o", out],
                       cwd=self.place, check=True)
        return self.place / out

    def quotes(self, *arguments, **names):
        return [find.quote for find in self.data_set.scan(*arguments, **names)]

    def test_fields_and_lookups(self):
        self.assertEqual(list(self.data_set.fields),
                         [("Name", "SimpleNC"), ("Place", "Simple"), ("Card", "CCNUMBER")])
        self.assertEqual(list(self.data_set.keys), ["Name", "Card"])
        found = self.data_set.find("Name", "ANN O'NEIL")
        self.assertEqual(len(found), 1)
        self.assertEqual(self.data_set.find("Card", b"4111-1111"), found)
        self.assertEqual(self.data_set.find("Name", " bob"), [])
        self.assertEqual(self.data_set.find("Name", "bob\0"), [])
        self.assertEqual(len(self.data_set.find("Name", "Zo\udcebx")), 1, "a byte that is no UTF-8")

    def test_finds(self):
        text = "Köln:\n\tBOB, and Ann\u00a0O'Neil (4111-1111)"
        first, second = self.data_set.scan(text)
        self.assertEqual(second, dsmake.Find(
            line=2, place=17, length=11, key="Name", quote="Ann\u00a0O'Neil", fields=("Name", "Card"),
            of=3, record=self.data_set.find("Name", "Ann O'Neil")[0]))
        self.assertEqual((first.line, first.place, first.fields), (2, 8, ("Name", "Place")))
        self.assertEqual(self.quotes(text, 1, 0), ["BOB", second.quote])
        self.assertEqual(self.quotes("Bob " + "x " * 100 + "Köln"), [])
        self.assertEqual(self.quotes("Bob " + "x " * 100 + "Köln", within=None), ["Bob"])

    def test_every_kind_of_text(self):
        path = self.place / "text"
        path.write_bytes(b"Zo\xebx, X")
        for text in (path.read_bytes(), bytearray(path.read_bytes()), memoryview(path.read_bytes()),
                     "Zo\udcebx, X", io.BytesIO(path.read_bytes())):
            self.assertEqual(self.quotes(text), ["Zo\udcebx"])
        with path.open(encoding="utf-8", errors="surrogateescape") as file:
            self.assertEqual(self.quotes(file), ["Zo\udcebx"])
        self.assertEqual(_texts.to_bytes("\udcffa\ud800\U0001f600"), b"\xffa\xef\xbf\xbd\xf0\x9f\x98\x80")

    def test_finds_come_while_a_file_is_read(self):
        pieces = iter([b"Bob, K\xc3", b"\xb6ln. " + b"word \n" * 100000, RuntimeError("read too far")])

        class File:
            def read(self, _):
                piece = next(pieces)
                if isinstance(piece, Exception):
                    raise piece
                return piece

        finds = self.data_set.scan(File())
        self.assertEqual(next(finds).quote, "Bob")
        with self.assertRaisesRegex(RuntimeError, "read too far"):
            next(finds)
        self.assertEqual(self.quotes("Köln, Bob"), ["Bob"], "the scan is used again")

    def test_scans_that_are_left_and_interleaved(self):
        text = "Bob, Köln, Ann O'Neil, Cork"
        one, other = self.data_set.scan(text), self.data_set.scan(text)
        self.assertEqual([next(one).quote, next(other).quote], ["Bob", "Bob"])
        self.assertEqual([next(other).quote, next(one).quote], ["Ann O'Neil"] * 2)
        late = self.data_set.scan(text)
        next(late)
        self.data_set.close()
        self.assertEqual([find.quote for find in late], ["Ann O'Neil"])
        del one, other
        gc.collect()

    def test_one_field(self):
        path = self.build("one", "Name,Simple", "names", "Name") if (
            self.place / "names").write_bytes(b"Bob\n") else None
        with dsmake.DataSet(path) as data_set:
            self.assertEqual(len(list(data_set.scan("Bob"))), 1)

    def test_wrong_arguments(self):
        scan, find = self.data_set.scan, self.data_set.find
        for wrong in (lambda: scan(5), lambda: scan("x", least="2"), lambda: scan("x", within=1.5),
                      lambda: find(b"Name", "x"), lambda: find("Name", None), lambda: find("Name"),
                      lambda: dsmake.DataSet(5.0), lambda: list(scan(iter_file(5)))):
            self.assertRaises(TypeError, wrong)
        for wrong in (lambda: scan("x", 0), lambda: scan("x", 4), lambda: scan("x", within=-1),
                      lambda: find("name", "x"), lambda: dsmake.DataSet("a\0b")):
            self.assertRaises(ValueError, wrong)
        finds = scan("Bob, Köln")
        self.data_set.close()
        self.data_set.close()
        for wrong in (lambda: scan("x"), lambda: find("Name", "x"), lambda: next(finds),
                      self.data_set.__enter__):
            self.assertRaises(ValueError, wrong)

    def test_faults_of_files(self):
        with self.assertRaises(dsmake.Error) as caught:
            dsmake.DataSet(self.place / "in")
        self.assertEqual(caught.exception.code, 0xC2012521)
        self.assertEqual(caught.exception.filename, str(self.place / "in"))
        again = pickle.loads(pickle.dumps(caught.exception))
        self.assertEqual((str(again), again.code), (str(caught.exception), 0xC2012521))
        self.assertTrue(str(caught.exception).startswith(caught.exception.filename + ": 0xC2012521"))

    def test_threads_side_by_side(self):
        text = "Bob, Köln. " + "Ann Kohl, \n" * 2000 + "ann o'neil, Cork"
        good = []

        def work():
            for _ in range(20):
                good.append(self.quotes(text) == ["Bob", "ann o'neil"]
                            and len(self.data_set.find("Card", "5")) == 1)

        threads = [threading.Thread(target=work) for _ in range(4)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(good, [True] * 80)


def iter_file(piece):
    """A file whose pieces are of a wrong type."""
    class File:
        def read(self, _):
            return piece
    return File()


class Library(unittest.TestCase):
    def test_version(self):
        self.assertRegex(dsmake.version(), r"^\d+\.\d+\.\d+$")


if __name__ == "__main__":
    unittest.main()
